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

// A square float raster with its row pointers, filled with one value.
struct Raster {
    std::vector<std::vector<float>> cells;
    std::vector<float*> rows;

    Raster(int size, float value) : cells(size, std::vector<float>(size, value))
    {
        for (auto& row : cells)
            rows.push_back(row.data());
    }
    FZFloatGrid Grid() { return FZFloatGrid(static_cast<int>(rows.size()), static_cast<int>(rows.size()), rows.data()); }
    double Sum() const
    {
        double s = 0.0;
        for (const auto& row : cells)
            for (float v : row)
                s += v;
        return s;
    }
};

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

TEST(Rect, SizesAndTheEmptyMarker)
{
    FZRect r;
    r.SetFromSize(4, 3);
    std::int32_t w, h;
    r.GetSize(w, h);
    EXPECT_EQ(w, 4);
    EXPECT_EQ(h, 3);
    EXPECT_FALSE(r.IsEmpty());

    r.SetEmpty();
    std::int32_t x0, y0, x1, y1;
    r.Get(x0, y0, x1, y1);
    ExpectRect(FZRect(x0, y0, x1, y1), 65536, 65536, -1, -1);
    r.GetSize(w, h);
    EXPECT_EQ(w, -65536);
    EXPECT_EQ(h, -65536);
    EXPECT_TRUE(r.IsEmpty());
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

TEST(PackedVector, ComponentsAreScaledByThirtyThousandAndTruncated)
{
    FZPackedVector v;
    v.SetFloats(0.0f, 0.0f, 0.0f, true);
    ExpectPacked(v, 0, 0, 30000);
    v.SetFloats(0.0f, 0.0f, -1.0f, false);
    ExpectPacked(v, 0, 0, -30000);

    const float f[3] = {3.0f, 0.0f, -4.0f};
    v.SetFloats(f, true);
    ExpectPacked(v, 18000, 0, -24000);

    float x, y, z;
    Packed(15000, -30000, 7).GetFloats(x, y, z);
    EXPECT_EQ(x, 0.5f);
    EXPECT_EQ(y, -1.0f);
    EXPECT_EQ(z, static_cast<float>(7.0 / 30000.0));
    EXPECT_EQ(Packed(0, 0, -10000).Component(2), -10000 / 30000.0);
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

TEST(PackedVector, DotIsTheIntegerSumOverThirtyThousandSquared)
{
    const FZPackedVector down = Packed(0, 0, -30000);
    EXPECT_EQ(FZPackedVector::Dot(down, down), 1.0);
    EXPECT_EQ(FZPackedVector::Dot(down, Packed(0, 0, 30000)), -1.0);
    EXPECT_EQ(FZPackedVector::Dot(Packed(30000, 0, 0), Packed(0, 30000, 0)), 0.0);
    EXPECT_DOUBLE_EQ(FZPackedVector::Dot(Packed(18000, 0, -24000), Packed(0, 0, 30000)), -0.8);

    // Far from unit length the sum wraps as a 32-bit integer does:
    // 3 * 32767^2 = 3221028867 becomes -1073938429.
    const FZPackedVector big = Packed(32767, 32767, 32767);
    EXPECT_DOUBLE_EQ(FZPackedVector::Dot(big, big), -1073938429 * 1.111111111111111e-9);
}

TEST(PackedVector, AddNormalizedGivesTheUnitSum)
{
    FZPackedVector v = Packed(30000, 0, 0);
    v.AddNormalized(Packed(0, 30000, 0));
    ExpectPacked(v, 21213, 21213, 0);

    FZPackedVector opposite = Packed(0, 0, 30000);
    opposite.AddNormalized(Packed(0, 0, -30000));
    ExpectPacked(opposite, 0, 0, 30000);
}

TEST(PackedVector, RefractFollowsSnellsLawOrReportsTotalReflection)
{
    const FZPackedVector normal = Packed(0, 0, 30000);
    const FZPackedVector view = Packed(0, 0, -30000);
    FZPackedVector result = Packed(1, 2, 3);

    // Straight along the normal the ray goes on unchanged.
    EXPECT_TRUE(FZPackedVector::Refract(result, view, normal, 1.5f));
    ExpectPacked(result, 0, 0, -30000);
    // With eta 1 an oblique ray keeps its direction.
    const FZPackedVector oblique = Packed(18000, 0, -24000);
    EXPECT_TRUE(FZPackedVector::Refract(result, oblique, normal, 1.0f));
    ExpectPacked(result, 18000, 0, -24000, 1);
    // Into glass at 45 degrees: sin t = sin 45 / 1.5.
    const FZPackedVector at45 = Packed(21213, 0, -21213);
    EXPECT_TRUE(FZPackedVector::Refract(result, at45, normal, 1.5f));
    const double sinT = std::sqrt(0.5) / 1.5;
    ExpectPacked(result, static_cast<int>(sinT * 30000), 0,
                 -static_cast<int>(std::sqrt(1.0 - sinT * sinT) * 30000), 2);

    // Failures leave the result as it was.
    result = Packed(1, 2, 3);
    // Out of glass (eta 1/1.5) at 45 degrees: beyond the critical angle.
    EXPECT_FALSE(FZPackedVector::Refract(result, Packed(21213, 0, -21213), normal, 1.0f / 1.5f));
    // Grazing incidence with eta 1: c^2 is below the threshold.
    EXPECT_FALSE(FZPackedVector::Refract(result, Packed(30000, 0, 0), normal, 1.0f));
    EXPECT_FALSE(FZPackedVector::Refract(result, Packed(0, 0, -30000), normal, kNaN));
    EXPECT_FALSE(FZPackedVector::Refract(result, Packed(0, 0, -30000), normal, 0.0f));
    ExpectPacked(result, 1, 2, 3);
}

TEST(PackedVector, ElevationIsTheAngleOverTheEnginesHalfPi)
{
    EXPECT_EQ(Packed(30000, 0, 0).Elevation(1), 0.0);
    EXPECT_NEAR(Packed(0, -30000, 0).Elevation(1), -0.99994705309662291, 1e-15);
    EXPECT_NEAR(Packed(15000, 0, 0).Elevation(0), (std::asin(0.5) * 2.0 / 3.141759), 1e-15);
    // A stored component beyond 1 reads as 1, not as NaN.
    EXPECT_EQ(Packed(0, 32767, 0).Elevation(1), Packed(0, 30000, 0).Elevation(1));
}

TEST(NormalizeFloats, ScalesToUnitLengthOrFallsBackToPlusZ)
{
    float x = 3.0f, y = 0.0f, z = 4.0f;
    NormalizeFloats(x, y, z);
    EXPECT_FLOAT_EQ(x, 0.6f);
    EXPECT_EQ(y, 0.0f);
    EXPECT_FLOAT_EQ(z, 0.8f);

    for (float bad : {0.0f, kNaN}) {
        x = bad, y = 0.0f, z = -0.0f;
        NormalizeFloats(x, y, z);
        EXPECT_EQ(x, 0.0f);
        EXPECT_EQ(y, 0.0f);
        EXPECT_EQ(z, 1.0f);
    }
}

TEST(SmoothStep, EasesBetweenItsTwoPoints)
{
    FZSmoothStep s;
    EXPECT_EQ(s.Evaluate(0.7), 0.0);  // a default curve is all zero

    s.Setup(-0.1f, 0.0f, 0.1f, 1.0f);
    EXPECT_EQ(s.a, -2.0f);
    EXPECT_EQ(s.b, 3.0f);
    EXPECT_EQ(s.invWidth, 5.0f);
    EXPECT_NEAR(s.Evaluate(-0.1f), 0.0, 1e-15);
    EXPECT_EQ(s.Evaluate(0.0), 0.5);
    EXPECT_NEAR(s.Evaluate(0.1f), 1.0, 1e-15);
    EXPECT_NEAR(s.Evaluate(0.05f), 0.84375, 1e-6);  // 3(3/4)^2 - 2(3/4)^3

    FZSmoothStep falling;
    falling.Setup(2.0f, 1.0f, 4.0f, 0.0f);
    EXPECT_NEAR(falling.Evaluate(3.0), 0.5, 1e-15);
    EXPECT_NEAR(falling.Evaluate(4.0), 0.0, 1e-15);

    FZSmoothStep flat;
    flat.Setup(1.0f, 0.25f, 1.0f, 0.75f);
    EXPECT_EQ(flat.invWidth, 0.0f);
    EXPECT_EQ(flat.Evaluate(123.0), 0.25);
}

TEST(FilterSeparable, SpreadsAPointIntoAPyramidThatKeepsItsSum)
{
    Raster raster(21, 0.0f);
    raster.cells[10][10] = 1.0f;
    FZFloatGrid grid = raster.Grid();
    ASSERT_EQ(FilterSeparable(grid, 10), FZResult::Ok);

    EXPECT_NEAR(raster.cells[10][10], 1.0 / 25.0, 1e-7);
    EXPECT_NEAR(raster.Sum(), 1.0, 1e-6);
    // Tent weights (1 - |k| / 5) / 5 per axis; the outermost tap weighs 0.
    EXPECT_NEAR(raster.cells[10][12], 0.2 * 0.12, 1e-7);
    EXPECT_NEAR(raster.cells[7][11], 0.08 * 0.16, 1e-7);
    EXPECT_EQ(raster.cells[10][15], 0.0f);
    EXPECT_EQ(raster.cells[5][10], 0.0f);
    EXPECT_EQ(raster.cells[6][10], raster.cells[14][10]);
}

TEST(FilterSeparable, BordersDarkenBecauseLostTapsAreNotRenormalised)
{
    Raster raster(16, 1.0f);
    FZFloatGrid grid = raster.Grid();
    ASSERT_EQ(FilterSeparable(grid, 10), FZResult::Ok);

    EXPECT_NEAR(raster.cells[8][8], 1.0, 1e-6);
    EXPECT_NEAR(raster.cells[8][0], 0.6, 1e-6);  // taps 0..5 of one axis: 3/5
    EXPECT_NEAR(raster.cells[0][0], 0.36, 1e-6);
    EXPECT_NEAR(raster.cells[15][15], 0.36, 1e-6);
}

TEST(FilterSeparable, SmallSizesLeaveTheGridAsItWas)
{
    Raster raster(5, 0.0f);
    raster.cells[2][3] = 7.0f;
    FZFloatGrid grid = raster.Grid();
    for (int size : {-4, 0, 1, 3}) {  // half is at least 1: weights 0, 1, 0
        ASSERT_EQ(FilterSeparable(grid, size), FZResult::Ok);
        EXPECT_EQ(raster.cells[2][3], 7.0f);
        EXPECT_EQ(raster.Sum(), 7.0);
    }

    FZFloatGrid empty;
    EXPECT_EQ(FilterSeparable(empty, 10), FZResult::Ok);
    empty = grid;
    empty.Clear();
    EXPECT_EQ(empty.width, 0);
    EXPECT_EQ(empty.rows, nullptr);
}
