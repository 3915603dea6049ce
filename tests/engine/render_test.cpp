#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "engine/render.h"

namespace {

const float kWhite[3] = {1.0f, 1.0f, 1.0f};

std::vector<std::uint8_t> Bytes(const FZImage& image)
{
    return {image.data.data(), image.data.data() + image.data.size()};
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

// A scene with its ground (white, default material) prepared and shaded.
void SetUpPlainScene(FZScene& scene, int w, int h)
{
    ASSERT_EQ(scene.SetUpFrame(w, h, kWhite), FZResult::Ok);
    ASSERT_EQ(PrepareLayer(scene, 0), FZResult::Ok);
    ASSERT_EQ(ShadeLayerAt(scene, 0), FZResult::Ok);
}

} // namespace

TEST(RenderDriver, RectanglesAreClippedToTheFrameAndMissingLayersRefused)
{
    FZScene scene;
    SetUpPlainScene(scene, 10, 8);
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);
    const std::vector<std::uint8_t> full = Bytes(*scene.frame);

    std::uint8_t& first = *scene.frame->PixelAddress(0, 0);
    std::uint8_t& last = *scene.frame->PixelAddress(9, 7);
    first = 7;
    EXPECT_EQ(RenderRect(scene, FZRect(10, 0, 20, 7)), FZResult::BadParameter);
    EXPECT_EQ(RenderRect(scene, FZRect(-5, 8, 3, 9)), FZResult::BadParameter);
    EXPECT_EQ(first, 7);  // unchanged

    // Only the part inside is drawn again.
    last = 7;
    EXPECT_EQ(RenderRect(scene, FZRect(-100, -100, 0, 0)), FZResult::Ok);
    EXPECT_NE(first, 7);
    EXPECT_EQ(last, 7);
    EXPECT_EQ(RenderScene(scene), FZResult::Ok);
    EXPECT_EQ(Bytes(*scene.frame), full);

    // Layers that are not there are refused.
    EXPECT_EQ(PrepareLayer(scene, 1), FZResult::NoData);
    EXPECT_EQ(ShadeLayerAt(scene, -1), FZResult::NoData);
    FZScene empty;
    EXPECT_EQ(RenderScene(empty), FZResult::BadParameter);
    EXPECT_EQ(empty.frame, nullptr);
    EXPECT_EQ(PrepareLayer(empty, 0), FZResult::NoData);
    EXPECT_EQ(ShadeLayerAt(empty, 0), FZResult::NoData);
}


namespace {

// The frame of a 23 x 17 scene whose ground has the material (a checker of
// two colours when checker is set), with an emitting patch on it, the
// ground flat or with its rows.
std::vector<std::uint8_t> GroundFrame(const FZAttributeEx& material, bool checker, bool rows)
{
    FZScene scene;
    EXPECT_EQ(scene.SetUpFrame(23, 17, kWhite), FZResult::Ok);
    FZLayer& ground = *scene.LayerAt(0);
    ground.SetMaterial(material);
    if (checker) {
        FZColor a;
        FZColor b;
        a.SetBytes(240, 200, 40);
        b.SetBytes(20, 60, 180);
        ground.FillChecker(4, 3, a, b);
        ground.SetColorSource(1);
    }
    if (rows) {
        EXPECT_EQ(ground.MakeRows(), FZResult::Ok);
    }
    EXPECT_EQ(scene.AddLayerRect(6, 5, 5, 4, FZRowLayout::Rectangle(0, 0, 5, 4)), FZResult::Ok);
    FZLayer& patch = *scene.LayerAt(1);
    patch.FillDepth(0.0f);
    patch.material.emission = 0.5f;
    patch.material.color.SetBytes(255, 40, 0);
    for (std::int32_t i = 0; i < 2; ++i) {
        EXPECT_EQ(PrepareLayer(scene, i), FZResult::Ok);
        EXPECT_EQ(ShadeLayerAt(scene, i), FZResult::Ok);
    }
    EXPECT_EQ(RenderScene(scene), FZResult::Ok);
    return Bytes(*scene.frame);
}

} // namespace

// The ground keeps no rows; whatever its material, it must look as it does
// with them.
TEST(RenderDriver, AFlatGroundLooksAsItsRowsWould)
{
    FZAttributeEx lit = Matte(255, 255, 255, 0.2f);
    lit.diffuse = 0.7f;
    FZAttributeEx shiny;
    FZAttributeEx mirror = lit;
    mirror.reflection = 0.5f;
    FZAttributeEx clear = lit;
    clear.transparency = 0.6f;
    FZAttributeEx wild = lit;
    wild.diffuse = std::numeric_limits<float>::quiet_NaN();
    const struct {
        const char* name;
        FZAttributeEx material;
    } materials[] = {{"matte", Matte(90, 200, 30)}, {"lit", lit}, {"highlight", shiny}, {"mirror", mirror},
                     {"clear", clear}, {"wild", wild}};
    for (const auto& m : materials)
        for (const bool checker : {false, true})
            EXPECT_EQ(GroundFrame(m.material, checker, false), GroundFrame(m.material, checker, true))
                << m.name << (checker ? " checker" : " one colour");
}

// A large reflecting layer looks its sky up in a table while the frame is
// made; the scene must not keep it, nor the image behind a refracting one.
TEST(RenderDriver, AFrameKeepsNoWorkMemory)
{
    FZScene scene;
    SetUpPlainScene(scene, 400, 400);
    ASSERT_EQ(scene.AddLayerRect(0, 0, 400, 400, FZRowLayout::Rectangle(0, 0, 400, 400)), FZResult::Ok);
    FZLayer& layer = *scene.LayerAt(1);
    layer.FillDepth(0.0f);
    layer.material.reflection = 0.8f;
    layer.material.transparency = 0.5f;
    ASSERT_EQ(PrepareLayer(scene, 1), FZResult::Ok);
    ASSERT_EQ(ShadeLayerAt(scene, 1), FZResult::Ok);
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);
    const std::vector<std::uint8_t> first = Bytes(*scene.frame);
    EXPECT_TRUE(scene.environment.skyTable.empty());
    EXPECT_EQ(scene.environment.skyTable.capacity(), 0u);
    EXPECT_EQ(scene.behind, nullptr);
    // The next frame builds the table again and shows the same.
    ASSERT_EQ(RenderScene(scene), FZResult::Ok);
    EXPECT_EQ(Bytes(*scene.frame), first);
}
