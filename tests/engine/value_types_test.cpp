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
