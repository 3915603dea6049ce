// FZImage rows run bottom-up in blue-green-red; the canvas shows them upright.
#include <gtest/gtest.h>

#include "engine/display/canvas.h"
#include "engine/display/image_display.h"
#include "engine/image.h"
#include "engine/scene.h"

TEST(Display, FramesAreShownUpright)
{
    FZCanvas canvas;
    canvas.resize(5, 3);
    FZScene scene;
    scene.frame = std::make_unique<FZImage>();
    FZImage& image = *scene.frame;
    ASSERT_EQ(image.Create(5, 3), FZResult::Ok);  // stride 16, padded
    image.PixelAddress(0, 0)[2] = 255;
    image.PixelAddress(4, 2)[0] = 255;
    std::uint8_t* p = image.PixelAddress(2, 1);
    p[0] = 30, p[1] = 20, p[2] = 10;
    PresentFrame(scene, &canvas);
    EXPECT_EQ(canvas.Surface().pixel(0, 2), qRgb(255, 0, 0));  // data row 0 on the bottom line
    EXPECT_EQ(canvas.Surface().pixel(4, 0), qRgb(0, 0, 255));
    EXPECT_EQ(canvas.Surface().pixel(2, 1), qRgb(10, 20, 30));
}
