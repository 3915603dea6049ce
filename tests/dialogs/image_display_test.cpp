// The display step: FZImage rows (bottom-up, blue-green-red) shown upright in
// a canvas.
#include <gtest/gtest.h>

#include "engine/display/canvas.h"
#include "engine/display/image_display.h"
#include "engine/image.h"
#include "engine/scene.h"

namespace {

// A 5 x 3 image (stride 16, padded): red bottom-left, blue top-right.
void MakeMarked(FZImage& image)
{
    ASSERT_EQ(image.Create(5, 3, 3), FZResult::Ok);
    image.PixelAddress(0, 0)[2] = 255;
    image.PixelAddress(4, 2)[0] = 255;
    std::uint8_t* p = image.PixelAddress(2, 1);
    p[0] = 30, p[1] = 20, p[2] = 10;
}

TEST(Display, BitmapsAndFramesAreShownUpright)
{
    FZImage image;
    MakeMarked(image);
    const QImage bitmap = MakeBitmap(image);
    ASSERT_EQ(bitmap.size(), QSize(5, 3));
    EXPECT_EQ(bitmap.pixel(0, 2), qRgb(255, 0, 0));  // data row 0 on the bottom line
    EXPECT_EQ(bitmap.pixel(2, 1), qRgb(10, 20, 30));
    FZImage grey;
    ASSERT_EQ(grey.Create(2, 2, 1), FZResult::Ok);
    EXPECT_TRUE(MakeBitmap(grey).isNull());
    EXPECT_TRUE(MakeBitmap(FZImage()).isNull());

    FZCanvas canvas;
    canvas.resize(5, 3);
    QWidget plain;
    FZScene scene;
    PresentFrame(scene, &canvas);  // no frame yet
    scene.frame = std::make_unique<FZImage>();
    PresentFrame(scene, &canvas);  // a frame without pixels
    MakeMarked(*scene.frame);
    PresentFrame(scene, &plain);  // not a canvas
    EXPECT_TRUE(canvas.Surface().isNull());
    PresentFrame(scene, &canvas);
    EXPECT_EQ(canvas.Surface().pixel(4, 0), qRgb(0, 0, 255));  // the top row on line 0
    EXPECT_EQ(canvas.Surface().pixel(0, 2), qRgb(255, 0, 0));
}

} // namespace
