#include "engine/shading/surface.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <vector>

#include "engine/fz_math.h"
#include "engine/parallel.h"
#include "engine/row_kernel.h"

namespace {

FZRect WholeLayer(const FZLayer& layer)
{
    return FZRect(0, 0, layer.width - 1, layer.height - 1);
}

bool HasHeightField(const FZLayer& layer)
{
    return !layer.coverage.empty() && !layer.depth.empty();
}

// ---------------------------------------------------------------- coverage

// The first covered column from x0 to x1, or x1 + 1 when there is none.
// Eight columns at a time: most rows start with a long uncovered stretch.
std::int32_t FirstCovered(const std::uint8_t* coverage, std::int32_t x0, std::int32_t x1)
{
    std::int32_t x = x0;
    for (; x + 8 <= x1 + 1; x += 8) {
        std::uint64_t eight;
        std::memcpy(&eight, coverage + x, sizeof eight);
        if (eight != 0)
            break;
    }
    while (x <= x1 && coverage[x] == 0)
        ++x;
    return x;
}

// The last covered column from x0 to x1, or x0 - 1 when there is none.
std::int32_t LastCovered(const std::uint8_t* coverage, std::int32_t x0, std::int32_t x1)
{
    std::int32_t x = x1;
    for (; x - 8 >= x0 - 1; x -= 8) {
        std::uint64_t eight;
        std::memcpy(&eight, coverage + x - 7, sizeof eight);
        if (eight != 0)
            break;
    }
    while (x >= x0 && coverage[x] == 0)
        --x;
    return x;
}

// The first uncovered column from x0 to x1, or x1 + 1 when all are covered.
std::int32_t FirstUncovered(const std::uint8_t* coverage, std::int32_t x0, std::int32_t x1)
{
    const void* gap = std::memchr(coverage + x0, 0, static_cast<std::size_t>(x1 - x0 + 1));
    return gap == nullptr ? x1 + 1 : static_cast<std::int32_t>(static_cast<const std::uint8_t*>(gap) - coverage);
}

// ---------------------------------------------------------------- depth range

// The lowest and highest covered depth, starting from 1e10 and -1e10 (the
// values of a range without covered pixels).
struct DepthSpan {
    float minimum = 1e10f;
    float maximum = -1e10f;

    // A later part of the same scan: a value takes over only when it is
    // strictly beyond, so of equal values the first one scanned stays.
    void Add(const DepthSpan& later)
    {
        minimum = later.minimum < minimum ? later.minimum : minimum;
        maximum = later.maximum > maximum ? later.maximum : maximum;
    }
};

// Floats as integers of the same order: the bits of a positive float,
// those of a negative one with its magnitude bits turned over (so -0 comes
// just below +0). Integer minima and maxima run as vector code, float ones
// (with their rules for NaN) do not.
struct DepthKeys {
    std::int32_t low = INT32_MAX;
    std::int32_t high = INT32_MIN;
};

float FromBits(std::int32_t bits)
{
    float z;
    std::memcpy(&z, &bits, sizeof z);
    return z;
}

float FromKey(std::int32_t key)
{
    return FromBits(key < 0 ? static_cast<std::int32_t>(~static_cast<std::uint32_t>(key) | 0x80000000u) : key);
}

// The lowest and highest keys of the covered depths of columns 0 to n - 1
// that are numbers; low > high when there is none.
TAMERISK_ROW_KERNEL DepthKeys CoveredDepthKeys(const std::uint8_t* coverage, const float* depth, std::int32_t n)
{
    std::int32_t low = INT32_MAX;
    std::int32_t high = INT32_MIN;
    for (std::int32_t x = 0; x < n; ++x) {
        std::int32_t bits;
        std::memcpy(&bits, depth + x, sizeof bits);
        const std::int32_t magnitude = bits & 0x7fffffff;
        const std::int32_t key = bits < 0 ? ~magnitude : magnitude;
        const std::int32_t counts = -static_cast<std::int32_t>((coverage[x] != 0) & (magnitude <= 0x7f800000));
        const std::int32_t forLow = (key & counts) | (INT32_MAX & ~counts);
        const std::int32_t forHigh = (key & counts) | (INT32_MIN & ~counts);
        low = forLow < low ? forLow : low;
        high = forHigh > high ? forHigh : high;
    }
    return DepthKeys{low, high};
}

// The first covered depth of columns 0 to n - 1 that equals zero, with its
// sign.
float FirstCoveredZero(const std::uint8_t* coverage, const float* depth, std::int32_t n)
{
    for (std::int32_t x = 0; x < n; ++x)
        if (coverage[x] != 0 && depth[x] == 0.0f)
            return depth[x];
    return 0.0f;
}

// The span of the covered depths of columns 0 to n - 1, as one scan in
// column order would find it: NaN never takes over, nor does a value equal
// to the one held, so of +0 and -0 the first scanned stays; other equal
// floats have equal bits.
DepthSpan CoveredDepthSpan(const std::uint8_t* coverage, const float* depth, std::int32_t n)
{
    const DepthKeys keys = CoveredDepthKeys(coverage, depth, n);
    DepthSpan span;
    if (keys.low <= keys.high)
        span.Add(DepthSpan{FromKey(keys.low), FromKey(keys.high)});
    if (span.minimum == 0.0f)
        span.minimum = FirstCoveredZero(coverage, depth, n);
    if (span.maximum == 0.0f)
        span.maximum = FirstCoveredZero(coverage, depth, n);
    return span;
}

// Adds shift to the covered depths of columns 0 to n - 1.
TAMERISK_ROW_KERNEL void ShiftCoveredDepths(const std::uint8_t* coverage, float* depth, std::int32_t n, double shift)
{
    for (std::int32_t x = 0; x < n; ++x) {
        const float shifted = static_cast<float>(depth[x] + shift);
        depth[x] = coverage[x] != 0 ? shifted : depth[x];
    }
}

// The covered columns of a row and the span of their depths.
struct RowExtent {
    std::int32_t first = 0;
    std::int32_t last = -1;
    DepthSpan depths;

    bool Empty() const { return first > last; }
    std::int32_t Count() const { return last - first + 1; }
};

// The extents of the rows from y0 to y1 within columns x0 to x1, rows run in
// parallel; depth spans only when withDepth.
std::vector<RowExtent> MeasureRows(const FZLayer& layer, const FZRect& r, bool withDepth)
{
    std::vector<RowExtent> rows(static_cast<std::size_t>(r.y1 - r.y0 + 1));
    ParallelRows(r.y0, r.y1 + 1, [&](std::int32_t y) {
        // Only the columns the row holds can be covered.
        const FZSpan held = layer.StoredRow(y);
        const std::int32_t x0 = FZMax(r.x0, held.first);
        const std::int32_t x1 = FZMin(r.x1, held.last);
        if (x0 > x1)
            return;
        const std::uint8_t* coverage = layer.coverage[y];
        RowExtent& e = rows[static_cast<std::size_t>(y - r.y0)];
        e.first = FirstCovered(coverage, x0, x1);
        if (e.first > x1)
            return;
        e.last = LastCovered(coverage, e.first, x1);
        if (withDepth)
            e.depths = CoveredDepthSpan(coverage + e.first, layer.depth[y] + e.first, e.Count());
    });
    return rows;
}

// The bounding rectangle of the covered columns of the measured rows,
// whose first row is y0; empty when none is covered.
FZRect CoveredRect(const std::vector<RowExtent>& rows, std::int32_t y0)
{
    FZRect bounds(1000000, 1000000, -1000000, -1000000);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const RowExtent& e = rows[i];
        if (e.Empty())
            continue;
        const std::int32_t y = y0 + static_cast<std::int32_t>(i);
        bounds.x0 = FZMin(bounds.x0, e.first);
        bounds.x1 = FZMax(bounds.x1, e.last);
        bounds.y0 = FZMin(bounds.y0, y);
        bounds.y1 = y;
    }
    return bounds;
}

// The span of the depths of all measured rows, in scan order.
DepthSpan CombinedSpan(const std::vector<RowExtent>& rows)
{
    DepthSpan span;
    for (const RowExtent& e : rows)
        span.Add(e.depths);
    return span;
}

// Adds shift to every covered depth of the measured rows (every row the
// layer holds) and measures their spans again.
void ShiftRows(FZLayer& layer, std::vector<RowExtent>& rows, double shift)
{
    const FZRect stored = layer.Stored();
    ParallelRows(stored.y0, stored.y1 + 1, [&](std::int32_t y) {
        RowExtent& e = rows[static_cast<std::size_t>(y - stored.y0)];
        if (e.Empty())
            return;
        const std::uint8_t* coverage = layer.coverage[y] + e.first;
        float* depth = layer.depth[y] + e.first;
        ShiftCoveredDepths(coverage, depth, e.Count(), shift);
        e.depths = CoveredDepthSpan(coverage, depth, e.Count());
    });
}

// ---------------------------------------------------------------- normals

// Sobel kernels, indexed [dy + 1][dx + 1].
constexpr int kSlopeX[3][3] = {{-1, 0, 1}, {-2, 0, 2}, {-1, 0, 1}};
constexpr int kSlopeY[3][3] = {{-1, -2, -1}, {0, 0, 0}, {1, 2, 1}};

// A neighbour's depth difference from the centre, weighted by its coverage:
// in double, rounded to float once.
struct WideDifference {
    template <typename Centre, typename Weight>
    static float Of(float z, Centre zc, Weight m) { return static_cast<float>((z - static_cast<double>(zc)) * m); }
};

// The same for depths that lie within a factor of 2 of each other: their
// difference is exact in float (Sterbenz), and so the float product by the
// coverage is the one rounding of the exact product, as in double.
struct NearDifference {
    static float Of(float z, float zc, float m) { return (z - zc) * m; }
};

// The slopes of a normal: the Sobel kernels summed over the covered
// neighbours in row order (each weighted difference d times the kernel,
// each coverage m times the kernel's magnitude), every step rounded to
// float, and the sums' quotients negated. NormalAt sums in double, each
// step rounded, which holds for any depths. The interior kernels sum in
// float, which gives the same floats where every neighbour is covered and
// every depth tame (see Survey): a sum or quotient of two floats computed
// in double and rounded is the float sum or quotient (double holds more
// than twice float's digits), and the products by the kernel are exact.
// There a term whose kernel weight is 0 adds exactly nothing and is left
// out (kEveryTerm false); with wild depths 0 x d may be no number.
template <typename T>
struct SobelSums {
    // The float sums start at -0, which a first term added to it leaves as
    // it is (the vector code then spares the addition); a zero sum's sign
    // never reaches the packed normal.
    static constexpr T kNothing = std::is_same_v<T, float> ? -0.0f : 0.0f;
    T sx = kNothing;
    T sy = kNothing;
    T wx = kNothing;
    T wy = kNothing;

    template <bool kEveryTerm>
    [[gnu::always_inline]] void Add(int kx, int ky, T d, T m)
    {
        if (kEveryTerm || kx != 0) {
            sx = Step(sx + static_cast<T>(kx) * d);
            wx = Step(wx + static_cast<T>(kx < 0 ? -kx : kx) * m);
        }
        if (kEveryTerm || ky != 0) {
            sy = Step(sy + static_cast<T>(ky) * d);
            wy = Step(wy + static_cast<T>(ky < 0 ? -ky : ky) * m);
        }
    }
    T SlopeX() const { return Step(-sx / wx); }
    T SlopeY() const { return Step(-sy / wy); }

    // One step of float arithmetic: a float result as it is, or one
    // computed in double rounded to float.
    static float Step(float v) { return v; }
    static double Step(double v) { return FZAsFloat(v); }
};

// The normal of one covered pixel from its covered neighbours. Each
// neighbour counts with its coverage, so the silhouette, where neighbours
// drop out or are thin, does not look like a cliff down to depth 0.
FZPackedVector NormalAt(const FZLayer& layer, std::int32_t x, std::int32_t y)
{
    const double zc = layer.depth[y][x];
    SobelSums<double> sums;
    // Neighbours the rows do not hold are uncovered.
    for (std::int32_t ny = y > 0 ? y - 1 : 0; ny <= y + 1 && ny < layer.height; ++ny) {
        const FZSpan held = layer.StoredRow(ny);
        const std::int32_t firstColumn = FZMax(x - 1, held.first);
        const std::int32_t lastColumn = FZMin(x + 1, held.last);
        if (firstColumn > lastColumn)
            continue;
        const std::uint8_t* coverage = layer.coverage[ny];
        const float* depth = layer.depth[ny];
        const int dy = ny - y;
        for (std::int32_t nx = firstColumn; nx <= lastColumn; ++nx) {
            const int m = coverage[nx];
            if (m == 0)
                continue;
            const int dx = nx - x;
            sums.Add<true>(kSlopeX[dy + 1][dx + 1], kSlopeY[dy + 1][dx + 1], WideDifference::Of(depth[nx], zc, m), m);
        }
    }
    if (sums.wx == 0.0) {
        sums.wx = 1.0;
        sums.sx = 0.0;
    }
    if (sums.wy == 0.0) {
        sums.wy = 1.0;
        sums.sy = 0.0;
    }
    FZPackedVector normal;
    normal.SetFloats(static_cast<float>(sums.SlopeX()), static_cast<float>(sums.SlopeY()), 1.0f, true);
    return normal;
}

inline bool Finite(double v)
{
    return std::fabs(v) <= DBL_MAX;
}

// FZPackedVector::Pack for a component of a unit vector: it lies within 1
// (give or take the rounding), so the product needs no holding within the
// 16-bit range.
inline std::int32_t PackUnit(float v)
{
    return static_cast<std::int32_t>(v * FZPackedVector::kScale);
}

// The pixels a normal kernel takes at a time.
constexpr std::int32_t kNormalPiece = 64;

// Rows y - 1, y and y + 1 of a piece of a layer and one column on either
// side: the depths, and the coverages as float weights. The kernels read
// no bytes, so that their vectors hold as many lanes as their doubles do.
struct Neighbourhood {
    float weight[3][kNormalPiece + 2];
    const float* depth[3];
};

// The normals of a piece before they are stored: their packed components,
// and whether NormalAt must be asked instead.
struct NormalLanes {
    std::int32_t x[kNormalPiece];
    std::int32_t y[kNormalPiece];
    std::int32_t z[kNormalPiece];
    std::int32_t general[kNormalPiece];
};

TAMERISK_ROW_KERNEL void CoverageWeights(const std::uint8_t* coverage, std::int32_t n, float* weight)
{
    for (std::int32_t k = 0; k < n; ++k)
        weight[k] = coverage[k];
}

// The normals of n pixels of a row whose neighbours all lie in the layer
// and whose depths are all tame (see Survey), as NormalAt gives them where
// every neighbour is covered; elsewhere general is set. Difference forms
// the weighted depth differences. Both slopes 0 give (0, 0, 1) like any
// level neighbourhood; finite slopes keep the squared length at 1 or more.
// Inlined whole into each kernel, so that it runs as that kernel's vector
// code.
template <typename Difference>
[[gnu::always_inline]] inline void NormalsOfPiece(const Neighbourhood& around, std::int32_t n, NormalLanes& lanes)
{
    const float* __restrict w0 = around.weight[0];
    const float* __restrict w1 = around.weight[1];
    const float* __restrict w2 = around.weight[2];
    const float* __restrict z0 = around.depth[0];
    const float* __restrict z1 = around.depth[1];
    const float* __restrict z2 = around.depth[2];
    for (std::int32_t k = 0; k < n; ++k) {
        const float m00 = w0[k], m01 = w0[k + 1], m02 = w0[k + 2];
        const float m10 = w1[k], m12 = w1[k + 2];
        const float m20 = w2[k], m21 = w2[k + 1], m22 = w2[k + 2];
        const float thinnest = FZMin(FZMin(FZMin(m00, m01), FZMin(m02, m10)), FZMin(FZMin(m12, m20), FZMin(m21, m22)));
        const float zc = z1[k + 1];
        // Row by row, as NormalAt takes them; the centre adds nothing.
        SobelSums<float> sums;
        sums.Add<false>(kSlopeX[0][0], kSlopeY[0][0], Difference::Of(z0[k], zc, m00), m00);
        sums.Add<false>(kSlopeX[0][1], kSlopeY[0][1], Difference::Of(z0[k + 1], zc, m01), m01);
        sums.Add<false>(kSlopeX[0][2], kSlopeY[0][2], Difference::Of(z0[k + 2], zc, m02), m02);
        sums.Add<false>(kSlopeX[1][0], kSlopeY[1][0], Difference::Of(z1[k], zc, m10), m10);
        sums.Add<false>(kSlopeX[1][2], kSlopeY[1][2], Difference::Of(z1[k + 2], zc, m12), m12);
        sums.Add<false>(kSlopeX[2][0], kSlopeY[2][0], Difference::Of(z2[k], zc, m20), m20);
        sums.Add<false>(kSlopeX[2][1], kSlopeY[2][1], Difference::Of(z2[k + 1], zc, m21), m21);
        sums.Add<false>(kSlopeX[2][2], kSlopeY[2][2], Difference::Of(z2[k + 2], zc, m22), m22);
        const float fx = sums.SlopeX();
        const float fy = sums.SlopeY();
        // FZNormalizeFloats(fx, fy, 1).
        const float sq = fx * fx + fy * fy + 1.0f;
        const float inv = static_cast<float>(1.0 / std::sqrt(static_cast<double>(sq)));
        // Where a weight is 0 the quotients may not be numbers; those
        // lanes are left to NormalAt.
        const bool covered = thinnest > 0.0f;
        lanes.x[k] = PackUnit(covered ? fx * inv : 0.0f);
        lanes.y[k] = PackUnit(covered ? fy * inv : 0.0f);
        lanes.z[k] = PackUnit(covered ? inv : 0.0f);
        lanes.general[k] = !covered;
    }
}

TAMERISK_ROW_KERNEL void InteriorNormals(const Neighbourhood& around, std::int32_t n, NormalLanes& lanes)
{
    NormalsOfPiece<WideDifference>(around, n, lanes);
}

TAMERISK_ROW_KERNEL void InteriorNormalsOfNearDepths(const Neighbourhood& around, std::int32_t n, NormalLanes& lanes)
{
    NormalsOfPiece<NearDifference>(around, n, lanes);
}

// Stores the normals of the lanes; whether any lane is left to NormalAt.
TAMERISK_ROW_KERNEL bool StoreNormals(const NormalLanes& lanes, std::int32_t n, FZPackedVector* normals)
{
    std::int32_t general = 0;
    for (std::int32_t k = 0; k < n; ++k) {
        normals[k].x = static_cast<std::int16_t>(lanes.x[k]);
        normals[k].y = static_cast<std::int16_t>(lanes.y[k]);
        normals[k].z = static_cast<std::int16_t>(lanes.z[k]);
        general |= lanes.general[k];
    }
    return general != 0;
}

// Depths no larger than this are tame: any difference of two, times a
// coverage, lies far within half the float range.
constexpr float kTameDepth = 0x1p100f;

// What the depths of the three rows of a piece, from column 0 to n + 1,
// allow.
struct PieceSurvey {
    // Every covered pixel has the finite depth of the middle row's column
    // 1: the weighted differences around each of the n pixels between are
    // all 0, and so are both slopes; their normals are all (0, 0, 1).
    bool level;
    // Every depth, covered or not, is tame.
    bool tame;
    // The depths are tame and lie within a factor of 2 of each other.
    bool near;
};

TAMERISK_ROW_KERNEL PieceSurvey Survey(const Neighbourhood& around, std::int32_t n)
{
    const float z = around.depth[1][1];
    int uneven = 0;
    int wild = 0;
    // Positive floats order like their bits.
    std::int32_t lowest = INT32_MAX;
    std::int32_t highest = INT32_MIN;
    for (int r = 0; r < 3; ++r) {
        for (std::int32_t k = 0; k < n + 2; ++k) {
            const float depth = around.depth[r][k];
            std::int32_t bits;
            std::memcpy(&bits, &depth, sizeof bits);
            uneven |= (around.weight[r][k] != 0.0f) & (depth != z);
            wild |= !(std::fabs(depth) <= kTameDepth);
            lowest = bits < lowest ? bits : lowest;
            highest = bits > highest ? bits : highest;
        }
    }
    const bool tame = wild == 0;
    const bool near = tame && lowest > 0 && FromBits(highest) <= 2.0f * FromBits(lowest);
    return PieceSurvey{uneven == 0 && Finite(z), tame, near};
}

// The normals of the pixels x0 to x1 of row y, all covered.
void NormalsOfCoveredRun(FZLayer& layer, std::int32_t y, std::int32_t x0, std::int32_t x1)
{
    FZPackedVector* normals = layer.normals[y];
    // The kernels read the neighbours of a pixel without asking: only where
    // the rows above and below hold them too.
    const FZSpan here = layer.StoredRow(y);
    const FZSpan below = layer.StoredRow(y - 1);
    const FZSpan above = layer.StoredRow(y + 1);
    const bool interiorRow = y > 0 && !below.Empty() && !above.Empty();
    const std::int32_t first
        = interiorRow ? FZMax(x0, FZMax(here.first, FZMax(below.first, above.first)) + 1) : x1 + 1;
    const std::int32_t last = interiorRow ? FZMin(x1, FZMin(here.last, FZMin(below.last, above.last)) - 1) : x1;
    for (std::int32_t x = x0; x < first && x <= x1; ++x)
        normals[x] = NormalAt(layer, x, y);
    FZPackedVector flat;
    flat.SetFloats(0.0f, 0.0f, 1.0f, true);
    Neighbourhood around;
    NormalLanes lanes;
    for (std::int32_t start = first; start <= last; start += kNormalPiece) {
        const std::int32_t n = FZMin(kNormalPiece, last - start + 1);
        for (int r = 0; r < 3; ++r) {
            CoverageWeights(layer.coverage[y - 1 + r] + start - 1, n + 2, around.weight[r]);
            around.depth[r] = layer.depth[y - 1 + r] + start - 1;
        }
        const PieceSurvey survey = Survey(around, n);
        if (survey.level) {
            for (std::int32_t k = 0; k < n; ++k)
                normals[start + k] = flat;
            continue;
        }
        if (!survey.tame) {
            for (std::int32_t k = 0; k < n; ++k)
                normals[start + k] = NormalAt(layer, start + k, y);
            continue;
        }
        if (survey.near)
            InteriorNormalsOfNearDepths(around, n, lanes);
        else
            InteriorNormals(around, n, lanes);
        if (!StoreNormals(lanes, n, normals + start))
            continue;
        for (std::int32_t k = 0; k < n; ++k)
            if (lanes.general[k] != 0)
                normals[start + k] = NormalAt(layer, start + k, y);
    }
    for (std::int32_t x = FZMax(last + 1, first); x <= x1 && interiorRow; ++x)
        normals[x] = NormalAt(layer, x, y);
}

// The normals of the covered pixels of row y from x0 to x1, run by run of
// covered pixels.
void EstimateRowNormals(FZLayer& layer, std::int32_t y, std::int32_t x0, std::int32_t x1)
{
    const FZSpan held = layer.StoredRow(y);
    x0 = FZMax(x0, held.first);
    x1 = FZMin(x1, held.last);
    if (x0 > x1)
        return;
    const std::uint8_t* coverage = layer.coverage[y];
    for (std::int32_t x = FirstCovered(coverage, x0, x1); x <= x1;) {
        const std::int32_t end = FirstUncovered(coverage, x, x1);
        NormalsOfCoveredRun(layer, y, x, end - 1);
        x = end > x1 ? end : FirstCovered(coverage, end, x1);
    }
}

}  // namespace

// A flat layer is covered everywhere at one depth, which the preparation
// brings to 0 as it brings the lowest covered depth of any layer.
void PrepareFlatSurface(FZLayer& layer)
{
    layer.boundsX0 = 0;
    layer.boundsX1 = layer.width - 1;
    layer.boundsY0 = 0;
    layer.boundsY1 = layer.height - 1;
    if (layer.width > 0 && layer.height > 0)
        layer.fill.depth = static_cast<float>(layer.fill.depth + -static_cast<double>(layer.fill.depth));
    layer.depthMin = layer.width > 0 && layer.height > 0 ? layer.fill.depth : 0.0f;
    layer.depthMax = layer.depthMin;
}

FZResult PrepareSurface(FZLayer& layer)
{
    if (layer.IsFlat()) {
        PrepareFlatSurface(layer);
        return FZResult::Ok;
    }
    std::vector<RowExtent> rows;
    const FZRect stored = layer.Stored();
    if (!layer.coverage.empty())
        rows = MeasureRows(layer, stored, HasHeightField(layer));
    const FZRect bounds = CoveredRect(rows, stored.y0);
    if (bounds.IsEmpty()) {
        layer.boundsX0 = 0;
        layer.boundsX1 = layer.width - 1;
        layer.boundsY0 = 0;
        layer.boundsY1 = layer.height - 1;
        layer.depthMin = 0.0f;
        layer.depthMax = 0.0f;
        return EstimateNormals(layer, FZRect());
    }
    layer.boundsX0 = bounds.x0;
    layer.boundsX1 = bounds.x1;
    layer.boundsY0 = bounds.y0;
    layer.boundsY1 = bounds.y1;
    DepthSpan span = CombinedSpan(rows);
    // Covered depths that are all NaN leave the start value 1e10 as the
    // minimum; shifting by it would only turn NaN into NaN.
    if (HasHeightField(layer) && std::isfinite(span.minimum)) {
        ShiftRows(layer, rows, -span.minimum);
        span = CombinedSpan(rows);
    }
    layer.depthMin = span.minimum;
    layer.depthMax = span.maximum;
    // Only covered pixels get a normal.
    return EstimateNormals(layer, bounds);
}

bool CoverageBounds(const FZLayer& layer, FZRect& bounds)
{
    bounds = FZRect(1000000, 1000000, -1000000, -1000000);
    if (layer.IsFlat() && layer.width > 0 && layer.height > 0)
        bounds = WholeLayer(layer);
    if (layer.coverage.empty())
        return !bounds.IsEmpty();
    bounds = CoveredRect(MeasureRows(layer, layer.Stored(), false), layer.Stored().y0);
    return !bounds.IsEmpty();
}

FZResult DepthRange(const FZLayer& layer, const FZRect& rect, float& minimum, float& maximum)
{
    FZRect r = rect;
    if (!r.ClipTo(0, 0, layer.width - 1, layer.height - 1))
        return FZResult::BadParameter;
    DepthSpan span;
    if (layer.IsFlat())
        span = DepthSpan{layer.fill.depth, layer.fill.depth};
    if (HasHeightField(layer) && r.Intersect(layer.Stored()))
        span = CombinedSpan(MeasureRows(layer, r, true));
    minimum = span.minimum;
    maximum = span.maximum;
    return FZResult::Ok;
}

FZResult EstimateNormals(FZLayer& layer, const FZRect& rect)
{
    if (layer.normals.empty() && !layer.coverage.empty()) {
        try {
            layer.normals = FZRaster<FZPackedVector>(layer.coverage.Layout());
        } catch (const std::bad_alloc&) {
            return FZResult::OutOfMemory;
        }
    }
    FZRect r = rect;
    if (!HasHeightField(layer) || !r.Intersect(layer.Stored()))
        return FZResult::Ok;
    // Normals are written, depths and coverage only read: rows are independent.
    ParallelRows(r.y0, r.y1 + 1, [&](std::int32_t y) { EstimateRowNormals(layer, y, r.x0, r.x1); });
    return FZResult::Ok;
}
