#include "engine/shading/anisotropy.h"

#include <array>
#include <cfloat>
#include <cstdlib>
#include <cmath>

#include "engine/fz_math.h"
#include "engine/random.h"
#include "engine/shading/facets.h"

namespace {

constexpr int kGrooveNoiseSize = 120;

// Phase of the wave of type 5, an eighth of a turn.
constexpr double kWavePhase = 0.78543975;

// A loop of this many steps still runs as a loop; a longer one is replaced
// by its closed form.
constexpr double kShortLoop = 1000.0;

float Radians(double degrees)
{
    return static_cast<float>(degrees * kFZPi / 180.0);
}

// Widths and periods divide. A record from outside the dialog may hold 0,
// a negative value or NaN there; such a value stands for the smallest
// positive normal float (FLT_MIN rather than a denormal, which would make
// every later step crawl through denormal arithmetic).
float PositiveOrSmallest(float v)
{
    return v > 0.0f ? v : FLT_MIN;
}

// Raises v by steps of `step` while it lies below the bound (or on it, when
// inclusive), exactly as the plain loop would. A loop that would run long (a
// far bound, or a step so small that the float sum stops growing) gives way
// to its closed form, the first value past the bound on the step grid.
// Values that no loop brings past the bound (infinite or NaN, a step that is
// not positive and finite) come back unchanged.
float RaiseBySteps(float v, float bound, float step, bool inclusive)
{
    const auto below = [&](float value) { return inclusive ? value <= bound : value < bound; };
    if (!below(v))
        return v;
    if (!(step > 0.0f) || !std::isfinite(v) || !std::isfinite(bound) || !std::isfinite(step))
        return v;
    if ((static_cast<double>(bound) - v) / step <= kShortLoop) {
        for (int i = 0; i < 2 * kShortLoop && below(v); ++i)
            v = static_cast<float>(static_cast<double>(v) + step);
        if (!below(v))
            return v;
    }
    const double rest = std::fmod(static_cast<double>(bound) - v, static_cast<double>(step));
    if (rest == 0.0 && !inclusive)
        return bound;
    return static_cast<float>(static_cast<double>(bound) + (step - rest));
}

// Angle of (dx, dy) in [0, 6.283518), with the engine's quarter turns for
// the vertical directions.
float PolarAngle(float dx, float dy)
{
    if (dx == 0.0f)
        return static_cast<float>(dy >= 0.0f ? kFZHalfPi : kFZThreeHalfPi);
    double theta = std::atan2(static_cast<double>(dy), static_cast<double>(dx));
    if (theta < 0.0)
        theta += kFZTwoPi;
    return static_cast<float>(theta);
}

struct Offset {
    float px, py;  // the point in layer pixels
    float dx, dy;  // the point minus the pattern centre
    float r;       // distance from the centre
};

// (gx, gy) rotated by phi.
void Rotate(double gx, double gy, double phi, float g[2])
{
    g[0] = static_cast<float>(gx * std::cos(phi) - gy * std::sin(phi));
    g[1] = static_cast<float>(gx * std::sin(phi) + gy * std::cos(phi));
}

// Concentric circles whose outline waves waveCount times a turn.
void WavyCircleDirection(const FZAnisotropy& p, const Offset& o, float g[2])
{
    const std::int32_t waves = p.waveCount < 1 ? 1 : p.waveCount;
    const float k = static_cast<float>(kFZTwoPi / waves);
    const float q = static_cast<float>(static_cast<double>(o.r) * k);
    const float theta = PolarAngle(o.dx, o.dy);
    const std::int32_t m = FZTruncate(static_cast<double>(theta) / k);
    const float f = static_cast<float>((theta - static_cast<double>(m) * k) / k);
    const float u = static_cast<float>(std::cos(f * kFZTwoPi)
                                       * (static_cast<double>(q) * p.amplitude * kFZTwoPi));
    const float v = -q;
    Rotate(u, v, static_cast<double>(theta) - kFZHalfPi, g);
}

// Lines running along `angle` that wave across it with amplitude
// A = 0.005 x wavePeriod and period wavePeriod: across = A cos(k s + phase)
// for the along-line coordinate s (measured from the layer origin, so that at
// angle 0 the wave is the one the depth variation uses). g is the normal of
// that curve in the plane, the direction across the wavy groove.
void WavyLineDirection(const FZAnisotropy& p, const Offset& o, float g[2])
{
    const double period = PositiveOrSmallest(p.wavePeriod);
    const double along = Radians(p.angle);
    const double s = o.px * std::cos(along) + o.py * std::sin(along);
    const double amplitude = 0.005 * period;
    const double k = kFZTwoPi / period;
    // The normal in (along, across) coordinates is (-slope, 1).
    double slope = -amplitude * k * std::sin(k * s + kWavePhase);
    if (!std::isfinite(slope))
        slope = 0.0;
    Rotate(-slope, 1.0, along, g);
}

// (a, b) divided by its length when that is not 0.
void Unit(float a, float b, float g[2])
{
    const float length = static_cast<float>(std::sqrt(static_cast<double>(a) * a + static_cast<double>(b) * b));
    g[0] = a;
    g[1] = b;
    if (length != 0.0f) {
        g[0] = static_cast<float>(static_cast<double>(a) / length);
        g[1] = static_cast<float>(static_cast<double>(b) / length);
    }
}

// The direction across the groove at the point for the patterns other than
// concentric circles (whose direction is the offset itself, taken over
// lanes); (0, 0) where the pattern has none. (nx, ny): the normal's floats.
void GrooveDirection(const FZAnisotropy& p, const Offset& o, float nx, float ny, float g[2])
{
    g[0] = 0.0f;
    g[1] = 0.0f;
    switch (p.type) {
    case 2:
        WavyCircleDirection(p, o, g);
        break;
    case 3: {
        const double phi = static_cast<double>(o.r) * p.spiralTwist + PolarAngle(o.dx, o.dy) - kFZHalfPi;
        const float phiStored = static_cast<float>(phi);
        g[0] = static_cast<float>(std::cos(static_cast<double>(phiStored)));
        g[1] = static_cast<float>(std::sin(static_cast<double>(phiStored)));
        break;
    }
    case 4:
        if (o.r != 0.0f) {
            const double beta = Radians(static_cast<double>(p.angle) + 90.0);
            g[0] = static_cast<float>(std::cos(beta));
            g[1] = static_cast<float>(std::sin(beta));
        }
        break;
    case 5:
        WavyLineDirection(p, o, g);
        break;
    case 11:
        g[o.dx >= o.dy ? 0 : 1] = 1.0f;
        break;
    case 20:
        Unit(-ny, nx, g);
        break;
    case 21:
        Unit(nx, ny, g);
        break;
    default:
        break;
    }
}

// The coordinate across the grooves that the depth variation follows, for
// the patterns other than circles and spirals (whose coordinate is the
// distance from the centre, taken over lanes).
float AcrossGroove(const FZAnisotropy& p, const Offset& o)
{
    switch (p.type) {
    case 4: {
        if (o.r == 0.0f)
            return 0.0f;
        const double alpha = Radians(-static_cast<double>(p.angle));
        return static_cast<float>(std::fabs(o.dx * std::sin(alpha) + o.dy * std::cos(alpha)));
    }
    case 5: {
        const float period = PositiveOrSmallest(p.wavePeriod);
        const float amplitude = static_cast<float>(0.005 * period);
        const float k = static_cast<float>(kFZTwoPi / period);
        const float c = static_cast<float>(amplitude * std::cos(static_cast<double>(k) * o.px + kWavePhase));
        const float raised = RaiseBySteps(o.py, c, amplitude, true);
        return static_cast<float>(static_cast<double>(raised) - c);
    }
    default:
        return 0.0f;
    }
}

// Where the table lookup cannot take t as it is: below 0 (the table repeats
// every 120 grooves) or beyond the int32 range, where truncation saturates.
double WrappedNoiseCoordinate(double t)
{
    float v = RaiseBySteps(static_cast<float>(t), 0.0f, static_cast<float>(kGrooveNoiseSize), false);
    if (!(v < 2147483648.0f))
        v = static_cast<float>(std::fmod(static_cast<double>(v), kGrooveNoiseSize));
    return v;
}

// Replaces each across-groove coordinate w (a float) by the noise there for
// grooves `width` pixels wide, interpolated linearly between neighbouring
// entries of the table.
template <int W>
[[gnu::always_inline]] inline void GrooveNoise(float width, std::int32_t n, double (&w)[W])
{
    const double wide = PositiveOrSmallest(width);
    for (std::int32_t k = 0; k < n; ++k) {
        const double t = FZAsFloat(w[k] / wide);
        w[k] = std::fabs(t) <= FLT_MAX ? t : 0.0;
    }
    for (std::int32_t k = 0; k < n; ++k)
        if (!(w[k] >= 0.0 && w[k] < 2147483648.0))
            w[k] = WrappedNoiseCoordinate(w[k]);
    const double* table = GrooveNoiseTable();
    for (std::int32_t k = 0; k < n; ++k) {
        // i % 120 in doubles: i / 120 is never within rounding of an integer
        // it does not reach.
        const double i = std::trunc(w[k]);
        const double u = FZAsFloat(i - kGrooveNoiseSize * std::trunc(i / kGrooveNoiseSize) + (w[k] - i) - 0.5);
        // u is in [-0.5, 119.5): between the last entry and the first below 0.
        const bool wraps = u < 0.0;
        const double i0 = wraps ? kGrooveNoiseSize - 1.0 : FZMin(std::trunc(u), kGrooveNoiseSize - 1.0);
        const double i1 = wraps || i0 == kGrooveNoiseSize - 1.0 ? 0.0 : i0 + 1.0;
        const double a = FZAsFloat(wraps ? 1.0 + u : u - i0);
        const double t0 = table[static_cast<std::int32_t>(i0)];
        w[k] = FZAsFloat(t0 + (table[static_cast<std::int32_t>(i1)] - t0) * a);
    }
}

// Straight grooves also vary along their length, every 40 pixels: the
// noise n at offset (dx, dy) from the centre.
double AlongStraightGroove(const FZAnisotropy& p, double n, double dx, double dy)
{
    const double alpha = Radians(-static_cast<double>(p.angle));
    float s = static_cast<float>((dx * std::cos(alpha) - dy * std::sin(alpha)) / 40.0 + n);
    s = RaiseBySteps(s, 0.0f, 1.0f, false);
    s = static_cast<float>(static_cast<double>(s) - std::trunc(static_cast<double>(s)));
    return static_cast<float>(s < 0.5f ? n * (1.0 - s) : n * s);
}

// The lanes' offsets from the pattern centre and distances from it (floats).
template <int W>
struct OffsetLanes {
    double dx[W], dy[W], r[W];

    Offset At(const FZFacetLanes<W>& l, std::int32_t k) const
    {
        const auto f = [](double v) { return static_cast<float>(v); };
        return {f(l.px[k]), f(l.py[k]), f(dx[k]), f(dy[k]), f(r[k])};
    }
};

// The groove depth of each lane for its noise, with the record's depth
// variation.
template <int W>
[[gnu::always_inline]] inline void VariedGrooveDepth(const FZAnisotropy& p, const OffsetLanes<W>& o, std::int32_t n,
                                                     double (&noise)[W], double* depth)
{
    double scale = 1.0;
    if (p.type == 4) {
        for (std::int32_t k = 0; k < n; ++k)
            noise[k] = AlongStraightGroove(p, noise[k], o.dx[k], o.dy[k]);
        scale = 2.0;
    }
    const double width = PositiveOrSmallest(p.grooveWidth);
    const double variation = static_cast<double>(p.grooveDepth) * 0.25 * p.depthVariation;
    for (std::int32_t k = 0; k < n; ++k)
        depth[k] = FZAsFloat(p.grooveDepth + FZAsFloat(variation * noise[k] * width * scale));
}

// What the facets of each lane's point are made from: the direction across
// the groove and the groove depth (at least 1e-6). The lanes' points and
// normals are given; the record has some depth (FZGrooved).
template <int W>
[[gnu::always_inline]] inline void GroovePoints(const FZAnisotropy& p, const float centre[3], FZFacetLanes<W>& l,
                                                std::int32_t n)
{
    OffsetLanes<W> o;
    for (std::int32_t k = 0; k < n; ++k) {
        o.dx[k] = FZAsFloat(l.px[k] - centre[0]);
        o.dy[k] = FZAsFloat(l.py[k] - centre[1]);
        o.r[k] = FZAsFloat(std::sqrt(o.dx[k] * o.dx[k] + o.dy[k] * o.dy[k]));
        // Across concentric circles is the offset itself.
        l.gx[k] = o.dx[k];
        l.gy[k] = o.dy[k];
        l.depth[k] = p.grooveDepth;
    }
    for (std::int32_t k = 0; k < n && p.type != 1; ++k) {
        float g[2];
        GrooveDirection(p, o.At(l, k), static_cast<float>(l.nx[k]), static_cast<float>(l.ny[k]), g);
        l.gx[k] = g[0];
        l.gy[k] = g[1];
    }
    if (p.depthVariation > 0.0f) {
        // Circles and spirals vary with the distance from the centre.
        double noise[W];
        for (std::int32_t k = 0; k < n; ++k)
            noise[k] = o.r[k];
        for (std::int32_t k = 0; k < n && (p.type < 1 || p.type > 3); ++k)
            noise[k] = AcrossGroove(p, o.At(l, k));
        GrooveNoise<W>(p.grooveWidth, n, noise);
        VariedGrooveDepth<W>(p, o, n, noise, l.depth);
    }
    // Grooves never get shallower than 1e-6: a varied depth below 0, and NaN
    // from a wild record, as well.
    for (std::int32_t k = 0; k < n; ++k)
        l.depth[k] = l.depth[k] >= 1e-6 ? l.depth[k] : static_cast<double>(1e-6f);
}

} // namespace

double MaxFacetTilt(const FZAnisotropy& p)
{
    // Without depth both facets are the normal.
    if (!FZGrooved(p))
        return 0.0;
    const auto tame = [](float v) { return std::fabs(v) <= 1e6f; };  // false for NaN
    if (!tame(p.grooveDepth) || !tame(p.grooveWidth) || !tame(p.amplitude) || !tame(p.spiralTwist)
        || !tame(p.angle) || !tame(p.center[0]) || !tame(p.center[1]) || !(p.depthVariation <= 1e6f))
        return -1.0;
    // The flanks tilt by atan(depth). The noise lies within [-1, 1], so the
    // varied depth is at most depth x (1 + 0.5 x variation x width) (0.25
    // doubled for straight grooves); a little more covers its rounding.
    double depth = p.grooveDepth;
    if (p.depthVariation > 0.0f)
        depth += 0.5 * p.grooveDepth * p.depthVariation * PositiveOrSmallest(p.grooveWidth);
    return std::atan(depth * 1.00001);
}

const double* GrooveNoiseTable()
{
    static const std::array<double, kGrooveNoiseSize> table = [] {
        FZRandom generator;
        std::array<double, kGrooveNoiseSize> drawn{};
        for (int i = 0; i < kGrooveNoiseSize; ++i)
            drawn[i] = static_cast<float>(i % 2 == 0 ? generator.Between(0.0, 1.0) : generator.Between(-1.0, 0.0));
        return drawn;
    }();
    return table.data();
}

void FZNormalAngle::Take(const FZPackedVector& n, double toZ)
{
    // The angle depends on x and y only through the sum of their squares:
    // normals mirrored in x or y, or with x and y swapped, share it.
    const int x = std::abs(n.x), y = std::abs(n.y), x0 = std::abs(normal.x), y0 = std::abs(normal.y);
    if (valid && n.z == normal.z && ((x == x0 && y == y0) || (x == y0 && y == x0)))
        return;
    // acos(1) is 0: no length, no turn.
    const double gamma = std::acos(toZ);
    sine = std::sin(gamma);
    cosine = std::cos(gamma);
    normal = n;
    valid = true;
}

TAMERISK_ROW_KERNEL void FZFacetNormalsOfPiece(FZFacetLanes<kFZFacetPiece>& lanes, std::int32_t n)
{
    FZFacetNormals(lanes, n);
}

TAMERISK_ROW_KERNEL void FZGrooveFacetsOfPiece(const FZAnisotropy& params, const float centre[3],
                                               FZFacetLanes<kFZFacetPiece>& lanes, std::int32_t n)
{
    GroovePoints(params, centre, lanes, n);
    FZGrooveFacets(lanes, n);
}

void AnisotropicFacets(const FZAnisotropy& params, const float point[3], const FZPackedVector& normal,
                       const float centre[3], FZPackedVector& t1, FZPackedVector& t2, FZNormalAngle* memo)
{
    if (!FZGrooved(params)) {
        t1 = t2 = normal;
        return;
    }
    FZNormalAngle own;
    FZFacetLanes<1> lane;
    FZSetFacetLane(lane, 0, point, normal);
    FZFacetNormals(lane, 1);
    FZTakeFacetAngle(lane, 0, normal, memo != nullptr ? *memo : own);
    GroovePoints(params, centre, lane, 1);
    FZGrooveFacets(lane, 1);
    t1 = FZFacetOfLane(lane.t1, 0);
    t2 = FZFacetOfLane(lane.t2, 0);
}
