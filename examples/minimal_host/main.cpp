// A minimal Tamerisk host: one button opens the material editor with the
// host's material; whenever the user presses "更新" in the editor, the host
// reads the material back and shows its diffuse reflectance.
#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <tamerisk/tamerisk.h>

class Host : public QWidget {
public:
    Host()
    {
        auto* edit = new QPushButton(QStringLiteral("Edit material"), this);
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(edit);
        layout->addWidget(label);
        connect(edit, &QPushButton::clicked, this, [this] {
            Tamerisk_Open(this, notify);            // 1. the editor, told to notify us
            Tamerisk_SetAttribute(&material);       // 2. our material (after opening)
            Tamerisk_ShowWindow(TAMERISK_SW_SHOWNORMAL);  // 3. on screen
        });
    }
    ~Host() override { Tamerisk_Close(); }          // 5. remembers where it was

protected:
    // 4. "更新" arrives as an event of our registered type, sent synchronously.
    bool event(QEvent* e) override
    {
        if (e->type() != static_cast<QEvent::Type>(notify))
            return QWidget::event(e);
        Tamerisk_GetAttribute(&material);
        label->setText(QStringLiteral("diffuse %1").arg(material.diffuse));
        return true;
    }

private:
    const unsigned int notify = static_cast<unsigned int>(QEvent::registerEventType());
    FZAttributeEx material;
    QLabel* label = new QLabel(QStringLiteral("Press 更新 in the editor"), this);
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    Host host;
    host.show();
    return app.exec();
}
