// The nine exported functions. They manage one editor on the host's behalf:
// the module-wide pointer below, null while no editor is open. Every function
// but Tamerisk_Open does nothing without an editor.
#include <iterator>
#include <new>

#include <QApplication>
#include <QThread>

#include <tamerisk/dlg_attribute.h>
#include <tamerisk/tamerisk.h>

#include "host/editor_instance.h"

namespace {

CDlgAttribute* editor = nullptr;

// No exception may reach the host through a C function. Rendering the
// preview is what can run out of memory; the call then ends early and the
// editor keeps what it had.
template <typename Call>
bool WithoutBadAlloc(Call&& call) noexcept
{
    try {
        call();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

// Widgets can only be made inside a QApplication, on its thread; Qt would
// abort the host's process otherwise.
bool CanCreateWidgets()
{
    const QCoreApplication* app = QCoreApplication::instance();
    return qobject_cast<const QApplication*>(app) != nullptr
           && QThread::currentThread() == app->thread();
}

// Makes the window visible in the given state. Activation follows the
// command: the "no activate" commands show the window behind the active one.
void ShowInState(QWidget& window, Qt::WindowStates state, bool activate)
{
    const bool wasWithoutActivating = window.testAttribute(Qt::WA_ShowWithoutActivating);
    window.setAttribute(Qt::WA_ShowWithoutActivating, !activate);
    window.setWindowState(state);
    window.show();
    window.setAttribute(Qt::WA_ShowWithoutActivating, wasWithoutActivating);
    if (activate) {
        window.raise();
        window.activateWindow();
    }
}

Qt::WindowStates Kept(Qt::WindowStates s)
{
    return s;
}

Qt::WindowStates Normal(Qt::WindowStates s)
{
    return s & ~(Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen);
}

// Minimising keeps the maximised flag, so that restoring returns to it.
Qt::WindowStates Minimized(Qt::WindowStates s)
{
    return s | Qt::WindowMinimized;
}

Qt::WindowStates Maximized(Qt::WindowStates s)
{
    return (s & ~(Qt::WindowMinimized | Qt::WindowFullScreen)) | Qt::WindowMaximized;
}

// A minimised window goes back to what it was before (maximised or normal);
// any other window goes back to its normal size.
Qt::WindowStates Restored(Qt::WindowStates s)
{
    return s.testFlag(Qt::WindowMinimized) ? s & ~Qt::WindowMinimized : Normal(s);
}

// What each show command does, by its Windows number. Every command but
// hiding makes the window visible, as on Windows.
struct ShowCommand {
    Qt::WindowStates (*state)(Qt::WindowStates);
    bool activate;
};

constexpr ShowCommand kShowCommands[] = {
    {nullptr, false},   // TAMERISK_SW_HIDE
    {Normal, true},     // TAMERISK_SW_SHOWNORMAL
    {Minimized, true},  // TAMERISK_SW_SHOWMINIMIZED
    {Maximized, true},  // TAMERISK_SW_SHOWMAXIMIZED
    {Normal, false},    // TAMERISK_SW_SHOWNOACTIVATE
    {Kept, true},       // TAMERISK_SW_SHOW
    {Minimized, false}, // TAMERISK_SW_MINIMIZE: the next window gets the focus
    {Minimized, false}, // TAMERISK_SW_SHOWMINNOACTIVE
    {Kept, false},      // TAMERISK_SW_SHOWNA
    {Restored, true},   // TAMERISK_SW_RESTORE
    {Normal, true},     // TAMERISK_SW_SHOWDEFAULT
    {Minimized, false}, // TAMERISK_SW_FORCEMINIMIZE
};
static_assert(std::size(kShowCommands) == TAMERISK_SW_FORCEMINIMIZE + 1);

} // namespace

void DeleteEditorInstance()
{
    // The pointer is cleared first: the destructor runs window code that
    // must not find a half-destroyed editor through the interface.
    CDlgAttribute* doomed = editor;
    editor = nullptr;
    delete doomed;
}

extern "C" {

int Tamerisk_Open(QWidget* notifyWindow, unsigned int notifyMessage)
{
    DeleteEditorInstance();
    if (!CanCreateWidgets())
        return 0;
    // When the editor cannot be allocated no editor is open and Create is not
    // called; no exception may reach the host through a C function.
    try {
        editor = new CDlgAttribute(notifyWindow, notifyMessage);
    } catch (const std::bad_alloc&) {
        editor = nullptr;
        return 0;
    }
    // A window that could not be created leaves the window-less editor open
    // until Tamerisk_Close, so the host's usual clean-up still applies.
    bool created = false;
    return WithoutBadAlloc([&] { created = editor->Create(); }) && created ? 1 : 0;
}

void Tamerisk_Close(void)
{
    DeleteEditorInstance();
}

// A null record pointer is ignored rather than dereferenced: a host that
// passes one has nothing to hand over or to receive.
void Tamerisk_SetAttribute(FZAttributeEx* attribute)
{
    if (!editor || !attribute)
        return;
    WithoutBadAlloc([&] {
        editor->SetAttribute(*attribute);
        editor->UpdatePanelView();
    });
}

void Tamerisk_GetAttribute(FZAttributeEx* attribute)
{
    if (editor && attribute)
        editor->GetAttribute(*attribute);
}

void Tamerisk_SetColorBind(int bind)
{
    if (!editor)
        return;
    WithoutBadAlloc([&] {
        editor->SetColorBind(bind);
        editor->UpdatePanelView();
    });
}

int Tamerisk_GetColorBind(void)
{
    return editor ? editor->GetColorBind() : 0;
}

void Tamerisk_ShowWindow(int command)
{
    if (!editor || command < 0 || command >= static_cast<int>(std::size(kShowCommands)))
        return;
    const ShowCommand& what = kShowCommands[command];
    if (what.state)
        ShowInState(*editor, what.state(editor->windowState()), what.activate);
    else
        editor->hide();
}

// The show state of the placement, not the visibility: like the Windows
// placement it reports a hidden window by the state it would be shown in, so
// a window hidden by its close box (minimised first) reports 2 and one hidden
// by TAMERISK_SW_HIDE reports 1.
unsigned int Tamerisk_GetShow(void)
{
    if (!editor)
        return TAMERISK_NO_EDITOR;
    if (editor->isMinimized())
        return TAMERISK_SW_SHOWMINIMIZED;
    if (editor->isMaximized())
        return TAMERISK_SW_SHOWMAXIMIZED;
    return TAMERISK_SW_SHOWNORMAL;
}

void Tamerisk_SetTitle(const char* utf8)
{
    if (editor)
        editor->setWindowTitle(utf8 ? QString::fromUtf8(utf8) : QString());
}

} // extern "C"
