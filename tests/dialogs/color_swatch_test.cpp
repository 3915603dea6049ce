// Colour swatches: fill held in range, label colour by byte sum (the dialog
// screenshot checks a swatch drawn into its button).
#include <gtest/gtest.h>

#include "dialogs/color_swatch.h"

namespace {

TEST(ColorSwatch, FillAndLabelColour)
{
    const float b119 = static_cast<float>(119 / 255.0);
    const float b120 = static_cast<float>(120 / 255.0);
    for (auto [r, g, b, fill, label] :
         {std::tuple{b120, b120, b120, QColor(120, 120, 120), QColor(Qt::black)},  // 360
          std::tuple{b119, b120, b120, QColor(119, 120, 120), QColor(Qt::white)},  // 359
          std::tuple{-1.0f, 2.0f, 0.0f, QColor(0, 255, 0), QColor(Qt::white)}}) {  // held
        CColorSwatch swatch;
        swatch.SetColor(r, g, b);
        EXPECT_EQ(swatch.FillColor(), fill);
        EXPECT_EQ(swatch.LabelColor(), label) << fill.name().toStdString();
    }
}

} // namespace
