#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "engine/scene.h"
#include "engine/support/failing_allocations.h"

namespace {

const float kWhite[3] = {1.0f, 1.0f, 1.0f};

FZColor Rgb(std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    FZColor c;
    c.SetBytes(r, g, b);
    return c;
}

bool SameColor(const FZColor& a, const FZColor& b) { return a.r == b.r && a.g == b.g && a.b == b.b; }

void ExpectPacked(const FZPackedVector& v, int x, int y, int z)
{
    EXPECT_EQ(v.x, x);
    EXPECT_EQ(v.y, y);
    EXPECT_EQ(v.z, z);
}

void ExpectRect(const FZLayer& layer, int x, int y, int width, int height)
{
    EXPECT_EQ(layer.x, x);
    EXPECT_EQ(layer.y, y);
    EXPECT_EQ(layer.width, width);
    EXPECT_EQ(layer.height, height);
}

// Counts the pixels of a layer whose coverage and depth are as given.
int CountPixels(const FZLayer& layer, std::uint8_t coverage, float depth)
{
    int n = 0;
    for (int y = 0; y < layer.height; ++y)
        for (int x = 0; x < layer.width; ++x)
            n += layer.coverage[y][x] == coverage && layer.depth[y][x] == depth;
    return n;
}

// Items of a pointer array that remember who they are.
struct Tag {
    int id;
};

}  // namespace

TEST(Scene, SetUpFrameBuildsLightCameraAndGround)
{
    FZScene scene;
    ASSERT_EQ(scene.SetUpFrame(160, 120, kWhite), FZResult::Ok);
    EXPECT_EQ(scene.width, 160);
    EXPECT_EQ(scene.height, 120);
    ASSERT_EQ(scene.LightCount(), 1);
    ASSERT_EQ(scene.LayerCount(), 1);

    const FZLight& light = *scene.LightAt(0);
    EXPECT_EQ(light.type, 1);
    EXPECT_EQ(light.on, 1);
    EXPECT_FLOAT_EQ(light.intensity, 1.0f);
    float lx, ly, lz;
    light.direction.GetFloats(lx, ly, lz);
    EXPECT_NEAR(lx, 0.4 / std::sqrt(1.25), 1e-4);
    EXPECT_NEAR(ly, -0.3 / std::sqrt(1.25), 1e-4);
    EXPECT_NEAR(lz, -1.0 / std::sqrt(1.25), 1e-4);

    const float* eye = scene.camera.eye;
    EXPECT_TRUE(eye[0] == 80.0f && eye[1] == 60.0f && eye[2] == 280.0f);
    ExpectPacked(scene.camera.viewDirection, 0, 0, -30000);

    const FZLayer& ground = *scene.LayerAt(0);
    ExpectRect(ground, 0, 0, 160, 120);
    EXPECT_EQ(CountPixels(ground, 255, 0.0f), 160 * 120);
    EXPECT_EQ(ground.GetColorSource(), 0);
    EXPECT_EQ(ground.IsVisible(), 1);
    EXPECT_FLOAT_EQ(ground.baseDepth, 0.0f);
    EXPECT_TRUE(SameColor(ground.material.color, Rgb(255, 255, 255)));
    // The list holds a copy, which the surface preparation has not seen yet.
    EXPECT_EQ(ground.normals, nullptr);
    EXPECT_NE(ground.colors, nullptr);
}

TEST(Scene, GroundTakesTheBackgroundColourAsMaterial)
{
    FZScene scene;
    const float blue[3] = {0.1f, 0.4f, 0.6f};
    ASSERT_EQ(scene.SetUpFrame(8, 8, blue), FZResult::Ok);
    EXPECT_TRUE(SameColor(scene.LayerAt(0)->material.color, Rgb(25, 102, 153)));
}

TEST(Scene, LayerListOperations)
{
    FZScene scene;
    ASSERT_EQ(scene.SetUpFrame(160, 120, kWhite), FZResult::Ok);

    ASSERT_EQ(scene.AddFullFrameLayer(), FZResult::Ok);
    const FZLayer* added = scene.LayerAt(1);
    ASSERT_NE(added, nullptr);
    EXPECT_FLOAT_EQ(added->baseDepth, 10.0f);
    ExpectRect(*added, 0, 0, 160, 120);
    EXPECT_EQ(CountPixels(*added, 0, 0.0f), 160 * 120);
    EXPECT_EQ(added->GetColorSource(), 1);

    FZLayer small;
    ASSERT_EQ(small.Create(3, 4, 5, 6, 2.5f), FZResult::Ok);
    EXPECT_EQ(scene.InsertLayer(small, -1), FZResult::Ok);
    ASSERT_EQ(scene.LayerCount(), 3);
    EXPECT_EQ(scene.LayerAt(0)->width, 5);
    EXPECT_EQ(scene.LayerAt(0)->x, 3);
    EXPECT_EQ(scene.LayerAt(1)->width, 160);
    EXPECT_NE(scene.LayerAt(0), &small);

    EXPECT_EQ(scene.InsertLayer(small, 3), FZResult::BadParameter);
    EXPECT_EQ(scene.InsertLayer(small, -2), FZResult::BadParameter);
    EXPECT_EQ(scene.LayerCount(), 3);
    EXPECT_EQ(scene.AddLayer(small), FZResult::Ok);
    EXPECT_EQ(scene.AddLayerRect(1, 2, 3, 4), FZResult::Ok);
    EXPECT_EQ(scene.LayerAt(4)->y, 2);

    scene.RemoveLayer(0);
    EXPECT_EQ(scene.LayerCount(), 4);
    EXPECT_EQ(scene.LayerAt(0)->width, 160);
    scene.RemoveLayer(4);
    scene.RemoveLayer(-1);
    EXPECT_EQ(scene.LayerCount(), 4);
    EXPECT_EQ(scene.LayerAt(4), nullptr);
    EXPECT_EQ(scene.LayerAt(-1), nullptr);
}

TEST(Scene, WithoutListsEveryListOperationRefuses)
{
    FZScene never;
    FZLayer layer;
    EXPECT_EQ(never.AddLayer(layer), FZResult::NoData);
    EXPECT_EQ(never.InsertLayer(layer, -1), FZResult::NoData);
    EXPECT_EQ(never.AddLayerRect(0, 0, 1, 1), FZResult::NoData);
    EXPECT_EQ(never.LayerCount(), 0);
    EXPECT_EQ(never.LightCount(), 0);
    EXPECT_EQ(never.LayerAt(0), nullptr);
    never.RemoveLayer(0);

    FZScene cleared;
    ASSERT_EQ(cleared.SetUpFrame(4, 3, kWhite), FZResult::Ok);
    cleared.frame = new FZImage;
    cleared.behind = new FZImage;
    ASSERT_EQ(cleared.frame->Create(4, 3, 3, 0), FZResult::Ok);
    cleared.background[0] = 0.5f;
    cleared.Clear();
    EXPECT_EQ(cleared.frame, nullptr);
    EXPECT_EQ(cleared.behind, nullptr);
    EXPECT_EQ(cleared.width, 0);
    EXPECT_EQ(cleared.height, 0);
    EXPECT_EQ(cleared.AddFullFrameLayer(), FZResult::NoData);
    EXPECT_EQ(cleared.LightAt(0), nullptr);
    // What Clear leaves alone.
    EXPECT_FLOAT_EQ(cleared.background[0], 0.5f);
    EXPECT_FLOAT_EQ(cleared.layerDepth, 10.0f);
    EXPECT_FLOAT_EQ(cleared.camera.eye[2], 7.0f);

    // An empty list takes its first layer at the front.
    ASSERT_EQ(cleared.Create(2, 2), FZResult::Ok);
    EXPECT_EQ(cleared.AddLayer(layer), FZResult::Ok);
}

TEST(Scene, OddFrameSizes)
{
    FZScene scene;
    const float wild[3] = {std::nanf(""), -1e30f, std::numeric_limits<float>::infinity()};
    ASSERT_EQ(scene.SetUpFrame(1, 1, wild), FZResult::Ok);
    EXPECT_EQ(scene.AddFullFrameLayer(), FZResult::Ok);
    EXPECT_EQ(scene.LayerAt(1)->CompositeSample(0, 0, 1.0f, 255, Rgb(1, 2, 3)), 2);

    ASSERT_EQ(scene.SetUpFrame(0, 0, kWhite), FZResult::Ok);
    EXPECT_EQ(scene.LayerCount(), 1);
    EXPECT_EQ(scene.LayerAt(0)->width, 0);

    // Frames too large to hold are refused before anything is allocated.
    EXPECT_EQ(scene.SetUpFrame(100000, 100000, kWhite), FZResult::OutOfMemory);
    EXPECT_EQ(scene.LayerCount(), 0);
    ASSERT_EQ(scene.SetUpFrame(2, 2, kWhite), FZResult::Ok);
    EXPECT_EQ(scene.AddLayerRect(0, 0, 1, INT32_MAX), FZResult::OutOfMemory);
    EXPECT_EQ(scene.LayerCount(), 1);

    EXPECT_EQ(scene.SetUpFrame(-1, 5, kWhite), FZResult::BadParameter);
    EXPECT_EQ(scene.LayerCount(), 0);
    EXPECT_EQ(scene.width, 0);
    ASSERT_EQ(scene.Create(4, 4), FZResult::Ok);
    EXPECT_EQ(scene.AddLayerRect(0, 0, 3, -2), FZResult::BadParameter);
    EXPECT_EQ(scene.LayerCount(), 0);
}

TEST(PtrArray, GrowsByTenAndKeepsOrder)
{
    FZPtrArray<Tag> array;
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(array.Append(new Tag{i}), i);
    EXPECT_EQ(array.capacity, 10);
    EXPECT_EQ(array.Append(new Tag{10}), 10);
    EXPECT_EQ(array.capacity, 20);
    EXPECT_EQ(array.count, 11);

    EXPECT_EQ(array.InsertAfter(new Tag{-1}, -1), 0);
    EXPECT_EQ(array.InsertAfter(new Tag{100}, 5), 0);
    EXPECT_EQ(array.At(0)->id, -1);
    EXPECT_EQ(array.At(6)->id, 100);
    EXPECT_EQ(array.At(7)->id, 5);
    EXPECT_EQ(array.At(12)->id, 10);
    Tag outsider{7};
    EXPECT_EQ(array.InsertAfter(&outsider, 13), -4);
    EXPECT_EQ(array.InsertAfter(&outsider, -2), -4);

    array.RemoveAt(6);
    EXPECT_EQ(array.At(6)->id, 5);
    array.RemoveAt(12);
    array.RemoveAt(-1);
    EXPECT_EQ(array.count, 12);
    EXPECT_EQ(array.At(12), nullptr);
    EXPECT_EQ(array.At(-1), nullptr);
}

TEST(Layer, FillCheckerLaysCellsFromTheOrigin)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 25, 15, 0.0f), FZResult::Ok);
    const FZColor white = Rgb(255, 255, 255);
    const FZColor blue = Rgb(25, 102, 153);
    layer.FillChecker(10, 10, white, blue);
    for (int y = 0; y < 15; ++y)
        for (int x = 0; x < 25; ++x) {
            const bool odd = (x / 10 + y / 10) % 2 == 1;
            ASSERT_TRUE(SameColor(layer.colors[y][x], odd ? white : blue)) << x << "," << y;
        }

    // Cells below one pixel are refused and change nothing.
    layer.FillChecker(0, 10, blue, blue);
    layer.FillChecker(10, -3, blue, blue);
    EXPECT_TRUE(SameColor(layer.colors[0][10], white));
    // Cells larger than the layer leave it in one colour.
    layer.FillChecker(std::numeric_limits<std::int32_t>::max(), 1000, white, blue);
    EXPECT_TRUE(SameColor(layer.colors[14][24], blue));

    layer.ClearColors();
    EXPECT_TRUE(layer.colors[14][24].IsBlack());
    layer.FillColorRect(FZRect(-100, 13, 100, 1000), white);
    EXPECT_TRUE(SameColor(layer.colors[13][0], white));
    EXPECT_TRUE(SameColor(layer.colors[14][24], white));
    EXPECT_TRUE(layer.colors[12][0].IsBlack());
    FZRect empty;
    layer.FillColorRect(empty, blue);
    layer.FillColorRect(FZRect(30, 0, 40, 5), blue);
    EXPECT_TRUE(layer.colors[0][24].IsBlack());
}

TEST(Layer, CompositeSampleCodes)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 4, 4, 0.0f), FZResult::Ok);
    const FZColor red = Rgb(255, 0, 0);
    const FZColor green = Rgb(0, 255, 0);

    EXPECT_EQ(layer.CompositeSample(0, 0, 5.0f, 0, red), 0);
    EXPECT_EQ(layer.coverage[0][0], 0);
    EXPECT_EQ(layer.CompositeSample(0, 0, 5.0f, 255, red), 2);
    EXPECT_EQ(layer.coverage[0][0], 255);
    EXPECT_FLOAT_EQ(layer.depth[0][0], 5.0f);
    EXPECT_TRUE(SameColor(layer.colors[0][0], red));
    EXPECT_EQ(layer.CompositeSample(0, 0, 4.0f, 255, green), 1);
    EXPECT_EQ(layer.CompositeSample(0, 0, 9.0f, 0, green), 1);
    EXPECT_FLOAT_EQ(layer.depth[0][0], 5.0f);
    EXPECT_EQ(layer.CompositeSample(0, 0, 6.0f, 255, green), 2);
    EXPECT_TRUE(SameColor(layer.colors[0][0], green));

    // Half over half at the same depth: the shared part goes to the sample.
    EXPECT_EQ(layer.CompositeSample(1, 0, 2.0f, 128, red), 2);
    EXPECT_EQ(layer.CompositeSample(1, 0, 2.0f, 128, green), 3);
    EXPECT_EQ(layer.coverage[0][1], 191);
    EXPECT_FLOAT_EQ(layer.depth[0][1], 2.0f);
    EXPECT_EQ(layer.colors[0][1].g, 170);  // 0.50196 / 0.75196 of green
    EXPECT_EQ(layer.colors[0][1].r, 84);   // 0.24999 / 0.75196 of red

    // A thin sample behind a half-covered pixel only fills the uncovered part.
    EXPECT_EQ(layer.CompositeSample(2, 0, 8.0f, 128, red), 2);
    EXPECT_EQ(layer.CompositeSample(2, 0, 0.0f, 255, green), 3);
    EXPECT_EQ(layer.coverage[0][2], 255);
    EXPECT_NEAR(layer.depth[0][2], 8.0f * 128 / 255, 1e-5);

    // Outside the layer nothing is touched.
    EXPECT_EQ(layer.CompositeSample(4, 0, 1.0f, 255, red), 0);
    EXPECT_EQ(layer.CompositeSample(0, -1, 1.0f, 255, red), 0);

    // A NaN depth blends without harm.
    EXPECT_EQ(layer.CompositeSample(3, 0, 1.0f, 100, red), 2);
    EXPECT_EQ(layer.CompositeSample(3, 0, std::nanf(""), 100, red), 3);
    EXPECT_LE(layer.coverage[0][3], 255);
}

TEST(Layer, FillDepthCoversEverything)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 3, 2, 0.0f), FZResult::Ok);
    layer.FillDepth(-1.5f);
    EXPECT_EQ(CountPixels(layer, 255, -1.5f), 6);
    FZLayer empty;
    empty.FillDepth(1.0f);
    empty.ClearColors();
    EXPECT_EQ(empty.CompositeSample(0, 0, 1.0f, 255, FZColor()), 0);
}

TEST(Layer, AssignCopiesDeeplyButNotTheShading)
{
    FZLayer source;
    ASSERT_EQ(source.Create(2, 3, 4, 5, 10.0f), FZResult::Ok);
    source.FillDepth(7.0f);
    source.colors[1][2] = Rgb(9, 8, 7);
    source.SetColorSource(0);
    FZAttributeEx m;
    m.color.SetBytes(1, 2, 3);
    source.SetMaterial(m);
    source.highlight = FZNewRows<float>(4, 5);
    source.shaded = new FZImage;
    source.boundsX1 = 3;
    source.depthMax = 7.0f;

    FZLayer copy;
    ASSERT_EQ(copy.Create(0, 0, 9, 9, 0.0f), FZResult::Ok);
    ASSERT_EQ(copy.Assign(source), FZResult::Ok);
    ExpectRect(copy, 2, 3, 4, 5);
    EXPECT_FLOAT_EQ(copy.baseDepth, 10.0f);
    EXPECT_EQ(CountPixels(copy, 255, 7.0f), 20);
    EXPECT_TRUE(SameColor(copy.colors[1][2], Rgb(9, 8, 7)));
    EXPECT_EQ(copy.GetColorSource(), 0);
    EXPECT_EQ(copy.IsVisible(), 1);
    FZAttributeEx back;
    copy.GetMaterial(back);
    EXPECT_TRUE(SameColor(back.color, Rgb(1, 2, 3)));
    EXPECT_TRUE(copy.normals == nullptr && copy.shaded == nullptr && copy.highlight == nullptr);
    EXPECT_EQ(copy.boundsX1, 0);
    EXPECT_FLOAT_EQ(copy.depthMax, 0.0f);

    copy.depth[0][0] = 1.0f;
    EXPECT_FLOAT_EQ(source.depth[0][0], 7.0f);
    ASSERT_EQ(source.Assign(source), FZResult::Ok);
    EXPECT_NE(source.shaded, nullptr);
    EXPECT_NE(source.normals, nullptr);

    source.Release();
    EXPECT_TRUE(source.highlight == nullptr && source.shaded == nullptr && source.coverage == nullptr);
    EXPECT_EQ(source.width, 0);
    EXPECT_FLOAT_EQ(source.baseDepth, 0.0f);
    // Copying an empty layer gives an empty layer.
    ASSERT_EQ(copy.Assign(source), FZResult::Ok);
    EXPECT_EQ(copy.coverage, nullptr);
    EXPECT_EQ(copy.width, 0);
}

TEST(Light, SetDirectionalHoldsIntensityWithinRange)
{
    FZLight light;
    const float down[3] = {0.0f, 0.0f, -2.0f};
    const float rgb[3] = {0.5f, 1.0f, 0.25f};
    light.SetDirectional(1.5f, down, rgb);
    EXPECT_FLOAT_EQ(light.intensity, 1.0f);
    EXPECT_EQ(light.direction.z, -30000);
    light.SetDirectional(-0.2f, down, rgb);
    EXPECT_FLOAT_EQ(light.intensity, 0.0f);
    light.SetDirectional(std::nanf(""), down, rgb);
    EXPECT_FLOAT_EQ(light.intensity, 0.0f);

    light.SetDirectional(0.5f, down, rgb);
    float c[3];
    FZPackedVector d;
    light.Evaluate(1.0f, 2.0f, 3.0f, c, d);
    EXPECT_TRUE(c[0] == 0.25f && c[1] == 0.5f && c[2] == 0.125f);
    EXPECT_EQ(d.z, -30000);
    light.type = 2;
    light.Evaluate(1.0f, 2.0f, 3.0f, c, d);
    EXPECT_FLOAT_EQ(c[0] + c[1] + c[2], 0.0f);

    // Directions that cannot be normalised give a defined vector.
    const float inf = std::numeric_limits<float>::infinity();
    const float wild[3] = {inf, std::nanf(""), -inf};
    light.SetDirectional(1.0f, wild, rgb);
    EXPECT_EQ(light.type, 1);
}

TEST(Camera, ViewDirectionFollowsEyeAndTarget)
{
    FZCamera camera;
    EXPECT_EQ(camera.viewDirection.z, -30000);
    camera.SetEye(0.0f, 0.0f, 0.0f);
    camera.SetTarget(3.0f, 0.0f, 4.0f);
    FZPackedVector v;
    camera.ViewDirection(v);
    ExpectPacked(v, 18000, 0, 24000);
}

TEST(OutOfMemory, PtrArrayStaysUnchanged)
{
    FZPtrArray<Tag> array;
    for (int i = 0; i < 10; ++i)
        array.Append(new Tag{i});
    Tag* extra = new Tag{10};
    {
        FailingAllocations failing(0);
        EXPECT_EQ(array.Append(extra), -2);
        EXPECT_EQ(array.InsertAfter(extra, -1), -2);
    }
    EXPECT_EQ(array.count, 10);
    EXPECT_EQ(array.capacity, 10);
    EXPECT_EQ(array.At(0)->id, 0);
    EXPECT_EQ(array.Append(extra), 10);
}

TEST(OutOfMemory, LayersAreNeverHalfBuilt)
{
    FZLayer source;
    ASSERT_EQ(source.Create(0, 0, 6, 4, 1.0f), FZResult::Ok);
    FZLayer layer;
    FZResult created = FZResult::Ok, assigned = FZResult::Ok;
    FailEachAllocationInTurn(
        [&] {
            created = layer.Create(0, 0, 6, 4, 1.0f);
            assigned = created == FZResult::Ok ? layer.Assign(source) : FZResult::Ok;
        },
        [&](bool refused) {
            if (!refused) {
                EXPECT_TRUE(created == FZResult::Ok && assigned == FZResult::Ok);
                return;
            }
            EXPECT_TRUE(created == FZResult::OutOfMemory || assigned == FZResult::OutOfMemory);
            EXPECT_EQ(layer.width, 0);
            EXPECT_TRUE(layer.coverage == nullptr && layer.depth == nullptr && layer.colors == nullptr);
        });
}

TEST(OutOfMemory, SceneAddsNothingWhenACopyFails)
{
    FZScene scene;
    ASSERT_EQ(scene.SetUpFrame(5, 5, kWhite), FZResult::Ok);
    FZResult result = FZResult::Ok;
    FailEachAllocationInTurn([&] { result = scene.AddFullFrameLayer(); },
                             [&](bool refused) {
                                 EXPECT_EQ(result, refused ? FZResult::OutOfMemory : FZResult::Ok);
                                 EXPECT_EQ(scene.LayerCount(), refused ? 1 : 2);
                             });

    FZScene fresh;
    FailEachAllocationInTurn([&] { result = fresh.SetUpFrame(3, 2, kWhite); },
                             [&](bool refused) {
                                 EXPECT_EQ(result, refused ? FZResult::OutOfMemory : FZResult::Ok);
                                 EXPECT_EQ(fresh.LayerCount(), refused ? 0 : 1);
                             });
}
