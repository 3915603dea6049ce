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

// One step of a slope sum, rounded to float as NormalAt rounds it.
inline float AddSlope(float sum, int k, float d)
{
    return static_cast<float>(sum + static_cast<double>(k) * d);
}

// NormalAt for a pixel of a row whose neighbours all lie in the layer and
// are all covered, or false when the shortcut does not apply. The terms
// whose kernel weight is 0 are left out: a slope sum starts at +0 and can
// never become -0, so adding 0 x d leaves it as it is whenever d is finite
// (when it is not, the full sum runs). The weights are small integers, which
// float sums hold exactly.
bool InteriorNormalAt(const std::uint8_t* const cov[3], const float* const depth[3], std::int32_t x,
                      const FZPackedVector& flat, FZPackedVector& normal)
{
    int m[3][3];
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            m[r][c] = cov[r][x + c - 1];
    if ((m[0][0] == 0) | (m[0][1] == 0) | (m[0][2] == 0) | (m[1][0] == 0) | (m[1][2] == 0) | (m[2][0] == 0)
        | (m[2][1] == 0) | (m[2][2] == 0))
        return false;
    const double zc = depth[1][x];
    float d[3][3];
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            d[r][c] = static_cast<float>((depth[r][x + c - 1] - zc) * m[r][c]);
    if (!std::isfinite(d[0][1]) || !std::isfinite(d[2][1]) || !std::isfinite(d[1][0]) || !std::isfinite(d[1][2])
        || !std::isfinite(zc))
        return false;
    float sx = AddSlope(0.0f, -1, d[0][0]);
    sx = AddSlope(sx, 1, d[0][2]);
    sx = AddSlope(sx, -2, d[1][0]);
    sx = AddSlope(sx, 2, d[1][2]);
    sx = AddSlope(sx, -1, d[2][0]);
    sx = AddSlope(sx, 1, d[2][2]);
    float sy = AddSlope(0.0f, -1, d[0][0]);
    sy = AddSlope(sy, -2, d[0][1]);
    sy = AddSlope(sy, -1, d[0][2]);
    sy = AddSlope(sy, 1, d[2][0]);
    sy = AddSlope(sy, 2, d[2][1]);
    sy = AddSlope(sy, 1, d[2][2]);
    if (sx == 0.0f && sy == 0.0f) {
        normal = flat;
        return true;
    }
    const int wx = m[0][0] + m[0][2] + 2 * m[1][0] + 2 * m[1][2] + m[2][0] + m[2][2];
    const int wy = m[0][0] + 2 * m[0][1] + m[0][2] + m[2][0] + 2 * m[2][1] + m[2][2];
    normal.SetFloats(static_cast<float>(-sx / static_cast<double>(wx)),
                     static_cast<float>(-sy / static_cast<double>(wy)), 1.0f, true);
    return true;
}

// The normals of the covered pixels of row y from x0 to x1.
void EstimateRowNormals(FZLayer& layer, std::int32_t y, std::int32_t x0, std::int32_t x1)
{
    const std::uint8_t* coverage = layer.coverage[y];
    FZPackedVector* normals = layer.normals[y];
    if (y == 0 || y + 1 >= layer.height) {
        for (std::int32_t x = x0; x <= x1; ++x)
            if (coverage[x] != 0)
                normals[x] = NormalAt(layer, x, y);
        return;
    }
    // A level neighbourhood's normal, made once: both slopes 0.
    FZPackedVector flat;
    flat.SetFloats(0.0f, 0.0f, 1.0f, true);
    const std::uint8_t* const cov[3] = {layer.coverage[y - 1], coverage, layer.coverage[y + 1]};
    const float* const depth[3] = {layer.depth[y - 1], layer.depth[y], layer.depth[y + 1]};
    for (std::int32_t x = x0; x <= x1; ++x) {
        if (coverage[x] == 0)
            continue;
        if (x == 0 || x + 1 >= layer.width || !InteriorNormalAt(cov, depth, x, flat, normals[x]))
            normals[x] = NormalAt(layer, x, y);
    }
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
    ParallelRows(r.y0, r.y1 + 1, [&](std::int32_t y) { EstimateRowNormals(layer, y, r.x0, r.x1); });
    return FZResult::Ok;
}
