// The engine's small value types: byte colours, rectangles, packed
// directions, the cubic ease and the separable tent filter.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "engine/value_types.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

FZPackedVector Packed(std::int16_t x, std::int16_t y, std::int16_t z)
{
    FZPackedVector v;
    v.x = x;
    v.y = y;
    v.z = z;
    return v;
}

void ExpectBytes(const FZColor& c, int r, int g, int b)
{
    EXPECT_EQ(c.r, r);
    EXPECT_EQ(c.g, g);
    EXPECT_EQ(c.b, b);
}

void ExpectRect(const FZRect& r, int x0, int y0, int x1, int y1)
{
    EXPECT_EQ(r.x0, x0);
    EXPECT_EQ(r.y0, y0);
    EXPECT_EQ(r.x1, x1);
    EXPECT_EQ(r.y1, y1);
}

void ExpectPacked(const FZPackedVector& v, int x, int y, int z, int tolerance = 0)
{
    EXPECT_NEAR(v.x, x, tolerance);
    EXPECT_NEAR(v.y, y, tolerance);
    EXPECT_NEAR(v.z, z, tolerance);
}

} // namespace

TEST(Color, FloatsTruncateToBytesAndReadBackOverTwoFiftyFive)
{
    FZColor c;
    c.SetFloats(1.0f, 0.5f, 0.0f);
    ExpectBytes(c, 255, 127, 0);  // 127.5 truncated, not rounded

    float r, g, b;
    c.GetFloats(r, g, b);
    EXPECT_EQ(r, 1.0f);
    EXPECT_EQ(g, static_cast<float>(127.0 / 255.0));
    EXPECT_EQ(b, 0.0f);

    const float rgb[3] = {0.25f, 0.75f, 0.999f};
    c.SetFloats(rgb);
    float back[3];
    c.GetFloats(back);
    ExpectBytes(c, 63, 191, 254);
    EXPECT_EQ(back[1], static_cast<float>(191.0 / 255.0));
}

TEST(Color, OutOfRangeFloatsKeepTheLowEightBitsAndBytesReadBack)
{
    FZColor c;
    EXPECT_TRUE(c.IsBlack());
    c.SetFloats(-1.0f, 2.0f, 1.5f);
    ExpectBytes(c, 1, 254, 126);  // -255, 510 and 382 & 0xFF
    c.SetFloats(kNaN, kInf, -kInf);  // no undefined behaviour, a fixed answer
    ExpectBytes(c, 0, 255, 0);

    c.SetBytes(0, 0, 1);
    EXPECT_FALSE(c.IsBlack());
    std::uint8_t r, g, b;
    c.SetBytes(200, 100, 255);
    c.GetBytes(r, g, b);
    EXPECT_EQ(r, 200);
    EXPECT_EQ(g, 100);
    EXPECT_EQ(b, 255);
}

TEST(Rect, ClippingStopsAtAnEmptyXRange)
{
    FZRect r(-5, -5, 2, 2);
    EXPECT_TRUE(r.ClipTo(0, 0, 9, 9));
    ExpectRect(r, 0, 0, 2, 2);

    FZRect right(12, -3, 15, 20);
    EXPECT_FALSE(right.ClipTo(0, 0, 9, 9));
    ExpectRect(right, 12, -3, 9, 20);  // y untouched once x is empty

    FZRect above(2, 12, 4, 15);
    EXPECT_FALSE(above.Intersect(FZRect(0, 0, 9, 9)));
    ExpectRect(above, 2, 12, 4, 9);
    FZRect inside(3, 4, 5, 6);
    EXPECT_TRUE(inside.Intersect(FZRect(0, 0, 9, 9)));
    ExpectRect(inside, 3, 4, 5, 6);
}

TEST(PackedVector, HostileFloatsPackToDefinedValues)
{
    FZPackedVector v;
    v.SetFloats(kNaN, kInf, -kInf, false);
    ExpectPacked(v, 0, 32767, -32768);
    v.SetFloats(2.0f, -2.0f, 0.5f, false);  // beyond 16 bits: held at the ends
    ExpectPacked(v, 32767, -32768, 15000);
    v.SetFloats(kNaN, 0.0f, 0.0f, true);
    ExpectPacked(v, 0, 0, 30000);
}

TEST(PackedVector, RefractionThatCannotHappenLeavesTheResultAlone)
{
    const FZPackedVector normal = Packed(0, 0, 30000);
    FZPackedVector result = Packed(1, 2, 3);
    // Out of glass (eta 1/1.5) at 45 degrees: beyond the critical angle.
    EXPECT_FALSE(FZPackedVector::Refract(result, Packed(21213, 0, -21213), normal, 1.0f / 1.5f));
    // Grazing incidence with eta 1: c^2 is below the threshold.
    EXPECT_FALSE(FZPackedVector::Refract(result, Packed(30000, 0, 0), normal, 1.0f));
    EXPECT_FALSE(FZPackedVector::Refract(result, Packed(0, 0, -30000), normal, kNaN));
    EXPECT_FALSE(FZPackedVector::Refract(result, Packed(0, 0, -30000), normal, 0.0f));
    ExpectPacked(result, 1, 2, 3);
}
