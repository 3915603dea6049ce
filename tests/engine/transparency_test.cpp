#include <gtest/gtest.h>

#include <cmath>

#include "engine/shading/lighting.h"
#include "engine/shading/transparency.h"
#include "engine/support/shading_fixture.h"

namespace {

struct Shade {
    float colour[3];
    float t;
};

Shade Lookup(const FZLayer& layer, int x, int y)
{
    Shade s;
    LookupShade(layer, x, y, s.colour, s.t);
    return s;
}

// A 3 x 1 layer shaded dark grey (ambient 0.2 under one head-on light, no
// highlight), with depths 0, 50 and 100 and the range 0 .. 100.
void MakeSlab(FZLayer& layer)
{
    MakeShadingLayer(layer, 3, 1);
    layer.material.diffuse = 0.0f;
    layer.material.ambient = 0.2f;
    layer.material.highlightStrength = 0.0f;
    FZLightList lights;
    AddLight(lights, 0.0f, 0.0f, -1.0f);
    ASSERT_EQ(ShadeLayer(layer, HeadOnView(), &lights), FZResult::Ok);
    for (int x = 0; x < 3; ++x)
        layer.depth[0][x] = 50.0f * x;
    layer.depthMin = 0.0f;
    layer.depthMax = 100.0f;
}

} // namespace

TEST(Transparency, OpaqueAndUnshadedLayers)
{
    FZLayer layer;
    MakeSlab(layer);
    layer.material.incidenceDependence = 1.0f;
    layer.material.attenuation = 1.0f;
    Shade s = Lookup(layer, 2, 0);
    EXPECT_EQ(s.t, 0.0f);
    EXPECT_FLOAT_EQ(s.colour[0], 51.0f / 255.0f);  // the shaded colour as it is

    FZLayer bare;
    MakeShadingLayer(bare, 2, 2);
    bare.material.transparency = 1.0f;
    s = Lookup(bare, 1, 1);
    EXPECT_EQ(s.t, 0.0f);
    EXPECT_EQ(s.colour[0] + s.colour[1] + s.colour[2], 0.0f);
}

TEST(Transparency, AttenuationThroughTheDepth)
{
    FZLayer layer;
    MakeSlab(layer);
    layer.material.transparency = 1.0f;
    layer.material.attenuation = 0.5f;
    layer.material.color.SetBytes(255, 0, 0);
    EXPECT_EQ(Lookup(layer, 0, 0).t, 1.0f);  // the lowest pixel is untouched
    Shade half = Lookup(layer, 1, 0);
    EXPECT_NEAR(half.t, 0.70711, 1e-4);
    // The absorbed light comes back as the surface colour.
    EXPECT_NEAR(half.colour[0], 0.2 + (1.0 - 0.70711), 1e-4);
    EXPECT_FLOAT_EQ(half.colour[1], 51.0f / 255.0f);
    EXPECT_NEAR(Lookup(layer, 2, 0).t, 0.5, 1e-4);

    // Full attenuation: the floor of 0.0001 per unit, all but opaque; the
    // added colour saturates at 1.
    layer.material.attenuation = 1.0f;
    Shade full = Lookup(layer, 1, 0);
    EXPECT_LT(full.t, 1e-30f);
    EXPECT_EQ(full.colour[0], 1.0f);

    // A flat layer is never attenuated.
    layer.depthMax = layer.depthMin;
    EXPECT_EQ(Lookup(layer, 2, 0).t, 1.0f);
}

TEST(Transparency, WildValuesGiveFractions)
{
    FZLayer layer;
    MakeSlab(layer);
    const float wild[] = {std::nanf(""), INFINITY, -INFINITY, 1e30f, -1e30f, 2.0f, -1.0f};
    for (float v : wild) {
        layer.material.transparency = 0.5f;
        layer.material.incidenceDependence = v;
        layer.material.attenuation = v;
        for (float t0 : {v, 0.5f}) {
            layer.material.transparency = t0;
            const Shade s = Lookup(layer, 2, 0);
            EXPECT_TRUE(s.t >= 0.0f && s.t <= 1.0f) << v;
            EXPECT_TRUE(s.colour[0] >= 0.0f && s.colour[0] <= 1.0f) << v;
        }
    }
    // Outside the layer: nothing to read.
    EXPECT_EQ(Lookup(layer, 3, 0).t, 0.0f);
    EXPECT_EQ(Lookup(layer, -1, 0).colour[0], 0.0f);
}
