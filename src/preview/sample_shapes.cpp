// The finishing touches of the sample shapes: a dimple, a flattened top, a
// clamped depth.
#include <cmath>
#include <memory>

#include "engine/fz_math.h"
#include "engine/row_kernel.h"
#include "engine/shading/surface.h"
#include "preview/shape_arithmetic.h"
#include "preview/shapes.h"

using namespace fz_shapes;

// ---------------------------------------------------------------- finishing

namespace {

// The squared offsets from the dimple's centre of the four sample columns
// (or rows) of every pixel, computed once for all rows; pixel k of a piece
// has sample column i at [i][k].
struct DimpleColumns {
    std::int32_t first = 0;
    std::int32_t last = -1;
    std::vector<double> squares;

    DimpleColumns(std::int32_t firstPixel, std::int32_t lastPixel, float centre);
    std::int32_t Pieces() const { return (last - first) / kFZSamplePixels + 1; }
    std::int32_t PieceStart(std::int32_t piece) const { return first + piece * kFZSamplePixels; }
    std::int32_t PiecePixels(std::int32_t piece) const { return FZMin(kFZSamplePixels, last - PieceStart(piece) + 1); }
    const double* Piece(std::int32_t piece) const
    {
        return squares.data() + static_cast<std::size_t>(piece) * 4 * kFZSamplePixels;
    }
};

// The offset of sample i (0 to 3) of pixel p from the centre c.
double DimpleOffset(std::int32_t p, int i, float c)
{
    return p + (i + 0.5) * 0.25 - c;
}

DimpleColumns::DimpleColumns(std::int32_t firstPixel, std::int32_t lastPixel, float centre)
    : first(firstPixel), last(lastPixel), squares(static_cast<std::size_t>(Pieces()) * 4 * kFZSamplePixels)
{
    for (std::int32_t p = 0; p < Pieces(); ++p) {
        double* piece = squares.data() + static_cast<std::size_t>(p) * 4 * kFZSamplePixels;
        for (int i = 0; i < 4; ++i) {
            for (std::int32_t k = 0; k < PiecePixels(p); ++k) {
                const double sx = DimpleOffset(PieceStart(p) + k, i, centre);
                piece[i * kFZSamplePixels + k] = sx * sx;
            }
        }
    }
}

// The dimpled depths of the n pixels of a piece, from the squared offsets
// of their sample columns and of the row's four sample rows. Points within
// the radius are lowered by the bowl, the others keep the depth. Only the
// pixels from first to last - 1 can reach into the bowl; the others take
// what sixteen points outside give, which is their depth with 0 added.
TAMERISK_ROW_KERNEL void DimpleDepths(const FZSmoothStep& bowl, double radiusSquared, const double* columnSquares,
                                      const double (&rowSquares)[4], std::int32_t first, std::int32_t last,
                                      std::int32_t n, const float* depth, float* dimpled)
{
    // Copies, which the stores through dimpled cannot change.
    const FZSmoothStep b = bowl;
    const double sy2[4] = {rowSquares[0], rowSquares[1], rowSquares[2], rowSquares[3]};
    for (std::int32_t k = 0; k < n; ++k)
        dimpled[k] = static_cast<float>(0.0 + depth[k]);
    for (std::int32_t k = first; k < last; ++k) {
        const float zp = depth[k];
        // Summed in double: sixteen equal heights give the height back
        // exactly, so pixels outside the bowl keep their depth.
        double sum = 0.0;
#pragma GCC unroll 4
        for (int j = 0; j < 4; ++j) {
#pragma GCC unroll 4
            for (int i = 0; i < 4; ++i) {
                const float s2 = static_cast<float>(columnSquares[i * kFZSamplePixels + k] + sy2[j]);
                const double distance = std::sqrt(static_cast<double>(s2));
                const float lowered = static_cast<float>(zp + b.Evaluate(distance));
                sum += s2 < radiusSquared ? lowered : zp;
            }
        }
        dimpled[k] = static_cast<float>(sum * (1.0 / 16.0));
    }
}

// The reach of the dimple's points along a row whose nearest sample row is
// that far from the centre: points farther out lie beyond the radius.
FZRowReach DimpleReach(float cx, float radius, double nearest)
{
    FZRowReach reach;
    if (Finite({cx, radius, nearest})) {
        reach.centre = cx;
        reach.outer = HalfChord(std::fabs(radius) * (1.0 + kRelativeRoom) + kRoom, nearest);
    }
    return reach;
}

TAMERISK_ROW_KERNEL void StoreCovered(const std::uint8_t* coverage, const float* values, std::int32_t n, float* depth)
{
    for (std::int32_t k = 0; k < n; ++k)
        depth[k] = coverage[k] != 0 ? values[k] : depth[k];
}

TAMERISK_ROW_KERNEL void ClampCovered(const std::uint8_t* coverage, float level, std::int32_t n, float* depth)
{
    for (std::int32_t k = 0; k < n; ++k)
        depth[k] = ((coverage[k] != 0) & (depth[k] > level)) ? level : depth[k];
}

}  // namespace

void AddDimple(FZLayer& layer, float cx, float cy, float radius, float depth)
{
    if (layer.coverage.empty() || layer.depth.empty())
        return;
    FZSmoothStep bowl;
    bowl.Setup(0.0f, -depth, radius, 0.0f);
    const double radiusSquared = static_cast<double>(radius) * radius;
    const FZRect stored = layer.Stored();
    const std::int32_t columnFirst = FZTruncateClamped(static_cast<double>(cx) - radius, stored.x0, INT32_MAX);
    const std::int32_t columnLast = FZTruncateClamped(static_cast<double>(cx) + radius, INT32_MIN, stored.x1);
    const std::int32_t rowFirst = FZTruncateClamped(static_cast<double>(cy) - radius, stored.y0, INT32_MAX);
    const std::int32_t rowLast = FZTruncateClamped(static_cast<double>(cy) + radius, INT32_MIN, stored.y1);
    if (columnFirst > columnLast || rowFirst > rowLast)
        return;
    const DimpleColumns columns(columnFirst, columnLast, cx);

    ParallelRows(rowFirst, rowLast + 1, [&](std::int32_t py) {
        double rowSquares[4];
        double nearest = HUGE_VAL;
        for (int j = 0; j < 4; ++j) {
            const double sy = DimpleOffset(py, j, cy);
            rowSquares[j] = sy * sy;
            nearest = FZMin(nearest, std::fabs(sy));
        }
        const FZPixelSpans reach(DimpleReach(cx, radius, nearest));
        const FZSpan held = layer.StoredRow(py);
        for (std::int32_t p = 0; p < columns.Pieces(); ++p) {
            // The part of the piece the row holds: pixels k0 to k1 - 1.
            const std::int32_t start = columns.PieceStart(p);
            const std::int32_t k0 = FZPixelSpans::Within(held.first, start, columns.PiecePixels(p));
            const std::int32_t k1 = FZPixelSpans::Within(std::int64_t{held.last} + 1, start, columns.PiecePixels(p));
            const std::int32_t n = k1 - k0;
            if (n <= 0)
                continue;
            const std::uint8_t* coverage = layer.coverage[py] + start + k0;
            float* depths = layer.depth[py] + start + k0;
            if (FZNoneCovered(coverage, n))
                continue;
            const std::int32_t first = FZPixelSpans::Within(reach.outerFirst, start + k0, n);
            const std::int32_t last
                = FZMax(FZPixelSpans::Within(std::int64_t{reach.outerLast} + 1, start + k0, n), first);
            float dimpled[kFZSamplePixels];
            DimpleDepths(bowl, radiusSquared, columns.Piece(p) + k0, rowSquares, first, last, n, depths, dimpled);
            StoreCovered(coverage, dimpled, n, depths);
        }
    });
}

void FlattenTop(FZLayer& layer, float k)
{
    float minimum = 0.0f;
    float maximum = 0.0f;
    if (layer.coverage.empty() || layer.depth.empty()
        || DepthRange(layer, FZRect(0, 0, layer.width - 1, layer.height - 1), minimum, maximum) != FZResult::Ok)
        return;
    // The range starts from 0: a covered depth takes over only when it lies
    // strictly beyond, so of the zeros 0 itself stays.
    const float lo = minimum < 0.0f ? minimum : 0.0f;
    const float hi = maximum > 0.0f ? maximum : 0.0f;
    const float span = Difference(hi, lo);
    if (span > 0.0f)
        ClampDepth(layer, Sum(lo, Product(span, k)));
}

void ClampDepth(FZLayer& layer, float level)
{
    if (layer.coverage.empty() || layer.depth.empty())
        return;
    const FZRect s = layer.Stored();
    ParallelRows(s.y0, s.y1 + 1, [&](std::int32_t y) {
        const FZSpan held = layer.StoredRow(y);
        if (!held.Empty())
            ClampCovered(layer.coverage[y] + held.first, level, held.last - held.first + 1, layer.depth[y] + held.first);
    });
}
