#include "engine/image.h"

#include <cstring>
#include <limits>
#include <new>

namespace {

// The largest pixel buffer Create hands out: far beyond any frame the editor
// shows, and small enough that every byte offset into it fits in 32 bits.
// A larger request is treated like memory that cannot be had, before any
// allocation is tried.
constexpr std::int64_t kMaxImageBytes = std::numeric_limits<std::int32_t>::max();

// An 8-bit index reaches at most 256 palette entries.
constexpr std::int32_t kMaxPaletteCount = 256;

} // namespace

FZResult FZImage::Create(std::int32_t w, std::int32_t h, std::int32_t bpp, std::int32_t palCount)
{
    Free();
    if (w < 0 || h < 0 || bpp < 1 || bpp > 4 || palCount < 0 || palCount > kMaxPaletteCount)
        return FZResult::BadParameter;
    const std::int64_t rowBytes = (std::int64_t{w} * bpp + 3) / 4 * 4;
    if (rowBytes > kMaxImageBytes || rowBytes * h > kMaxImageBytes)  // both below 2^31: no overflow
        return FZResult::OutOfMemory;
    const std::int64_t size = rowBytes * h;

    std::uint8_t* pixels = nullptr;
    if (size > 0) {
        pixels = new (std::nothrow) std::uint8_t[static_cast<std::size_t>(size)];
        if (pixels == nullptr)
            return FZResult::OutOfMemory;
        std::memset(pixels, 0, static_cast<std::size_t>(size));
    }
    std::uint8_t* pal = nullptr;
    if (palCount > 0) {
        pal = new (std::nothrow) std::uint8_t[static_cast<std::size_t>(palCount) * 3];
        if (pal == nullptr) {
            delete[] pixels;
            return FZResult::OutOfMemory;
        }
    }
    width = w;
    height = h;
    bytesPerPixel = bpp;
    stride = static_cast<std::int32_t>(rowBytes);
    dataSize = size;
    data = pixels;
    paletteCount = palCount;
    palette = pal;
    return FZResult::Ok;
}

void FZImage::Free()
{
    delete[] name;
    delete[] palette;
    delete[] data;
    name = nullptr;
    palette = nullptr;
    data = nullptr;
    width = height = bytesPerPixel = stride = paletteCount = 0;
    dataSize = 0;
}
