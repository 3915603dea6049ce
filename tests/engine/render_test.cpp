#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "engine/render.h"
#include "engine/shading/transparency.h"

namespace {

using Rgb = std::array<int, 3>;

const float kWhite[3] = {1.0f, 1.0f, 1.0f};

Rgb PixelOf(const FZImage& image, int x, int y)
{
    const std::uint8_t* p = image.PixelAddress(x, y);
    return {p[2], p[1], p[0]};
}

void SetPixel(FZImage& image, int x, int y, Rgb rgb)
{
    std::uint8_t* p = image.PixelAddress(x, y);
    p[0] = static_cast<std::uint8_t>(rgb[2]);
    p[1] = static_cast<std::uint8_t>(rgb[1]);
    p[2] = static_cast<std::uint8_t>(rgb[0]);
}

std::vector<std::uint8_t> Bytes(const FZImage& image)
{
    return std::vector<std::uint8_t>(image.data, image.data + image.dataSize);
}

// A material lit by its ambient term alone: it shades to ambient x colour.
FZAttributeEx Matte(std::uint8_t r, std::uint8_t g, std::uint8_t b, float ambient = 1.0f)
{
    FZAttributeEx m;
    m.diffuse = 0.0f;
    m.highlightStrength = 0.0f;
    m.ambient = ambient;
    m.color.SetBytes(r, g, b);
    return m;
}

// An invisible material: shades black and lets everything through.
FZAttributeEx ClearGlass(float eta)
{
    FZAttributeEx m = Matte(0, 0, 0, 0.0f);
    m.transparency = 1.0f;
    m.refractiveIndex = eta;
    return m;
}

// A scene with its ground (white, default material) prepared and shaded.
void SetUpPlainScene(FZScene& scene, int w, int h)
{
    ASSERT_EQ(scene.SetUpFrame(w, h, kWhite), FZResult::Ok);
    ASSERT_EQ(PrepareLayer(scene, 0), FZResult::Ok);
    ASSERT_EQ(ShadeLayerAt(scene, 0), FZResult::Ok);
}

// A scene whose ground shows a 5 x 5 pixel checker of two colours exactly.
void SetUpCheckerScene(FZScene& scene, int w, int h)
{
    ASSERT_EQ(scene.SetUpFrame(w, h, kWhite), FZResult::Ok);
    FZLayer& ground = *scene.LayerAt(0);
    ground.SetMaterial(Matte(255, 255, 255));
    FZColor a;
    FZColor b;
    a.SetBytes(240, 200, 40);
    b.SetBytes(20, 60, 180);
    ground.FillChecker(5, 5, a, b);
    ground.SetColorSource(1);
    ASSERT_EQ(PrepareLayer(scene, 0), FZResult::Ok);
    ASSERT_EQ(ShadeLayerAt(scene, 0), FZResult::Ok);
}

// Adds a layer over the whole frame with depth(x, y) and the material,
// prepared and shaded; returns it.
template <typename DepthFn>
FZLayer& AddSurface(FZScene& scene, const FZAttributeEx& material, DepthFn depth)
{
    EXPECT_EQ(scene.AddFullFrameLayer(), FZResult::Ok);
    const int index = scene.LayerCount() - 1;
    FZLayer& layer = *scene.LayerAt(index);
    for (int y = 0; y < layer.height; ++y)
        for (int x = 0; x < layer.width; ++x) {
            layer.coverage[y][x] = 255;
            layer.depth[y][x] = depth(x, y);
        }
    layer.SetColorSource(0);
    layer.SetMaterial(material);
    EXPECT_EQ(PrepareLayer(scene, index), FZResult::Ok);
    EXPECT_EQ(ShadeLayerAt(scene, index), FZResult::Ok);
    return layer;
}

float Flat(int, int) { return 3.0f; }
float RisingToTheRight(int x, int) { return static_cast<float>(x); }

} // namespace

TEST(RenderDriver, GroundAloneShowsItsShadedColour)
{
    FZScene scene;
    ASSERT_EQ(scene.SetUpFrame(8, 6, kWhite), FZResult::Ok);
    FZLayer& ground = *scene.LayerAt(0);
    ground.SetMaterial(Matte(200, 100, 50, 0.5f));
    ASSERT_EQ(PrepareLayer(scene, 0), FZResult::Ok);
    ASSERT_EQ(ShadeLayerAt(scene, 0), FZResult::Ok);
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);

    ASSERT_NE(scene.frame, nullptr);
    EXPECT_EQ(scene.frame->width, 8);
    EXPECT_EQ(scene.frame->height, 6);
    // Half of 200, 100, 50, on every pixel.
    const Rgb half = PixelOf(*scene.frame, 3, 3);
    EXPECT_NEAR(half[0], 100, 1);
    EXPECT_NEAR(half[1], 50, 1);
    EXPECT_NEAR(half[2], 25, 1);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(PixelOf(*scene.frame, x, y), half) << x << "," << y;
}

TEST(RenderDriver, PartlyCoveredPixelMixesWithWhatIsBehind)
{
    FZScene scene;
    ASSERT_EQ(scene.SetUpFrame(4, 4, kWhite), FZResult::Ok);
    scene.LayerAt(0)->visible = 0;  // the background shows behind the layer
    EXPECT_EQ(scene.AddFullFrameLayer(), FZResult::Ok);
    FZLayer& layer = *scene.LayerAt(scene.LayerCount() - 1);
    layer.coverage[1][2] = 128;
    layer.SetColorSource(0);
    layer.SetMaterial(Matte(0, 51, 255));
    ASSERT_EQ(PrepareLayer(scene, 1), FZResult::Ok);
    ASSERT_EQ(ShadeLayerAt(scene, 1), FZResult::Ok);
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);

    // S x 0.502 + 1.0 x 0.498 per channel.
    const Rgb mixed = PixelOf(*scene.frame, 2, 1);
    EXPECT_NEAR(mixed[0], (0.0 * 0.502 + 0.498) * 255, 1.0);
    EXPECT_NEAR(mixed[1], (0.2 * 0.502 + 0.498) * 255, 1.0);
    EXPECT_NEAR(mixed[2], (1.0 * 0.502 + 0.498) * 255, 1.0);
    EXPECT_EQ(PixelOf(*scene.frame, 1, 1), (Rgb{255, 255, 255}));
    EXPECT_EQ(PixelOf(*scene.frame, 2, 2), (Rgb{255, 255, 255}));
}

TEST(RenderDriver, ClearLayerOfIndexOneShowsThePixelUnderIt)
{
    FZScene reference;
    SetUpCheckerScene(reference, 20, 20);
    ASSERT_EQ(RenderScene(reference), FZResult::Ok);
    const std::vector<std::uint8_t> ground = Bytes(*reference.frame);

    // Flat or tilted: with eta 1 the refracted ray is the view direction.
    // An index below 0.01 counts as 1.
    for (const float eta : {1.0f, 0.005f})
        for (float (*depth)(int, int) : {Flat, RisingToTheRight}) {
            FZScene scene;
            SetUpCheckerScene(scene, 20, 20);
            AddSurface(scene, ClearGlass(eta), depth);
            ASSERT_EQ(RenderScene(scene), FZResult::Ok);
            EXPECT_EQ(Bytes(*scene.frame), ground) << eta;
        }
}

TEST(RenderDriver, RefractionBendsTheViewThroughATiltedSurface)
{
    FZScene reference;
    SetUpCheckerScene(reference, 20, 20);
    ASSERT_EQ(RenderScene(reference), FZResult::Ok);

    FZScene glass;
    SetUpCheckerScene(glass, 20, 20);
    AddSurface(glass, ClearGlass(1.5f), RisingToTheRight);
    ASSERT_EQ(RenderScene(glass), FZResult::Ok);
    EXPECT_NE(Bytes(*glass.frame), Bytes(*reference.frame));

    // A thin plate of no thickness: no shift at all.
    FZScene plate;
    SetUpCheckerScene(plate, 20, 20);
    FZAttributeEx thin = ClearGlass(1.5f);
    thin.thinGlass = 1;
    thin.thickness = 0.0f;
    AddSurface(plate, thin, RisingToTheRight);
    ASSERT_EQ(RenderScene(plate), FZResult::Ok);
    EXPECT_EQ(Bytes(*plate.frame), Bytes(*reference.frame));
}

TEST(RenderDriver, TotalInternalReflectionShowsTheBackgroundNotTheGround)
{
    FZScene scene;
    SetUpCheckerScene(scene, 12, 12);
    scene.background[0] = 1.0f;
    scene.background[1] = 0.0f;
    scene.background[2] = 0.0f;
    // Slope 1 tilts the normal by 45 degrees; eta 0.5 cannot refract that.
    AddSurface(scene, ClearGlass(0.5f), RisingToTheRight);
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 12; ++x)
            EXPECT_EQ(PixelOf(*scene.frame, x, y), (Rgb{255, 0, 0})) << x << "," << y;
}

TEST(RenderDriver, SampleBehindFillsWhatLiesOutsideWithTheBackground)
{
    FZScene scene;
    SetUpPlainScene(scene, 10, 10);
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);
    ASSERT_NE(scene.behind, nullptr);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x)
            SetPixel(*scene.behind, x, y, {0, 0, 255});
    SetPixel(*scene.behind, 4, 4, {255, 0, 0});

    float c[3];
    SampleBehind(scene, 3.5, 6.5, c);  // one whole pixel
    EXPECT_FLOAT_EQ(c[0], 0.0f);
    EXPECT_FLOAT_EQ(c[2], 1.0f);
    SampleBehind(scene, 4.0, 5.0, c);  // a quarter of pixel (4, 4)
    EXPECT_NEAR(c[0], 0.25, 1e-6);
    EXPECT_NEAR(c[2], 0.75, 1e-6);

    for (const auto& far : {std::array<double, 2>{-5.0, 5.0}, {5.0, 12.0}, {-0.5, -0.5}, {10.5, 3.0}}) {
        SampleBehind(scene, far[0], far[1], c);
        EXPECT_EQ((std::array<float, 3>{c[0], c[1], c[2]}), (std::array<float, 3>{1.0f, 1.0f, 1.0f}));
    }
    // Half outside on the left, on the top; a quarter inside at a corner.
    SampleBehind(scene, 0.0, 5.5, c);
    EXPECT_NEAR(c[0], 0.5, 1e-6);
    EXPECT_NEAR(c[2], 1.0, 1e-6);
    SampleBehind(scene, 6.5, 10.0, c);
    EXPECT_NEAR(c[1], 0.5, 1e-6);
    SampleBehind(scene, 10.0, 0.0, c);
    EXPECT_NEAR(c[0], 0.75, 1e-6);

    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (const auto& bad : {std::array<double, 2>{nan, 3.0}, {3.0, inf}, {-inf, -inf}, {1e30, 1e30}}) {
        SampleBehind(scene, bad[0], bad[1], c);
        EXPECT_EQ((std::array<float, 3>{c[0], c[1], c[2]}), (std::array<float, 3>{1.0f, 1.0f, 1.0f}));
    }
}

TEST(RenderDriver, ReflectionAddsTheSkyAlongTheNormal)
{
    FZAttributeEx mirror = Matte(0, 0, 0, 0.0f);
    mirror.reflection = 1.0f;

    FZScene scene;
    SetUpPlainScene(scene, 6, 6);
    AddSurface(scene, mirror, Flat);
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);
    // A normal facing the viewer looks at the horizon: (0.6, 0.8, 1.0).
    const Rgb horizon = PixelOf(*scene.frame, 2, 3);
    EXPECT_NEAR(horizon[0], 0.6 * 255, 1.0);
    EXPECT_NEAR(horizon[1], 0.8 * 255, 1.0);
    EXPECT_NEAR(horizon[2], 255, 1.0);

    scene.environment.mode = 0;  // switched off: nothing to reflect
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);
    EXPECT_EQ(PixelOf(*scene.frame, 2, 3), (Rgb{0, 0, 0}));
}

TEST(RenderDriver, EmissionRadiusFollowsTheCoverageBounds)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 30, 30, 10.0f), FZResult::Ok);
    EXPECT_EQ(EmissionRadius(layer), 0);  // no emission
    layer.material.emission = 0.25f;
    EXPECT_EQ(EmissionRadius(layer), 0);  // nothing covered
    for (int y = 3; y < 23; ++y)
        for (int x = 5; x < 15; ++x)
            layer.coverage[y][x] = 255;
    EXPECT_EQ(EmissionRadius(layer), 5);  // sqrt(0.25) x min(10, 20)
    layer.material.emission = 0.7f;
    EXPECT_EQ(EmissionRadius(layer), 8);
    layer.material.emission = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(EmissionRadius(layer), 0);
    layer.material.emission = std::numeric_limits<float>::infinity();
    EXPECT_GT(EmissionRadius(layer), 1000000);
}

namespace {

// Adds a flat square layer of the material at (x, y), prepared and shaded.
int AddSquare(FZScene& scene, int x, int y, int side, const FZAttributeEx& material)
{
    EXPECT_EQ(scene.AddLayerRect(x, y, side, side), FZResult::Ok);
    const int index = scene.LayerCount() - 1;
    FZLayer& layer = *scene.LayerAt(index);
    layer.FillDepth(0.0f);
    layer.SetColorSource(0);
    layer.SetMaterial(material);
    EXPECT_EQ(PrepareLayer(scene, index), FZResult::Ok);
    EXPECT_EQ(ShadeLayerAt(scene, index), FZResult::Ok);
    return index;
}

// A black ground of 60 x 60 pixels with one 10 x 10 square layer at (25, 25)
// of the material, optionally behind a black 20 x 20 square at (20, 20).
void SetUpLampScene(FZScene& scene, const FZAttributeEx& lamp, bool covered = false)
{
    ASSERT_EQ(scene.SetUpFrame(60, 60, kWhite), FZResult::Ok);
    scene.LayerAt(0)->SetMaterial(Matte(0, 0, 0));
    ASSERT_EQ(PrepareLayer(scene, 0), FZResult::Ok);
    ASSERT_EQ(ShadeLayerAt(scene, 0), FZResult::Ok);
    if (covered)
        AddSquare(scene, 20, 20, 20, Matte(0, 0, 0));
    AddSquare(scene, 25, 25, 10, lamp);
}

FZAttributeEx Lamp(float emission, std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    FZAttributeEx m = Matte(r, g, b);
    m.emission = emission;
    return m;
}

} // namespace

TEST(RenderDriver, EmittersLightTheGroundAroundThem)
{
    FZScene scene;
    SetUpLampScene(scene, Lamp(0.7f, 255, 0, 0));
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);
    const Rgb near = PixelOf(*scene.frame, 22, 30);  // 3 pixels left of the lamp
    EXPECT_GT(near[0], 0);
    EXPECT_EQ(near[1] + near[2], 0);
    EXPECT_GT(PixelOf(*scene.frame, 19, 30)[0], 0);
    EXPECT_EQ(PixelOf(*scene.frame, 2, 2), (Rgb{0, 0, 0}));  // beyond radius 8 and the filter
    EXPECT_EQ(PixelOf(*scene.frame, 57, 57), (Rgb{0, 0, 0}));

    // An opaque layer between the lamp and the ground holds the light back.
    FZScene shaded;
    SetUpLampScene(shaded, Lamp(0.7f, 255, 0, 0), true);
    ASSERT_EQ(RenderScene(shaded), FZResult::Ok);
    EXPECT_EQ(PixelOf(*shaded.frame, 19, 30), (Rgb{0, 0, 0}));
}

TEST(RenderDriver, NoLightWithoutAVisibleColouredEmitter)
{
    // Emission without colour, invisible emitters, and emitters too small
    // for a radius of one pixel add nothing.
    for (const FZAttributeEx& lamp : {Lamp(0.0f, 255, 0, 0), Lamp(0.7f, 0, 0, 0), Lamp(0.005f, 255, 255, 255)}) {
        FZScene scene;
        SetUpLampScene(scene, lamp);
        ASSERT_EQ(RenderScene(scene), FZResult::Ok);
        const std::vector<std::uint8_t> before = Bytes(*scene.frame);
        EXPECT_EQ(AddEmissionLight(scene, FZRect(0, 0, 59, 59), *scene.frame), FZResult::Ok);
        EXPECT_EQ(Bytes(*scene.frame), before);
        EXPECT_EQ(PixelOf(*scene.frame, 22, 30), (Rgb{0, 0, 0}));
    }
    FZScene hidden;
    SetUpLampScene(hidden, Lamp(0.7f, 255, 255, 255));
    hidden.LayerAt(1)->visible = 0;
    ASSERT_EQ(RenderScene(hidden), FZResult::Ok);
    EXPECT_EQ(PixelOf(*hidden.frame, 22, 30), (Rgb{0, 0, 0}));
}

TEST(RenderDriver, RectanglesAreClippedToTheFrame)
{
    FZScene scene;
    SetUpCheckerScene(scene, 10, 8);
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);
    const std::vector<std::uint8_t> full = Bytes(*scene.frame);

    SetPixel(*scene.frame, 0, 0, {1, 2, 3});
    EXPECT_EQ(RenderRect(scene, FZRect(10, 0, 20, 7)), FZResult::BadParameter);
    EXPECT_EQ(RenderRect(scene, FZRect(-5, 8, 3, 9)), FZResult::BadParameter);
    EXPECT_EQ(PixelOf(*scene.frame, 0, 0), (Rgb{1, 2, 3}));  // unchanged

    // Only the part inside is drawn again.
    SetPixel(*scene.frame, 9, 7, {1, 2, 3});
    EXPECT_EQ(RenderRect(scene, FZRect(-100, -100, 0, 0)), FZResult::Ok);
    EXPECT_NE(PixelOf(*scene.frame, 0, 0), (Rgb{1, 2, 3}));
    EXPECT_EQ(PixelOf(*scene.frame, 9, 7), (Rgb{1, 2, 3}));
    EXPECT_EQ(RenderScene(scene), FZResult::Ok);
    EXPECT_EQ(Bytes(*scene.frame), full);

    FZScene empty;
    EXPECT_EQ(RenderScene(empty), FZResult::BadParameter);
    EXPECT_EQ(empty.frame, nullptr);
}

TEST(RenderDriver, LayerOperationsNeedAnExistingLayer)
{
    FZScene empty;
    EXPECT_EQ(PrepareLayer(empty, 0), FZResult::NoData);
    EXPECT_EQ(ShadeLayerAt(empty, 0), FZResult::NoData);
    FZScene scene;
    SetUpPlainScene(scene, 4, 4);
    EXPECT_EQ(PrepareLayer(scene, 1), FZResult::NoData);
    EXPECT_EQ(ShadeLayerAt(scene, -1), FZResult::NoData);
    EXPECT_EQ(PrepareLayer(scene, 0), FZResult::Ok);
    EXPECT_EQ(ShadeLayerAt(scene, 0), FZResult::Ok);
}
