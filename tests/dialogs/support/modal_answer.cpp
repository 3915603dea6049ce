#include <QApplication>
#include <QWidget>

#include "dlg_attribute_access.h"

ModalAnswer::ModalAnswer(std::function<void(QWidget*)> answer) : timer(new QTimer)
{
    QObject::connect(timer, &QTimer::timeout, timer, [this, answer] {
        QWidget* modal = QApplication::activePopupWidget();
        if (modal == nullptr)
            modal = QApplication::activeModalWidget();
        if (modal == nullptr || !modal->isVisible())
            return;
        seen = true;
        timer->stop();
        answer(modal);
    });
    timer->start(5);
}

ModalAnswer::~ModalAnswer()
{
    delete timer;
}
