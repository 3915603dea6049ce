// A picture of a material on a sample shape, made exactly as the preview
// panel makes its frame. tamerisk-render writes these pictures to files and
// Tamerisk_RenderPreview draws them into a host's buffer; both come through
// here, so they agree with each other and with the dialogs pixel for pixel.
#ifndef TAMERISK_PREVIEW_PREVIEW_PICTURE_H
#define TAMERISK_PREVIEW_PREVIEW_PICTURE_H

#include <cstddef>
#include <cstdint>

#include <tamerisk/attribute.h>

#include "preview/preview_panel.h"

class FZPreviewPicture {
public:
    // Renders the material (white when bind is 1) on sample shape `shape`
    // in a frame of w x h pixels. The ground and the shape are built when
    // the size or the shape differs from the last picture's; otherwise only
    // the material changes, as in the dialog when the user loads another.
    // The results are those of CPreviewPanel::SetUpFrame.
    [[nodiscard]] FZResult Draw(const FZAttributeEx& material, std::int32_t shape, std::int32_t w, std::int32_t h,
                                std::int32_t bind);
    // The last picture drawn; null when the last Draw failed or none ran.
    const FZImage* Frame() const;
    // Gives the scene's memory back; the next Draw builds it again.
    void Release();

private:
    CPreviewPanel panel;
    bool drawn = false;
};

// The frame as 3 bytes a pixel, red, green, blue, top row first, rows
// `stride` bytes apart (at least 3 x width); only the pixels are written.
void CopyFrameToRgb(const FZImage& frame, std::uint8_t* rgb, std::ptrdiff_t stride);

#endif
