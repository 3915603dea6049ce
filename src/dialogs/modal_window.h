// How the material editor runs its modal windows: the parameter dialogs, the
// colour pickers, the file dialogs, the message boxes and the colour-family
// menu. Each runs a nested event loop, and the host may destroy the editor
// while it runs: a timer, an autosave or a closing document calls
// Tamerisk_Close or Tamerisk_Open, or deletes its own CDlgAttribute. So every
// modal window of the editor is a CModalWindow:
//   * the window lives on the heap; when the editor goes (its destructor
//     calls PutAwayModalWindows first), the window leaves it and is
//     cancelled, which ends its loop, and it goes with its CModalWindow.
//     It is never deleted under its own running code: a file dialog asks
//     about a missing file or a file to replace in a message box made on
//     its own stack;
//   * Exec() tells the handler whether the editor outlived the loop; when it
//     did not, the handler returns at once and touches nothing of it, nor of
//     the window.
//
//     CModalWindow<QColorDialog> picker(q, initial, nullptr);
//     const std::optional<int> answer = picker.Exec();
//     if (!answer)
//         return;  // the editor is gone
#ifndef TAMERISK_DIALOGS_MODAL_WINDOW_H
#define TAMERISK_DIALOGS_MODAL_WINDOW_H

#include <optional>
#include <utility>

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QVariant>
#include <QWidget>

// The property that ties a modal window to its editor.
inline constexpr char kModalWindowOf[] = "tamerisk-modal-window-of";

// Called first by an editor's destructor: each of its modal windows leaves
// it, so that the editor's widgets do not take the window along, and is
// cancelled with its own questions (their loops end as a cancel ends them).
// A window's loop returns into the editor's code, which the host may unload
// right after destroying the editor: the library then stays loaded for good.
void PutAwayModalWindows(QWidget* editor);

template <typename Window>
class CModalWindow {
public:
    // Makes the window from `args` for `editor`; the arguments say whether it
    // has a parent, as each window's rules want.
    template <typename... Args>
    explicit CModalWindow(QWidget* editor, Args&&... args)
        : editor(editor), window(new Window(std::forward<Args>(args)...))
    {
        window->setProperty(kModalWindowOf, QVariant::fromValue(static_cast<QObject*>(editor)));
    }
    ~CModalWindow() { delete window.data(); }
    CModalWindow(const CModalWindow&) = delete;
    CModalWindow& operator=(const CModalWindow&) = delete;

    Window* operator->() const { return window.data(); }
    Window& operator*() const { return *window; }

    // Runs the window's loop: what its exec(args...) returns, or nothing
    // when the editor was destroyed meanwhile.
    template <typename... Args>
    [[nodiscard]] auto Exec(Args&&... args)
    {
        using Answer = decltype(window->exec(std::forward<Args>(args)...));
        const Answer answer = window->exec(std::forward<Args>(args)...);
        return editor.isNull() ? std::nullopt : std::optional<Answer>(answer);
    }

private:
    QPointer<QWidget> editor;
    QPointer<Window> window;
};

#endif
