// The sample shapes of the preview: analytic outlines with a height profile,
// drawn into a layer's coverage and depth rows at 3 x 3 points a pixel, and
// the finishing operations on the drawn depths (a smooth dimple, a flat cut
// through the top).
//
// Every outline offers Set (its parameters in the order of its fields; also
// computes the bounding box), Bounds, and for drawing ColumnTerms, HeightRow
// (heights in frame coordinates, and whether a point is inside the outline)
// and Reach.
// Parameters that are NaN give an outline that contains no point.
#ifndef TAMERISK_PREVIEW_SHAPES_H
#define TAMERISK_PREVIEW_SHAPES_H

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include <tamerisk/fz_truncate.h>

#include "engine/fz_math.h"
#include "engine/parallel.h"
#include "engine/scene.h"

// Where a row kernel writes each sample point: 1 where it lies inside the
// outline and 0 where it does not (floats, which vector code takes lane by
// lane with the heights), and its height there (any value where it does
// not).
struct FZSampleRow {
    float* inside;
    float* z;
};

// The bounding box of an outline, computed when its parameters are set.
struct FZShapeBox {
    float x0 = 0.0f;
    float y0 = 0.0f;
    float x1 = 0.0f;
    float y1 = 0.0f;

    // The box (cx - rx, cy - ry, cx + rx, cy + ry).
    void Around(float cx, float cy, float rx, float ry);
    void Get(float& bx0, float& by0, float& bx1, float& by1) const
    {
        bx0 = x0;
        by0 = y0;
        bx1 = x1;
        by1 = y1;
    }
};

// What an outline tells of one sample row before its points are tested:
// points farther than outer from the centre column lie outside; points
// nearer than inner all lie inside at height (solid) or all outside. Both
// leave room for the rounding of the tests, so that no point is taken for
// what its test would not give. An outer of infinity and an inner below 0
// tell nothing; an outer below 0 says that no point of the row is inside.
struct FZRowReach {
    double centre = 0.0;
    double outer = HUGE_VAL;
    double inner = -1.0;
    bool solid = false;
    float height = 0.0f;
};

// A flat round plate of radius R whose rim falls off as a quarter circle of
// radius rho, from height z0 + rho to z0 at the edge.
struct FZRoundedDisc {
    float cx = 0.0f;
    float cy = 0.0f;
    float z0 = 0.0f;
    float radius = 0.0f;
    float rimRadius = 0.0f;
    FZShapeBox box;

    void Set(float centerX, float centerY, float baseHeight, float outerRadius, float rim);
    void Bounds(float& bx0, float& by0, float& bx1, float& by1) const { box.Get(bx0, by0, bx1, by1); }
    // What the height takes from x alone, for the points xs[0] to
    // xs[n - 1]: the same for every row.
    void ColumnTerms(const float* xs, std::int32_t n, double* terms) const;
    // The heights of the n points of row y whose column terms are given.
    void HeightRow(float y, const double* terms, std::int32_t n, FZSampleRow out) const;
    FZRowReach Reach(float y) const;
};

// Half an ellipsoid over the ellipse of semi-axes a and b.
struct FZDome {
    float cx = 0.0f;
    float cy = 0.0f;
    float a = 0.0f;
    float b = 0.0f;
    FZShapeBox box;
    float z0 = 0.0f;
    float height = 0.0f;

    void Set(float centerX, float centerY, float semiA, float semiB, float baseHeight, float domeHeight);
    void Bounds(float& bx0, float& by0, float& bx1, float& by1) const { box.Get(bx0, by0, bx1, by1); }
    // What the height takes from x alone, for the points xs[0] to
    // xs[n - 1]: the same for every row.
    void ColumnTerms(const float* xs, std::int32_t n, double* terms) const;
    // The heights of the n points of row y whose column terms are given.
    void HeightRow(float y, const double* terms, std::int32_t n, FZSampleRow out) const;
    FZRowReach Reach(float y) const;
};

// A ring between the radii Ri and R whose cross-section is half an ellipse:
// (R - Ri) / 2 wide on each side of the mid radius, heightScale high.
struct FZTorus {
    float cx = 0.0f;
    float cy = 0.0f;
    float z0 = 0.0f;
    float outerRadius = 0.0f;
    float innerRadius = 0.0f;
    float heightScale = 0.0f;
    FZShapeBox box;

    void Set(float centerX, float centerY, float baseHeight, float outer, float inner, float scale);
    void Bounds(float& bx0, float& by0, float& bx1, float& by1) const { box.Get(bx0, by0, bx1, by1); }
    // What the height takes from x alone, for the points xs[0] to
    // xs[n - 1]: the same for every row.
    void ColumnTerms(const float* xs, std::int32_t n, double* terms) const;
    // The heights of the n points of row y whose column terms are given.
    void HeightRow(float y, const double* terms, std::int32_t n, FZSampleRow out) const;
    FZRowReach Reach(float y) const;
};

// The colour handed to the layer with every drawn sample. The sample layer
// shows its material's colour, so this one is never seen.
inline constexpr FZColor kFZShapeSampleColor{};

// The pixels a row kernel takes at a time: enough points for its vector
// instructions, few enough to stay on the stack.
inline constexpr std::int32_t kFZSamplePixels = 128;

// The three sample offsets of pixel p along one axis: p + 1/6, p + 1/2 and
// p + 5/6, the offsets built by adding 1/3 to 1/6 in float.
void FZSampleOffsets(std::int32_t p, float out[3]);

// The sample points of a piece of a pixel row, sample row j and sample
// column i of the piece's pixel k at [j][i][k].
struct FZSamplePiece {
    float inside[3][3][kFZSamplePixels];
    float z[3][3][kFZSamplePixels];
};

// The sample columns of the pixels first to last, piece by piece, with the
// column terms of a shape.
class FZSampleColumns {
public:
    template <typename Shape>
    FZSampleColumns(const Shape& shape, std::int32_t first, std::int32_t last);

    std::int32_t Pieces() const { return pieces; }
    std::int32_t PieceStart(std::int32_t piece) const { return first + piece * kFZSamplePixels; }
    std::int32_t PiecePixels(std::int32_t piece) const { return FZMin(kFZSamplePixels, last - PieceStart(piece) + 1); }
    // The terms of sample column i of the piece's pixels.
    const double* Terms(std::int32_t piece, int i) const { return terms.data() + Offset(piece, i); }

private:
    static std::size_t Offset(std::int32_t piece, int i)
    {
        return (static_cast<std::size_t>(piece) * 3 + static_cast<std::size_t>(i)) * kFZSamplePixels;
    }

    std::int32_t first;
    std::int32_t last;
    std::int32_t pieces;
    std::vector<double> terms;
};

template <typename Shape>
FZSampleColumns::FZSampleColumns(const Shape& shape, std::int32_t firstPixel, std::int32_t lastPixel)
    : first(firstPixel), last(lastPixel), pieces((lastPixel - firstPixel) / kFZSamplePixels + 1),
      terms(static_cast<std::size_t>(pieces) * 3 * kFZSamplePixels)
{
    for (std::int32_t p = 0; p < pieces; ++p) {
        float xs[3][kFZSamplePixels];
        const std::int32_t n = PiecePixels(p);
        for (std::int32_t k = 0; k < n; ++k) {
            float offsets[3];
            FZSampleOffsets(PieceStart(p) + k, offsets);
            for (int i = 0; i < 3; ++i)
                xs[i][k] = offsets[i];
        }
        for (int i = 0; i < 3; ++i)
            shape.ColumnTerms(xs[i], n, terms.data() + Offset(p, i));
    }
}

// The pixel columns of a reach: pixels outside outerFirst to outerLast
// have no sample point inside; the points of innerFirst to innerLast are
// all inside at height (solid) or all outside.
struct FZPixelSpans {
    std::int32_t outerFirst = INT32_MIN;
    std::int32_t outerLast = INT32_MAX;
    std::int32_t innerFirst = 0;
    std::int32_t innerLast = -1;
    bool solid = false;
    float height = 0.0f;

    FZPixelSpans() = default;
    explicit FZPixelSpans(const FZRowReach& reach);
    // Whether no sample point of the pixels first to last is inside.
    bool AllOutside(std::int32_t first, std::int32_t last) const;
    // A column as an offset from start, held within 0 to n.
    static std::int32_t Within(std::int64_t column, std::int32_t start, std::int32_t n)
    {
        return static_cast<std::int32_t>(FZMin<std::int64_t>(FZMax<std::int64_t>(column - start, 0), n));
    }
};

// A piece of a pixel row: the pixels start to start + pixels - 1 of row y.
struct FZPiecePlace {
    std::int32_t y;
    std::int32_t start;
    std::int32_t pixels;
};

// The pixels of a piece, as offsets first to last - 1, whose nine points
// are all inside at one height; their samples are left out.
struct FZSolidPixels {
    std::int32_t first = 0;
    std::int32_t last = 0;
    float height = 0.0f;
};

// Stores the samples of the pixels held.first to held.last of a piece (as
// offsets; the row holds those) into the layer, whose pixels hold nothing yet.
void StoreSamplePiece(FZLayer& layer, const FZPiecePlace& place, const FZSamplePiece& piece,
                      const FZSolidPixels& solid, const FZSpan& held);
// Whether the n coverage values are all 0.
bool FZNoneCovered(const std::uint8_t* coverage, std::int32_t n);
// Fills the samples from first to last - 1 with whether they are inside
// (1 or 0) and their height.
void FZFillSamples(FZSampleRow out, std::int32_t first, std::int32_t last, float inside, float z);

// One pixel row of a drawing: its three sample rows, what the outline's
// reach tells of them, and the samples of the piece at hand. Points the
// reach tells need no test, pieces that do not reach into the outline are
// left alone, and pixels whose points are all solid take no samples at all.
template <typename Shape>
class FZRowDrawing {
public:
    FZRowDrawing(const Shape& outline, const FZSampleColumns& sampleColumns, std::int32_t y);
    void Draw(FZLayer& layer);

private:
    FZSolidPixels SolidPixels(const FZPiecePlace& place) const;
    // The samples of sample row j and sample column i of the piece p.
    void TestColumn(std::int32_t p, int j, int i, const FZSolidPixels& solid);

    const Shape& shape;
    const FZSampleColumns& columns;
    std::int32_t row;
    float ys[3];
    FZPixelSpans spans[3];
    FZSamplePiece piece;
};

template <typename Shape>
FZRowDrawing<Shape>::FZRowDrawing(const Shape& outline, const FZSampleColumns& sampleColumns, std::int32_t y)
    : shape(outline), columns(sampleColumns), row(y)
{
    FZSampleOffsets(y, ys);
    for (int j = 0; j < 3; ++j)
        spans[j] = FZPixelSpans(shape.Reach(ys[j]));
}

template <typename Shape>
void FZRowDrawing<Shape>::Draw(FZLayer& layer)
{
    const FZSpan rowHeld = layer.StoredRow(row);
    for (std::int32_t p = 0; p < columns.Pieces(); ++p) {
        const FZPiecePlace place{row, columns.PieceStart(p), columns.PiecePixels(p)};
        const std::int32_t last = place.start + place.pixels - 1;
        // The pixels of the piece the row holds, as offsets.
        const FZSpan held{FZPixelSpans::Within(rowHeld.first, place.start, place.pixels),
                          FZPixelSpans::Within(std::int64_t{rowHeld.last} + 1, place.start, place.pixels) - 1};
        if (held.Empty())
            continue;
        if (spans[0].AllOutside(place.start, last) && spans[1].AllOutside(place.start, last)
            && spans[2].AllOutside(place.start, last))
            continue;
        const FZSolidPixels solid = SolidPixels(place);
        for (int j = 0; j < 3; ++j)
            for (int i = 0; i < 3; ++i)
                TestColumn(p, j, i, solid);
        StoreSamplePiece(layer, place, piece, solid, held);
    }
}

// The pixels inside the inner spans of all three sample rows, when these
// are solid at one height.
template <typename Shape>
FZSolidPixels FZRowDrawing<Shape>::SolidPixels(const FZPiecePlace& place) const
{
    FZSolidPixels solid;
    for (const FZPixelSpans& s : spans)
        if (!s.solid || s.height != spans[0].height || s.innerFirst > s.innerLast)
            return solid;
    solid.first = 0;
    solid.last = place.pixels;
    for (const FZPixelSpans& s : spans) {
        solid.first = FZMax(solid.first, FZPixelSpans::Within(s.innerFirst, place.start, place.pixels));
        solid.last = FZMin(solid.last, FZPixelSpans::Within(std::int64_t{s.innerLast} + 1, place.start, place.pixels));
    }
    solid.last = FZMax(solid.last, solid.first);
    solid.height = spans[0].height;
    return solid;
}

template <typename Shape>
void FZRowDrawing<Shape>::TestColumn(std::int32_t p, int j, int i, const FZSolidPixels& solid)
{
    const FZPixelSpans& s = spans[j];
    const std::int32_t start = columns.PieceStart(p);
    const std::int32_t n = columns.PiecePixels(p);
    const double* terms = columns.Terms(p, i);
    const FZSampleRow out{piece.inside[j][i], piece.z[j][i]};
    // Pixels [0, a) and [d, n) lie outside, [b, c) is the inner span, and
    // [a, b) and [c, d) are tested. The solid pixels lie within [b, c).
    const std::int32_t a = FZPixelSpans::Within(s.outerFirst, start, n);
    const std::int32_t d = FZMax(FZPixelSpans::Within(std::int64_t{s.outerLast} + 1, start, n), a);
    std::int32_t b = d;
    std::int32_t c = d;
    if (s.innerFirst <= s.innerLast) {
        b = FZMin(FZMax(FZPixelSpans::Within(s.innerFirst, start, n), a), d);
        c = FZMin(FZMax(FZPixelSpans::Within(std::int64_t{s.innerLast} + 1, start, n), b), d);
    }
    const float innerInside = s.solid ? 1.0f : 0.0f;
    FZFillSamples(out, 0, a, 0.0f, 0.0f);
    shape.HeightRow(ys[j], terms + a, b - a, FZSampleRow{out.inside + a, out.z + a});
    FZFillSamples(out, b, FZMax(solid.first, b), innerInside, s.height);
    FZFillSamples(out, FZMin(FZMax(solid.last, b), c), c, innerInside, s.height);
    shape.HeightRow(ys[j], terms + c, d - c, FZSampleRow{out.inside + c, out.z + c});
    FZFillSamples(out, d, n, 0.0f, 0.0f);
}

// Draws an outline into a layer that holds nothing yet: every pixel of its
// bounding box (clipped to the pixels the layer's rows hold) is tested at
// 3 x 3 points.
// Single-precision arithmetic throughout. Each pixel reads and writes only
// itself, so rows run in parallel; the outline is tested a piece of a
// sample row at a time, with the terms of the sample columns computed once.
template <typename Shape>
void RasterizeShape(FZLayer& layer, const Shape& shape)
{
    if (layer.coverage.empty() || layer.depth.empty())
        return;
    float bx0, by0, bx1, by1;
    shape.Bounds(bx0, by0, bx1, by1);
    const FZRect stored = layer.Stored();
    const std::int32_t columnFirst = FZTruncateClamped(bx0, stored.x0, INT32_MAX);
    const std::int32_t columnLast = FZTruncateClamped(bx1 + 0.1f, INT32_MIN, stored.x1);
    const std::int32_t rowFirst = FZTruncateClamped(by0, stored.y0, INT32_MAX);
    const std::int32_t rowLast = FZTruncateClamped(by1 + 0.1f, INT32_MIN, stored.y1);
    if (columnFirst > columnLast || rowFirst > rowLast)
        return;
    const FZSampleColumns columns(shape, columnFirst, columnLast);
    ParallelRows(rowFirst, rowLast + 1,
                 [&](std::int32_t py) { FZRowDrawing<Shape>(shape, columns, py).Draw(layer); });
}

// Lowers the covered depths within radius of (cx, cy) by a smooth bowl that
// is depth deep at the centre and 0 at the radius (4 x 4 points a pixel).
void AddDimple(FZLayer& layer, float cx, float cy, float radius, float depth);
// Cuts the covered depths at the fraction k of their range (which always
// includes 0).
void FlattenTop(FZLayer& layer, float k);
// Every covered depth above the level becomes the level.
void ClampDepth(FZLayer& layer, float level);

// Draws sample shape n (1 to 4; any other number draws nothing) centred on
// (cx, cy) with size r and base height 0 into an empty layer:
//   1 a round plate with a rounded rim and a dimple down to 0 at its centre,
//   2 a dome half as high as wide, 3 a hemisphere cut flat at 70 % of its
//   height, 4 a ring with a round cross-section of radius r / 4.
// The preview centres the shapes in the frame and takes r = h / 2.3.
void DrawSampleShape(FZLayer& layer, int n, float cx, float cy, float r);
// The pixels of a w x h layer that DrawSampleShape can cover with those
// parameters, and their neighbours (whose depths estimate the normals):
// what a sample layer needs rows for, row by row. Null (no rows) when the
// parameters are not numbers.
std::shared_ptr<const FZRowLayout> SampleShapeRows(float cx, float cy, float r, std::int32_t w, std::int32_t h);

#endif
