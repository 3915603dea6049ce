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

const FZPackedVector kFlat = Packed(0.0f, 0.0f, 1.0f);
const FZPackedVector kTilted = Packed(0.6f, 0.0f, 0.8f);

} // namespace

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
