#include "engine/raster.h"

#include <algorithm>
#include <utility>

FZRowLayout::FZRowLayout(std::int32_t y0, std::vector<FZSpan> rowSpans)
    : firstRow(y0), spans(std::move(rowSpans)), starts(spans.size())
{
    std::size_t pad = 0;
    for (FZSpan& s : spans) {
        if (s.first < 0)
            s.first = 0;
        if (s.Empty())
            s = FZSpan();
        pad = std::max(pad, static_cast<std::size_t>(s.first));
    }
    std::size_t offset = pad;
    for (std::size_t k = 0; k < spans.size(); ++k) {
        const FZSpan& s = spans[k];
        starts[k] = offset - static_cast<std::size_t>(s.first);
        if (s.Empty())
            continue;
        offset += static_cast<std::size_t>(s.last - s.first + 1);
        const auto y = static_cast<std::int32_t>(y0 + static_cast<std::int64_t>(k));
        if (bounds.IsEmpty())
            bounds = FZRect(s.first, y, s.last, y);
        bounds.x0 = std::min(bounds.x0, s.first);
        bounds.x1 = std::max(bounds.x1, s.last);
        bounds.y1 = y;
    }
    values = bounds.IsEmpty() ? 0 : offset;
}

std::shared_ptr<const FZRowLayout> FZRowLayout::Rectangle(std::int32_t x0, std::int32_t y0, std::int32_t w,
                                                          std::int32_t h)
{
    if (w <= 0 || h <= 0)
        return nullptr;
    return std::make_shared<const FZRowLayout>(y0, std::vector<FZSpan>(static_cast<std::size_t>(h),
                                                                       FZSpan{x0, x0 + w - 1}));
}
