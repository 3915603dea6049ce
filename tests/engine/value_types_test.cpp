// The engine's small value types at their edges: byte colours from floats
// out of range, hostile floats packed, refraction that cannot happen.
#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "engine/value_types.h"
#include "wild_values.h"

namespace {

std::array<int, 3> Bytes(const FZColor& c) { return {c.r, c.g, c.b}; }
std::array<int, 3> Components(const FZPackedVector& v) { return {v.x, v.y, v.z}; }

} // namespace

TEST(Color, FloatsTruncateToTheirLowEightBits)
{
    const struct {
        float r, g, b;
        std::array<int, 3> bytes;
    } cases[] = {
        {1.0f, 0.5f, 0.0f, {255, 127, 0}},    // 127.5 truncated, not rounded
        {0.25f, 0.75f, 0.999f, {63, 191, 254}},
        {-1.0f, 2.0f, 1.5f, {1, 254, 126}},   // -255, 510 and 382 & 0xFF
        {kNaN, kInf, -kInf, {0, 255, 0}},     // no undefined behaviour, a fixed answer
    };
    for (const auto& c : cases) {
        FZColor colour;
        colour.SetFloats(c.r, c.g, c.b);
        EXPECT_EQ(Bytes(colour), c.bytes) << c.r << " " << c.g << " " << c.b;
    }
}

TEST(PackedVector, HostileFloatsPackToDefinedValues)
{
    FZPackedVector v;
    v.SetFloats(kNaN, kInf, -kInf, false);
    EXPECT_EQ(Components(v), (std::array{0, 32767, -32768}));
    v.SetFloats(2.0f, -2.0f, 0.5f, false);  // beyond 16 bits: held at the ends
    EXPECT_EQ(Components(v), (std::array{32767, -32768, 15000}));
    v.SetFloats(kNaN, 0.0f, 0.0f, true);
    EXPECT_EQ(Components(v), (std::array{0, 0, 30000}));
}

TEST(PackedVector, RefractionThatCannotHappenLeavesTheResultAlone)
{
    const FZPackedVector normal = FZPackedVector{0, 0, 30000};
    FZPackedVector result = FZPackedVector{1, 2, 3};
    // Out of glass (eta 1/1.5) at 45 degrees: beyond the critical angle.
    EXPECT_FALSE(FZPackedVector::Refract(result, FZPackedVector{21213, 0, -21213}, normal, 1.0f / 1.5f));
    // Grazing incidence with eta 1: c^2 is below the threshold.
    EXPECT_FALSE(FZPackedVector::Refract(result, FZPackedVector{30000, 0, 0}, normal, 1.0f));
    EXPECT_FALSE(FZPackedVector::Refract(result, FZPackedVector{0, 0, -30000}, normal, kNaN));
    EXPECT_FALSE(FZPackedVector::Refract(result, FZPackedVector{0, 0, -30000}, normal, 0.0f));
    EXPECT_EQ(Components(result), (std::array{1, 2, 3}));
}
