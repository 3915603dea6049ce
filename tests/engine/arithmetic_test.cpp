// The renderer's arithmetic is part of its contract: floats stored, doubles
// in between, truncation toward zero, the engine's own pi, no fused
// multiply-add. The expected values below are exact bit patterns worked out
// by hand for inputs where the alternatives give a different answer. When
// one of these fails after a build change, look at the compiler flags first
// (-ffp-contract must stay off, no -ffast-math, no x87 excess precision).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "engine/fz_math.h"
#include "engine/random.h"
#include "engine/value_types.h"
#include "wild_values.h"

namespace {

// Hides a constant from the optimiser, so that inline code is computed at
// run time with the build's flags instead of being folded while compiling.
template <typename T>
T Opaque(T v)
{
    volatile T hidden = v;
    return hidden;
}

} // namespace

TEST(Truncate, GoesTowardZeroAndGivesFixedAnswersForTheUnrepresentable)
{
    const struct {
        double in;
        std::int32_t whole, low8, clamped;  // clamped to -5 .. 5
    } cases[] = {{2.9999, 2, 2, 2},          {-2.9999, -2, 254, -2},        {-0.5, 0, 0, 0},
                 {255.9, 255, 255, 5},       {256.9, 256, 0, 5},            {-7.9, -7, 249, -5},
                 {2147483647.9, INT32_MAX, 255, 5}, {-2147483648.9, INT32_MIN, 0, -5},
                 {kNaN, 0, 0, 0},            {-kNaN, 0, 0, 0},             {kInf, INT32_MAX, 255, 5},
                 {-kInf, INT32_MIN, 0, -5},  {3.0e9, INT32_MAX, 255, 5},    {1.0e300, INT32_MAX, 255, 5}};
    for (const auto& c : cases) {
        EXPECT_EQ(FZTruncate(c.in), c.whole) << c.in;
        EXPECT_EQ(FZTruncateLow8(c.in), c.low8) << c.in;
        EXPECT_EQ(FZTruncateClamped(c.in, -5, 5), c.clamped) << c.in;
    }
}

// 0.0011f is 0.00109999999...; times 30000 in double that is 32.9999998,
// which truncates to 32. A product rounded to float first would be exactly
// 33, and rounding (or flooring the negative) would give 33 (or -33).
TEST(ArithmeticPins, PackingMultipliesInDoubleAndTruncatesTowardZero)
{
    FZPackedVector v;
    v.SetFloats(Opaque(0.0011f), Opaque(-0.0011f), Opaque(0.6f), false);
    EXPECT_EQ(v.x, 32);
    EXPECT_EQ(v.y, -32);
    EXPECT_EQ(v.z, 18000);  // 0.6f is a little above 0.6
}

// The squared length is formed in float. For (0.2, 0.3, 0.6) that gives
// 0x1.f5c29p-2; in double, or with fused multiply-adds, it is 0x1.f5c292p-2
// and every component comes out one or two units lower.
TEST(ArithmeticPins, NormalizeFormsTheSquaredLengthInFloatWithoutFusedMultiplyAdd)
{
    float x = Opaque(0.2f), y = Opaque(0.3f), z = Opaque(0.6f);
    FZNormalizeFloats(x, y, z);
    EXPECT_EQ(x, 0x1.24924ap-2f);
    EXPECT_EQ(y, 0x1.b6db7p-2f);
    EXPECT_EQ(z, 0x1.b6db7p-1f);
}

// With the seed 1 the first uniform draw is 1791095845 * 2^-32. Between(-2,
// 0.7) is then -2 + 2.7 * u; the product rounded on its own and then added
// gives -0x1.bf824005p-1, a fused multiply-add -0x1.bf824004fffffp-1.
TEST(ArithmeticPins, BetweenRoundsTheProductBeforeTheSum)
{
    FZRandom::Seed(1);
    EXPECT_EQ(FZRandom::Between(Opaque(-2.0), Opaque(0.7)), -0x1.bf824005p-1);
}

// The engine's pi is 3.141759: straight up is not quite elevation 1.
TEST(ArithmeticPins, ElevationUsesTheEnginesPi)
{
    FZPackedVector up;
    up.SetFloats(0.0f, Opaque(1.0f), 0.0f, false);
    EXPECT_DOUBLE_EQ(up.Elevation(1), 0.99994705309662291);
}

// The ease keeps t = (x - x0) * invWidth in double and rounds only t^2 and
// t^3 to float. From (0, 0) to (3, 1) at x = 0.01 that gives
// 0x1.16ffb8d8p-15; a t rounded to float would give 0x1.16ffb758p-15.
TEST(ArithmeticPins, SmoothStepRoundsOnlyTheSquareAndCube)
{
    FZSmoothStep s;
    s.Setup(0.0f, 0.0f, 3.0f, 1.0f);
    EXPECT_EQ(s.Evaluate(Opaque(0.01)), 0x1.16ffb8d8p-15);
}
