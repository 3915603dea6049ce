// FZImage: an owned pixel buffer. In Tamerisk every image is 24-bit: three
// bytes a pixel in the order blue, green, red, rows stored bottom-up (row 0
// is the bottom row of the picture), each row padded with zeros to a
// multiple of 4 bytes. The display step lives in engine/display.
#ifndef TAMERISK_ENGINE_IMAGE_H
#define TAMERISK_ENGINE_IMAGE_H

#include <cstddef>
#include <cstdint>

#include "engine/zeroed_array.h"
#include "material/result_codes.h"

class FZImage {
public:
    static constexpr std::int32_t kBytesPerPixel = 3;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t stride = 0;
    FZZeroedArray<std::uint8_t> data;

    // Replaces the contents by a zeroed image. OutOfMemory when the pixels
    // would exceed 2 GiB, BadParameter for a negative size; the image is
    // then empty.
    FZResult Create(std::int32_t w, std::int32_t h);
    // Releases the pixels; every count back to 0.
    void Free();

    // data + y * stride + x * kBytesPerPixel; no bounds check, callers clip.
    std::uint8_t* PixelAddress(std::int32_t x, std::int32_t y)
    {
        return data.data() + static_cast<std::ptrdiff_t>(y) * stride + static_cast<std::ptrdiff_t>(x) * kBytesPerPixel;
    }
    const std::uint8_t* PixelAddress(std::int32_t x, std::int32_t y) const
    {
        return data.data() + static_cast<std::ptrdiff_t>(y) * stride + static_cast<std::ptrdiff_t>(x) * kBytesPerPixel;
    }
};

#endif
