// Random colours: the HLS conversion and every family's range.
#include <algorithm>

#include <gtest/gtest.h>

#include "dialogs/random_color.h"
#include "engine/random.h"

namespace {

// The bytes of a colour drawn from the family: max, min and the channels.
struct Drawn {
    int r, g, b;
    int Max() const { return std::max({r, g, b}); }
    int Min() const { return std::min({r, g, b}); }
};

Drawn Draw(int family, FZColor current = FZColor{255, 255, 255})
{
    float rgb[3];
    DrawFamilyColor(family, current, rgb);
    FZColor c;
    c.SetFloats(rgb);
    return {c.r, c.g, c.b};
}

TEST(RandomColours, HlsToRgbKnownColours)
{
    const struct {
        double h, l, s;
        float r, g, b;
    } cases[] = {{0.0, 0.5, 1.0, 1.0f, 0.0f, 0.0f},
                 {-120.0, 0.5, 1.0, 0.0f, 0.0f, 1.0f},      // 240: blue
                 {30.0, 0.75, 0.5, 0.875f, 0.75f, 0.625f},  // m2 = 0.875, m1 = 0.625
                 {200.0, 0.3, 0.0, 0.3f, 0.3f, 0.3f}};      // no saturation: grey
    for (const auto& c : cases) {
        float rgb[3];
        HlsToRgb(c.h, c.l, c.s, rgb);
        EXPECT_EQ(std::vector<float>(rgb, rgb + 3), (std::vector<float>{c.r, c.g, c.b})) << c.h;
    }
}

TEST(RandomColours, EachFamilyStaysInItsRange)
{
    FZRandom::Seed(12345);
    for (int i = 0; i < 2000; ++i) {
        EXPECT_LT(Draw(kFamilyAll).Max(), 255);
        const Drawn grey = Draw(kFamilyGrey);
        EXPECT_EQ(grey.Max(), grey.Min());
        EXPECT_LE(Draw(kFamilyNear, FZColor{0, 0, 0}).Max(), 24);
        const Drawn nearWhite = Draw(kFamilyNear, FZColor{255, 100, 255});
        EXPECT_GE(nearWhite.r, 230);
        EXPECT_TRUE(nearWhite.g >= 75 && nearWhite.g <= 125);
        EXPECT_LE(Draw(kFamilyDark).Max(), 127);   // lightness at most 0.25
        EXPECT_GE(Draw(kFamilyLight).Min(), 127);  // lightness at least 0.75
        const Drawn primary = Draw(kFamilyPrimary);  // nearly full saturation
        EXPECT_TRUE(primary.Max() >= 236 && primary.Min() <= 18);
        const Drawn warm = Draw(kFamilyWarm);  // -10 to 60 degrees: red leads
        EXPECT_EQ(warm.r, warm.Max());
    }
    FZRandom::Seed(7);
    const Drawn a = Draw(kFamilyPastel);
    FZRandom::Seed(7);
    EXPECT_EQ(Draw(kFamilyPastel).Max(), a.Max());
    EXPECT_EQ(kFamilyCommandBase + kFamilyNear, 42868);
}

} // namespace
