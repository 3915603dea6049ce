// The refraction kernel works the view's refraction out without branches;
// the goldens see only the normals their shapes make. Here every kind of
// normal and index (grazing, straight on, total internal reflection, NaN)
// must land where FZPackedVector::Refract's direction leads.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>

#include "engine/refraction_rows.h"
#include "engine/render.h"

namespace {

FZPackedVector Packed(int x, int y, int z)
{
    return FZPackedVector{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), static_cast<std::int16_t>(z)};
}

bool SameFloat(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// With the surface one unit above z = 0 the ray walks -1 / rz along the
// refracted direction.
void ExpectLandsAsRefractLeads(const FZPackedVector* normals, float eta)
{
    const FZRefraction setup{eta, 1.0f, false, 0.0f, 10, 20};
    const float depths[kFZRefractionPiece] = {};
    FZLandingPoints points;
    RefractRowPiece(setup, FZRefractionPiece{0, kFZRefractionPiece, 3}, normals, depths, points);
    FZPackedVector view;
    view.z = -30000;
    for (int k = 0; k < kFZRefractionPiece; ++k) {
        FZPackedVector r;
        const bool refracted = FZPackedVector::Refract(r, view, normals[k], eta);
        float rx, ry, rz;
        r.GetFloats(rx, ry, rz);
        ASSERT_EQ(points.lands[k] != 0, refracted && rz != 0.0f) << k << " eta " << eta;
        if (!points.lands[k])
            continue;
        const float p = static_cast<float>(-1.0 / rz);
        EXPECT_TRUE(SameFloat(points.sx[k], static_cast<float>(k + 10 + 0.5 + static_cast<double>(rx) * p))) << k;
        EXPECT_TRUE(SameFloat(points.sy[k], static_cast<float>(23 + 0.5 + static_cast<double>(ry) * p))) << k;
    }
}

} // namespace

TEST(RefractionRows, LandWhereRefractsDirectionLeads)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<int> component(-32768, 32767);
    FZPackedVector normals[kFZRefractionPiece];
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float eta : {1.5f, 1.0f, 0.7f, 0.01f, 3.0f, nan}) {
        for (int round = 0; round < 50; ++round) {
            for (FZPackedVector& n : normals)
                n = Packed(component(random), component(random), component(random) / 2 + 16384);
            // Straight on, flat, lying down and the extremes.
            normals[0] = Packed(0, 0, 30000);
            normals[1] = Packed(0, 0, 0);
            normals[2] = Packed(30000, 0, 0);
            normals[3] = Packed(-32768, -32768, -32768);
            normals[4] = Packed(32767, 32767, 32767);
            normals[5] = Packed(21213, 0, 21213);
            ExpectLandsAsRefractLeads(normals, eta);
        }
    }
}

// What the view sees where it lands must be SampleBehind's colour for every
// landing point: inside, on pixel corners and edges, half outside, far
// outside, not a number, and where the view never lands; on an image of
// odd size whose rows are padded.
TEST(RefractionRows, SeeWhatSampleBehindSees)
{
    FZScene scene;
    scene.background[0] = 0.25f;
    scene.background[1] = 0.5f;
    scene.background[2] = 1.0f;
    scene.behind = std::make_unique<FZImage>();
    ASSERT_EQ(scene.behind->Create(13, 7, 3), FZResult::Ok);
    std::mt19937 random(9);
    std::uint8_t* bytes = scene.behind->data.data();
    for (std::size_t i = 0; i < scene.behind->data.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(random());
    FZBehindView view;
    view.data = scene.behind->data.data();
    view.width = 13;
    view.height = 7;
    view.stride = scene.behind->stride;
    std::copy(scene.background, scene.background + 3, view.background);

    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const float special[] = {0.0f, 0.5f, 1.0f, 6.5f, 12.5f, 13.0f, 13.4f, -0.3f, -0.5f, -1.0f, 3.0000002f,
                             2.9999998f, 1e7f, -1e7f, 3e38f, nan, inf, -inf};
    std::uniform_real_distribution<float> anywhere(-3.0f, 16.0f);
    FZLandingPoints points;
    for (int round = 0; round < 40; ++round) {
        for (int k = 0; k < kFZRefractionPiece; ++k) {
            const int i = round * kFZRefractionPiece + k;
            points.sx[k] = i % 3 == 0 ? special[i % std::size(special)] : anywhere(random);
            points.sy[k] = i % 5 == 0 ? special[(i / 5) % std::size(special)] : anywhere(random) * 0.6f;
            points.lands[k] = i % 11 == 0 ? 0.0f : 1.0f;
        }
        FZSeenColours seen;
        SeenThroughPiece(view, points, kFZRefractionPiece, seen);
        for (int k = 0; k < kFZRefractionPiece; ++k) {
            float expected[3];
            std::copy(scene.background, scene.background + 3, expected);
            if (points.lands[k] != 0.0f)
                SampleBehind(scene, points.sx[k], points.sy[k], expected);
            for (int c = 0; c < 3; ++c) {
                const float got = seen.general[k] != 0 ? expected[c] : static_cast<float>(seen.rgb[c][k]);
                ASSERT_TRUE(SameFloat(got, expected[c]))
                    << "at " << points.sx[k] << ", " << points.sy[k] << " channel " << c << ": " << got << " for "
                    << expected[c];
            }
        }
    }
}
