#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "engine/random.h"

#include "engine/shading/lighting.h"
#include "engine/shading/transparency.h"
#include "engine/support/failing_allocations.h"
#include "engine/support/shading_fixture.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

bool SameColor(const FZColor& a, const FZColor& b)
{
    return a.r == b.r && a.g == b.g && a.b == b.b;
}

// Every pixel of the shaded image, row by row.
std::vector<std::uint8_t> ShadedBytes(const FZLayer& layer)
{
    const FZImage& image = *layer.shaded;
    return std::vector<std::uint8_t>(image.data, image.data + image.dataSize);
}

// A black surface shows the highlight alone.
void BlackSurface(FZLayer& layer, std::uint8_t highlightR = 255, std::uint8_t highlightG = 255,
                  std::uint8_t highlightB = 255)
{
    layer.material.color.SetBytes(0, 0, 0);
    layer.material.highlightColor.SetBytes(highlightR, highlightG, highlightB);
}

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

TEST(Lighting, HeadOnLightShadesWhiteWithAHighlightOfTwo)
{
    FZLayer layer;
    MakeShadingLayer(layer, 4, 3);
    FZPtrArray<FZLight> lights;
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    // A plain shading leaves the module generator alone (only the groove
    // noise reseeds it, at its first use).
    FZRandom::Seed(7u);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_EQ(FZRandom::Next(), std::mt19937(7u)());
    ASSERT_NE(layer.highlight, nullptr);
    // 0.8 + 0.3 = 1.1 is held at 1: 255.
    EXPECT_TRUE(SameColor(ShadedPixel(layer, 2, 1), FZColor{255, 255, 255}));
    EXPECT_EQ(layer.highlight[1][2], 2.0f);

    // The map keeps 2.0, the colour gets 1 x the highlight colour.
    BlackSurface(layer, 255, 0, 255);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_TRUE(SameColor(ShadedPixel(layer, 0, 0), FZColor{255, 0, 255}));

    // With a spread of 1 (sharpness 0) any b > 0 gives 4 x ks.
    layer.material.highlightSharpness = 0.0f;
    EXPECT_FLOAT_EQ(HighlightTerm(layer, 0.5f, 0.5f, 0.0f, Packed(0.6f, 0, 0.8f), Packed(0, 0, -1), HeadOnView()),
                    2.0f);
    EXPECT_EQ(HighlightTerm(layer, 0.5f, 0.5f, 0.0f, Packed(0, 0, 1), Packed(0, 0, 1), HeadOnView()), 0.0f);
}

TEST(Lighting, AmbientCountsPerLightAndNoLightIsBlack)
{
    FZLayer layer;
    MakeShadingLayer(layer, 3, 2);
    layer.coverage[1][2] = 0;
    layer.material.diffuse = 0.0f;
    layer.material.highlightStrength = 0.0f;
    FZPtrArray<FZLight> lights;
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_TRUE(SameColor(ShadedPixel(layer, 0, 0), FZColor{0, 0, 0}));
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_EQ(ShadedPixel(layer, 0, 0).g, 76);  // trunc(0.3 x 255)
    AddLight(lights, 0.3f, 0.0f, -1.0f);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_EQ(ShadedPixel(layer, 0, 0).g, 153);  // trunc(0.6 x 255)
    // The uncovered pixel was never written.
    EXPECT_TRUE(SameColor(ShadedPixel(layer, 2, 1), FZColor{0, 0, 0}));

    // No light list at all: black, no highlight.
    FZLayer other;
    MakeShadingLayer(other, 2, 2);
    ASSERT_EQ(ShadeLayer(other, HeadOnView(), nullptr), FZResult::Ok);
    EXPECT_TRUE(SameColor(ShadedPixel(other, 1, 1), FZColor{0, 0, 0}));
    EXPECT_EQ(other.highlight[1][1], 0.0f);
}

TEST(Lighting, HighlightStrengthZeroSkipsTheHighlightPasses)
{
    FZLayer layer;
    MakeShadingLayer(layer, 3, 3);
    layer.coverage[0][0] = 0;
    layer.material.diffuse = 0.5f;
    layer.material.ambient = 0.0f;
    layer.material.highlightStrength = 0.0f;
    FZPtrArray<FZLight> lights;
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_EQ(layer.highlight, nullptr);
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

TEST(Lighting, HighlightOfSeveralLightsIsHeldAtOneBeforeColouring)
{
    FZLayer layer;
    MakeShadingLayer(layer, 2, 2);
    BlackSurface(layer, 51, 51, 51);  // 0.2
    FZPtrArray<FZLight> lights;
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_EQ(layer.highlight[0][0], 4.0f);
    EXPECT_NEAR(ShadedPixel(layer, 1, 0).r, 51, 1);  // not 4 x 51
}

TEST(Lighting, ColourSources)
{
    FZLayer layer;
    MakeShadingLayer(layer, 2, 1);
    layer.material.highlightStrength = 0.0f;
    layer.material.color.SetBytes(0, 255, 0);
    layer.FillColorRect(FZRect(0, 0, 1, 0), FZColor{255, 0, 0});
    FZPtrArray<FZLight> lights;
    AddLight(lights, 0.0f, 0.0f, -1.0f);

    layer.SetColorSource(1);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_TRUE(SameColor(ShadedPixel(layer, 1, 0), FZColor{255, 0, 0}));
    for (std::int16_t source : {0, 2, -1}) {
        layer.SetColorSource(source);
        ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
        EXPECT_TRUE(SameColor(ShadedPixel(layer, 1, 0), FZColor{0, 255, 0})) << source;
    }
}

TEST(Lighting, SmoothHighlightResamplesOnlyWhereTheHighlightChanges)
{
    FZPtrArray<FZLight> lights;
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    FZLayer flat;
    MakeShadingLayer(flat, 5, 4);
    BlackSurface(flat);
    flat.material.highlightSharpness = 0.9f;
    ASSERT_EQ(ShadeLayer(flat, HeadOnView(), &lights), FZResult::Ok);
    const std::vector<std::uint8_t> plain = ShadedBytes(flat);
    flat.material.smoothHighlight = 1;
    ASSERT_EQ(ShadeLayer(flat, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_EQ(ShadedBytes(flat), plain);

    // Left half flat (highlight 2), right half tilted (about 0.013): the two
    // columns at the step are resampled with box-filtered normals.
    FZLayer step;
    MakeShadingLayer(step, 8, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 4; x < 8; ++x)
            SetNormal(step, x, y, 0.1f, 0.0f, 0.995f);
    BlackSurface(step);
    ASSERT_EQ(ShadeLayer(step, HeadOnView(), &lights), FZResult::Ok);
    const FZColor left = ShadedPixel(step, 3, 1);
    const FZColor right = ShadedPixel(step, 4, 1);
    const FZColor farRight = ShadedPixel(step, 6, 1);
    EXPECT_EQ(left.r, 255);
    step.material.smoothHighlight = 1;
    ASSERT_EQ(ShadeLayer(step, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_LT(ShadedPixel(step, 3, 1).r, left.r);
    EXPECT_GT(ShadedPixel(step, 4, 1).r, right.r);
    EXPECT_EQ(ShadedPixel(step, 2, 1).r, 255);
    EXPECT_TRUE(SameColor(ShadedPixel(step, 6, 1), farRight));
}

TEST(Lighting, FilteredNormalAveragesCoveredPixelsByArea)
{
    FZLayer layer;
    MakeShadingLayer(layer, 4, 4, 0.6f, 0.0f, 0.8f);
    FZPackedVector n = FilteredNormal(layer, 2.0f, 2.0f, 2.0f);
    EXPECT_NEAR(n.Component(0), 0.6, 1e-4);
    // Clipped at the corner: still the same direction.
    n = FilteredNormal(layer, 0.1f, 0.1f, 3.0f);
    EXPECT_NEAR(n.Component(2), 0.8, 1e-4);
    // Uncovered pixels do not count, whatever their normal.
    SetNormal(layer, 3, 2, 0.0f, 0.0f, 1.0f);
    layer.coverage[2][3] = 0;
    n = FilteredNormal(layer, 3.0f, 2.5f, 2.0f);
    EXPECT_NEAR(n.Component(0), 0.6, 1e-4);
    // Half a pixel of each of two normals: their bisector.
    layer.coverage[2][3] = 255;
    n = FilteredNormal(layer, 3.0f, 2.5f, 1.0f);
    float expected[3] = {0.6f, 0.0f, 1.8f};
    NormalizeFloats(expected[0], expected[1], expected[2]);
    EXPECT_NEAR(n.Component(0), expected[0], 1e-4);
    EXPECT_NEAR(n.Component(2), expected[2], 1e-4);
    // An empty box (width 0, NaN) gives +z.
    for (float width : {0.0f, -2.0f, kNaN})
        EXPECT_EQ(FilteredNormal(layer, 2.0f, 2.0f, width).z, 30000);
}

TEST(Lighting, RainbowGlossBands)
{
    const FZPackedVector up = Packed(0, 0, 1);
    float out[3];
    RainbowGloss(1000.0f, 1.0f, Packed(0, 0, -1), up, out);
    EXPECT_NEAR(out[0], 0.424, 1e-3);
    EXPECT_NEAR(out[1], 0.426, 1e-3);
    EXPECT_NEAR(out[2], 0.144, 1e-3);
    const FZPackedVector oblique = Packed(0.8660254f, 0.0f, -0.5f);  // cosine 0.5
    RainbowGloss(1000.0f, 1.0f, oblique, up, out);
    EXPECT_NEAR(out[0], 0.879, 1e-3);
    EXPECT_NEAR(out[1], 0.121, 1e-3);
    EXPECT_NEAR(out[2], 0.037, 1e-3);
    for (float index : {0.0f, -2.0f, kNaN}) {
        float same[3];
        RainbowGloss(1000.0f, index, oblique, up, same);
        EXPECT_EQ(same[0], out[0]) << index;
        EXPECT_EQ(same[2], out[2]) << index;
    }
}

TEST(Lighting, RainbowGlossFollowsTheFirstLightOnly)
{
    FZLayer layer;
    MakeShadingLayer(layer, 2, 2);
    BlackSurface(layer);
    layer.material.rainbow = 1;
    // The oblique light adds no highlight of its own; the head-on one gives 2.
    FZPtrArray<FZLight> headOnFirst;
    AddLight(headOnFirst, 0.0f, 0.0f, -1.0f);
    AddLight(headOnFirst, 0.8660254f, 0.0f, -0.5f);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &headOnFirst), FZResult::Ok);
    FZColor c = ShadedPixel(layer, 1, 1);
    EXPECT_NEAR(c.r, 0.424 * 255, 1.5);
    EXPECT_NEAR(c.g, 0.426 * 255, 1.5);
    EXPECT_NEAR(c.b, 0.144 * 255, 1.5);

    FZPtrArray<FZLight> obliqueFirst;
    AddLight(obliqueFirst, 0.8660254f, 0.0f, -0.5f);
    AddLight(obliqueFirst, 0.0f, 0.0f, -1.0f);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &obliqueFirst), FZResult::Ok);
    c = ShadedPixel(layer, 1, 1);
    EXPECT_NEAR(c.r, 0.879 * 255, 1.5);
    EXPECT_NEAR(c.g, 0.121 * 255, 1.5);
    EXPECT_NEAR(c.b, 0.037 * 255, 1.5);
}

TEST(Lighting, AnisotropicHighlightWithoutGroovesIsThePlainOne)
{
    FZPtrArray<FZLight> lights;
    AddLight(lights, 0.3f, -0.2f, -1.0f);
    FZLayer layer;
    MakeShadingLayer(layer, 6, 5);
    for (int x = 0; x < 6; ++x)
        SetNormal(layer, x, 2, 0.1f * x, 0.05f, 1.0f);
    layer.material.highlightSharpness = 0.5f;
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    const std::vector<std::uint8_t> plain = ShadedBytes(layer);
    layer.material.anisotropic = 1;
    layer.material.anisotropy.grooveDepth = 0.0f;
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_EQ(ShadedBytes(layer), plain);
    // Real grooves change the picture.
    layer.material.anisotropy.grooveDepth = 0.5f;
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    EXPECT_NE(ShadedBytes(layer), plain);
}

TEST(Lighting, EmptyUnpreparedAndOutOfMemoryLayers)
{
    FZPtrArray<FZLight> lights;
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    FZLayer empty;
    EXPECT_EQ(ShadeLayer(empty, HeadOnView(), &lights), FZResult::Ok);  // nothing to shade
    EXPECT_EQ(empty.shaded, nullptr);

    FZLayer prepared;
    MakeShadingLayer(prepared, 3, 2);
    FZLayer copy;
    ASSERT_EQ(copy.Assign(prepared), FZResult::Ok);  // no normals until prepared again
    EXPECT_EQ(ShadeLayer(copy, HeadOnView(), &lights), FZResult::Ok);  // nothing to shade

    // Fail each allocation in turn: OutOfMemory before any pixel is written, no map
    // left behind, and the next shading starts afresh.
    for (long successes = 0;; ++successes) {
        FZLayer layer;
        MakeShadingLayer(layer, 3, 2);
        FZResult result;
        {
            FailingAllocations failing(successes);
            result = ShadeLayer(layer, HeadOnView(), &lights);
        }
        if (result == FZResult::Ok)
            break;
        ASSERT_EQ(result, FZResult::OutOfMemory) << successes;
        EXPECT_EQ(layer.highlight, nullptr);
        if (layer.shaded != nullptr) {
            for (std::uint8_t byte : ShadedBytes(layer))
                ASSERT_EQ(byte, 0);
        }
        ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
        EXPECT_EQ(layer.highlight[1][2], 2.0f);
    }
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
void ShadeAndLookUp(FZLayer& layer, const FZPtrArray<FZLight>& lights, const char* what)
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
    FZPtrArray<FZLight> lights;
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
