// The preview panel: the object behind control 4000 of every dialog. It owns
// a small scene (a checkered ground layer and one sample layer), rebuilds the
// sample layer for another sample shape, gives it the current material,
// renders the frame and draws it into the control.
//
// The scene work needs no window: SetUpFrame builds the scene for a frame of
// a given pixel size, which is how the command-line tools use the panel.
// SetUp and Present bind it to a Qt control (preview_panel_qt.cpp).
#ifndef TAMERISK_PREVIEW_PREVIEW_PANEL_H
#define TAMERISK_PREVIEW_PREVIEW_PANEL_H

#include <cstdint>
#include <memory>

#include <tamerisk/attribute.h>

#include "material/result_codes.h"

#include "engine/scene.h"

class QWidget;

// The largest frame the panel builds. A frame costs at most 16 bytes a
// pixel (the flat ground keeps no rows, the sample keeps its rows and
// shaded image over its own square only, and the frame image), so this
// keeps a preview within a gigabyte; anything larger is refused as out of
// memory before a single row is allocated.
inline constexpr std::int64_t kMaxFramePixels = std::int64_t{1} << 26;  // 8192 x 8192
inline constexpr std::int32_t kMaxFrameSide = 1 << 15;

class CPreviewPanel {
public:
    CPreviewPanel() = default;
    virtual ~CPreviewPanel() = default;
    CPreviewPanel(const CPreviewPanel&) = delete;
    CPreviewPanel& operator=(const CPreviewPanel&) = delete;

    // Builds the scene for the control's client size with sample shape
    // `shape` and renders the first frame. A null control does nothing.
    FZResult SetUp(QWidget* control, std::int32_t shape = 1);
    // The same for a frame of w x h pixels, with no window. BadParameter
    // when w or h is below 1, OutOfMemory for a frame beyond 8192 x 8192
    // pixels, or what building the scene or the shape gives.
    FZResult SetUpFrame(std::int32_t w, std::int32_t h, std::int32_t shape = 1);
    // SetUpFrame with the sample's material given at once (white when bind
    // is 1): the first frame is the material's, and the sample is shaded and
    // the frame rendered once, where SetUpFrame and ApplyMaterial would do
    // both twice. What a picture of one material wants.
    FZResult SetUpFrame(std::int32_t w, std::int32_t h, std::int32_t shape, const FZAttributeEx& material,
                        std::int32_t bind);

    // Replaces the sample layer by shape n (1 to 4; others leave it empty),
    // keeping its material and colour source, and renders. The shape it
    // already shows does nothing.
    FZResult BuildSampleShape(std::int32_t n);
    // Gives the sample layer the material (white when bind is 1), shades it
    // and renders.
    FZResult ApplyMaterial(const FZAttributeEx& material, std::int32_t bind);
    // Whether the scene's frame has the control's size in device pixels.
    bool FitsControl(const QWidget* control) const;
    // Draws the last rendered frame into the control; nothing without a scene.
    void Present(QWidget* control);

    std::int32_t ShapeNumber() const { return shapeNumber; }
    void ReleaseScene();

    FZScene* Scene() { return scene.get(); }
    const FZScene* Scene() const { return scene.get(); }

private:
    // Draws shape n into a new sample layer and prepares its surface.
    FZResult MakeSample(std::int32_t n);
    void SetSampleMaterial(const FZAttributeEx& material, std::int32_t bind);
    FZResult ShadeAndRender();

    std::unique_ptr<FZScene> scene;
    std::int32_t groundIndex = 0;
    std::int32_t sampleIndex = 1;
    std::int32_t shapeNumber = 1;
};

#endif
