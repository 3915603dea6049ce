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

// What the view sees: the image behind box-filtered over one pixel about
// where it lands, the background for the part of the box outside the image
// and where the view lands nowhere.
TEST(RefractionRows, SeeTheImageBehindBoxFiltered)
{
    // 2 x 2 pixels, rows padded to 8 bytes, blue, green, red: red and green
    // below, blue and white above.
    const std::uint8_t bytes[16] = {0, 0, 255, 0, 255, 0, 0, 0, 255, 0, 0, 255, 255, 255, 0, 0};
    const FZBehindView view{bytes, 2, 2, 8, {0.25f, 0.5f, 1.0f}};
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    struct Case {
        float sx, sy, lands;
        float rgb[3];
    };
    const Case cases[] = {
        {0.5f, 0.5f, 1.0f, {1.0f, 0.0f, 0.0f}},          // a pixel's centre
        {1.0f, 1.0f, 1.0f, {0.5f, 0.5f, 0.5f}},          // the corner of four
        {1.5f, 0.25f, 1.0f, {0.0625f, 0.875f, 0.25f}},   // a quarter below the image
        {0.0f, 0.5f, 1.0f, {0.625f, 0.25f, 0.5f}},       // half outside
        {0.5f, 0.5f, 0.0f, {0.25f, 0.5f, 1.0f}},         // never lands
        {nan, 0.5f, 1.0f, {0.25f, 0.5f, 1.0f}},
        {0.5f, inf, 1.0f, {0.25f, 0.5f, 1.0f}},
        {-inf, -inf, 1.0f, {0.25f, 0.5f, 1.0f}},
        {1e30f, 1e30f, 1.0f, {0.25f, 0.5f, 1.0f}},
    };
    FZLandingPoints points;
    const int n = static_cast<int>(std::size(cases));
    for (int k = 0; k < n; ++k) {
        points.sx[k] = cases[k].sx;
        points.sy[k] = cases[k].sy;
        points.lands[k] = cases[k].lands;
    }
    FZSeenColours seen;
    SeenThroughPiece(view, points, n, seen);
    for (int k = 0; k < n; ++k)
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(seen.rgb[c][k], cases[k].rgb[c], 1e-6) << "case " << k << " channel " << c;
}

