// The compositing kernel works a piece of a row out in double lanes; the
// goldens see only sensible materials. Here wild shades (a sky weighted by
// a huge or NaN reflection, colours above 1 or below 0), every coverage and
// transmission must give the bytes of the single pixel's steps.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

#include "engine/compose_rows.h"
#include "engine/pixel.h"

namespace {

// One channel as a single pixel composites it: each term rounded to float,
// their sum held at most 1, stored.
int RuleByte(float shade, float a, float t, float through, float under)
{
    const float seen = static_cast<float>(static_cast<double>(through) * a * t);
    const float uncovered = static_cast<float>(1.0 - a);
    const float around = uncovered != 0.0f ? static_cast<float>(static_cast<double>(under) * uncovered) : 0.0f;
    const float s = static_cast<float>(static_cast<double>(shade) * a);
    float out = static_cast<float>(static_cast<double>(s) + seen + around);
    if (out > 1.0f)
        out = 1.0f;
    return FZFloatToByte(out);
}

} // namespace

TEST(ComposeRows, GiveTheBytesOfThePixelSteps)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const float shades[] = {0.0f, 0.5f, 1.0f, 1.7f, -0.3f, 1e30f, nan, inf, -inf};
    std::mt19937 random(5);
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for (const float wild : shades) {
        FZComposeLanes lanes;
        float in[5][kFZComposePiece];
        for (int k = 0; k < kFZComposePiece; ++k) {
            // Every lane a coverage byte above 0; a quarter fully covered.
            const int coverage = k % 4 == 0 ? 255 : 1 + byte(random) % 255;
            in[0][k] = k % 3 == 0 ? wild : FZByteToFloat(static_cast<std::uint8_t>(byte(random)));
            in[1][k] = FZByteToFloat(static_cast<std::uint8_t>(coverage));
            in[2][k] = k % 5 == 0 ? 0.0f : unit(random);
            in[3][k] = k % 7 == 0 ? wild : FZByteToFloat(static_cast<std::uint8_t>(byte(random)));
            in[4][k] = FZByteToFloat(static_cast<std::uint8_t>(byte(random)));
            lanes.coverage[k] = in[1][k];
            lanes.transmission[k] = in[2][k];
            for (int c = 0; c < 3; ++c) {
                lanes.shade[c][k] = in[0][k];
                lanes.through[c][k] = in[3][k];
                lanes.under[c][k] = in[4][k];
            }
        }
        for (const int n : {kFZComposePiece, 13}) {
            FZComposeBytes out;
            CompositePiece(lanes, n, out);
            for (int k = 0; k < n; ++k)
                for (int c = 0; c < 3; ++c)
                    ASSERT_EQ(out.rgb[c][k], RuleByte(in[0][k], in[1][k], in[2][k], in[3][k], in[4][k]))
                        << "shade " << wild << " lane " << k << " of " << n;
        }
    }
}
