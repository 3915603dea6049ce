#include "preview/shapes.h"

#include <cmath>
#include <initializer_list>
#include <memory>

#include "engine/fz_math.h"
#include "engine/row_kernel.h"
#include "engine/shading/surface.h"
#include "preview/shape_arithmetic.h"

using namespace fz_shapes;

namespace {

// The squared distances of the points xs[k] from the column cx, in double.
TAMERISK_ROW_KERNEL void SquaredOffsets(const float* xs, std::int32_t n, float cx, double* squares)
{
    for (std::int32_t k = 0; k < n; ++k) {
        const double dx = static_cast<double>(xs[k]) - cx;
        squares[k] = dx * dx;
    }
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

void FZRoundedDisc::ColumnTerms(const float* xs, std::int32_t n, double* terms) const
{
    SquaredOffsets(xs, n, cx, terms);
}

// The column terms are the squared distances from the centre column.
TAMERISK_ROW_KERNEL void FZRoundedDisc::HeightRow(float y, const double* terms, std::int32_t n,
                                                  FZSampleRow out) const
{
    // A copy, which the stores through out cannot change.
    const FZRoundedDisc s = *this;
    const double dy = static_cast<double>(y) - s.cy;
    const double dy2 = dy * dy;
    const float flatRadius = Difference(s.radius, s.rimRadius);
    const float flatHeight = Sum(s.z0, s.rimRadius);
    const float rim2 = Product(s.rimRadius, s.rimRadius);
    for (std::int32_t k = 0; k < n; ++k) {
        const float d = static_cast<float>(std::sqrt(terms[k] + dy2));
        // The rim: a quarter circle from height rho down to 0 at the edge.
        const float e = Difference(d, flatRadius);
        const float q = Difference(rim2, Product(e, e));
        const float rimHeight = static_cast<float>(s.z0 + std::sqrt(static_cast<double>(q)));
        const bool flat = d <= flatRadius;
        out.inside[k] = ((d <= s.radius) & (flat | (q >= 0.0f))) ? 1.0f : 0.0f;
        out.z[k] = flat ? flatHeight : rimHeight;
    }
}

FZRowReach FZRoundedDisc::Reach(float y) const
{
    FZRowReach reach;
    if (!Finite({cx, cy, z0, radius, rimRadius, y}))
        return reach;
    const double dy = static_cast<double>(y) - cy;
    reach.centre = cx;
    reach.outer = HalfChord(std::fabs(radius) * (1.0 + kRelativeRoom) + kRoom, dy);
    // With a rim of no negative width the flat part lies within the radius,
    // so its points are inside.
    const float flatRadius = Difference(radius, rimRadius);
    if (rimRadius >= 0.0f) {
        reach.inner = HalfChord(flatRadius * (1.0 - kRelativeRoom) - kRoom, dy);
        reach.solid = true;
        reach.height = Sum(z0, rimRadius);
    }
    return reach;
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

// The column terms are the squares of u = (x - cx) / a rounded to float, or
// infinity for points left or right of the bounding box, which no row then
// takes as inside.
TAMERISK_ROW_KERNEL void FZDome::ColumnTerms(const float* xs, std::int32_t n, double* terms) const
{
    const FZDome s = *this;
    for (std::int32_t k = 0; k < n; ++k) {
        const float x = xs[k];
        const float u = static_cast<float>((static_cast<double>(x) - s.cx) / s.a);
        const bool inBox = (x >= s.box.x0) & (x <= s.box.x1);
        terms[k] = inBox ? Product(u, u) : HUGE_VAL;
    }
}

TAMERISK_ROW_KERNEL void FZDome::HeightRow(float y, const double* terms, std::int32_t n, FZSampleRow out) const
{
    // A copy, which the stores through out cannot change.
    const FZDome s = *this;
    const bool rowInside = y >= s.box.y0 && y <= s.box.y1;
    const float v = static_cast<float>((static_cast<double>(y) - s.cy) / s.b);
    const float v2 = Product(v, v);
    for (std::int32_t k = 0; k < n; ++k) {
        const float q = static_cast<float>(terms[k] + v2);
        out.inside[k] = (rowInside & (q <= 1.0f)) ? 1.0f : 0.0f;
        out.z[k] = static_cast<float>(s.z0 + s.height * std::sqrt(1.0 - q));
    }
}

FZRowReach FZDome::Reach(float y) const
{
    FZRowReach reach;
    if (!Finite({cx, cy, a, b, y}))
        return reach;
    reach.centre = cx;
    reach.outer = -1.0;
    if (!(y >= box.y0 && y <= box.y1))
        return reach;
    // Inside, u^2 + v^2 is at most 1.
    const double v = (static_cast<double>(y) - cy) / b;
    const double room = 1.0 + kRelativeRoom - v * v;
    if (room > 0.0)
        reach.outer = std::fabs(a) * std::sqrt(room) * (1.0 + kRelativeRoom) + kRoom;
    return reach;
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

void FZTorus::ColumnTerms(const float* xs, std::int32_t n, double* terms) const
{
    SquaredOffsets(xs, n, cx, terms);
}

// The column terms are the squared distances from the centre column.
TAMERISK_ROW_KERNEL void FZTorus::HeightRow(float y, const double* terms, std::int32_t n, FZSampleRow out) const
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
        const float d = static_cast<float>(std::sqrt(terms[k] + dy2));
        const float t = std::fabs(Difference(d, mid));
        const float q = Difference(halfWidth2, Product(t, t));
        out.inside[k] = (hasWidth & (q >= 0.0f)) ? 1.0f : 0.0f;
        out.z[k] = static_cast<float>(s.z0 + std::sqrt(static_cast<double>(q)) * s.heightScale / halfWidth);
    }
}

FZRowReach FZTorus::Reach(float y) const
{
    FZRowReach reach;
    if (!Finite({cx, cy, z0, outerRadius, innerRadius, heightScale, y}))
        return reach;
    const double dy = static_cast<double>(y) - cy;
    const float mid = static_cast<float>((static_cast<double>(outerRadius) + innerRadius) / 2.0);
    const float halfWidth = static_cast<float>((static_cast<double>(outerRadius) - innerRadius) / 2.0);
    reach.centre = cx;
    reach.outer = -1.0;
    if (!(halfWidth > 0.0f))
        return reach;
    // Inside, the distance from the centre lies within halfWidth of mid.
    reach.outer = HalfChord((std::fabs(mid) + halfWidth) * (1.0 + kRelativeRoom) + kRoom, dy);
    reach.inner = HalfChord((static_cast<double>(mid) - halfWidth) * (1.0 - kRelativeRoom) - kRoom, dy);
    return reach;
}

// ---------------------------------------------------------------- drawing

void FZSampleOffsets(std::int32_t p, float out[3])
{
    const float third = 1.0f / 3.0f;
    float d = 1.0f / 6.0f;
    for (int i = 0; i < 3; ++i, d += third)
        out[i] = static_cast<float>(p) + d;
}

namespace {

// For pixels that hold nothing yet: how many of the nine samples are
// inside (a float count is exact) and the sum of their heights in sample
// order. A sample outside adds +0 to both, which changes no sum: one that
// starts at +0 never becomes -0.
TAMERISK_ROW_KERNEL void CountInside(const FZSamplePiece& piece, std::int32_t first, std::int32_t last,
                                     float* __restrict count, float* __restrict sum)
{
    for (std::int32_t k = first; k < last; ++k) {
        count[k] = 0.0f;
        sum[k] = 0.0f;
    }
    for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 3; ++i) {
            const float* inside = piece.inside[j][i];
            const float* z = piece.z[j][i];
            for (std::int32_t k = first; k < last; ++k) {
                count[k] += inside[k];
                sum[k] += inside[k] != 0.0f ? z[k] : 0.0f;
            }
        }
    }
}

// CountInside for pixels whose nine points are all inside at one height.
void CountSolid(const FZSolidPixels& solid, float* count, float* sum)
{
    float s = 0.0f;
    for (int point = 0; point < 9; ++point)
        s += solid.height;
    for (std::int32_t k = solid.first; k < solid.last; ++k) {
        count[k] = 9.0f;
        sum[k] = s;
    }
}

// Where a sample is inside, the pixel takes the mean height and the
// coverage of the count. A count of 0 gives coverage 0 and leaves the depth
// as it was.
TAMERISK_ROW_KERNEL void StoreIntoEmpty(const float* count, const float* sum, std::int32_t n, std::uint8_t* coverage,
                                        float* depth)
{
    for (std::int32_t k = 0; k < n; ++k) {
        const float c = count[k];
        const float mean = sum[k] * (1.0f / c);
        coverage[k] = static_cast<std::uint8_t>(static_cast<std::int32_t>(c * (1.0f / 9.0f) * 255.0f));
        depth[k] = c > 0.0f ? mean : depth[k];
    }
}

// The pixel column of the point x, held well within the 32-bit range.
std::int64_t PixelOf(double x)
{
    constexpr double kFar = 1e15;
    return static_cast<std::int64_t>(std::floor(FZMax(-kFar, FZMin(x, kFar))));
}

std::int32_t HeldColumn(std::int64_t column)
{
    return static_cast<std::int32_t>(FZMax<std::int64_t>(INT32_MIN, FZMin<std::int64_t>(column, INT32_MAX)));
}

}  // namespace

FZPixelSpans::FZPixelSpans(const FZRowReach& reach)
{
    if (reach.outer < 0.0) {
        outerFirst = 1;
        outerLast = 0;
        return;
    }
    // A pixel's points lie within its column and the next.
    if (reach.outer < HUGE_VAL) {
        outerFirst = HeldColumn(PixelOf(reach.centre - reach.outer) - 1);
        outerLast = HeldColumn(PixelOf(reach.centre + reach.outer) + 1);
    }
    if (reach.inner > 0.0) {
        innerFirst = HeldColumn(PixelOf(reach.centre - reach.inner) + 2);
        innerLast = HeldColumn(PixelOf(reach.centre + reach.inner) - 2);
        solid = reach.solid;
        height = reach.height;
    }
}

bool FZPixelSpans::AllOutside(std::int32_t first, std::int32_t last) const
{
    const bool beyond = last < outerFirst || first > outerLast;
    const bool inHole = !solid && innerFirst <= first && last <= innerLast;
    return beyond || inHole;
}

void FZFillSamples(FZSampleRow out, std::int32_t first, std::int32_t last, float inside, float z)
{
    for (std::int32_t k = first; k < last; ++k) {
        out.inside[k] = inside;
        out.z[k] = z;
    }
}

bool FZNoneCovered(const std::uint8_t* coverage, std::int32_t n)
{
    int any = 0;
    for (std::int32_t k = 0; k < n; ++k)
        any |= coverage[k];
    return any == 0;
}

void StoreSamplePiece(FZLayer& layer, const FZPiecePlace& place, const FZSamplePiece& piece,
                      const FZSolidPixels& solid, const FZSpan& held)
{
    const std::int32_t n = place.pixels;
    float count[kFZSamplePixels];
    float sum[kFZSamplePixels];
    const std::int32_t solidFirst = FZMin(solid.first, solid.last);
    CountInside(piece, 0, solidFirst, count, sum);
    CountSolid(solid, count, sum);
    CountInside(piece, FZMax(solid.last, solidFirst), n, count, sum);
    // Only the pixels the row holds are written: the samples of the others
    // all lie outside the shape.
    const std::int32_t k0 = held.first;
    const std::int32_t k1 = FZMin(held.last + 1, n);
    if (k0 >= k1)
        return;
    StoreIntoEmpty(count + k0, sum + k0, k1 - k0, layer.coverage[place.y] + place.start + k0,
                   layer.depth[place.y] + place.start + k0);
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

std::shared_ptr<const FZRowLayout> SampleShapeRows(float cx, float cy, float r, std::int32_t w, std::int32_t h)
{
    // Every shape lies within r of its centre, so a covered pixel's square
    // meets the circle of radius r, and its neighbours' squares meet the
    // circle of radius r + 2: each row holds the pixels whose squares do.
    const double reach = std::fabs(static_cast<double>(r)) + 2.0;
    // Parameters that are not numbers draw nothing, anywhere.
    if (!std::isfinite(cx) || !std::isfinite(cy) || !std::isfinite(reach) || w < 1 || h < 1)
        return nullptr;
    const std::int32_t y0 = FZTruncateClamped(std::floor(cy - reach), 0, h - 1);
    const std::int32_t y1 = FZTruncateClamped(std::floor(cy + reach), 0, h - 1);
    std::vector<FZSpan> spans;
    for (std::int32_t y = y0; y <= y1; ++y) {
        // The distance from the centre to the row's band of y to y + 1.
        const double dy = cy < y ? y - static_cast<double>(cy) : (cy > y + 1.0 ? cy - (y + 1.0) : 0.0);
        FZSpan span;
        if (dy <= reach) {
            const double half = std::sqrt(reach * reach - dy * dy);
            span.first = FZTruncateClamped(std::floor(cx - half), 0, w - 1);
            span.last = FZTruncateClamped(std::floor(cx + half), 0, w - 1);
            // A circle wholly beside the frame reaches none of its pixels.
            if (cx + half < 0.0 || cx - half > w)
                span = FZSpan();
        }
        spans.push_back(span);
    }
    return std::make_shared<const FZRowLayout>(y0, std::move(spans));
}
