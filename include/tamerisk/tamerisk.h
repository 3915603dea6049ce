// Tamerisk's host interface: the C functions through which a host
// application opens the material editor "質感 ﾘﾓｺﾝ", hands it a material and
// reads the edited material back.
//
// libtamerisk.so exports these functions with C linkage under exactly these
// names (symbol versions TAMERISK_1 and, for those added in 1.1,
// TAMERISK_1.1), and nothing else, so a host may link the
// library or resolve them at run time (dlopen and dlsym, or
// QLibrary::resolve) through the pointer types declared below. This header,
// tamerisk/attribute.h and tamerisk/version.h are all a host needs.
//
// Requirements
//   * The host runs a QApplication (Qt 6 Widgets) and calls every function on
//     its GUI thread. The editor is a modeless top-level window that lives in
//     the host's event loop; nothing is locked.
//   * A call without a QApplication, or from another thread, leaves the
//     editor alone: it does nothing, returns what it returns with no editor
//     open, prints one line on standard error, and Tamerisk_GetLastResult
//     tells why. Tamerisk_Close after the QApplication is gone frees the
//     editor without touching its (already destroyed) window.
//
// Calling order
//   1. Tamerisk_Open(notifyWindow, notifyMessage) creates the one editor. Its
//      window is placed where it was when last closed and is shown or stays
//      hidden as it was then (the file Tamerisk.ini remembers it; the first
//      time it stays hidden). Opening also switches colour bind off and
//      starts from the default material.
//   2. Tamerisk_SetAttribute with the material to edit, and
//      Tamerisk_SetColorBind(1) if the host decides the surface colour itself.
//      Both only work after step 1.
//   3. Tamerisk_ShowWindow(TAMERISK_SW_SHOWNORMAL) (or another command) to
//      show the editor, Tamerisk_ShowWindow(TAMERISK_SW_HIDE) to hide it.
//   4. When the user presses "更新" (update) or the space bar, the editor
//      sends the notify event to notifyWindow with
//      QCoreApplication::sendEvent: synchronously, so the host's handler runs
//      before the editor's button handler returns. The event's type() is
//      QEvent::Type(notifyMessage); pick the number with
//      QEvent::registerEventType() and handle it in notifyWindow's event() or
//      an event filter. The handler reads the material with
//      Tamerisk_GetAttribute. With a null notifyWindow the editor tells the
//      user that there is nobody to send to.
//   5. Tamerisk_Close when done. It destroys the window, which remembers its
//      position, and frees the editor. A host that unloads the library
//      (dlclose) closes the editor first; an editor still open keeps the
//      library loaded until it goes with the QApplication.
//
// The close box of the editor only hides it (minimised, then hidden);
// Tamerisk_GetShow tells the host, and Tamerisk_ShowWindow brings it back.
// Do not call Tamerisk_Open or Tamerisk_Close from inside the notify handler:
// the editor's button handler is still running then. Post the call instead
// (QMetaObject::invokeMethod with Qt::QueuedConnection).
//
// Tamerisk_RenderPreview stands apart: it needs no editor and no
// QApplication, and any thread may call it, several at once.
//
// Without an open editor every function but Tamerisk_Open does nothing;
// Tamerisk_GetShow then returns TAMERISK_NO_EDITOR and Tamerisk_GetColorBind
// returns 0. Null record pointers are ignored.
#ifndef TAMERISK_TAMERISK_H
#define TAMERISK_TAMERISK_H

#include <type_traits>

#include "attribute.h"
#include "export.h"
#include "version.h"

class QWidget;

// Show commands for Tamerisk_ShowWindow and show states reported by
// Tamerisk_GetShow. The numbers are those of the Windows SW_* constants, so
// hosts ported from there keep their values.
enum TameriskShowCommand : int {
    TAMERISK_SW_HIDE = 0,             // hide the window
    TAMERISK_SW_SHOWNORMAL = 1,       // show and activate in its normal (restored) size
    TAMERISK_SW_NORMAL = 1,
    TAMERISK_SW_SHOWMINIMIZED = 2,    // show minimised and activate
    TAMERISK_SW_SHOWMAXIMIZED = 3,    // show maximised and activate
    TAMERISK_SW_MAXIMIZE = 3,
    TAMERISK_SW_SHOWNOACTIVATE = 4,   // show in its normal size, without activating
    TAMERISK_SW_SHOW = 5,             // show in its current state and activate
    TAMERISK_SW_MINIMIZE = 6,         // minimise
    TAMERISK_SW_SHOWMINNOACTIVE = 7,  // show minimised, without activating
    TAMERISK_SW_SHOWNA = 8,           // show in its current state, without activating
    TAMERISK_SW_RESTORE = 9,          // un-minimise (back to maximised if it was), or un-maximise
    TAMERISK_SW_SHOWDEFAULT = 10,     // as TAMERISK_SW_SHOWNORMAL
    TAMERISK_SW_FORCEMINIMIZE = 11,   // minimise
};

// Tamerisk_GetShow's answer when no editor is open: all 32 bits set.
#define TAMERISK_NO_EDITOR 0xFFFFFFFFu

// What Tamerisk_GetLastResult reports about the calling thread's last call.
enum TameriskResult : int {
    TAMERISK_OK = 0,
    TAMERISK_ERROR_NO_APPLICATION = 1,  // no QApplication: none yet, or it is gone
    TAMERISK_ERROR_WRONG_THREAD = 2,    // not the QApplication's thread
    TAMERISK_ERROR_NO_WINDOW = 3,       // Tamerisk_Open could not create the window
    TAMERISK_ERROR_OUT_OF_MEMORY = 4,   // the call ran out of memory and ended early
    TAMERISK_ERROR_BAD_ARGUMENT = 5,    // an argument out of its range; nothing was done (1.1)
};

extern "C" {

// Creates the editor and its window. An editor already open is closed first
// (its edits are lost unless fetched before). Returns 1 when the window was
// created, 0 when it could not be (no editor is then open, or one without a
// window that Tamerisk_Close frees).
TAMERISK_API int Tamerisk_Open(QWidget* notifyWindow, unsigned int notifyMessage);
// Destroys the editor's window (remembering its position) and frees it.
// Harmless when no editor is open.
TAMERISK_API void Tamerisk_Close(void);
// Copies the material into the editor and brings every control and the
// preview up to date. Any values are accepted; nothing is clamped.
TAMERISK_API void Tamerisk_SetAttribute(FZAttributeEx* attribute);
// Copies the editor's material into *attribute; with no editor open the
// record is left as it is.
TAMERISK_API void Tamerisk_GetAttribute(FZAttributeEx* attribute);
// Colour bind: while non-zero the host decides the surface colour and the
// editor's colour controls are disabled; while it is 1 the preview also shows
// the material in white (other non-zero values keep its colour). It is not
// part of the material and not remembered.
TAMERISK_API void Tamerisk_SetColorBind(int bind);
TAMERISK_API int Tamerisk_GetColorBind(void);
// Shows, hides, minimises, maximises or restores the editor's window; see
// TameriskShowCommand. Unknown commands are ignored.
TAMERISK_API void Tamerisk_ShowWindow(int command);
// The show state of the window's placement: TAMERISK_SW_SHOWMINIMIZED (2)
// when minimised, TAMERISK_SW_SHOWMAXIMIZED (3) when maximised, otherwise
// TAMERISK_SW_SHOWNORMAL (1). The state does not say whether the window is
// visible: a window hidden by TAMERISK_SW_HIDE still reports 1, and one
// closed by its close box reports 2. TAMERISK_NO_EDITOR with no editor.
TAMERISK_API unsigned int Tamerisk_GetShow(void);
// Sets the editor window's caption from UTF-8 text; null gives an empty one.
TAMERISK_API void Tamerisk_SetTitle(const char* utf8);
// TameriskResult of the calling thread's last call of the functions above
// (TAMERISK_OK after a call that did its work, or had nothing to do).
// Neither this function nor Tamerisk_GetVersion changes it.
TAMERISK_API int Tamerisk_GetLastResult(void);
// The library's version as TAMERISK_VERSION encodes it (tamerisk/version.h);
// callable at any time, from any thread.
TAMERISK_API unsigned int Tamerisk_GetVersion(void);

// Since 1.1. Draws the material on sample shape `shape` (1 plate with a
// dimple, 2 low dome, 3 flattened hemisphere, 4 ring) over the preview's
// checkered ground: the picture the editor's preview shows at that size and
// the one tamerisk-render writes, pixel for pixel. With colorBind 1 the
// sample is white, as the preview shows it under colour bind.
//
// The picture goes into the caller's image: width x height pixels of 3 bytes
// each (red, green, blue), the top row first, each row `stride` bytes after
// the one above it. Only the pixels are written, never the bytes between
// rows.
//
// Any thread may call it, several at once, with or without a QApplication
// and whether or not an editor is open. It renders on the calling thread
// alone and leaves the editor's render threads to the editor; several host
// threads draw several pictures at once. Each thread keeps the last small
// picture's scene, so a run of pictures of one size and shape builds it
// once.
//
// Returns TAMERISK_OK; TAMERISK_ERROR_BAD_ARGUMENT, having written nothing,
// for a null material or image, a width or height outside 1 to 8192, a
// stride shorter than a row (3 x width) or a shape outside 1 to 4; and
// TAMERISK_ERROR_OUT_OF_MEMORY, having written nothing, when the memory
// for the picture cannot be had. Tamerisk_GetLastResult reports the same.
TAMERISK_API int Tamerisk_RenderPreview(const FZAttributeEx* material, int shape, int width, int height,
                                        int colorBind, unsigned char* rgb, int stride);

} // extern "C"

// Function pointer types for hosts that resolve the functions at run time.
typedef int (*Tamerisk_OpenFunction)(QWidget*, unsigned int);
typedef void (*Tamerisk_CloseFunction)(void);
typedef void (*Tamerisk_SetAttributeFunction)(FZAttributeEx*);
typedef void (*Tamerisk_GetAttributeFunction)(FZAttributeEx*);
typedef void (*Tamerisk_SetColorBindFunction)(int);
typedef int (*Tamerisk_GetColorBindFunction)(void);
typedef void (*Tamerisk_ShowWindowFunction)(int);
typedef unsigned int (*Tamerisk_GetShowFunction)(void);
typedef void (*Tamerisk_SetTitleFunction)(const char*);
typedef int (*Tamerisk_GetLastResultFunction)(void);
typedef unsigned int (*Tamerisk_GetVersionFunction)(void);
typedef int (*Tamerisk_RenderPreviewFunction)(const FZAttributeEx*, int, int, int, int, unsigned char*, int);

// The functions as one table, for hosts that load the library at run
// time:
//
//     void* library = dlopen("libtamerisk.so.1", RTLD_NOW);
//     TameriskFunctions tamerisk;
//     if (const char* missing = TameriskResolveFunctions(
//             tamerisk, [&](const char* name) { return dlsym(library, name); }))
//         ...;  // not a Tamerisk library: `missing` was not found
//     if (tamerisk.GetVersion() >> 16 != TAMERISK_VERSION_MAJOR)
//         ...;  // another major version: the record may differ
//     tamerisk.Open(window, message);
//     ...
//     tamerisk.Close();
//     dlclose(library);
//
// lookup takes a function's name and returns its address or null (dlsym, or
// QLibrary::resolve). The result is null when every function was found, else
// the name of the first one missing.
//
// The table holds the functions of 1.0, which every 1.x library has. A host
// that uses Tamerisk_RenderPreview resolves it by itself, as a
// Tamerisk_RenderPreviewFunction, and finds it from 1.1 on.
struct TameriskFunctions {
    Tamerisk_OpenFunction Open = nullptr;
    Tamerisk_CloseFunction Close = nullptr;
    Tamerisk_SetAttributeFunction SetAttribute = nullptr;
    Tamerisk_GetAttributeFunction GetAttribute = nullptr;
    Tamerisk_SetColorBindFunction SetColorBind = nullptr;
    Tamerisk_GetColorBindFunction GetColorBind = nullptr;
    Tamerisk_ShowWindowFunction ShowWindow = nullptr;
    Tamerisk_GetShowFunction GetShow = nullptr;
    Tamerisk_SetTitleFunction SetTitle = nullptr;
    Tamerisk_GetLastResultFunction GetLastResult = nullptr;
    Tamerisk_GetVersionFunction GetVersion = nullptr;
};

template <typename Lookup>
const char* TameriskResolveFunctions(TameriskFunctions& table, Lookup lookup)
{
    const char* missing = nullptr;
    const auto resolve = [&](auto& function, const char* name) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(lookup(name));
        if (!function && !missing)
            missing = name;
    };
    resolve(table.Open, "Tamerisk_Open");
    resolve(table.Close, "Tamerisk_Close");
    resolve(table.SetAttribute, "Tamerisk_SetAttribute");
    resolve(table.GetAttribute, "Tamerisk_GetAttribute");
    resolve(table.SetColorBind, "Tamerisk_SetColorBind");
    resolve(table.GetColorBind, "Tamerisk_GetColorBind");
    resolve(table.ShowWindow, "Tamerisk_ShowWindow");
    resolve(table.GetShow, "Tamerisk_GetShow");
    resolve(table.SetTitle, "Tamerisk_SetTitle");
    resolve(table.GetLastResult, "Tamerisk_GetLastResult");
    resolve(table.GetVersion, "Tamerisk_GetVersion");
    return missing;
}

#endif
