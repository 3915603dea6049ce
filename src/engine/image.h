// FZImage: an owned pixel buffer. In Tamerisk every image is 24-bit: three
// bytes a pixel in the order blue, green, red, rows stored bottom-up (row 0
// is the bottom row of the picture), each row padded with zeros to a
// multiple of 4 bytes. The display step lives in engine/display.
#ifndef TAMERISK_ENGINE_IMAGE_H
#define TAMERISK_ENGINE_IMAGE_H

#include <cstddef>
#include <cstdint>

#include "material/result_codes.h"

class FZImage {
public:
    char* name = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t bytesPerPixel = 0;
    std::int32_t stride = 0;
    std::int32_t paletteCount = 0;
    std::uint8_t* palette = nullptr;   // paletteCount entries of blue, green, red
    std::int64_t dataSize = 0;
    std::uint8_t* data = nullptr;

    FZImage() = default;
    ~FZImage() { Free(); }
    FZImage(const FZImage&) = delete;
    FZImage& operator=(const FZImage&) = delete;

    // Replaces the contents by a zeroed image (the palette is not
    // initialised). Returns 0; -2 when the memory cannot be had or the pixels
    // would exceed 2 GiB; -4 for a negative size, a bytesPerPixel outside 1
    // to 4 or more than 256 palette entries. On failure the image is empty.
    FZResult Create(std::int32_t w, std::int32_t h, std::int32_t bpp, std::int32_t palCount);
    // Releases name, palette and data; every count back to 0.
    void Free();

    // data + y * stride + x * bytesPerPixel; no bounds check, callers clip.
    std::uint8_t* PixelAddress(std::int32_t x, std::int32_t y)
    {
        return data + static_cast<std::ptrdiff_t>(y) * stride + static_cast<std::ptrdiff_t>(x) * bytesPerPixel;
    }
    const std::uint8_t* PixelAddress(std::int32_t x, std::int32_t y) const
    {
        return data + static_cast<std::ptrdiff_t>(y) * stride + static_cast<std::ptrdiff_t>(x) * bytesPerPixel;
    }
};

#endif
