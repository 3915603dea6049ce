#include "preview/shapes.h"

#include <cmath>

#include "engine/fz_math.h"

namespace {

// Distance of (x, y) from (cx, cy), rounded to float.
float Distance(float x, float y, float cx, float cy)
{
    const double dx = static_cast<double>(x) - cx;
    const double dy = static_cast<double>(y) - cy;
    return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

float Sum(float p, float q) { return static_cast<float>(static_cast<double>(p) + q); }
float Difference(float p, float q) { return static_cast<float>(static_cast<double>(p) - q); }
float Product(float p, float q) { return static_cast<float>(static_cast<double>(p) * q); }

// Calls visit(depth) for every covered pixel of the layer.
template <typename Visit>
void ForEachCoveredDepth(FZLayer& layer, Visit visit)
{
    if (layer.coverage.empty() || layer.depth.empty())
        return;
    for (std::int32_t y = 0; y < layer.height; ++y)
        for (std::int32_t x = 0; x < layer.width; ++x)
            if (layer.coverage[y][x] != 0)
                visit(layer.depth[y][x]);
}

}  // namespace

// ---------------------------------------------------------------- outlines

void FZShapeBox::Around(float cx, float cy, float rx, float ry)
{
    x0 = Difference(cx, rx);
    y0 = Difference(cy, ry);
    x1 = Sum(cx, rx);
    y1 = Sum(cy, ry);
}

void FZRoundedDisc::Set(float centerX, float centerY, float baseHeight, float outerRadius, float rim)
{
    cx = centerX;
    cy = centerY;
    z0 = baseHeight;
    radius = outerRadius;
    rimRadius = rim;
    box.Around(cx, cy, radius, radius);
}

bool FZRoundedDisc::HeightAt(float x, float y, float& z) const
{
    const float d = Distance(x, y, cx, cy);
    if (!(d <= radius))
        return false;
    const float flatRadius = Difference(radius, rimRadius);
    if (d <= flatRadius) {
        z = Sum(z0, rimRadius);
        return true;
    }
    // The rim: a quarter circle from height rho down to 0 at the edge.
    const float e = Difference(d, flatRadius);
    const float q = Difference(Product(rimRadius, rimRadius), Product(e, e));
    if (!(q >= 0.0f))
        return false;
    z = static_cast<float>(z0 + std::sqrt(static_cast<double>(q)));
    return true;
}

void FZDome::Set(float centerX, float centerY, float semiA, float semiB, float baseHeight, float domeHeight)
{
    cx = centerX;
    cy = centerY;
    a = semiA;
    b = semiB;
    box.Around(cx, cy, a, b);
    z0 = baseHeight;
    height = domeHeight;
}

bool FZDome::HeightAt(float x, float y, float& z) const
{
    if (!(x >= box.x0 && x <= box.x1 && y >= box.y0 && y <= box.y1))
        return false;
    const float u = static_cast<float>((static_cast<double>(x) - cx) / a);
    const float v = static_cast<float>((static_cast<double>(y) - cy) / b);
    const float q = Sum(Product(u, u), Product(v, v));
    if (!(q <= 1.0f))
        return false;
    z = static_cast<float>(z0 + height * std::sqrt(1.0 - q));
    return true;
}

void FZTorus::Set(float centerX, float centerY, float baseHeight, float outer, float inner, float scale)
{
    cx = centerX;
    cy = centerY;
    z0 = baseHeight;
    outerRadius = outer;
    innerRadius = inner;
    heightScale = scale;
    box.Around(cx, cy, outerRadius, outerRadius);
}

bool FZTorus::HeightAt(float x, float y, float& z) const
{
    const float d = Distance(x, y, cx, cy);
    const float mid = static_cast<float>((static_cast<double>(outerRadius) + innerRadius) / 2.0);
    const float t = std::fabs(Difference(d, mid));
    const float halfWidth = static_cast<float>((static_cast<double>(outerRadius) - innerRadius) / 2.0);
    const float q = Difference(Product(halfWidth, halfWidth), Product(t, t));
    // A ring without width (or with inner and outer radius swapped) holds
    // no point; this also keeps the height from dividing by zero.
    if (!(q >= 0.0f) || !(halfWidth > 0.0f))
        return false;
    z = static_cast<float>(z0 + std::sqrt(static_cast<double>(q)) * heightScale / halfWidth);
    return true;
}

// ---------------------------------------------------------------- finishing

void AddDimple(FZLayer& layer, float cx, float cy, float radius, float depth)
{
    if (layer.coverage.empty() || layer.depth.empty())
        return;
    FZSmoothStep bowl;
    bowl.Setup(0.0f, -depth, radius, 0.0f);
    const double radiusSquared = static_cast<double>(radius) * radius;
    const std::int32_t columnFirst = FZTruncateClamped(static_cast<double>(cx) - radius, 0, INT32_MAX);
    const std::int32_t columnLast = FZTruncateClamped(static_cast<double>(cx) + radius, INT32_MIN, layer.width - 1);
    const std::int32_t rowFirst = FZTruncateClamped(static_cast<double>(cy) - radius, 0, INT32_MAX);
    const std::int32_t rowLast = FZTruncateClamped(static_cast<double>(cy) + radius, INT32_MIN, layer.height - 1);

    ParallelRows(rowFirst, rowLast + 1, [&](std::int32_t py) {
        for (std::int32_t px = columnFirst; px <= columnLast; ++px) {
            if (layer.coverage[py][px] == 0)
                continue;
            const float zp = layer.depth[py][px];
            // Summed in double: sixteen equal heights give the height back
            // exactly, so pixels outside the bowl keep their depth.
            double sum = 0.0;
            for (int j = 0; j < 4; ++j) {
                const double sy = py + (j + 0.5) * 0.25 - cy;
                for (int i = 0; i < 4; ++i) {
                    const double sx = px + (i + 0.5) * 0.25 - cx;
                    const float s2 = static_cast<float>(sx * sx + sy * sy);
                    sum += s2 < radiusSquared
                               ? static_cast<float>(zp + bowl.Evaluate(std::sqrt(static_cast<double>(s2))))
                               : zp;
                }
            }
            layer.depth[py][px] = static_cast<float>(sum * (1.0 / 16.0));
        }
    });
}

void FlattenTop(FZLayer& layer, float k)
{
    float lo = 0.0f;
    float hi = 0.0f;
    ForEachCoveredDepth(layer, [&](float& z) {
        lo = z < lo ? z : lo;
        hi = z > hi ? z : hi;
    });
    const float span = Difference(hi, lo);
    if (span > 0.0f)
        ClampDepth(layer, Sum(lo, Product(span, k)));
}

void ClampDepth(FZLayer& layer, float level)
{
    ForEachCoveredDepth(layer, [level](float& z) {
        if (z > level)
            z = level;
    });
}

// ---------------------------------------------------------------- catalogue

void DrawSampleShape(FZLayer& layer, int n, float cx, float cy, float r)
{
    switch (n) {
    case 1: {
        const float rim = Product(r, 0.25f);
        FZRoundedDisc plate;
        plate.Set(cx, cy, 0.0f, r, rim);
        RasterizeShape(layer, plate);
        AddDimple(layer, cx, cy, Difference(r, rim), rim);
        break;
    }
    case 2:
    case 3: {
        FZDome dome;
        dome.Set(cx, cy, r, r, 0.0f, n == 2 ? static_cast<float>(r / 2.0) : r);
        RasterizeShape(layer, dome);
        if (n == 3)
            FlattenTop(layer, 0.7f);
        break;
    }
    case 4: {
        const float inner = Product(r, 0.5f);
        FZTorus ring;
        ring.Set(cx, cy, 0.0f, r, inner, static_cast<float>((static_cast<double>(r) - inner) / 2.0));
        RasterizeShape(layer, ring);
        break;
    }
    default:
        break;
    }
}
