// FZRaster: per-pixel data of a layer over a window of its pixels, columns
// x0 to x0 + width - 1 of rows y0 to y0 + height - 1, in one contiguous
// block. raster[y] is row y, so pixel code reads raster[y][x] in layer
// coordinates; only pixels inside the window may be read or written. A
// default raster holds nothing (empty()).
//
// Row y starts at (y - y0) * width - x0 of the window's first value; the
// block begins x0 values earlier than that value, so that every row
// pointer lies inside the block.
#ifndef TAMERISK_ENGINE_RASTER_H
#define TAMERISK_ENGINE_RASTER_H

#include <cstddef>
#include <cstdint>

#include "engine/zeroed_array.h"

template <typename T>
class FZRaster {
public:
    FZRaster() = default;
    // w x h zero entries at (0, 0); std::bad_alloc when they cannot be had.
    FZRaster(std::int32_t w, std::int32_t h) : FZRaster(0, 0, w, h) {}
    // w x h zero entries over the window whose first pixel is (x, y).
    FZRaster(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h)
        : x0(x), y0(y), width(w), height(h), stride(w), values(BlockSize(x, w, h))
    {
    }

    T* operator[](std::int32_t y) { return values.data() + static_cast<std::ptrdiff_t>(y - y0) * stride; }
    const T* operator[](std::int32_t y) const { return values.data() + static_cast<std::ptrdiff_t>(y - y0) * stride; }

    bool empty() const { return values.empty(); }
    // Back to holding nothing, memory released.
    void Clear() { *this = FZRaster(); }

    std::int32_t x0 = 0;
    std::int32_t y0 = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t stride = 0;

private:
    static std::size_t BlockSize(std::int32_t x, std::int32_t w, std::int32_t h)
    {
        if (w <= 0 || h <= 0)
            return 0;
        return static_cast<std::size_t>(x) + static_cast<std::size_t>(w) * static_cast<std::size_t>(h);
    }

    FZZeroedArray<T> values;
};

#endif
