// The dialog platform layer: units, building from tables, the slider
// bitmaps and radio buttons.
#include <QDialog>
#include <QLabel>
#include <QRadioButton>
#include <gtest/gtest.h>

#include "dialogs/dialog_template.h"
#include "dialogs/templates.h"

namespace {

TEST(DialogUnits, MulDivAndTheDialogFont)
{
    const struct {
        int a, b, c, expected;
    } cases[] = {{207, 7, 4, 362}, {18, 7, 4, 32},  {-18, 7, 4, -32},  // half away from zero
                 {147, 13, 8, 239}, {9, 96, 72, 12}, {1, 2, 0, -1},
                 {2000000000, 2, 4, 1000000000}};  // no 32-bit overflow
    for (const auto& c : cases)
        EXPECT_EQ(MulDiv(c.a, c.b, c.c), c.expected) << c.a << " " << c.b << " " << c.c;

    const QFont font = DialogFont("ＭＳ Ｐゴシック", 9);
    EXPECT_EQ(font.pixelSize(), 12);
    EXPECT_TRUE(font.families().contains("IPAPGothic"));  // the free face drawn alike
    const DialogBaseUnits units = DialogBaseUnits::FromFont(font);
    EXPECT_EQ(units.ToPixels(4, 8, 8, 16), QRect(units.cx, units.cy, 2 * units.cx, 2 * units.cy));
    EXPECT_EQ(JapaneseFont("ＭＳ ゴシック", 0).pixelSize(), 1);
}

// The slider bitmaps are 16 x 16; radio buttons stay exclusive, yet can all
// be cleared.
TEST(BuildDialog, BitmapsAndClearableRadioButtons)
{
    QDialog dialog;
    BuildDialog(dialog, AttributeDialogTemplate());
    for (int id : {4003, 4004, 4007, 4008, 4019, 4009, 4005, 4006, 4010, 4011, 4012}) {
        auto* bitmap = DlgItem<QLabel>(&dialog, id);
        EXPECT_EQ(bitmap->size(), QSize(16, 16)) << id;
        EXPECT_FALSE(bitmap->pixmap().isNull()) << id;
    }

    QDialog anisotropic;
    const DialogControls built = BuildDialog(anisotropic, AnisotropicDialogTemplate());
    auto* wavy = built.Get<QRadioButton>(anisotropic_id::kWavyConcentric);
    auto* spiral = built.Get<QRadioButton>(anisotropic_id::kSpiral);
    SetButtonChecked(wavy, true);
    SetButtonChecked(spiral, true);
    EXPECT_FALSE(wavy->isChecked());
    SetButtonChecked(spiral, false);
    EXPECT_FALSE(spiral->isChecked());
}

} // namespace
