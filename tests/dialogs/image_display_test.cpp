// The display step: FZImage rows (bottom-up, blue-green-red) shown upright in
// a canvas, rectangles placed by their image coordinates.
#include <QTest>
#include <gtest/gtest.h>

#include "engine/display/canvas.h"
#include "engine/display/image_display.h"
#include "engine/image.h"
#include "engine/scene.h"
#include "preview/preview_panel.h"

namespace {

void SetPixel(FZImage& image, int x, int y, std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    std::uint8_t* p = image.PixelAddress(x, y);
    p[0] = b;
    p[1] = g;
    p[2] = r;
}

// A 5 x 3 image (stride 16, padded) with a marked bottom-left and top-right.
void MakeMarked(FZImage& image)
{
    ASSERT_EQ(image.Create(5, 3, 3), FZResult::Ok);
    SetPixel(image, 0, 0, 255, 0, 0);   // bottom row in the data
    SetPixel(image, 4, 2, 0, 0, 255);   // top row
    SetPixel(image, 2, 1, 10, 20, 30);
}

TEST(MakeBitmap, ShowsTheBottomUpRowsUpright)
{
    FZImage image;
    MakeMarked(image);
    const QImage bitmap = MakeBitmap(image);
    ASSERT_EQ(bitmap.size(), QSize(5, 3));
    EXPECT_EQ(bitmap.pixel(0, 2), qRgb(255, 0, 0));  // data row 0 on the bottom line
    EXPECT_EQ(bitmap.pixel(4, 0), qRgb(0, 0, 255));
    EXPECT_EQ(bitmap.pixel(2, 1), qRgb(10, 20, 30)); // channels in their places
    EXPECT_EQ(bitmap.pixel(1, 1), qRgb(0, 0, 0));

    FZImage empty;
    EXPECT_TRUE(MakeBitmap(empty).isNull());
    FZImage grey;
    ASSERT_EQ(grey.Create(2, 2, 1), FZResult::Ok);
    EXPECT_TRUE(MakeBitmap(grey).isNull());
}

TEST(Draw, CopiesTheRectangleToTheSamePlace)
{
    FZImage image;
    MakeMarked(image);
    FZCanvas canvas;
    canvas.resize(5, 3);
    QImage white(5, 3, QImage::Format_RGB888);
    white.fill(Qt::white);
    canvas.Blit(white, white.rect(), QPoint(0, 0));

    // Only the top row: y1 = height - 1 lands on device line 0.
    Draw(image, &canvas, 0, 2, 4, 2);
    EXPECT_EQ(canvas.Surface().pixel(4, 0), qRgb(0, 0, 255));
    EXPECT_EQ(canvas.Surface().pixel(0, 2), qRgb(255, 255, 255));  // untouched

    Draw(image, &canvas, 0, 0, 4, 2);
    EXPECT_EQ(canvas.Surface().pixel(0, 2), qRgb(255, 0, 0));
    EXPECT_EQ(canvas.Surface().pixel(2, 1), qRgb(10, 20, 30));
}

TEST(Draw, IgnoresWhatCannotBeDrawn)
{
    FZImage image;
    MakeMarked(image);
    FZCanvas canvas;
    canvas.resize(5, 3);
    Draw(image, nullptr, 0, 0, 4, 2);
    QWidget plain;
    Draw(image, &plain, 0, 0, 4, 2);
    Draw(image, &canvas, 3, 0, 1, 2);  // empty rectangle
    EXPECT_TRUE(canvas.Surface().isNull());
    FZImage empty;
    Draw(empty, &canvas, 0, 0, 4, 2);
    EXPECT_TRUE(canvas.Surface().isNull());

    // Corners far outside are clipped to the image.
    Draw(image, &canvas, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX);
    EXPECT_EQ(canvas.Surface().pixel(0, 2), qRgb(255, 0, 0));
}

TEST(PresentFrame, DrawsTheWholeFrameOrNothing)
{
    FZScene scene;
    FZCanvas canvas;
    canvas.resize(5, 3);
    PresentFrame(scene, &canvas);  // no frame yet
    EXPECT_TRUE(canvas.Surface().isNull());
    scene.frame = std::make_unique<FZImage>();
    MakeMarked(*scene.frame);
    PresentFrame(scene, &canvas);
    EXPECT_EQ(canvas.Surface().pixel(4, 0), qRgb(0, 0, 255));
    EXPECT_EQ(canvas.Surface().pixel(0, 2), qRgb(255, 0, 0));
}

TEST(PreviewPanelOnAControl, TakesTheControlsSizeAndDrawsIntoIt)
{
    CPreviewPanel panel;
    FZCanvas canvas;
    canvas.resize(40, 40);
    panel.Present(&canvas);  // before the set-up: nothing, no failure
    EXPECT_TRUE(canvas.Surface().isNull());
    EXPECT_EQ(panel.SetUp(nullptr), FZResult::Ok);
    EXPECT_EQ(panel.Scene(), nullptr);

    ASSERT_EQ(panel.SetUp(&canvas), FZResult::Ok);
    ASSERT_NE(panel.Scene(), nullptr);
    EXPECT_EQ(panel.Scene()->width, 40);
    EXPECT_EQ(panel.Scene()->height, 40);
    panel.Present(&canvas);
    // The checkered ground's bottom-left cell is blue (25, 102, 153).
    EXPECT_EQ(canvas.Surface().pixel(0, 39), qRgb(25, 102, 153));
}

} // namespace
