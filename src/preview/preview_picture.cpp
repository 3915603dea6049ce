#include "preview/preview_picture.h"

FZResult FZPreviewPicture::Draw(const FZAttributeEx& material, std::int32_t shape, std::int32_t w, std::int32_t h,
                                std::int32_t bind)
{
    const FZScene* scene = panel.Scene();
    const bool sameScene = drawn && scene != nullptr && scene->width == w && scene->height == h
                           && panel.ShapeNumber() == shape;
    // Until it succeeds there is no picture, and a half-built scene is not
    // taken for a whole one next time.
    drawn = false;
    const FZResult result
        = sameScene ? panel.ApplyMaterial(material, bind) : panel.SetUpFrame(w, h, shape, material, bind);
    drawn = result == FZResult::Ok && Frame() != nullptr;
    return result;
}

const FZImage* FZPreviewPicture::Frame() const
{
    const FZScene* scene = panel.Scene();
    if (scene == nullptr || scene->frame == nullptr || scene->frame->data.empty())
        return nullptr;
    return scene->frame.get();
}

void FZPreviewPicture::Release()
{
    panel.ReleaseScene();
    drawn = false;
}

void CopyFrameToRgb(const FZImage& frame, std::uint8_t* rgb, std::ptrdiff_t stride)
{
    for (std::int32_t r = 0; r < frame.height; ++r) {
        const std::uint8_t* bgr = frame.PixelAddress(0, frame.height - 1 - r);
        std::uint8_t* out = rgb + r * stride;
        for (std::int32_t x = 0; x < frame.width; ++x) {
            out[3 * x] = bgr[3 * x + 2];
            out[3 * x + 1] = bgr[3 * x + 1];
            out[3 * x + 2] = bgr[3 * x];
        }
    }
}
