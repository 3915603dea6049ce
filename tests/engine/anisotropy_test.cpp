#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "engine/shading/anisotropy.h"
#include "engine/support/shading_fixture.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

} // namespace

// The noise repeats every 120 grooves, on both sides of zero.
TEST(Anisotropy, NoiseRepeatsOnBothSides)
{
    const float* t = GrooveNoiseTable();
    EXPECT_EQ(GrooveNoise(-119.5f, 1.0f), t[0]);
    EXPECT_EQ(GrooveNoise(240.5f, 1.0f), t[0]);
}

TEST(Anisotropy, WildRecordsFinishWithDefinedFacets)
{
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
                const float point[3] = {3.5f, y, 0.0f};
                const float centre[3] = {v, 2.0f, 0.0f};
                FZPackedVector t1, t2;
                AnisotropicFacets(p, point, Packed(0.6f, 0.0f, 0.8f), centre, t1, t2);
                const double length = std::sqrt(FZPackedVector::Dot(t1, t1));
                EXPECT_TRUE(length == 0.0 || std::fabs(length - 1.0) < 1e-3) << type << " " << v << " " << y;
            }
        }
    }
    p.type = 4;
    p.angle = 0.0f;
    EXPECT_GE(VariedGrooveDepth(p, 0.5f, -1e30f, 0.0f), 0.0f);
}
