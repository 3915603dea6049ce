#include "preview/shapes.h"

#include <cmath>

#include "engine/fz_math.h"

// The row kernels come in a plain form and in vector forms chosen when the
// program starts; every lane does the plain form's float operations. Their
// loops have no branches (both heights are computed, then one is taken), so
// that they can run as vector code.
#if defined(__GNUC__) && !defined(__clang__) && (defined(__x86_64__) || defined(__i386__))
#define TAMERISK_ROW_KERNEL __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define TAMERISK_ROW_KERNEL
#endif

namespace {

float Sum(float p, float q) { return static_cast<float>(static_cast<double>(p) + q); }
float Difference(float p, float q) { return static_cast<float>(static_cast<double>(p) - q); }
float Product(float p, float q) { return static_cast<float>(static_cast<double>(p) * q); }

// HeightAt through the row kernel, so that one point and a whole row take
// the same arithmetic.
template <typename Shape>
bool HeightOfOneSample(const Shape& shape, float x, float y, float& z)
{
    bool inside = false;
    float height = 0.0f;
    shape.HeightRow(y, &x, 1, FZSampleRow{&inside, &height});
    if (inside)
        z = height;
    return inside;
}

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
    return HeightOfOneSample(*this, x, y, z);
}

TAMERISK_ROW_KERNEL void FZRoundedDisc::HeightRow(float y, const float* xs, std::int32_t n, FZSampleRow out) const
{
    // A copy, which the stores through out cannot change.
    const FZRoundedDisc s = *this;
    const double dy = static_cast<double>(y) - s.cy;
    const double dy2 = dy * dy;
    const float flatRadius = Difference(s.radius, s.rimRadius);
    const float flatHeight = Sum(s.z0, s.rimRadius);
    const float rim2 = Product(s.rimRadius, s.rimRadius);
    for (std::int32_t k = 0; k < n; ++k) {
        const double dx = static_cast<double>(xs[k]) - s.cx;
        const float d = static_cast<float>(std::sqrt(dx * dx + dy2));
        // The rim: a quarter circle from height rho down to 0 at the edge.
        const float e = Difference(d, flatRadius);
        const float q = Difference(rim2, Product(e, e));
        const float rimHeight = static_cast<float>(s.z0 + std::sqrt(static_cast<double>(q)));
        const bool flat = d <= flatRadius;
        out.inside[k] = (d <= s.radius) & (flat | (q >= 0.0f));
        out.z[k] = flat ? flatHeight : rimHeight;
    }
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
    return HeightOfOneSample(*this, x, y, z);
}

TAMERISK_ROW_KERNEL void FZDome::HeightRow(float y, const float* xs, std::int32_t n, FZSampleRow out) const
{
    // A copy, which the stores through out cannot change.
    const FZDome s = *this;
    const bool rowInside = y >= s.box.y0 && y <= s.box.y1;
    const float v = static_cast<float>((static_cast<double>(y) - s.cy) / s.b);
    const float v2 = Product(v, v);
    for (std::int32_t k = 0; k < n; ++k) {
        const float x = xs[k];
        const float u = static_cast<float>((static_cast<double>(x) - s.cx) / s.a);
        const float q = Sum(Product(u, u), v2);
        out.inside[k] = rowInside & (x >= s.box.x0) & (x <= s.box.x1) & (q <= 1.0f);
        out.z[k] = static_cast<float>(s.z0 + s.height * std::sqrt(1.0 - q));
    }
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
    return HeightOfOneSample(*this, x, y, z);
}

TAMERISK_ROW_KERNEL void FZTorus::HeightRow(float y, const float* xs, std::int32_t n, FZSampleRow out) const
{
    // A copy, which the stores through out cannot change.
    const FZTorus s = *this;
    const double dy = static_cast<double>(y) - s.cy;
    const double dy2 = dy * dy;
    const float mid = static_cast<float>((static_cast<double>(s.outerRadius) + s.innerRadius) / 2.0);
    const float halfWidth = static_cast<float>((static_cast<double>(s.outerRadius) - s.innerRadius) / 2.0);
    const float halfWidth2 = Product(halfWidth, halfWidth);
    // A ring without width (or with inner and outer radius swapped) holds
    // no point; this also keeps the height from dividing by zero.
    const bool hasWidth = halfWidth > 0.0f;
    for (std::int32_t k = 0; k < n; ++k) {
        const double dx = static_cast<double>(xs[k]) - s.cx;
        const float d = static_cast<float>(std::sqrt(dx * dx + dy2));
        const float t = std::fabs(Difference(d, mid));
        const float q = Difference(halfWidth2, Product(t, t));
        out.inside[k] = hasWidth & (q >= 0.0f);
        out.z[k] = static_cast<float>(s.z0 + std::sqrt(static_cast<double>(q)) * s.heightScale / halfWidth);
    }
}

// ---------------------------------------------------------------- drawing

void FZSampleOffsets(std::int32_t p, float* out)
{
    const float third = 1.0f / 3.0f;
    float d = 1.0f / 6.0f;
    for (int i = 0; i < 3; ++i, d += third)
        out[i] = static_cast<float>(p) + d;
}

void CompositeNineSamples(FZLayer& layer, std::int32_t px, std::int32_t py,
                          const bool (&inside)[3][3 * kFZSamplePixels], const float (&z)[3][3 * kFZSamplePixels],
                          std::int32_t k)
{
    const float a0 = layer.coverage[py][px] / 255.0f;
    const float z0p = layer.depth[py][px];
    float weightSum = 0.0f;
    float heightSum = 0.0f;
    for (int j = 0; j < 3; ++j) {
        for (int i = k; i < k + 3; ++i) {
            if (inside[j][i]) {
                // Over an earlier surface the higher of the two shows.
                const float zs = z[j][i];
                weightSum += 1.0f;
                heightSum += a0 == 0.0f || zs >= z0p ? zs : z0p;
            } else if (a0 > 0.0f) {
                weightSum += a0;
                heightSum += a0 * z0p;
            }
        }
    }
    if (weightSum > 0.0f) {
        const float zMean = heightSum * (1.0f / weightSum);
        const auto cb = static_cast<std::uint8_t>(FZTruncateClamped(weightSum * (1.0f / 9.0f) * 255.0f, 0, 255));
        layer.CompositeSample(px, py, zMean, cb, kFZShapeSampleColor);
    }
}

// ---------------------------------------------------------------- finishing

namespace {

// The squared distances of the points (sx[k], sy) from the dimple's centre
// (the coordinates already relative to it), rounded to float, and their
// square roots.
TAMERISK_ROW_KERNEL void DimpleDistances(const double* sx, double sy, std::int32_t n, float* s2, double* distance)
{
    for (std::int32_t k = 0; k < n; ++k) {
        s2[k] = static_cast<float>(sx[k] * sx[k] + sy * sy);
        distance[k] = std::sqrt(static_cast<double>(s2[k]));
    }
}

}  // namespace

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
    constexpr std::int32_t kPoints = 4 * kFZSamplePixels;

    ParallelRows(rowFirst, rowLast + 1, [&](std::int32_t py) {
        for (std::int32_t start = columnFirst; start <= columnLast; start += kFZSamplePixels) {
            const std::int32_t pixels = FZMin(kFZSamplePixels, columnLast - start + 1);
            double sx[kPoints];
            for (std::int32_t k = 0; k < pixels; ++k)
                for (int i = 0; i < 4; ++i)
                    sx[4 * k + i] = start + k + (i + 0.5) * 0.25 - cx;
            float s2[4][kPoints];
            double distance[4][kPoints];
            for (int j = 0; j < 4; ++j)
                DimpleDistances(sx, py + (j + 0.5) * 0.25 - cy, 4 * pixels, s2[j], distance[j]);
            for (std::int32_t k = 0; k < pixels; ++k) {
                const std::int32_t px = start + k;
                if (layer.coverage[py][px] == 0)
                    continue;
                const float zp = layer.depth[py][px];
                // Summed in double: sixteen equal heights give the height back
                // exactly, so pixels outside the bowl keep their depth.
                double sum = 0.0;
                for (int j = 0; j < 4; ++j)
                    for (int i = 4 * k; i < 4 * k + 4; ++i)
                        sum += s2[j][i] < radiusSquared ? static_cast<float>(zp + bowl.Evaluate(distance[j][i])) : zp;
                layer.depth[py][px] = static_cast<float>(sum * (1.0 / 16.0));
            }
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
