// FZRaster: per-pixel data of a layer, w x h values in one contiguous block,
// row y starting at y * stride. raster[y] is row y, so pixel code reads
// raster[y][x]. A default raster holds nothing (empty()).
#ifndef TAMERISK_ENGINE_RASTER_H
#define TAMERISK_ENGINE_RASTER_H

#include <cstddef>
#include <cstdint>

#include "engine/zeroed_array.h"

template <typename T>
class FZRaster {
public:
    FZRaster() = default;
    // w x h zero entries; std::bad_alloc when they cannot be had.
    FZRaster(std::int32_t w, std::int32_t h)
        : width(w), height(h), stride(w), values(static_cast<std::size_t>(w) * static_cast<std::size_t>(h))
    {
    }

    T* operator[](std::int32_t y) { return values.data() + static_cast<std::ptrdiff_t>(y) * stride; }
    const T* operator[](std::int32_t y) const { return values.data() + static_cast<std::ptrdiff_t>(y) * stride; }

    bool empty() const { return values.empty(); }
    // Back to holding nothing, memory released.
    void Clear() { *this = FZRaster(); }

    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t stride = 0;

private:
    FZZeroedArray<T> values;
};

#endif
