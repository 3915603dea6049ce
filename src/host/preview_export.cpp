// Tamerisk_RenderPreview: pictures of materials for a host's own lists,
// drawn on whatever thread the host calls from. Nothing here touches Qt or
// the editor; the picture is the preview's (preview/preview_picture.h).
#include <cstdint>
#include <new>

#include <tamerisk/tamerisk.h>

#include "engine/rows_on_calling_thread.h"
#include "host/last_result.h"
#include "preview/preview_picture.h"

namespace {

constexpr int kMaxSide = 8192;
// A thread keeps the scene of pictures up to this size for the next one: a
// host drawing thumbnails draws many of one size. Larger scenes go at once.
constexpr std::int64_t kKeptPixels = 512 * 512;

bool ValidArguments(const FZAttributeEx* material, int shape, int width, int height, const unsigned char* rgb,
                    int stride)
{
    return material != nullptr && rgb != nullptr && shape >= 1 && shape <= 4 && width >= 1 && width <= kMaxSide
           && height >= 1 && height <= kMaxSide && stride >= 3 * width;
}

TameriskResult Draw(const FZAttributeEx& material, int shape, int width, int height, int colorBind,
                    unsigned char* rgb, int stride)
{
    thread_local FZPreviewPicture picture;
    // The editor's render threads stay the editor's.
    const FZRowsOnCallingThread alone;
    TameriskResult result = TAMERISK_OK;
    try {
        if (picture.Draw(material, shape, width, height, colorBind) == FZResult::Ok)
            CopyFrameToRgb(*picture.Frame(), rgb, stride);
        else
            result = TAMERISK_ERROR_OUT_OF_MEMORY;  // arguments in range leave nothing else to fail
    } catch (const std::bad_alloc&) {
        result = TAMERISK_ERROR_OUT_OF_MEMORY;
    }
    if (result != TAMERISK_OK || std::int64_t{width} * height > kKeptPixels)
        picture.Release();
    return result;
}

} // namespace

extern "C" int Tamerisk_RenderPreview(const FZAttributeEx* material, int shape, int width, int height, int colorBind,
                                      unsigned char* rgb, int stride)
{
    const TameriskResult result = ValidArguments(material, shape, width, height, rgb, stride)
                                      ? Draw(*material, shape, width, height, colorBind, rgb, stride)
                                      : TAMERISK_ERROR_BAD_ARGUMENT;
    RecordLastResult(result);
    return result;
}
