// The editor's large preview: a resizable window of its own that shows the
// editor's material on the editor's sample shape at the full size of its
// drawing area, in device pixels. The editor opens it with a double click on
// its preview and hands it every change; it draws exactly what
// `tamerisk-render` draws at that size (the preview panel's SetUpFrame,
// BuildSampleShape and ApplyMaterial).
//
// The window is named "tamerisk-large-preview" and its drawing area "4000",
// as the preview control of every dialog. Its size is kept in the settings
// file when it is closed and when the editor goes away.
#ifndef TAMERISK_DIALOGS_LARGE_PREVIEW_H
#define TAMERISK_DIALOGS_LARGE_PREVIEW_H

#include <QWidget>

#include <tamerisk/attribute.h>

#include "preview/preview_panel.h"

class FZCanvas;

class CLargePreview : public QWidget {
    Q_OBJECT

public:
    // A window owned by `owner` (may be null), sized from the settings file.
    explicit CLargePreview(QWidget* owner);
    // Remembers the size when the window is still shown.
    ~CLargePreview() override;

    // What to show: the material (white when bind is 1) on sample shape
    // `shape`. While the window is shown it follows at once, doing only the
    // work the change needs; while it is hidden the values are only kept.
    void ShowMaterial(const FZAttributeEx& record, int bind, int shape);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // Brings the picture in line with the area's size, the shape and the
    // material: a new size makes a new scene, a new shape a new sample, a
    // new material shades it again, and nothing new renders nothing.
    void Render();
    // Presents the panel's frame and remembers what it shows.
    void ShowFrame();
    void RememberSize() const;

    FZCanvas* area = nullptr;
    CPreviewPanel panel;
    FZAttributeEx material;
    int colorBind = 0;
    int shape = 1;
    FZAttributeEx shownMaterial;
    int shownBind = 0;
    bool shown = false;  // the area shows the frame of shownMaterial
    bool renderQueued = false;  // a render for a new size is on its way
};

#endif
