// The dialog platform layer: units, building from tables, lookups, the
// scroll stepping rule, spin boxes and keyboard focus.
#include <QAbstractSlider>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QRadioButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

#include "dialogs/dialog_template.h"
#include "dialogs/resources.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"

namespace {

TEST(DialogUnits, MulDivRoundsHalfAwayFromZeroLikeWindows)
{
    EXPECT_EQ(MulDiv(207, 7, 4), 362);   // 362.25
    EXPECT_EQ(MulDiv(18, 7, 4), 32);     // 31.5 rounds up
    EXPECT_EQ(MulDiv(-18, 7, 4), -32);   // and away from zero below
    EXPECT_EQ(MulDiv(147, 13, 8), 239);  // 238.875
    EXPECT_EQ(MulDiv(9, 96, 72), 12);    // 9 points at 96 dpi
    EXPECT_EQ(MulDiv(1, 2, 0), -1);
    EXPECT_EQ(MulDiv(2000000000, 2, 4), 1000000000);  // no 32-bit overflow
}

TEST(DialogUnits, BaseUnitsComeFromTheDialogFont)
{
    const QFont font = DialogFont("ＭＳ Ｐゴシック", 9);
    EXPECT_EQ(font.pixelSize(), 12);
    const DialogBaseUnits units = DialogBaseUnits::FromFont(font);
    const QFontMetrics metrics(font);
    const int letters = metrics.horizontalAdvance(
        QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"));
    EXPECT_EQ(units.cx, (letters / 26 + 1) / 2);
    EXPECT_EQ(units.cy, metrics.height());
    EXPECT_EQ(units.ToPixels(4, 8, 8, 16), QRect(units.cx, units.cy, 2 * units.cx, 2 * units.cy));

    // The Windows faces fall back to the IPA faces.
    EXPECT_TRUE(JapaneseFont("ＭＳ Ｐゴシック", 12).families().contains("IPAPGothic"));
    EXPECT_TRUE(JapaneseFont("ＭＳ ゴシック", 11).families().contains("IPAGothic"));
    EXPECT_EQ(JapaneseFont("ＭＳ ゴシック", 0).pixelSize(), 1);
}

TEST(BuildDialog, MaterialDialogFollowsItsTable)
{
    QDialog dialog;
    const DialogBaseUnits units = BuildDialog(dialog, AttributeDialogTemplate()).units;
    EXPECT_EQ(dialog.objectName(), "4000");
    EXPECT_EQ(dialog.windowTitle(), QString::fromUtf8("質感 ﾘﾓｺﾝ"));
    EXPECT_EQ(dialog.size(), QSize(units.X(207), units.Y(147)));

    auto* red = DlgItem<QScrollBar>(&dialog, 1020);
    ASSERT_NE(red, nullptr);
    EXPECT_EQ(red->orientation(), Qt::Horizontal);
    EXPECT_EQ(red->geometry(), units.ToPixels(152, 12, 48, 8));
    auto* update = DlgItem<QPushButton>(&dialog, 1017);
    ASSERT_NE(update, nullptr);
    EXPECT_TRUE(update->isDefault());
    EXPECT_EQ(update->text(), QString::fromUtf8("更新"));
    EXPECT_NE(DlgItem<COwnerDrawButton>(&dialog, 4002), nullptr);
    EXPECT_NE(DlgItem<COwnerDrawButton>(&dialog, 4013), nullptr);
    EXPECT_NE(DlgItem<FZCanvas>(&dialog, 4000), nullptr);
    EXPECT_NE(DlgItem<QLabel>(&dialog, 1023), nullptr);
    EXPECT_NE(DlgItem<QCheckBox>(&dialog, 4016), nullptr);

    auto* colourTransparency = GetDlgItem(&dialog, 4034);
    ASSERT_NE(colourTransparency, nullptr);
    EXPECT_TRUE(colourTransparency->isHidden());
    EXPECT_FALSE(GetDlgItem(&dialog, 4016)->isHidden());
    EXPECT_EQ(GetDlgItem(&dialog, 9999), nullptr);
    EXPECT_EQ(GetDlgItem(nullptr, 4000), nullptr);

    // Eleven sliders, eleven bitmaps beside them, and unnamed labels.
    EXPECT_EQ(dialog.findChildren<QScrollBar*>(Qt::FindDirectChildrenOnly).size(), 11);
    for (int id : {4003, 4004, 4007, 4008, 4019, 4009, 4005, 4006, 4010, 4011, 4012}) {
        auto* bitmap = DlgItem<QLabel>(&dialog, id);
        ASSERT_NE(bitmap, nullptr) << id;
        EXPECT_EQ(bitmap->size(), QSize(16, 16)) << id;
        EXPECT_FALSE(bitmap->pixmap().isNull()) << id;
    }
    EXPECT_EQ(red->focusPolicy(), Qt::StrongFocus);  // Tab reaches the sliders
}

TEST(Resources, ElevenSliderBitmapsOfSixteenPixels)
{
    TameriskRegisterResources();
    TameriskRegisterResources();  // idempotent
    for (int id : {4004, 4005, 4007, 4009, 4010, 4012, 4013, 4015, 4016, 4017, 4025}) {
        const QImage picture(QStringLiteral(":/bitmaps/%1.png").arg(id));
        EXPECT_EQ(picture.size(), QSize(16, 16)) << id;
        const QImage sharp(QStringLiteral(":/bitmaps/%1@2x.png").arg(id));
        EXPECT_EQ(sharp.size(), QSize(32, 32)) << id;  // for screens at 200 %
    }
}

TEST(BuildDialog, ParameterTemplatesKeepHiddenControlsHidden)
{
    QDialog anisotropic;
    BuildDialog(anisotropic, AnisotropicDialogTemplate());
    EXPECT_EQ(anisotropic.objectName(), "4022");
    for (int id : {4032, 4033, 4036, 4035, 4039, 4034, 4040, 4037, 4042, 1030})
        EXPECT_TRUE(GetDlgItem(&anisotropic, id)->isHidden()) << id;
    for (int id : {4019, 4021, 4022, 1028, 4024, 4027, 4031, 4038, 4000})
        EXPECT_FALSE(GetDlgItem(&anisotropic, id)->isHidden()) << id;
    const auto groups = anisotropic.findChildren<CGroupBox*>();
    ASSERT_EQ(groups.size(), 1);
    EXPECT_TRUE(groups.front()->objectName().isEmpty());  // no id, no name
    // A number edit and its spin button are one spin box over both.
    auto* waves = DlgItem<QSpinBox>(&anisotropic, 1028);
    ASSERT_NE(waves, nullptr);
    EXPECT_EQ(GetDlgItem(&anisotropic, 1027), nullptr);
    const DialogBaseUnits units = DialogBaseUnits::FromFont(anisotropic.font());
    EXPECT_EQ(waves->geometry(), units.ToPixels(59, 45, 28, 12));

    QDialog rainbow;
    BuildDialog(rainbow, RainbowDialogTemplate());
    EXPECT_EQ(rainbow.objectName(), "4026");
    EXPECT_NE(DlgItem<QScrollBar>(&rainbow, 4036), nullptr);
    EXPECT_NE(DlgItem<QPushButton>(&rainbow, kIdOk), nullptr);
    EXPECT_NE(DlgItem<QPushButton>(&rainbow, kIdCancel), nullptr);

    QDialog transparency;
    BuildDialog(transparency, TransparencyDialogTemplate());
    EXPECT_EQ(transparency.objectName(), "4027");
    for (int id : {4043, 4044, 4046})
        EXPECT_TRUE(GetDlgItem(&transparency, id)->isHidden()) << id;
    EXPECT_NE(DlgItem<QScrollBar>(&transparency, 4038), nullptr);
}

TEST(BuildDialog, RadiosCanAllBeCleared)
{
    QDialog dialog;
    const DialogControls built = BuildDialog(dialog, AnisotropicDialogTemplate());
    auto* wavy = built.Get<QRadioButton>(4021);
    auto* spiral = built.Get<QRadioButton>(4022);
    SetButtonChecked(wavy, true);
    SetButtonChecked(spiral, true);  // radios stay exclusive
    EXPECT_FALSE(wavy->isChecked());
    SetButtonChecked(spiral, false);  // and can all be cleared
    EXPECT_FALSE(spiral->isChecked());
    EXPECT_TRUE(spiral->autoExclusive());
}

TEST(ScrollRule, LineAndPageStepsAndTheThumb)
{
    using A = QAbstractSlider;
    const struct {
        int action, position, thumb, expected;
    } cases[] = {{A::SliderSingleStepSub, 10, 99, 9}, {A::SliderSingleStepAdd, 10, 99, 11},
                 {A::SliderPageStepSub, 10, 99, 8},   {A::SliderPageStepAdd, 10, 99, 12},
                 {A::SliderMove, 10, 37, 37},         {A::SliderToMinimum, 10, 0, 10},
                 {A::SliderToMaximum, 10, 64, 10}};
    for (const auto& c : cases)
        EXPECT_EQ(ScrollPositionAfter(c.action, c.position, c.thumb), c.expected) << c.action;
}

TEST(ScrollRule, ConnectedBarHandsOverTheUnheldPosition)
{
    QScrollBar bar(Qt::Horizontal);
    bar.setRange(0, 20);
    bar.setValue(20);
    std::vector<int> seen;
    std::vector<int> valueSeen;
    ConnectHScroll(&bar, [&](QScrollBar* b, int p) {
        seen.push_back(p);
        valueSeen.push_back(b->value());  // already set when the handler runs
    });
    bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    bar.triggerAction(QAbstractSlider::SliderPageStepSub);
    bar.triggerAction(QAbstractSlider::SliderToMinimum);
    bar.setSliderPosition(5);  // a drag
    EXPECT_EQ(seen, (std::vector<int>{21, 18, 18, 5}));
    EXPECT_EQ(valueSeen, (std::vector<int>{20, 18, 18, 5}));
    EXPECT_EQ(bar.value(), 5);
}

} // namespace
