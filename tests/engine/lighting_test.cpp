#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include "engine/shading/lighting.h"
#include "engine/shading/transparency.h"
#include "engine/support/shading_fixture.h"
#include "wild_values.h"

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
            LookupShade(layer, x, y, colour, t, AttenuationFactor(layer));
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
