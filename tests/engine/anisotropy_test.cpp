#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cmath>
#include <limits>
#include <random>

#include "engine/random.h"
#include "engine/shading/anisotropy.h"
#include "engine/support/shading_fixture.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

struct Facets {
    FZPackedVector t1, t2;
};

// Facets at (px, py) about the centre (cx, cy).
Facets At(const FZAnisotropy& p, float px, float py, const FZPackedVector& n, float cx = 0.0f, float cy = 0.0f)
{
    const float point[3] = {px, py, 0.0f};
    const float centre[3] = {cx, cy, 0.0f};
    Facets f;
    AnisotropicFacets(p, point, n, centre, f.t1, f.t2);
    return f;
}

bool Same(const FZPackedVector& a, const FZPackedVector& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

// Both facets along v.
bool BothAlong(const Facets& f, const FZPackedVector& v)
{
    return Same(f.t1, v) && Same(f.t2, v);
}

// Tilt from +z in degrees.
double TiltDegrees(const FZPackedVector& v)
{
    return std::acos(v.Component(2)) * 180.0 / 3.14159265358979;
}

const FZPackedVector kFlat = Packed(0.0f, 0.0f, 1.0f);
const FZPackedVector kTilted = Packed(0.6f, 0.0f, 0.8f);

} // namespace

TEST(Anisotropy, ConcentricFacetsTiltByTheGrooveDepth)
{
    FZAnisotropy p;  // type 1, depth 0.15, no variation
    const Facets near = At(p, 10.0f, 0.0f, kFlat);
    EXPECT_NEAR(near.t1.Component(0), 0.1483, 1e-4);
    EXPECT_EQ(near.t1.y, 0);
    EXPECT_NEAR(near.t1.Component(2), 0.9889, 1e-4);
    EXPECT_NEAR(near.t2.Component(0), -0.1483, 1e-4);
    EXPECT_EQ(near.t2.z, near.t1.z);
    EXPECT_NEAR(TiltDegrees(near.t1), 8.53, 0.01);

    const Facets far = At(p, 100.0f, 0.0f, kFlat);
    EXPECT_TRUE(Same(far.t1, near.t1));

    // On a tilted surface the pair is turned with the normal: its sum lies
    // along the normal.
    const Facets tilted = At(p, 0.0f, 10.0f, kTilted);
    float sum[3] = {static_cast<float>(tilted.t1.x + tilted.t2.x), static_cast<float>(tilted.t1.y + tilted.t2.y),
                    static_cast<float>(tilted.t1.z + tilted.t2.z)};
    NormalizeFloats(sum[0], sum[1], sum[2]);
    EXPECT_NEAR(sum[0], 0.6, 1e-3);
    EXPECT_NEAR(sum[1], 0.0, 1e-3);
    EXPECT_NEAR(sum[2], 0.8, 1e-3);
    EXPECT_NEAR(FZPackedVector::Dot(tilted.t1, kTilted), std::cos(std::atan(0.15)), 1e-3);
}

TEST(Anisotropy, ShallowGroovesAndThePatternCentre)
{
    FZAnisotropy p;
    for (float depth : {0.0f, 1e-6f, -3.0f, kNaN}) {
        p.grooveDepth = depth;
        EXPECT_TRUE(BothAlong(At(p, 10.0f, 3.0f, kTilted), kTilted)) << depth;
    }
    p.grooveDepth = 0.15f;

    // No direction at the centre of types 1 and 2 and at r = 0 of type 4:
    // flat parts keep +z, tilted parts lose the highlight.
    for (int type : {1, 2, 4}) {
        p.type = type;
        EXPECT_TRUE(BothAlong(At(p, 5.0f, 5.0f, kFlat, 5.0f, 5.0f), kFlat)) << type;
        EXPECT_TRUE(BothAlong(At(p, 5.0f, 5.0f, kTilted, 5.0f, 5.0f), FZPackedVector())) << type;
    }

    // The spiral always has a direction; at the centre theta is a quarter
    // turn, so g = (cos 0, sin 0) and the flanks tilt along x.
    p.type = 3;
    const Facets spiral = At(p, 5.0f, 5.0f, kFlat, 5.0f, 5.0f);
    EXPECT_NEAR(spiral.t1.Component(0), 0.1483, 1e-4);
    EXPECT_NEAR(spiral.t2.Component(0), -0.1483, 1e-4);

    // Types without a pattern give the normal back on flat parts.
    p.type = 7;
    EXPECT_TRUE(BothAlong(At(p, 9.0f, 2.0f, kFlat), kFlat));
}

TEST(Anisotropy, PatternDirections)
{
    FZAnisotropy p;
    // Straight lines run along the angle: at 0 degrees the flanks tilt in y.
    p.type = 4;
    Facets f = At(p, 3.0f, 7.0f, kFlat);
    EXPECT_NEAR(f.t1.Component(1), 0.1483, 1e-4);
    EXPECT_NEAR(f.t1.Component(0), 0.0, 1e-4);
    p.angle = 90.0f;
    f = At(p, 3.0f, 7.0f, kFlat);
    EXPECT_NEAR(f.t1.Component(0), -0.1483, 1e-4);

    // Wavy lines: across the line, swinging with the wave by at most
    // atan(0.005 x 2 pi), whatever the period.
    p.type = 5;
    p.angle = 0.0f;
    for (float period : {30.0f, 7.0f}) {
        p.wavePeriod = period;
        double largest = 0.0;
        for (int x = 0; x < 60; ++x) {
            f = At(p, x + 0.5f, 4.5f, kFlat);
            EXPECT_GT(f.t1.y, 4000);
            EXPECT_LT(f.t2.y, -4000);
            largest = std::fmax(largest, std::fabs(f.t1.Component(0) / f.t1.Component(1)));
        }
        EXPECT_NEAR(largest, 0.005 * 6.283518, 2e-3);
    }
    p.angle = 90.0f;
    f = At(p, 12.5f, 4.5f, kFlat);
    EXPECT_LT(f.t1.Component(0), -0.14);

    // Two halves split along the diagonal.
    p.type = 11;
    EXPECT_GT(At(p, 5.0f, 1.0f, kFlat).t1.x, 4000);
    EXPECT_GT(At(p, 1.0f, 5.0f, kFlat).t1.y, 4000);

    // Down the slope and along the contour, from the normal alone.
    p.type = 21;
    f = At(p, 1.0f, 2.0f, kTilted);
    EXPECT_EQ(f.t1.y, 0);
    EXPECT_NE(f.t1.x, kTilted.x);
    p.type = 20;
    f = At(p, 1.0f, 2.0f, kTilted);
    EXPECT_NEAR(f.t1.Component(1), 0.1483, 1e-3);
    EXPECT_NEAR(f.t2.Component(1), -0.1483, 1e-3);
}

TEST(Anisotropy, DepthVariation)
{
    FZAnisotropy p;
    p.depthVariation = 1.0f;
    EXPECT_FLOAT_EQ(VariedGrooveDepth(p, -1.0f, 0.0f, 0.0f), 0.75f * 0.15f);
    EXPECT_FLOAT_EQ(VariedGrooveDepth(p, 0.0f, 0.0f, 0.0f), 0.15f);
    // Straight lines vary twice as much (at this point the along-line
    // factor is 1).
    p.type = 4;
    EXPECT_FLOAT_EQ(VariedGrooveDepth(p, -1.0f, 0.0f, 0.0f), 0.5f * 0.15f);
    // ... and change along the line with s = dx / 40 + n, wrapped to [0, 1):
    // s = 0 keeps n whole, s = 0.5 halves it.
    EXPECT_FLOAT_EQ(VariedGrooveDepth(p, -0.5f, 20.0f, 0.0f), 0.75f * 0.15f);
    EXPECT_FLOAT_EQ(VariedGrooveDepth(p, -0.5f, 40.0f, 0.0f), 0.875f * 0.15f);
    // Never below 0.
    p.type = 1;
    p.depthVariation = 10.0f;
    EXPECT_EQ(VariedGrooveDepth(p, -1.0f, 0.0f, 0.0f), 0.0f);

    // Through the facets: at r = 1.5 with grooves 1 pixel wide the noise is
    // entry 1 of the table (odd: negative), so the groove is shallower.
    p.depthVariation = 1.0f;
    const float n = GrooveNoise(1.5f, 1.0f);
    EXPECT_EQ(n, GrooveNoiseTable()[1]);
    const Facets f = At(p, 1.5f, 0.0f, kFlat);
    const double depth = f.t1.Component(0) / f.t1.Component(2);
    EXPECT_NEAR(depth, 0.15 * (1.0 + 0.25 * n), 2e-4);

    // A variation driving the depth below 0 leaves facets along the normal.
    p.depthVariation = 1e30f;
    EXPECT_TRUE(BothAlong(At(p, 1.5f, 0.0f, kFlat), kFlat));

    // No variation: the plain depth for every type.
    p.depthVariation = 0.0f;
    p.type = 4;
    EXPECT_NEAR(At(p, 3.0f, 1.5f, kFlat).t1.Component(1), 0.1483, 1e-4);
}

TEST(Anisotropy, NoiseTableAndInterpolation)
{
    const float* t = GrooveNoiseTable();
    EXPECT_EQ(t, GrooveNoiseTable());  // filled once
    for (int i = 0; i < kGrooveNoiseSize; ++i) {
        if (i % 2 == 0) {
            EXPECT_GE(t[i], 0.0f);
            EXPECT_LE(t[i], 1.0f);
        } else {
            EXPECT_GE(t[i], -1.0f);
            EXPECT_LT(t[i], 0.0f);
        }
    }
    EXPECT_EQ(GrooveNoise(0.5f, 1.0f), t[0]);
    EXPECT_EQ(GrooveNoise(3.0f, 2.0f), t[1]);
    // (Near, not in ulps: neighbours of opposite sign may nearly cancel.)
    EXPECT_NEAR(GrooveNoise(1.0f, 1.0f), 0.5 * (t[0] + t[1]), 1e-6);
    // Below entry 0 the last entry and the first are blended.
    EXPECT_NEAR(GrooveNoise(0.25f, 1.0f), 0.25 * t[119] + 0.75 * t[0], 1e-6);
    // The table repeats every 120 grooves, on both sides.
    EXPECT_EQ(GrooveNoise(-119.5f, 1.0f), t[0]);
    EXPECT_EQ(GrooveNoise(240.5f, 1.0f), t[0]);
    EXPECT_EQ(GrooveNoise(-0.5f, 1.0f), t[119]);

    // A fresh fill is the first 120 draws after seeding.
    FZRandom::SetFixedSeed(1234u);
    float filled[kGrooveNoiseSize];
    FillGrooveNoise(filled);
    FZRandom::SetFixedSeed(std::nullopt);
    std::mt19937 reference(1234u);
    for (int i = 0; i < kGrooveNoiseSize; ++i) {
        const double u = reference() * (1.0 / 4294967296.0);
        EXPECT_EQ(filled[i], static_cast<float>(i % 2 == 0 ? u : -1.0 + u)) << i;
    }
}

TEST(Anisotropy, WildRecordsFinishWithDefinedFacets)
{
    const auto start = std::chrono::steady_clock::now();
    for (float w : {-1e30f, 1e30f, -kInf, kInf, kNaN, -3e9f, 3e9f, -1e-40f}) {
        for (float width : {1.0f, 0.0f, -1.0f, kNaN, 1e-30f, kInf}) {
            const float n = GrooveNoise(w, width);
            EXPECT_TRUE(n >= -1.0f && n <= 1.0f) << w << " " << width;
        }
    }
    FZAnisotropy p;
    p.depthVariation = 1.0f;
    for (int type : {1, 2, 3, 4, 5, 11, 20, 21, 99, INT_MIN}) {
        p.type = type;
        for (float v : {kNaN, kInf, -kInf, 1e30f, -1e30f, 0.0f, -1.0f}) {
            p.amplitude = p.spiralTwist = p.wavePeriod = p.angle = p.grooveWidth = v;
            p.waveCount = INT_MIN;
            for (float y : {-1e7f, 0.5f, kNaN}) {
                // Unit facets or none at all, nothing in between.
                const Facets f = At(p, 3.5f, y, kTilted, v, 2.0f);
                const double length = std::sqrt(FZPackedVector::Dot(f.t1, f.t1));
                EXPECT_TRUE(length == 0.0 || std::fabs(length - 1.0) < 1e-3) << type << " " << v << " " << y;
            }
        }
    }
    p.type = 4;
    p.angle = 0.0f;
    EXPECT_GE(VariedGrooveDepth(p, 0.5f, -1e30f, 0.0f), 0.0f);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}
