// The editor's large preview: a resizable window of its own that shows the
// editor's material on the editor's sample shape at the full size of its
// drawing area, in device pixels. The editor opens it with a double click on
// its preview and hands it every change; it draws exactly what
// `tamerisk-render` draws at that size.
//
// The pictures are rendered on a thread of their own (CPreviewRenderer), so
// that an edit never makes the editor wait for a picture the size of a
// screen: the latest edit wins, and the frames come back in order. While the
// user drags a slider a quick draft at a reduced size may show first; the
// full picture follows when the drag rests.
//
// The window is named "tamerisk-large-preview" and its drawing area "4000",
// as the preview control of every dialog. Its size and place are kept in
// the settings file when it is closed and when the editor goes away.
#ifndef TAMERISK_DIALOGS_LARGE_PREVIEW_H
#define TAMERISK_DIALOGS_LARGE_PREVIEW_H

#include <memory>

#include <QTimer>
#include <QWidget>

#include <tamerisk/attribute.h>

#include "dialogs/preview_renderer.h"

class FZCanvas;

class CLargePreview : public QWidget {
    Q_OBJECT

public:
    // A window owned by `owner` (may be null), sized and placed from the
    // settings file.
    explicit CLargePreview(QWidget* owner);
    // Remembers the size and place when the window is still shown, and stops the
    // render in flight.
    ~CLargePreview() override;

    // What to show: the material (white when bind is 1) on sample shape
    // `shape`; `moving` while the user drags a control, when a draft may
    // come first. While the window is shown it follows at once; while it is
    // hidden the values are only kept.
    void ShowMaterial(const FZAttributeEx& record, int bind, int shape, bool moving = false);
    // Whether the window shows the full picture of the last thing it was
    // given (false while it is hidden, and while a frame is on its way).
    bool Settled() const;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // Asks for the picture of the area's size, the shape and the material,
    // unless it was the last thing asked for.
    void Request(bool moving);
    void ShowFrame(const CPreviewFrame& frame);
    void RememberPlace() const;

    FZCanvas* area = nullptr;
    CPreviewRequest wanted;     // what the window should show
    CPreviewRequest requested;  // the last request posted
    bool anyRequested = false;
    quint64 shownSequence = 0;  // of the frame on the screen
    bool renderQueued = false;  // a request for a new size is on its way
    // Refines the last draft once the drag has rested this long.
    QTimer rest;
    std::unique_ptr<CPreviewRenderer> renderer;
};

#endif
