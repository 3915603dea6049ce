// The exported functions. They manage one editor on the host's behalf: the
// module-wide pointer below, null while no editor is open. Every function
// but Tamerisk_Open does nothing without an editor.
//
// Widgets may be touched only on the QApplication's thread while it exists.
// Every function checks that first and otherwise leaves the editor alone,
// with one line on stderr and the reason for Tamerisk_GetLastResult. The
// editor goes away with the QApplication (a post routine, which Qt runs
// while the application is still whole), so a host that destroys the
// application before Tamerisk_Close finds nothing left to close.
//
// From Tamerisk_Open to Tamerisk_Close the library holds a reference to
// itself. A host that unloads it with the editor still open therefore does
// not take the code from under a window the application still shows; the
// library stays until the editor goes, with the application or at exit.
// Only Tamerisk_Close gives the reference back: the host, which calls it,
// still holds its own, so the code it runs in stays.
#include <dlfcn.h>

#include <cstdio>
#include <iterator>
#include <memory>
#include <new>

#include <QApplication>
#include <QThread>

#include <tamerisk/tamerisk.h>

#include <tamerisk/dlg_attribute.h>
#include "dialogs/dlg_attribute_p.h"
#include "host/editor_instance.h"
#include "host/last_result.h"

namespace {

std::unique_ptr<CDlgAttribute> editor;

// The library's reference to itself while an editor is open.
void* selfReference = nullptr;

void HoldLibrary()
{
    Dl_info self;
    if (selfReference == nullptr && dladdr(reinterpret_cast<void*>(&DeleteEditorInstance), &self) != 0
        && self.dli_fname != nullptr)
        selfReference = dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD);
}

void ReleaseLibrary()
{
    if (selfReference != nullptr)
        dlclose(selfReference);
    selfReference = nullptr;
}

// Per thread, so that a call from another thread neither reads nor
// overwrites the GUI thread's answer.
thread_local int lastResult = TAMERISK_OK;

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
        lastResult = TAMERISK_ERROR_OUT_OF_MEMORY;
        return false;
    }
}

TameriskResult WidgetAccess()
{
    const QCoreApplication* app = QCoreApplication::instance();
    if (qobject_cast<const QApplication*>(app) == nullptr)
        return TAMERISK_ERROR_NO_APPLICATION;
    return QThread::currentThread() == app->thread() ? TAMERISK_OK : TAMERISK_ERROR_WRONG_THREAD;
}

const char* Reason(TameriskResult result)
{
    return result == TAMERISK_ERROR_NO_APPLICATION
               ? "there is no QApplication"
               : "it was called from a thread other than the QApplication's";
}

// Whether the function may go on. Qt would abort the host's process on a
// widget made without a QApplication, and widgets touched from another
// thread race with the event loop. Without an application and without an
// editor there is nothing to leave alone: a late Tamerisk_Close is the
// normal end of a host whose application is already gone.
bool MayTouchWidgets(const char* function, bool needsApplication = false)
{
    const TameriskResult access = WidgetAccess();
    lastResult = access;
    if (access == TAMERISK_OK)
        return true;
    if (access == TAMERISK_ERROR_NO_APPLICATION && !needsApplication && !editor) {
        lastResult = TAMERISK_OK;
        return false;
    }
    std::fprintf(stderr, "Tamerisk: %s did nothing: %s\n", function, Reason(access));
    return false;
}

// Runs while the QApplication is being destroyed, before its windows go.
// The library stays held: the host may have unloaded it already, and the
// routine must not take away the code it runs in.
void CloseWithApplication()
{
    DeleteEditorInstance();
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

void RecordLastResult(TameriskResult result)
{
    lastResult = result;
}

void DeleteEditorInstance()
{
    // The pointer is cleared first: the destructor runs window code that
    // must not find a half-destroyed editor through the interface.
    const std::unique_ptr<CDlgAttribute> doomed = std::move(editor);
}

void ForgetEditorAtUnload()
{
    // Qt keeps the routine's address; it must not call into unmapped code.
    qRemovePostRoutine(CloseWithApplication);
    // An open editor holds the library, so one still open now means that the
    // process is ending without having destroyed its QApplication (exit()
    // from an event handler). Qt's plugins may be finalised already and no
    // widget code may run; the window goes with the process, as the host's
    // own windows do.
    static_cast<void>(editor.release());
}

extern "C" {

int Tamerisk_Open(QWidget* notifyWindow, unsigned int notifyMessage)
{
    if (!MayTouchWidgets("Tamerisk_Open", true))
        return 0;
    DeleteEditorInstance();
    HoldLibrary();
    // Removed first, so that it is registered once however often the host
    // opens the editor.
    qRemovePostRoutine(CloseWithApplication);
    qAddPostRoutine(CloseWithApplication);
    // When the editor cannot be allocated no editor is open and Create is not
    // called; no exception may reach the host through a C function.
    if (!WithoutBadAlloc([&] { editor = std::make_unique<CDlgAttribute>(notifyWindow, notifyMessage); }))
        return 0;
    // The settings file's window is this editor's, whatever editors the host
    // owns besides.
    CDlgAttributePrivate::Of(editor.get())->claimsPlacement = true;
    // A window that could not be created leaves the window-less editor open
    // until Tamerisk_Close, so the host's usual clean-up still applies.
    bool created = false;
    if (!WithoutBadAlloc([&] { created = editor->Create(); }))
        return 0;
    if (!created)
        lastResult = TAMERISK_ERROR_NO_WINDOW;
    return created ? 1 : 0;
}

void Tamerisk_Close(void)
{
    if (MayTouchWidgets("Tamerisk_Close"))
        DeleteEditorInstance();
    // Also after the application took the editor with it: no editor is
    // left then, and nothing holds the library any more.
    if (lastResult == TAMERISK_OK)
        ReleaseLibrary();
}

// A null record pointer is ignored rather than dereferenced: a host that
// passes one has nothing to hand over or to receive.
void Tamerisk_SetAttribute(FZAttributeEx* attribute)
{
    if (!MayTouchWidgets("Tamerisk_SetAttribute") || !editor || !attribute)
        return;
    WithoutBadAlloc([&] {
        editor->SetAttribute(*attribute);
        editor->UpdatePanelView();
    });
}

void Tamerisk_GetAttribute(FZAttributeEx* attribute)
{
    if (MayTouchWidgets("Tamerisk_GetAttribute") && editor && attribute)
        editor->GetAttribute(*attribute);
}

void Tamerisk_SetColorBind(int bind)
{
    if (!MayTouchWidgets("Tamerisk_SetColorBind") || !editor)
        return;
    WithoutBadAlloc([&] {
        editor->SetColorBind(bind);
        editor->UpdatePanelView();
    });
}

int Tamerisk_GetColorBind(void)
{
    return MayTouchWidgets("Tamerisk_GetColorBind") && editor ? editor->GetColorBind() : 0;
}

void Tamerisk_ShowWindow(int command)
{
    if (!MayTouchWidgets("Tamerisk_ShowWindow") || !editor || command < 0 || command >= static_cast<int>(std::size(kShowCommands)))
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
    if (!MayTouchWidgets("Tamerisk_GetShow") || !editor)
        return TAMERISK_NO_EDITOR;
    if (editor->isMinimized())
        return TAMERISK_SW_SHOWMINIMIZED;
    if (editor->isMaximized())
        return TAMERISK_SW_SHOWMAXIMIZED;
    return TAMERISK_SW_SHOWNORMAL;
}

void Tamerisk_SetTitle(const char* utf8)
{
    if (MayTouchWidgets("Tamerisk_SetTitle") && editor)
        editor->setWindowTitle(utf8 ? QString::fromUtf8(utf8) : QString());
}

int Tamerisk_GetLastResult(void)
{
    return lastResult;
}

unsigned int Tamerisk_GetVersion(void)
{
    return TAMERISK_VERSION;
}

} // extern "C"
