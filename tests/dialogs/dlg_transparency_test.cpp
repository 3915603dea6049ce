// The transparency dialog: the two sliders, the hidden thin-glass check box
// and thickness spin, and what comes back.
#include <limits>

#include <QCheckBox>
#include <QSpinBox>
#include <QTest>
#include <QPushButton>
#include <gtest/gtest.h>

#include "dialogs/dlg_transparency.h"
#include "support/parameter_dialogs.h"

namespace {

constexpr int kIncidence = 4037;
constexpr int kAttenuation = 4038;
constexpr int kThinGlass = 4043;
constexpr int kThickness = 4046;

TEST(TransparencyDialog, SlidersShowAndStoreTwentieths)
{
    FZAttributeEx record;
    record.incidenceDependence = 0.5f;
    record.attenuation = 0.26f;  // between two steps: shows at 5
    auto dialog = OpenParameterDialog<CDlgTransparency>(record);
    EXPECT_EQ(Position(dialog.get(), kIncidence), 10);
    EXPECT_EQ(Position(dialog.get(), kAttenuation), 5);
    EXPECT_EQ(dialog->Attribute().attenuation, 0.26f);  // untouched until moved

    DragTo(dialog.get(), kIncidence, 20);
    EXPECT_EQ(dialog->Attribute().incidenceDependence, 1.0f);
    DragTo(dialog.get(), kIncidence, 3);
    EXPECT_EQ(dialog->Attribute().incidenceDependence, 0.15f);
    Scroll(dialog.get(), kAttenuation, QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(dialog->Attribute().attenuation, 0.35f);
    EXPECT_EQ(dialog->Attribute().incidenceDependence, 0.15f);  // the other one stays

    // Steps beyond the ends keep the end's value.
    DragTo(dialog.get(), kIncidence, 20);
    Scroll(dialog.get(), kIncidence, QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(Position(dialog.get(), kIncidence), 20);
    EXPECT_EQ(dialog->Attribute().incidenceDependence, 1.0f);  // not 1.1
    DragTo(dialog.get(), kAttenuation, 0);
    Scroll(dialog.get(), kAttenuation, QAbstractSlider::SliderSingleStepSub);
    EXPECT_EQ(dialog->Attribute().attenuation, 0.0f);  // not -0.05
}

TEST(TransparencyDialog, ThicknessSpinHoldsHostValuesAtItsEnds)
{
    const float thicknesses[] = {4.0f, 25.0f, 4.9f, 0.0f, -3.0f,
                                 std::numeric_limits<float>::quiet_NaN(),
                                 std::numeric_limits<float>::infinity()};
    const int positions[] = {4, 20, 4, 1, 1, 1, 20};
    for (int i = 0; i < 7; ++i) {
        FZAttributeEx record;
        record.thickness = thicknesses[i];
        auto dialog = OpenParameterDialog<CDlgTransparency>(record);
        auto* spin = DlgItem<QSpinBox>(dialog.get(), kThickness);
        ASSERT_NE(spin, nullptr);
        EXPECT_EQ(spin->value(), positions[i]) << thicknesses[i];
        EXPECT_TRUE(spin->isHidden());
    }
}

TEST(TransparencyDialog, ThicknessTakesThePositionAfterTheClick)
{
    auto dialog = OpenParameterDialog<CDlgTransparency>(FZAttributeEx());
    auto* spin = DlgItem<QSpinBox>(dialog.get(), kThickness);
    spin->stepBy(+1);
    EXPECT_EQ(dialog->Attribute().thickness, 5.0f);
    QTest::keyClick(spin, Qt::Key_Down);
    QTest::keyClick(spin, Qt::Key_Down);
    EXPECT_EQ(dialog->Attribute().thickness, 3.0f);
    spin->stepBy(30);
    EXPECT_EQ(dialog->Attribute().thickness, 20.0f);
}

TEST(TransparencyDialog, ThinGlassFollowsItsHiddenCheckBox)
{
    FZAttributeEx record;
    record.thinGlass = 7;  // any non-zero value checks
    auto dialog = OpenParameterDialog<CDlgTransparency>(record);
    auto* box = DlgItem<QCheckBox>(dialog.get(), kThinGlass);
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isHidden());
    EXPECT_TRUE(box->isChecked());
    box->click();
    EXPECT_EQ(dialog->Attribute().thinGlass, 0);
    box->click();
    EXPECT_EQ(dialog->Attribute().thinGlass, 1);
}

TEST(TransparencyDialog, BadHostValuesOpenWithoutHarm)
{
    FZAttributeEx record;
    record.incidenceDependence = std::numeric_limits<float>::quiet_NaN();
    record.attenuation = std::numeric_limits<float>::infinity();
    record.transparency = -1e30f;
    auto dialog = OpenParameterDialog<CDlgTransparency>(record, 99);
    EXPECT_EQ(Position(dialog.get(), kIncidence), 0);
    EXPECT_EQ(Position(dialog.get(), kAttenuation), 20);
    DlgItem<QPushButton>(dialog.get(), 4023)->click();  // shape 99 steps to 1
    EXPECT_EQ(dialog->SampleShape(), 1);
}

} // namespace
