#include "engine/shading/surface.h"

#include <cmath>
#include <cstdlib>

#include "engine/parallel.h"

namespace {

FZRect WholeLayer(const FZLayer& layer)
{
    return FZRect(0, 0, layer.width - 1, layer.height - 1);
}

bool HasHeightField(const FZLayer& layer)
{
    return !layer.coverage.empty() && !layer.depth.empty();
}

// Sobel kernels, indexed [dy + 1][dx + 1].
constexpr int kSlopeX[3][3] = {{-1, 0, 1}, {-2, 0, 2}, {-1, 0, 1}};
constexpr int kSlopeY[3][3] = {{-1, -2, -1}, {0, 0, 0}, {1, 2, 1}};

// The normal of one covered pixel from its covered neighbours. Each
// neighbour counts with its coverage, so the silhouette, where neighbours
// drop out or are thin, does not look like a cliff down to depth 0.
FZPackedVector NormalAt(const FZLayer& layer, std::int32_t x, std::int32_t y)
{
    const double zc = layer.depth[y][x];
    float sx = 0.0f;
    float sy = 0.0f;
    float wx = 0.0f;
    float wy = 0.0f;
    const std::int32_t firstColumn = x > 0 ? x - 1 : 0;
    const std::int32_t lastColumn = x + 1 < layer.width ? x + 1 : layer.width - 1;
    for (std::int32_t ny = y > 0 ? y - 1 : 0; ny <= y + 1 && ny < layer.height; ++ny) {
        const std::uint8_t* coverage = layer.coverage[ny];
        const float* depth = layer.depth[ny];
        const int dy = ny - y;
        for (std::int32_t nx = firstColumn; nx <= lastColumn; ++nx) {
            const int m = coverage[nx];
            if (m == 0)
                continue;
            const int dx = nx - x;
            const float d = static_cast<float>((depth[nx] - zc) * m);
            const int kx = kSlopeX[dy + 1][dx + 1];
            const int ky = kSlopeY[dy + 1][dx + 1];
            sx = static_cast<float>(sx + static_cast<double>(kx) * d);
            sy = static_cast<float>(sy + static_cast<double>(ky) * d);
            wx = static_cast<float>(wx + static_cast<double>(std::abs(kx)) * m);
            wy = static_cast<float>(wy + static_cast<double>(std::abs(ky)) * m);
        }
    }
    if (wx == 0.0f) {
        wx = 1.0f;
        sx = 0.0f;
    }
    if (wy == 0.0f) {
        wy = 1.0f;
        sy = 0.0f;
    }
    FZPackedVector normal;
    normal.SetFloats(static_cast<float>(-sx / static_cast<double>(wx)),
                     static_cast<float>(-sy / static_cast<double>(wy)), 1.0f, true);
    return normal;
}

}  // namespace

FZResult PrepareSurface(FZLayer& layer)
{
    return PrepareSurface(layer, WholeLayer(layer));
}

FZResult PrepareSurface(FZLayer& layer, const FZRect& rect)
{
    FZRect bounds;
    if (CoverageBounds(layer, bounds)) {
        layer.boundsX0 = bounds.x0;
        layer.boundsX1 = bounds.x1;
        layer.boundsY0 = bounds.y0;
        layer.boundsY1 = bounds.y1;
        float minimum = 0.0f;
        float maximum = 0.0f;
        // Over the whole layer the range cannot miss it.
        (void)DepthRange(layer, WholeLayer(layer), minimum, maximum);
        // Covered depths that are all NaN leave the start value 1e10 as the
        // minimum; shifting by it would only turn NaN into NaN.
        if (std::isfinite(minimum))
            OffsetDepth(layer, -minimum, 0);
        (void)DepthRange(layer, WholeLayer(layer), minimum, maximum);
        layer.depthMin = minimum;
        layer.depthMax = maximum;
    } else {
        layer.boundsX0 = 0;
        layer.boundsX1 = layer.width - 1;
        layer.boundsY0 = 0;
        layer.boundsY1 = layer.height - 1;
        layer.depthMin = 0.0f;
        layer.depthMax = 0.0f;
    }
    return EstimateNormals(layer, rect);
}

bool CoverageBounds(const FZLayer& layer, FZRect& bounds)
{
    bounds.Set(1000000, 1000000, -1000000, -1000000);
    if (layer.coverage.empty())
        return false;
    for (std::int32_t y = 0; y < layer.height; ++y) {
        for (std::int32_t x = 0; x < layer.width; ++x) {
            if (layer.coverage[y][x] == 0)
                continue;
            bounds.x0 = x < bounds.x0 ? x : bounds.x0;
            bounds.x1 = x > bounds.x1 ? x : bounds.x1;
            bounds.y0 = y < bounds.y0 ? y : bounds.y0;
            bounds.y1 = y > bounds.y1 ? y : bounds.y1;
        }
    }
    return !bounds.IsEmpty();
}

FZResult DepthRange(const FZLayer& layer, const FZRect& rect, float& minimum, float& maximum)
{
    FZRect r = rect;
    if (!r.ClipTo(0, 0, layer.width - 1, layer.height - 1))
        return FZResult::BadParameter;
    minimum = 1e10f;
    maximum = -1e10f;
    if (!HasHeightField(layer))
        return FZResult::Ok;
    for (std::int32_t y = r.y0; y <= r.y1; ++y) {
        for (std::int32_t x = r.x0; x <= r.x1; ++x) {
            if (layer.coverage[y][x] == 0)
                continue;
            const float z = layer.depth[y][x];
            if (z < minimum)
                minimum = z;
            if (z > maximum)
                maximum = z;
        }
    }
    return FZResult::Ok;
}

void OffsetDepth(FZLayer& layer, float value, int weighted)
{
    if (!HasHeightField(layer))
        return;
    for (std::int32_t y = 0; y < layer.height; ++y) {
        for (std::int32_t x = 0; x < layer.width; ++x) {
            const int m = layer.coverage[y][x];
            if (m == 0)
                continue;
            const double shift = weighted != 0 ? static_cast<double>(value) * m / 255.0 : value;
            layer.depth[y][x] = static_cast<float>(layer.depth[y][x] + shift);
        }
    }
}

FZResult EstimateNormals(FZLayer& layer, const FZRect& rect)
{
    if (layer.normals.empty())
        layer.normals = FZRaster<FZPackedVector>(layer.width, layer.height);
    FZRect r = rect;
    if (!HasHeightField(layer) || !r.ClipTo(0, 0, layer.width - 1, layer.height - 1))
        return FZResult::Ok;
    // Normals are written, depths and coverage only read: rows are independent.
    ParallelRows(r.y0, r.y1 + 1, [&](std::int32_t y) {
        for (std::int32_t x = r.x0; x <= r.x1; ++x)
            if (layer.coverage[y][x] != 0)
                layer.normals[y][x] = NormalAt(layer, x, y);
    });
    return FZResult::Ok;
}
