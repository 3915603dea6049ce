// How the material editor runs its modal windows: the parameter dialogs, the
// colour pickers, the file dialogs, the message boxes and the colour-family
// menu. Each runs a nested event loop, and the host may destroy the editor
// while it runs: a timer, an autosave or a closing document calls
// Tamerisk_Close or Tamerisk_Open, or deletes its own CDlgAttribute. So every
// modal window of the editor is a CModalWindow:
//   * the window lives on the heap and goes when the editor goes, which ends
//     its loop as if it had been cancelled;
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

#include <QPointer>
#include <QWidget>

template <typename Window>
class CModalWindow {
public:
    // Makes the window from `args` for `editor`; the arguments say whether it
    // has a parent, as each window's rules want.
    template <typename... Args>
    explicit CModalWindow(QWidget* editor, Args&&... args)
        : editor(editor), window(new Window(std::forward<Args>(args)...))
    {
        // A child of the editor goes with its children; any other window
        // goes when the editor is destroyed.
        QObject::connect(editor, &QObject::destroyed, window.data(),
                         [w = window.data()] { delete w; });
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
