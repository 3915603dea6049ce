// Random colours: the HLS conversion and every family's range.
#include <algorithm>

#include <gtest/gtest.h>

#include "dialogs/random_color.h"
#include "engine/random.h"

namespace {

// The largest and the smallest byte of a colour drawn from the family.
std::pair<int, int> MaxMin(int family, FZColor current = FZColor{255, 255, 255})
{
    float rgb[3];
    DrawFamilyColor(family, current, rgb);
    FZColor c;
    c.SetFloats(rgb);
    return {std::max({c.r, c.g, c.b}), std::min({c.r, c.g, c.b})};
}

TEST(RandomColours, HlsAndTheRangeOfEachFamily)
{
    float rgb[3];
    HlsToRgb(30.0, 0.75, 0.5, rgb);  // m2 = 0.875, m1 = 0.625
    EXPECT_EQ(std::vector<float>(rgb, rgb + 3), (std::vector<float>{0.875f, 0.75f, 0.625f}));
    HlsToRgb(-120.0, 0.5, 1.0, rgb);  // 240: blue
    EXPECT_EQ(std::vector<float>(rgb, rgb + 3), (std::vector<float>{0.0f, 0.0f, 1.0f}));

    FZRandom::Seed(12345);
    for (int i = 0; i < 2000; ++i) {
        EXPECT_LT(MaxMin(kFamilyAll).first, 255);
        const auto grey = MaxMin(kFamilyGrey);
        EXPECT_EQ(grey.first, grey.second);
        EXPECT_LE(MaxMin(kFamilyNear, FZColor{0, 0, 0}).first, 24);
        EXPECT_GE(MaxMin(kFamilyNear, FZColor{255, 255, 255}).second, 230);
        EXPECT_LE(MaxMin(kFamilyDark).first, 127);    // lightness at most 0.25
        EXPECT_GE(MaxMin(kFamilyLight).second, 127);  // lightness at least 0.75
        const auto primary = MaxMin(kFamilyPrimary);  // nearly full saturation
        EXPECT_TRUE(primary.first >= 236 && primary.second <= 18);
    }
}

} // namespace
