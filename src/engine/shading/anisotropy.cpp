#include "engine/shading/anisotropy.h"

#include <array>
#include <cfloat>
#include <cmath>

#include "engine/fz_math.h"
#include "engine/random.h"
#include "engine/shading/facets.h"

namespace {

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

// The direction across the groove at the point; (0, 0) where the pattern
// has none.
void GrooveDirection(const FZAnisotropy& p, const Offset& o, const FZPackedVector& normal, float g[2])
{
    g[0] = 0.0f;
    g[1] = 0.0f;
    const auto x = [&normal] { return static_cast<float>(normal.Component(0)); };
    const auto y = [&normal] { return static_cast<float>(normal.Component(1)); };
    switch (p.type) {
    case 1:
        g[0] = o.dx;
        g[1] = o.dy;
        break;
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
        Unit(-y(), x(), g);
        break;
    case 21:
        Unit(x(), y(), g);
        break;
    default:
        break;
    }
}

// The coordinate across the grooves that the depth variation follows.
float AcrossGroove(const FZAnisotropy& p, const Offset& o)
{
    switch (p.type) {
    case 1:
    case 2:
    case 3:
        return o.r;
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

// The angle between +z and the normal (nx, ny, nz).
void RotationAngle(float nx, float ny, float nz, double& sine, double& cosine)
{
    const double length = std::sqrt(static_cast<double>(nx) * nx + static_cast<double>(ny) * ny
                                    + static_cast<double>(nz) * nz);
    double gamma = 0.0;
    if (!(length < 1e-10)) {
        // The dot product with +z, zero products included.
        double c = (0.0 * nx + 0.0 * ny + 1.0 * nz) / (1.0 * length);
        c = c > 1.0 ? 1.0 : (c < -1.0 ? -1.0 : c);
        gamma = std::acos(c);
    }
    sine = std::sin(gamma);
    cosine = std::cos(gamma);
}

} // namespace

FZGroovePoint GroovePointAt(const FZAnisotropy& params, const float point[3], const FZPackedVector& normal,
                            const float centre[3])
{
    GrooveNoiseTable();
    FZGroovePoint groove;
    // A NaN depth counts as no groove at all.
    if (!(params.grooveDepth > 1e-6))
        return groove;
    Offset o;
    o.px = point[0];
    o.py = point[1];
    o.dx = static_cast<float>(static_cast<double>(point[0]) - centre[0]);
    o.dy = static_cast<float>(static_cast<double>(point[1]) - centre[1]);
    o.r = static_cast<float>(std::sqrt(static_cast<double>(o.dx) * o.dx + static_cast<double>(o.dy) * o.dy));

    GrooveDirection(params, o, normal, groove.g);
    float depth = params.grooveDepth;
    if (params.depthVariation > 0.0f)
        depth = VariedGrooveDepth(params, GrooveNoise(AcrossGroove(params, o), params.grooveWidth), o.dx, o.dy);
    // Grooves never get shallower than 1e-6; NaN from a wild record as well.
    if (!(depth >= 1e-6))
        depth = 1e-6f;
    groove.depth = depth;
    groove.grooved = true;
    return groove;
}

double MaxFacetTilt(const FZAnisotropy& p)
{
    // Without depth both facets are the normal.
    if (!(p.grooveDepth > 1e-6))
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

void FillGrooveNoise(float table[kGrooveNoiseSize])
{
    FZRandom generator;
    for (int i = 0; i < kGrooveNoiseSize; ++i)
        table[i] = static_cast<float>(i % 2 == 0 ? generator.Between(0.0, 1.0) : generator.Between(-1.0, 0.0));
}

const float* GrooveNoiseTable()
{
    static const std::array<float, kGrooveNoiseSize> table = [] {
        std::array<float, kGrooveNoiseSize> filled{};
        FillGrooveNoise(filled.data());
        return filled;
    }();
    return table.data();
}

float GrooveNoise(float w, float width)
{
    float t = static_cast<float>(static_cast<double>(w) / PositiveOrSmallest(width));
    if (!std::isfinite(t))
        t = 0.0f;
    t = RaiseBySteps(t, 0.0f, static_cast<float>(kGrooveNoiseSize), false);
    // Beyond the int32 range truncation saturates; the table repeats anyway.
    if (!(t < 2147483648.0f))
        t = static_cast<float>(std::fmod(static_cast<double>(t), kGrooveNoiseSize));
    const std::int32_t i = FZTruncate(t);
    t = static_cast<float>((i % kGrooveNoiseSize) + (static_cast<double>(t) - i) - 0.5);

    // t is now in [-0.5, 119.5): between the last entry and the first below 0.
    std::int32_t i0 = kGrooveNoiseSize - 1;
    std::int32_t i1 = 0;
    float a = static_cast<float>(1.0 + t);
    if (t >= 0.0f) {
        i0 = FZTruncateClamped(t, 0, kGrooveNoiseSize - 1);
        i1 = i0 + 1 == kGrooveNoiseSize ? 0 : i0 + 1;
        a = static_cast<float>(static_cast<double>(t) - i0);
    }
    const float* table = GrooveNoiseTable();
    return static_cast<float>(table[i0] + (static_cast<double>(table[i1]) - table[i0]) * a);
}

float VariedGrooveDepth(const FZAnisotropy& p, float noise, float dx, float dy)
{
    double n = noise;
    double scale = 1.0;
    if (p.type == 4) {
        // Straight grooves also vary along their length, every 40 pixels.
        const double alpha = Radians(-static_cast<double>(p.angle));
        float s = static_cast<float>((dx * std::cos(alpha) - dy * std::sin(alpha)) / 40.0 + n);
        s = RaiseBySteps(s, 0.0f, 1.0f, false);
        s = static_cast<float>(static_cast<double>(s) - std::trunc(static_cast<double>(s)));
        n = static_cast<float>(s < 0.5f ? n * (1.0 - s) : n * s);
        scale = 2.0;
    }
    const float width = PositiveOrSmallest(p.grooveWidth);
    const float delta = static_cast<float>(static_cast<double>(p.grooveDepth) * 0.25 * p.depthVariation * n
                                           * width * scale);
    const float depth = static_cast<float>(static_cast<double>(p.grooveDepth) + delta);
    return depth < 0.0f ? 0.0f : depth;
}

void FZNormalAngle::Take(const FZPackedVector& n, const float floats[3])
{
    if (valid && n.x == normal.x && n.y == normal.y && n.z == normal.z)
        return;
    RotationAngle(floats[0], floats[1], floats[2], sine, cosine);
    normal = n;
    valid = true;
}

TAMERISK_ROW_KERNEL void FZGrooveFacetsOfPiece(FZFacetLanes<kFZFacetPiece>& lanes, std::int32_t n)
{
    FZGrooveFacets(lanes, n);
}

void AnisotropicFacets(const FZAnisotropy& params, const float point[3], const FZPackedVector& normal,
                       const float centre[3], FZPackedVector& t1, FZPackedVector& t2, FZNormalAngle* memo)
{
    const FZGroovePoint groove = GroovePointAt(params, point, normal, centre);
    if (!groove.grooved) {
        t1 = normal;
        t2 = normal;
        return;
    }
    FZNormalAngle own;
    FZNormalAngle& angle = memo != nullptr ? *memo : own;
    float n[3];
    normal.GetFloats(n);
    // Flat parts are not turned: they need no angle.
    if (!FZFacesUp(n))
        angle.Take(normal, n);
    FZFacetLanes<1> lane;
    FZSetFacetLane(lane, 0, n, groove.g, groove.depth, angle);
    FZGrooveFacets(lane, 1);
    t1 = FZFacetOfLane(lane.t1);
    t2 = FZFacetOfLane(lane.t2);
}
