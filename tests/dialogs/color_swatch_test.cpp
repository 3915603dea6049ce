// Colour swatches: fill, label colour by byte sum, font height, drawing into
// an owner-drawn button.
#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include "dialogs/color_swatch.h"
#include "dialogs/dialog_template.h"

namespace {

CColorSwatch Swatch(int r, int g, int b)
{
    CColorSwatch swatch;
    swatch.SetColor(static_cast<float>(r / 255.0), static_cast<float>(g / 255.0),
                    static_cast<float>(b / 255.0));
    return swatch;
}

TEST(ColorSwatch, LabelTurnsBlackFromAByteSumOf360)
{
    EXPECT_EQ(Swatch(255, 255, 255).LabelColor(), QColor(Qt::black));
    EXPECT_EQ(Swatch(0, 0, 0).LabelColor(), QColor(Qt::white));
    EXPECT_EQ(Swatch(120, 120, 120).LabelColor(), QColor(Qt::black));  // 360
    EXPECT_EQ(Swatch(119, 120, 120).LabelColor(), QColor(Qt::white));  // 359
}

TEST(ColorSwatch, ValuesAreHeldInRange)
{
    CColorSwatch swatch;
    EXPECT_EQ(swatch.FillColor(), QColor(255, 255, 255));  // white at first
    EXPECT_EQ(swatch.FontHeight(), 11);
    swatch.SetColor(-1.0f, 2.0f, 0.5f);
    EXPECT_EQ(swatch.FillColor(), QColor(0, 255, 127));
    swatch.SetFontHeight(0);
    EXPECT_EQ(swatch.FontHeight(), 1);
    swatch.SetFontHeight(9);
    EXPECT_EQ(swatch.FontHeight(), 9);
}

TEST(ColorSwatch, PaintsTheFillAndTheLabel)
{
    CColorSwatch swatch = Swatch(0, 0, 200);
    swatch.SetLabel(QString::fromUtf8("色選択"));
    QImage image(49, 44, QImage::Format_RGB32);
    image.fill(Qt::red);
    {
        QPainter painter(&image);
        swatch.Paint(painter, image.rect());
    }
    EXPECT_EQ(image.pixel(0, 0), qRgb(0, 0, 200));
    EXPECT_EQ(image.pixel(48, 43), qRgb(0, 0, 200));
    // White label pixels near the middle.
    int light = 0;
    for (int y = 16; y < 28; ++y)
        for (int x = 6; x < 43; ++x)
            light += qRed(image.pixel(x, y)) > 128 ? 1 : 0;
    EXPECT_GT(light, 10);
}

TEST(ColorSwatch, DrawingIntoAButtonStoresThePicture)
{
    COwnerDrawButton button;
    button.resize(30, 30);
    EXPECT_FALSE(button.HasPainter());
    Swatch(1, 2, 3).Draw(&button);
    EXPECT_TRUE(button.HasPainter());
    const QImage shot = button.grab().toImage();
    EXPECT_EQ(shot.pixel(2, 2), qRgb(1, 2, 3));
    Swatch(1, 2, 3).Draw(nullptr);  // nothing to draw into
}

} // namespace
