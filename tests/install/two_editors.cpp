// A host that owns two material editors at once, beside the one of the C
// functions, built against an installed Tamerisk only with every warning an
// error. Each editor keeps its own material and colour bind and notifies its
// own window; deleting one leaves the others working.
#include <cstdio>
#include <memory>

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <tamerisk/dlg_attribute.h>
#include <tamerisk/tamerisk.h>

namespace {

// A host window that counts its editor's notifications.
class MaterialSlot : public QWidget {
public:
    explicit MaterialSlot(QEvent::Type message) : message(message) {}
    int notifications = 0;

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != message)
            return QWidget::event(event);
        ++notifications;
        return true;
    }

private:
    QEvent::Type message;
};

// The user presses "更新" (control 1017).
void PressUpdate(CDlgAttribute& editor)
{
    editor.findChild<QAbstractButton*>(QStringLiteral("1017"))->click();
}

int Fail(const char* what)
{
    std::fprintf(stderr, "two_editors: %s\n", what);
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const auto message = static_cast<QEvent::Type>(QEvent::registerEventType());
    MaterialSlot firstSlot(message), secondSlot(message);
    auto first = std::make_unique<CDlgAttribute>(&firstSlot, static_cast<unsigned int>(message));
    auto second = std::make_unique<CDlgAttribute>(&secondSlot, static_cast<unsigned int>(message));
    if (!first->Create() || !second->Create() || Tamerisk_Open(nullptr, 0) != 1)
        return Fail("the editors did not open");

    FZAttributeEx red, blue;
    red.color.SetBytes(255, 0, 0);
    blue.color.SetBytes(0, 0, 255);
    first->SetAttribute(red);
    first->UpdatePanelView();
    second->SetAttribute(blue);
    second->SetColorBind(1);
    second->UpdatePanelView();
    PressUpdate(*first);
    if (firstSlot.notifications != 1 || secondSlot.notifications != 0)
        return Fail("the first editor's update reached the wrong window");

    first.reset();
    FZAttributeEx back;
    second->GetAttribute(back);
    if (back.color.b != 255 || back.color.r != 0 || second->GetColorBind() != 1)
        return Fail("the second editor lost its material with the first");
    PressUpdate(*second);
    if (secondSlot.notifications != 1 || Tamerisk_GetShow() == TAMERISK_NO_EDITOR)
        return Fail("the other editors stopped working");
    Tamerisk_Close();
    std::printf("two_editors: Tamerisk %s works with several editors\n", TAMERISK_VERSION_STRING);
    return 0;
}
