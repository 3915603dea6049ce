// Random colours: the HLS conversion and every family's range.
#include <algorithm>

#include <gtest/gtest.h>

#include "dialogs/random_color.h"
#include "engine/random.h"

namespace {

struct Bytes {
    int r, g, b;
};

Bytes Draw(int family, FZColor current = FZColor{255, 255, 255})
{
    float rgb[3];
    DrawFamilyColor(family, current, rgb);
    FZColor c;
    c.SetFloats(rgb);
    return {c.r, c.g, c.b};
}

TEST(HlsToRgb, KnownColours)
{
    const struct {
        double h, l, s;
        float r, g, b;
    } cases[] = {{0.0, 0.5, 1.0, 1.0f, 0.0f, 0.0f},
                 {120.0, 0.5, 1.0, 0.0f, 1.0f, 0.0f},
                 {-120.0, 0.5, 1.0, 0.0f, 0.0f, 1.0f},    // 240: blue
                 {30.0, 0.75, 0.5, 0.875f, 0.75f, 0.625f},  // m2 = 0.875, m1 = 0.625
                 {200.0, 0.3, 0.0, 0.3f, 0.3f, 0.3f}};    // no saturation: grey
    for (const auto& c : cases) {
        SCOPED_TRACE(c.h);
        float rgb[3];
        HlsToRgb(c.h, c.l, c.s, rgb);
        EXPECT_FLOAT_EQ(rgb[0], c.r);
        EXPECT_FLOAT_EQ(rgb[1], c.g);
        EXPECT_FLOAT_EQ(rgb[2], c.b);
    }
}

TEST(RandomFamilies, EachStaysInItsRange)
{
    FZRandom::Seed(12345);
    for (int i = 0; i < 2000; ++i) {
        const Bytes all = Draw(kFamilyAll);
        EXPECT_LT(all.r, 255);
        EXPECT_LT(all.g, 255);
        EXPECT_LT(all.b, 255);

        const Bytes grey = Draw(kFamilyGrey);
        EXPECT_EQ(grey.r, grey.g);
        EXPECT_EQ(grey.g, grey.b);

        const Bytes near = Draw(kFamilyNear, FZColor{0, 0, 0});
        EXPECT_LE(near.r, 24);
        EXPECT_LE(near.g, 24);
        EXPECT_LE(near.b, 24);
        const Bytes nearWhite = Draw(kFamilyNear, FZColor{255, 100, 255});
        EXPECT_GE(nearWhite.r, 230);
        EXPECT_GE(nearWhite.g, 75);
        EXPECT_LE(nearWhite.g, 125);

        // Dark: lightness at most 0.25 keeps every channel at most 127.
        const Bytes dark = Draw(kFamilyDark);
        EXPECT_LE(std::max({dark.r, dark.g, dark.b}), 127);
        // Light: lightness at least 0.75 keeps every channel at least 127.
        const Bytes light = Draw(kFamilyLight);
        EXPECT_GE(std::min({light.r, light.g, light.b}), 127);
        // Primary: nearly full saturation at half lightness (m2 at least
        // 0.475 * 1.95, m1 at most 2 * 0.525 - 0.97625).
        const Bytes primary = Draw(kFamilyPrimary);
        EXPECT_GE(std::max({primary.r, primary.g, primary.b}), 236);
        EXPECT_LE(std::min({primary.r, primary.g, primary.b}), 18);
        // Warm hues (-10 to 60 degrees) all have red at full strength.
        const Bytes warm = Draw(kFamilyWarm);
        EXPECT_GE(warm.r, std::max(warm.g, warm.b));
    }
}

TEST(RandomFamilies, SameSeedSameColours)
{
    FZRandom::Seed(7);
    const Bytes a = Draw(kFamilyPastel);
    FZRandom::Seed(7);
    const Bytes b = Draw(kFamilyPastel);
    EXPECT_EQ(a.r, b.r);
    EXPECT_EQ(a.g, b.g);
    EXPECT_EQ(a.b, b.b);
}

TEST(RandomFamilies, MenuOrderAndCommands)
{
    const auto items = FamilyMenuItems();
    ASSERT_EQ(items.size(), 9u);
    EXPECT_EQ(items.front().family, kFamilyAll);
    EXPECT_EQ(items[4].family, kFamilyLight);  // "明色" before "暗色"
    EXPECT_EQ(items[5].family, kFamilyDark);
    EXPECT_EQ(items[6].family, kFamilyWarm);   // "暖色" before "寒色"
    EXPECT_EQ(items.back().family, kFamilyNear);
    EXPECT_EQ(kFamilyCommandBase + kFamilyNear, 42868);
}

} // namespace
