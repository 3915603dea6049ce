// The sample shapes beyond what the golden frames pin (every pixel of the
// four shapes at two sizes): parameters no dialog would give, and the rows a
// shape keeps at other sizes.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>

#include "engine/render.h"
#include "engine/shading/surface.h"
#include "preview/shapes.h"

TEST(ShapeRaster, WildParametersStayInsideTheLayer)
{
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float values[] = {nan, inf, -inf, 3e38f, -3e38f, 1e9f, 0.0f, -5.0f, 2.5f};
    for (const int size : {1, 7})
        for (int n = 0; n <= 4; ++n)
            for (float cx : values)
                for (float r : values) {
                    FZLayer layer;
                    ASSERT_EQ(layer.Create(0, 0, size, size, 0.0f, FZRowLayout::Rectangle(0, 0, size, size)), FZResult::Ok);
                    DrawSampleShape(layer, n, cx, 2.0f, r);
                    DrawSampleShape(layer, n, 2.0f, cx, r);
                    AddDimple(layer, cx, 1.0f, r, cx);
                    FlattenTop(layer, r);
                }

    // A layer without rows is left alone.
    FZLayer bare;
    DrawSampleShape(bare, 1, 0.0f, 0.0f, 10.0f);
    FlattenTop(bare, 0.5f);
    EXPECT_TRUE(bare.coverage.empty());
}

// The sample keeps rows only over the pixels its shape can reach; drawn and
// prepared there, every shape must come out as it does in rows over the
// whole frame, and every covered pixel's neighbours must be held (the
// normals read them).
TEST(SampleShapeRows, HoldWhatEveryShapeCoversAndItsNeighbours)
{
    const struct {
        std::int32_t w;
        std::int32_t h;
    } frames[] = {{120, 120}, {97, 61}, {61, 97}, {301, 160}, {7, 5}};
    for (const auto& f : frames) {
        const float r = static_cast<float>(f.h / 2.3);
        const float cx = static_cast<float>(f.w * 0.5);
        const float cy = static_cast<float>(f.h * 0.5);
        for (int n = 1; n <= 4; ++n) {
            SCOPED_TRACE(::testing::Message() << f.w << "x" << f.h << " shape " << n);
            FZLayer full;
            FZLayer held;
            ASSERT_EQ(full.Create(0, 0, f.w, f.h, 10.0f, FZRowLayout::Rectangle(0, 0, f.w, f.h)), FZResult::Ok);
            ASSERT_EQ(held.Create(0, 0, f.w, f.h, 10.0f, SampleShapeRows(cx, cy, r, f.w, f.h)), FZResult::Ok);
            DrawSampleShape(full, n, cx, cy, r);
            DrawSampleShape(held, n, cx, cy, r);
            ASSERT_EQ(PrepareSurface(full), FZResult::Ok);
            ASSERT_EQ(PrepareSurface(held), FZResult::Ok);
            EXPECT_EQ((std::array{full.depthMin, full.depthMax}), (std::array{held.depthMin, held.depthMax}));
            for (std::int32_t y = 0; y < f.h; ++y)
                for (std::int32_t x = 0; x < f.w; ++x) {
                    ASSERT_EQ(full.coverage[y][x], held.CoverageAt(x, y)) << x << "," << y;
                    if (full.coverage[y][x] == 0)
                        continue;
                    for (std::int32_t ny = FZMax(y - 1, 0); ny <= FZMin(y + 1, f.h - 1); ++ny) {
                        const FZSpan row = held.StoredRow(ny);
                        ASSERT_TRUE(row.first <= FZMax(x - 1, 0) && FZMin(x + 1, f.w - 1) <= row.last) << x << "," << y;
                    }
                    ASSERT_EQ(std::memcmp(&full.depth[y][x], &held.depth[y][x], sizeof(float)), 0) << x << "," << y;
                    const FZPackedVector a = full.normals[y][x];
                    const FZPackedVector b = held.normals[y][x];
                    ASSERT_EQ((std::array{a.x, a.y, a.z}), (std::array{b.x, b.y, b.z})) << x << "," << y;
                }
        }
    }
}

TEST(SampleShapeRows, ParametersThatAreNotNumbersHoldNothing)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(SampleShapeRows(nan, 5.0f, 3.0f, 10, 10), nullptr);
    EXPECT_EQ(SampleShapeRows(5.0f, 5.0f, std::numeric_limits<float>::infinity(), 10, 10), nullptr);
    // A shape wholly beside the frame holds no pixel.
    const auto beside = SampleShapeRows(-100.0f, 5.0f, 3.0f, 10, 10);
    EXPECT_TRUE(beside == nullptr || beside->Bounds().IsEmpty());
}
