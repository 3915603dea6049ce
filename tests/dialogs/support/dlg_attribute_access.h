// Answers the modal windows a handler opens.
#ifndef TAMERISK_TESTS_DIALOGS_DLG_ATTRIBUTE_ACCESS_H
#define TAMERISK_TESTS_DIALOGS_DLG_ATTRIBUTE_ACCESS_H

#include <functional>

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>

#include <tamerisk/dlg_attribute.h>

#include "dialogs/dialog_template.h"

// A host window that counts the editor's notify events.
struct NotifyCounter : QWidget {
    explicit NotifyCounter(QEvent::Type type) : message(type) {}
    bool event(QEvent* e) override { notifications += e->type() == message; return QWidget::event(e); }
    QEvent::Type message;
    int notifications = 0;
};

inline FZAttributeEx RecordOf(const CDlgAttribute& editor)
{
    FZAttributeEx record;
    editor.GetAttribute(record);
    return record;
}

// The editor among the top-level windows that is none of `known`: the one
// the C functions opened.
inline CDlgAttribute* EditorBesides(const QWidgetList& known)
{
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (auto* editor = qobject_cast<CDlgAttribute*>(w); editor && !known.contains(w))
            return editor;
    }
    return nullptr;
}

// Runs `answer` on the next modal window or pop-up menu of type T that opens
// while it lives (polling every few milliseconds), so that a test can drive
// a handler that blocks in exec(). Seen() tells whether one came.
template <typename T = QWidget>
class ModalAnswer {
public:
    explicit ModalAnswer(std::function<void(T*)> answer)
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this, answer] {
            // A pop-up of the window it waits for (a file dialog's completer)
            // or another modal window still closing may be the active one
            // for a moment: answer only the kind of window it waits for.
            T* wanted = qobject_cast<T*>(QApplication::activePopupWidget());
            if (wanted == nullptr)
                wanted = qobject_cast<T*>(QApplication::activeModalWidget());
            if (wanted == nullptr || !wanted->isVisible())
                return;
            seen = true;
            timer.stop();
            answer(wanted);
        });
        timer.start(5);
    }
    bool Seen() const { return seen; }

private:
    QTimer timer;
    bool seen = false;
};

// Answers a file dialog with an absolute path typed into its name field,
// as a user would: selectFile alone resolves the name against the folder
// the dialog shows, which it may not have switched to yet.
inline void AnswerFileDialog(QFileDialog* dialog, const QString& path)
{
    dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
    static_cast<QDialog*>(dialog)->accept();
}

#endif
