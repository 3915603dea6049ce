#include "engine/image.h"

#include <limits>

namespace {

// The largest pixel buffer Create hands out: far beyond any frame the editor
// shows, and small enough that every byte offset into it fits in 32 bits.
// A larger request is treated like memory that cannot be had, before any
// allocation is tried.
constexpr std::int64_t kMaxImageBytes = std::numeric_limits<std::int32_t>::max();

} // namespace

FZResult FZImage::Create(std::int32_t w, std::int32_t h)
{
    Free();
    if (w < 0 || h < 0)
        return FZResult::BadParameter;
    const std::int64_t rowBytes = (std::int64_t{w} * kBytesPerPixel + 3) / 4 * 4;
    if (rowBytes > kMaxImageBytes || rowBytes * h > kMaxImageBytes)  // both below 2^31: no overflow
        return FZResult::OutOfMemory;
    data = FZZeroedArray<std::uint8_t>(static_cast<std::size_t>(rowBytes * h));
    width = w;
    height = h;
    stride = static_cast<std::int32_t>(rowBytes);
    return FZResult::Ok;
}

void FZImage::Free()
{
    data = {};
    width = height = stride = 0;
}
