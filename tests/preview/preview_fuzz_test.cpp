// Records from a host or a file can hold anything. These tests render
// thousands of random ones on every shape and on frames down to 1 x 1; the
// checks are that nothing crashes or hangs and, in the sanitizer build, that
// nothing reads or computes outside what the language defines.
#include <gtest/gtest.h>

#include <cstdint>

#include "preview/preview_panel.h"
#include "preview/record_maker.h"

TEST(PreviewFuzz, RandomRecordsRenderOnEveryShape)
{
    RecordMaker records(20240611u);
    for (std::int32_t shape = 1; shape <= 4; ++shape) {
        CPreviewPanel panel;
        ASSERT_EQ(panel.SetUpFrame(16, 16), FZResult::Ok);
        ASSERT_EQ(panel.BuildSampleShape(shape), FZResult::Ok);
        for (int i = 0; i < 800; ++i) {
            ASSERT_EQ(panel.ApplyMaterial(records.Next(), records.Bind()), FZResult::Ok);
            // The sample keeps a broken material through a rebuild too.
            if (i % 100 == 99) {
                ASSERT_EQ(panel.BuildSampleShape(shape % 4 + 1), FZResult::Ok);
                ASSERT_EQ(panel.BuildSampleShape(shape), FZResult::Ok);
            }
        }
        ASSERT_NE(panel.Scene()->frame, nullptr);
    }
}

TEST(PreviewFuzz, TinyFramesRenderEveryShape)
{
    RecordMaker records(7u);
    const std::int32_t sizes[][2] = {{1, 1}, {1, 2}, {2, 1}, {2, 2}, {3, 5}, {7, 3}, {16, 1}, {1, 16}, {11, 11}};
    for (const auto& size : sizes)
        for (std::int32_t shape = 0; shape <= 5; ++shape) {
            CPreviewPanel panel;
            ASSERT_EQ(panel.SetUpFrame(size[0], size[1]), FZResult::Ok);
            ASSERT_EQ(panel.BuildSampleShape(shape), FZResult::Ok);
            ASSERT_EQ(panel.ApplyMaterial(FZAttributeEx(), 0), FZResult::Ok);
            for (int i = 0; i < 30; ++i)
                ASSERT_EQ(panel.ApplyMaterial(records.Next(), records.Bind()), FZResult::Ok);
            EXPECT_EQ(panel.Scene()->frame->width, size[0]);
            EXPECT_EQ(panel.Scene()->frame->height, size[1]);
        }
}
