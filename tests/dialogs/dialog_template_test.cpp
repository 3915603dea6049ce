// The dialog platform layer: units, building from tables, the slider
// bitmaps, the scroll stepping rule and radio buttons.
#include <QDialog>
#include <QLabel>
#include <QRadioButton>
#include <QScrollBar>
#include <QSpinBox>
#include <gtest/gtest.h>

#include "dialogs/dialog_template.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"

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
    const QFontMetrics metrics(font);
    const int letters = metrics.horizontalAdvance(
        QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"));
    EXPECT_EQ(units.cx, (letters / 26 + 1) / 2);
    EXPECT_EQ(units.cy, metrics.height());
    EXPECT_EQ(units.ToPixels(4, 8, 8, 16), QRect(units.cx, units.cy, 2 * units.cx, 2 * units.cy));
    EXPECT_EQ(JapaneseFont("ＭＳ ゴシック", 0).pixelSize(), 1);
}

TEST(BuildDialog, TheMaterialDialogFollowsItsTable)
{
    QDialog dialog;
    const DialogControls built = BuildDialog(dialog, AttributeDialogTemplate());
    const DialogBaseUnits& units = built.units;
    EXPECT_EQ(dialog.objectName(), "4000");
    EXPECT_EQ(dialog.windowTitle(), QString::fromUtf8("質感 ﾘﾓｺﾝ"));
    EXPECT_EQ(dialog.size(), QSize(units.X(207), units.Y(147)));

    auto* red = built.Get<QScrollBar>(kIdRed);
    EXPECT_EQ(red, DlgItem<QScrollBar>(&dialog, 1020));  // objectName is the id
    EXPECT_EQ(red->geometry(), units.ToPixels(152, 12, 48, 8));
    EXPECT_EQ(red->focusPolicy(), Qt::StrongFocus);  // Tab reaches the sliders
    EXPECT_TRUE(built.Get<QPushButton>(kIdUpdate)->isDefault());
    EXPECT_EQ(built.Get<QPushButton>(kIdUpdate)->text(), QString::fromUtf8("更新"));
    EXPECT_TRUE(built.Get<QWidget>(kIdColorTransparency)->isHidden());
    EXPECT_NE(built.Get<FZCanvas>(kIdPreview), nullptr);
    EXPECT_EQ(GetDlgItem(&dialog, 9999), nullptr);
    EXPECT_EQ(dialog.findChildren<QScrollBar*>().size(), 11);

    // The eleven slider bitmaps are 16 x 16, with a 32 x 32 version for
    // screens at 200 %.
    for (int id : {4003, 4004, 4007, 4008, 4019, 4009, 4005, 4006, 4010, 4011, 4012}) {
        auto* bitmap = DlgItem<QLabel>(&dialog, id);
        EXPECT_EQ(bitmap->size(), QSize(16, 16)) << id;
        EXPECT_FALSE(bitmap->pixmap().isNull()) << id;
    }
    for (int id : {4004, 4005, 4007, 4009, 4010, 4012, 4013, 4015, 4016, 4017, 4025})
        EXPECT_EQ(QImage(QStringLiteral(":/bitmaps/%1@2x.png").arg(id)).size(), QSize(32, 32));
}

TEST(BuildDialog, ParameterTemplatesHideWhatTheyHideAndHaveSpinBoxes)
{
    QDialog anisotropic;
    const DialogControls built = BuildDialog(anisotropic, AnisotropicDialogTemplate());
    EXPECT_EQ(anisotropic.objectName(), "4022");
    for (int id : {4032, 4033, 4036, 4035, 4039, 4034, 4040, 4037, 4042, 1030})
        EXPECT_TRUE(GetDlgItem(&anisotropic, id)->isHidden()) << id;
    for (int id : {4019, 4021, 4022, 1028, 4024, 4027, 4031, 4038, 4000})
        EXPECT_FALSE(GetDlgItem(&anisotropic, id)->isHidden()) << id;
    // A number edit and its spin button are one spin box over both.
    EXPECT_EQ(built.Get<QSpinBox>(anisotropic_id::kWaveCount)->geometry(),
              built.units.ToPixels(59, 45, 28, 12));
    EXPECT_EQ(GetDlgItem(&anisotropic, 1027), nullptr);

    QDialog transparency;
    BuildDialog(transparency, TransparencyDialogTemplate());
    EXPECT_EQ(transparency.objectName(), "4027");
    EXPECT_TRUE(DlgItem<QSpinBox>(&transparency, 4046)->isHidden());

    // Radio buttons stay exclusive, yet can all be cleared.
    auto* wavy = built.Get<QRadioButton>(anisotropic_id::kWavyConcentric);
    auto* spiral = built.Get<QRadioButton>(anisotropic_id::kSpiral);
    SetButtonChecked(wavy, true);
    SetButtonChecked(spiral, true);
    EXPECT_FALSE(wavy->isChecked());
    SetButtonChecked(spiral, false);
    EXPECT_FALSE(spiral->isChecked());
    EXPECT_TRUE(spiral->autoExclusive());
}

TEST(ScrollRule, StepsOfOneAndTwoAndTheThumbHandedOverUnheld)
{
    using A = QAbstractSlider;
    const struct {
        int action, position, thumb, expected;
    } cases[] = {{A::SliderSingleStepSub, 10, 99, 9}, {A::SliderSingleStepAdd, 10, 99, 11},
                 {A::SliderPageStepSub, 10, 99, 8},   {A::SliderPageStepAdd, 10, 99, 12},
                 {A::SliderMove, 10, 37, 37},         {A::SliderToMinimum, 10, 0, 10}};
    for (const auto& c : cases)
        EXPECT_EQ(ScrollPositionAfter(c.action, c.position, c.thumb), c.expected) << c.action;

    QScrollBar bar(Qt::Horizontal);
    bar.setRange(0, 20);
    bar.setValue(20);
    std::vector<int> seen;
    ConnectHScroll(&bar, [&](QScrollBar* b, int p) { seen.insert(seen.end(), {p, b->value()}); });
    bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    bar.triggerAction(QAbstractSlider::SliderPageStepSub);
    bar.setSliderPosition(5);  // a drag
    EXPECT_EQ(seen, (std::vector<int>{21, 20, 18, 18, 5, 5}));
}

} // namespace
