// Colour swatches: fill held in range, label colour by byte sum, drawn into
// an owner-drawn button.
#include <gtest/gtest.h>

#include "dialogs/color_swatch.h"
#include "dialogs/dialog_template.h"

namespace {

const float kByte119 = static_cast<float>(119 / 255.0);
const float kByte120 = static_cast<float>(120 / 255.0);

TEST(ColorSwatch, FillLabelAndButton)
{
    const struct {
        float r, g, b;
        QColor fill, label;
    } cases[] = {{1.0f, 1.0f, 1.0f, QColor(255, 255, 255), Qt::black},
                 {kByte120, kByte120, kByte120, QColor(120, 120, 120), Qt::black},  // 360
                 {kByte119, kByte120, kByte120, QColor(119, 120, 120), Qt::white},  // 359
                 {-1.0f, 2.0f, 0.5f, QColor(0, 255, 127), Qt::black}};  // held in [0, 1]
    for (const auto& c : cases) {
        CColorSwatch swatch;
        swatch.SetColor(c.r, c.g, c.b);
        EXPECT_EQ(swatch.FillColor(), c.fill);
        EXPECT_EQ(swatch.LabelColor(), c.label) << c.fill.name().toStdString();
    }
    CColorSwatch swatch;
    swatch.SetFontHeight(0);
    EXPECT_EQ(swatch.FontHeight(), 1);

    COwnerDrawButton button;
    button.resize(30, 30);
    swatch.SetColor(0.0f, 0.0f, 200 / 255.0f);
    swatch.Draw(&button);
    EXPECT_EQ(button.grab().toImage().pixel(2, 2), qRgb(0, 0, 200));
    swatch.Draw(nullptr);  // nothing to draw into
}

} // namespace
