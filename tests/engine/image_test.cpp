// Pixel buffers: row padding, pixel addressing, and refusing what cannot be
// allocated without leaving a half-made image behind.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "engine/image.h"

namespace {

void ExpectEmpty(const FZImage& image)
{
    EXPECT_EQ(image.data, nullptr);
    EXPECT_EQ(image.palette, nullptr);
    EXPECT_EQ(image.name, nullptr);
    EXPECT_EQ(image.width, 0);
    EXPECT_EQ(image.height, 0);
    EXPECT_EQ(image.bytesPerPixel, 0);
    EXPECT_EQ(image.stride, 0);
    EXPECT_EQ(image.paletteCount, 0);
    EXPECT_EQ(image.dataSize, 0);
}

} // namespace

TEST(Image, RowsArePaddedToFourBytesAndZeroed)
{
    FZImage image;
    ExpectEmpty(image);

    ASSERT_EQ(image.Create(5, 2, 3, 0), FZResult::Ok);
    EXPECT_EQ(image.width, 5);
    EXPECT_EQ(image.height, 2);
    EXPECT_EQ(image.bytesPerPixel, 3);
    EXPECT_EQ(image.stride, 16);
    EXPECT_EQ(image.dataSize, 32);
    EXPECT_EQ(image.palette, nullptr);
    ASSERT_NE(image.data, nullptr);
    EXPECT_TRUE(std::all_of(image.data, image.data + 32, [](std::uint8_t b) { return b == 0; }));

    ASSERT_EQ(image.Create(4, 1, 3, 0), FZResult::Ok);
    EXPECT_EQ(image.stride, 12);
    EXPECT_EQ(image.dataSize, 12);

    ASSERT_EQ(image.Create(3, 3, 1, 256), FZResult::Ok);
    EXPECT_EQ(image.stride, 4);
    EXPECT_EQ(image.paletteCount, 256);
    EXPECT_NE(image.palette, nullptr);
}

TEST(Image, PixelAddressCountsRowsFromTheBottom)
{
    FZImage image;
    ASSERT_EQ(image.Create(5, 2, 3, 0), FZResult::Ok);
    EXPECT_EQ(image.PixelAddress(0, 0), image.data);
    EXPECT_EQ(image.PixelAddress(4, 0), image.data + 12);
    EXPECT_EQ(image.PixelAddress(1, 1), image.data + 16 + 3);

    std::uint8_t* top = image.PixelAddress(2, 1);
    top[0] = 10;  // blue, green, red
    top[1] = 20;
    top[2] = 30;
    const FZImage& view = image;
    EXPECT_EQ(view.PixelAddress(2, 1)[2], 30);
    EXPECT_EQ(image.data[16 + 6], 10);
}

TEST(Image, CreateReplacesAndFreeEmpties)
{
    FZImage image;
    ASSERT_EQ(image.Create(8, 8, 3, 0), FZResult::Ok);
    image.name = new char[6];
    std::strcpy(image.name, "frame");
    image.data[0] = 99;

    ASSERT_EQ(image.Create(2, 2, 3, 0), FZResult::Ok);  // name and old pixels released
    EXPECT_EQ(image.name, nullptr);
    EXPECT_EQ(image.data[0], 0);
    EXPECT_EQ(image.dataSize, 16);

    image.Free();
    ExpectEmpty(image);
    image.Free();
    ExpectEmpty(image);

    ASSERT_EQ(image.Create(0, 5, 3, 0), FZResult::Ok);  // nothing to allocate
    EXPECT_EQ(image.data, nullptr);
    EXPECT_EQ(image.dataSize, 0);
}

TEST(Image, ImpossibleSizesAreRefusedAndLeaveTheImageEmpty)
{
    FZImage image;
    ASSERT_EQ(image.Create(4, 4, 3, 0), FZResult::Ok);
    EXPECT_EQ(image.Create(1 << 30, 1 << 30, 3, 0), FZResult::OutOfMemory);
    ExpectEmpty(image);

    ASSERT_EQ(image.Create(4, 4, 3, 0), FZResult::Ok);
    EXPECT_EQ(image.Create(INT32_MAX, INT32_MAX, 4, 0), FZResult::OutOfMemory);
    ExpectEmpty(image);
    EXPECT_EQ(image.Create(INT32_MAX, 1, 3, 0), FZResult::OutOfMemory);
    ExpectEmpty(image);
    EXPECT_EQ(image.Create(40000, 20000, 3, 0), FZResult::OutOfMemory);  // 2.4 GB
    ExpectEmpty(image);

    EXPECT_EQ(image.Create(-1, 5, 3, 0), FZResult::BadParameter);
    EXPECT_EQ(image.Create(5, INT32_MIN, 3, 0), FZResult::BadParameter);
    EXPECT_EQ(image.Create(5, 5, 0, 0), FZResult::BadParameter);
    EXPECT_EQ(image.Create(5, 5, 3, -1), FZResult::BadParameter);
    EXPECT_EQ(image.Create(5, 5, 1, 257), FZResult::BadParameter);
    ExpectEmpty(image);
}
