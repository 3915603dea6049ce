// FZRaster: per-pixel data of a layer, in one contiguous block, over the
// pixels its FZRowLayout names: row y holds the columns of Row(y).
// raster[y] is row y, so pixel code reads raster[y][x] in layer
// coordinates; only pixels the layout holds may be read or written. A
// default raster holds nothing (empty()).
//
// A layer's rows may hold a rectangle, or only the columns a shape covers
// in each row: a round sample in a square frame holds a little over half
// of the frame's pixels. Every raster of a layer shares one layout.
#ifndef TAMERISK_ENGINE_RASTER_H
#define TAMERISK_ENGINE_RASTER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/value_types.h"
#include "engine/zeroed_array.h"

// The columns first to last of a row; empty when first > last.
struct FZSpan {
    std::int32_t first = 0;
    std::int32_t last = -1;

    bool Empty() const { return first > last; }
};

// Which columns of which rows a raster holds, and where each row starts in
// its block. Row y starts first(y) values before its first value, and the
// block begins with as many values as the largest first column, so that
// every row pointer lies inside the block.
class FZRowLayout {
public:
    // Rows y0 to y0 + spans.size() - 1, row y0 + k holding spans[k] (no
    // column below 0). std::bad_alloc when its tables cannot be had.
    FZRowLayout(std::int32_t y0, std::vector<FZSpan> spans);
    // The rectangle of w x h pixels whose first pixel is (x0, y0).
    static std::shared_ptr<const FZRowLayout> Rectangle(std::int32_t x0, std::int32_t y0, std::int32_t w,
                                                        std::int32_t h);

    FZSpan Row(std::int32_t y) const
    {
        return y < firstRow || y - firstRow >= static_cast<std::int64_t>(spans.size())
                   ? FZSpan()
                   : spans[static_cast<std::size_t>(y - firstRow)];
    }
    // The smallest rectangle around every span; empty when none holds a pixel.
    const FZRect& Bounds() const { return bounds; }
    std::size_t Values() const { return values; }
    std::size_t RowStart(std::int32_t y) const { return starts[static_cast<std::size_t>(y - firstRow)]; }

private:
    std::int32_t firstRow = 0;
    std::vector<FZSpan> spans;
    std::vector<std::size_t> starts;
    std::size_t values = 0;
    FZRect bounds;
};

template <typename T>
class FZRaster {
public:
    FZRaster() = default;
    // Zero entries over the pixels of the layout (none for null).
    explicit FZRaster(std::shared_ptr<const FZRowLayout> rows)
        : layout(rows != nullptr && rows->Values() != 0 ? std::move(rows) : nullptr),
          values(layout != nullptr ? layout->Values() : 0)
    {
    }

    T* operator[](std::int32_t y) { return values.data() + layout->RowStart(y); }
    const T* operator[](std::int32_t y) const { return values.data() + layout->RowStart(y); }

    bool empty() const { return values.empty(); }
    // Back to holding nothing, memory released.
    void Clear() { *this = FZRaster(); }

    const std::shared_ptr<const FZRowLayout>& Layout() const { return layout; }
    // The columns row y holds; none for a row outside.
    FZSpan Row(std::int32_t y) const { return layout != nullptr ? layout->Row(y) : FZSpan(); }
    FZRect Bounds() const { return layout != nullptr ? layout->Bounds() : FZRect(); }

private:
    std::shared_ptr<const FZRowLayout> layout;
    FZZeroedArray<T> values;
};

#endif
