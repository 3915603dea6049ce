// The diffuse kernel works a piece of a row out in double lanes; the goldens
// see only sensible materials. Here wild ones too (NaN, infinities,
// negative and huge strengths, normals whose dot product wraps) must give
// the bytes of DiffuseTerm and the colour rule, pixel by pixel.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "engine/pixel.h"
#include "engine/shading/diffuse_rows.h"
#include "engine/shading/lighting.h"

namespace {

FZPackedVector Packed(int x, int y, int z)
{
    return FZPackedVector{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), static_cast<std::int16_t>(z)};
}

// The bytes of one pixel by the rule: every light's term added in float,
// times the colour, held at most 1, stored.
std::array<int, 3> RuleBytes(const FZDiffuseSetup& setup, const FZPackedVector& normal)
{
    FZAttributeEx m;
    m.diffuse = setup.diffuse;
    m.ambient = setup.ambient;
    float acc[3] = {0.0f, 0.0f, 0.0f};
    for (std::int32_t i = 0; i < setup.lightCount; ++i) {
        float term[3];
        DiffuseTerm(m, normal, setup.lights[i].direction, setup.lights[i].color, term);
        for (int c = 0; c < 3; ++c)
            acc[c] = static_cast<float>(static_cast<double>(acc[c]) + term[c]);
    }
    std::array<int, 3> bytes{};
    for (int c = 0; c < 3; ++c) {
        float v = static_cast<float>(static_cast<double>(acc[c]) * setup.color[c]);
        v = v > 1.0f ? 1.0f : v;
        bytes[c] = FZFloatToByte(v);
    }
    return bytes;
}

} // namespace

TEST(DiffuseRows, GiveTheBytesOfThePixelRule)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const float strengths[] = {0.7f, 0.0f, 1.0f, 3.5f, -0.4f, 1e30f, nan, inf, -inf};
    std::mt19937 random(11);
    std::uniform_int_distribution<int> component(-32768, 32767);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    FZPackedVector normals[kFZDiffusePiece];
    for (const float diffuse : strengths) {
        for (const float ambient : strengths) {
            std::vector<FZDiffuseLight> lights(2);
            lights[0].direction = Packed(component(random), component(random), component(random));
            lights[1].direction = Packed(-32768, -32768, -32768);
            for (FZDiffuseLight& light : lights)
                for (float& c : light.color)
                    c = unit(random);
            for (const std::int32_t count : {1, 2}) {
                const FZDiffuseSetup setup{lights.data(), count, diffuse, ambient, {unit(random), 1.0f, 0.0f}};
                for (FZPackedVector& n : normals)
                    n = Packed(component(random), component(random), component(random));
                normals[0] = Packed(-32768, -32768, -32768);  // wraps past 32 bits with light 1
                normals[1] = Packed(0, 0, 30000);
                FZDiffuseBytes bytes;
                ShadeDiffusePiece(setup, normals, kFZDiffusePiece, bytes);
                for (int k = 0; k < kFZDiffusePiece; ++k) {
                    const std::array<int, 3> expected = RuleBytes(setup, normals[k]);
                    for (int c = 0; c < 3; ++c)
                        ASSERT_EQ(bytes.rgb[c][k], expected[c])
                            << "diffuse " << diffuse << " ambient " << ambient << " pixel " << k << " channel " << c;
                }
            }
        }
    }
}

// The highlight's cosines: FZPackedVector::Dot rounded to float, for half
// vectors and normals whose integer sum wraps as well as unit ones.
TEST(DiffuseRows, HighlightCosinesAreTheDotProducts)
{
    std::mt19937 random(4);
    std::uniform_int_distribution<int> component(-32768, 32767);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    FZPackedVector normals[kFZDiffusePiece];
    for (const FZPackedVector& half : {Packed(0, 0, 30000), Packed(32767, 32767, 32767), Packed(-32768, -32768, -32768),
                                       Packed(12000, -9000, 26000)}) {
        for (int k = 0; k < kFZDiffusePiece; ++k) {
            normals[k] = Packed(component(random), component(random), component(random));
            if (k % 2 == 0)
                normals[k].SetFloats(unit(random), unit(random), unit(random), true);
        }
        normals[0] = Packed(-32768, -32768, -32768);
        for (const int n : {kFZDiffusePiece, 7}) {
            double cosines[kFZDiffusePiece];
            HighlightCosinesOfPiece(half, normals, n, cosines);
            for (int k = 0; k < n; ++k)
                ASSERT_EQ(cosines[k], static_cast<float>(FZPackedVector::Dot(half, normals[k]))) << "lane " << k;
        }
    }
}
