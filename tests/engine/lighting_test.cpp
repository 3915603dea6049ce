#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "engine/random.h"

#include "engine/shading/lighting.h"
#include "engine/shading/transparency.h"
#include "engine/support/shading_fixture.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

} // namespace

TEST(Lighting, DiffuseTermAddsTheAmbientForEveryLight)
{
    FZAttributeEx m;  // kd 0.8, ka 0.3
    const float white[3] = {1.0f, 1.0f, 1.0f};
    float out[3];
    DiffuseTerm(m, Packed(0, 0, 1), Packed(0, 0, -1), white, out);
    EXPECT_FLOAT_EQ(out[0], 1.1f);
    EXPECT_FLOAT_EQ(out[2], 1.1f);

    const float tinted[3] = {0.5f, 0.0f, 1.0f};
    DiffuseTerm(m, Packed(0, 0, 1), Packed(0, -0.6f, -0.8f), tinted, out);
    EXPECT_FLOAT_EQ(out[0], 0.8f * 0.8f * 0.5f + 0.3f);
    EXPECT_FLOAT_EQ(out[1], 0.3f);

    // A light from behind, or no diffuse reflectance: the ambient alone.
    DiffuseTerm(m, Packed(0, 0, 1), Packed(0, 0, 1), white, out);
    EXPECT_FLOAT_EQ(out[0], 0.3f);
    m.diffuse = 0.0f;
    DiffuseTerm(m, Packed(0, 0, 1), Packed(0, 0, -1), white, out);
    EXPECT_FLOAT_EQ(out[1], 0.3f);
}

TEST(Lighting, HighlightStrengthZeroSkipsTheHighlightPasses)
{
    FZLayer layer;
    MakeShadingLayer(layer, 3, 3);
    layer.coverage[0][0] = 0;
    layer.material.diffuse = 0.5f;
    layer.material.ambient = 0.0f;
    layer.material.highlightStrength = 0.0f;
    FZLightList lights;
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_TRUE(layer.highlight.empty());
    EXPECT_EQ(ShadedPixel(layer, 1, 1).r, 127);

    layer.material.highlightStrength = 0.5f;
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_EQ(ShadedPixel(layer, 1, 1).r, 255);
    EXPECT_EQ(layer.highlight[0][0], -1.0f);
    // A later shading without highlight keeps the map as it was.
    layer.material.highlightStrength = 0.0f;
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_EQ(ShadedPixel(layer, 1, 1).r, 127);
    EXPECT_EQ(layer.highlight[1][1], 2.0f);
}

TEST(Lighting, EmptyAndUnpreparedLayersHaveNothingToShade)
{
    FZLightList lights;
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    FZLayer empty;
    EXPECT_EQ(ShadeLayer(empty, HeadOnView(), &lights), FZResult::Ok);  // nothing to shade
    EXPECT_EQ(empty.shaded, nullptr);

    FZLayer prepared;
    MakeShadingLayer(prepared, 3, 2);
    FZLayer copy;
    copy.Assign(prepared);  // no normals until prepared again
    EXPECT_EQ(ShadeLayer(copy, HeadOnView(), &lights), FZResult::Ok);  // nothing to shade
}

namespace {

// Every float of the record that the shading reads.
std::vector<float*> FloatFields(FZAttributeEx& m)
{
    FZAnisotropy& a = m.anisotropy;
    return {&m.diffuse, &m.highlightStrength, &m.highlightSharpness, &m.ambient, &m.transparency,
            &m.refractiveIndex, &a.grooveDepth, &a.center[0], &a.center[1], &a.amplitude, &a.spiralTwist,
            &a.wavePeriod, &a.depthVariation, &a.angle, &a.grooveWidth, &m.smoothWidth, &m.stripeSpacing,
            &m.incidenceDependence, &m.attenuation};
}

// A small tilted, partly covered surface with every effect switched on.
void WildLayer(FZLayer& layer)
{
    MakeShadingLayer(layer, 6, 5);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x) {
            SetNormal(layer, x, y, 0.3f * (x - 2), 0.2f * (y - 2), 1.0f);
            layer.depth[y][x] = static_cast<float>(x + y);
        }
    layer.coverage[0][5] = 0;
    layer.depthMax = 9.0f;
    FZAttributeEx& m = layer.material;
    m.anisotropic = 1;
    m.smoothHighlight = 1;
    m.rainbow = 1;
    m.anisotropy.depthVariation = 1.0f;
    m.transparency = 0.5f;
    m.attenuation = 0.5f;
    m.incidenceDependence = 0.5f;
}

// Shades the layer and reads every covered pixel back: all in range.
void ShadeAndLookUp(FZLayer& layer, const FZLightList& lights, const char* what)
{
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok) << what;
    for (int y = 0; y < layer.height; ++y)
        for (int x = 0; x < layer.width; ++x) {
            if (layer.coverage[y][x] == 0)
                continue;
            float colour[3], t;
            LookupShade(layer, x, y, colour, t);
            ASSERT_TRUE(t >= 0.0f && t <= 1.0f) << what;
            for (float c : colour)
                ASSERT_TRUE(c >= 0.0f && c <= 1.0f) << what;
        }
}

} // namespace

TEST(Lighting, WildRecordsShadeWithoutHarm)
{
    FZLightList lights;
    AddLight(lights, 0.4f, -0.3f, -1.0f);
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    const float wild[] = {kNaN, kInf, -kInf, 1e30f, -1e30f, -1.0f, 0.0f, 1e-30f};
    const int types[] = {1, 2, 3, 4, 5, 11, 20, 21, 99, INT_MIN};
    FZLayer layer;
    WildLayer(layer);
    const FZAttributeEx tame = layer.material;

    // One field at a time, for every pattern type.
    const std::size_t fields = FloatFields(layer.material).size();
    for (std::size_t f = 0; f < fields; ++f)
        for (float v : wild)
            for (int type : types) {
                layer.material = tame;
                layer.material.anisotropy.type = type;
                *FloatFields(layer.material)[f] = v;
                ShadeAndLookUp(layer, lights, "one field");
            }

    // Everything wild at once, with odd counts, widths and colour sources.
    for (float v : wild)
        for (int type : types)
            for (float width : {0.0f, -1.0f, kNaN}) {
                layer.material = tame;
                for (float* field : FloatFields(layer.material))
                    *field = v;
                layer.material.highlightStrength = 0.5f;
                layer.material.anisotropy.type = type;
                layer.material.anisotropy.waveCount = INT_MIN;
                layer.material.anisotropy.grooveWidth = width;
                layer.material.smoothHighlight = INT_MIN;
                layer.material.rainbow = -1;
                layer.SetColorSource(static_cast<std::int16_t>(type));
                ShadeAndLookUp(layer, lights, "all fields");
            }
}
