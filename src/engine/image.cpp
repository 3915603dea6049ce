#include "engine/image.h"

#include <cstring>
#include <limits>
#include <new>

int FZImage::Create(std::int32_t w, std::int32_t h, std::int32_t bpp, std::int32_t palCount)
{
    Free();
    if (w < 0 || h < 0 || bpp < 1 || bpp > 4 || palCount < 0)
        return -4;
    const std::int64_t rowBytes = std::int64_t{w} * bpp;
    const std::int64_t paddedRow = (rowBytes + 3) / 4 * 4;
    if (paddedRow > std::numeric_limits<std::int32_t>::max())
        return -2;
    const std::int64_t size = paddedRow * h;
    if (size > std::numeric_limits<std::int64_t>::max() / 2)
        return -2;

    std::uint8_t* pixels = nullptr;
    std::uint8_t* pal = nullptr;
    if (size > 0) {
        pixels = new (std::nothrow) std::uint8_t[static_cast<std::size_t>(size)];
        if (pixels == nullptr)
            return -2;
        std::memset(pixels, 0, static_cast<std::size_t>(size));
    }
    if (palCount > 0) {
        pal = new (std::nothrow) std::uint8_t[static_cast<std::size_t>(palCount) * 3];
        if (pal == nullptr) {
            delete[] pixels;
            return -2;
        }
    }
    width = w;
    height = h;
    stride = static_cast<std::int32_t>(paddedRow);
    dataSize = size;
    data = pixels;
    bytesPerPixel = bpp;
    paletteCount = palCount;
    palette = pal;
    return 0;
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
