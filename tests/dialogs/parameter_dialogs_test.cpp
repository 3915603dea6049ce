// The rainbow gloss and transparency dialogs, what all three parameter
// dialogs share (the shape buttons, OK, Cancel, Esc), and the material
// dialog's ",,," buttons that open them.
#include <cmath>
#include <cstring>
#include <limits>

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include "dialogs/dlg_anisotropic.h"
#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "dialogs/templates.h"
#include "support/dlg_attribute_access.h"
#include "support/parameter_dialogs.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

TEST(RainbowDialog, TheSquareCurveFromWideToNarrow)
{
    auto dialog = OpenParameterDialog<CDlgRainbowHighlight>(FZAttributeEx());  // 1000
    EXPECT_EQ(Position(dialog.get(), rainbow_id::kSpacing), 8);
    EXPECT_EQ(dialog->Attribute().stripeSpacing, 1000.0f);  // untouched until moved
    using A = QAbstractSlider;
    for (auto [action, to, spacing] : {std::tuple{A::SliderSingleStepAdd, -1, 1092.25f},
                                       std::tuple{A::SliderPageStepSub, -1, 700.25f},
                                       std::tuple{A::SliderMove, 20, 5000.0f},
                                       std::tuple{A::SliderSingleStepAdd, -1, 5000.0f},  // held
                                       std::tuple{A::SliderMove, 0, 100.0f},
                                       std::tuple{A::SliderPageStepSub, -1, 100.0f}}) {
        to >= 0 ? DragTo(dialog.get(), rainbow_id::kSpacing, to)
                : Scroll(dialog.get(), rainbow_id::kSpacing, action);
        EXPECT_EQ(dialog->Attribute().stripeSpacing, spacing);
    }
    EXPECT_EQ(RainbowCurve().Position(884.0f), 8);
    EXPECT_EQ(RainbowCurve().Position(883.9f), 7);
    for (float spacing : {50.0f, kNaN, -kInf, kInf}) {
        FZAttributeEx record;
        record.stripeSpacing = spacing;
        auto opened = OpenParameterDialog<CDlgRainbowHighlight>(record);
        EXPECT_EQ(Position(opened.get(), rainbow_id::kSpacing), spacing > 1000.0f ? 20 : 0);
    }
}

TEST(TransparencyDialog, SlidersStoreTwentiethsHeldAtTheEnds)
{
    namespace tr = transparency_id;
    FZAttributeEx record;
    record.incidenceDependence = 0.5f;
    record.attenuation = 0.26f;  // between two steps: shows at 5
    auto dialog = OpenParameterDialog<CDlgTransparency>(record);
    EXPECT_EQ(Position(dialog.get(), tr::kIncidence), 10);
    EXPECT_EQ(Position(dialog.get(), tr::kAttenuation), 5);
    DragTo(dialog.get(), tr::kIncidence, 3);
    EXPECT_EQ(dialog->Attribute().incidenceDependence, 0.15f);
    Scroll(dialog.get(), tr::kAttenuation, QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(dialog->Attribute().attenuation, 0.35f);
    EXPECT_EQ(dialog->Attribute().incidenceDependence, 0.15f);  // the other one stays
    DragTo(dialog.get(), tr::kIncidence, 20);
    Scroll(dialog.get(), tr::kIncidence, QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(dialog->Attribute().incidenceDependence, 1.0f);  // not 1.1

    auto* box = DlgItem<QCheckBox>(dialog.get(), tr::kThinGlass);
    EXPECT_TRUE(box->isHidden());
    box->click();
    EXPECT_EQ(dialog->Attribute().thinGlass, 1);
}

TEST(TransparencyDialog, ThicknessSpinBoxHoldsHostValuesAndTakesKeys)
{
    for (auto [thickness, shown] : {std::pair{4.9f, 4}, std::pair{25.0f, 20}, std::pair{-3.0f, 1},
                                    std::pair{kNaN, 1}, std::pair{kInf, 20}}) {
        FZAttributeEx record;
        record.thickness = thickness;
        auto dialog = OpenParameterDialog<CDlgTransparency>(record, 99);
        EXPECT_EQ(DlgItem<QSpinBox>(dialog.get(), transparency_id::kThickness)->value(), shown);
        EXPECT_EQ(std::isnan(thickness) || dialog->Attribute().thickness == thickness, true);
    }
    auto dialog = OpenParameterDialog<CDlgTransparency>(FZAttributeEx());
    auto* spin = DlgItem<QSpinBox>(dialog.get(), transparency_id::kThickness);
    QTest::keyClick(spin, Qt::Key_Up);
    EXPECT_EQ(dialog->Attribute().thickness, 5.0f);
    QTest::keyClick(spin, Qt::Key_PageUp);  // ten at a time, held at 20
    QTest::keyClick(spin, Qt::Key_PageUp);
    EXPECT_EQ(dialog->Attribute().thickness, 20.0f);
}

TEST(ParameterDialogs, EscCancelsAndTheShapeComesBackAnyway)
{
    CDlgRainbowHighlight rainbow;
    rainbow.SetAttribute(FZAttributeEx(), 0);
    rainbow.SetSampleShape(4);
    QTimer::singleShot(0, &rainbow, [&rainbow] {
        DragTo(&rainbow, rainbow_id::kSpacing, 20);
        DlgItem<QPushButton>(&rainbow, rainbow_id::kNextShape)->click();  // wraps to 1
        QTest::keyClick(&rainbow, Qt::Key_Escape);
    });
    EXPECT_EQ(rainbow.exec(), QDialog::Rejected);
    EXPECT_EQ(rainbow.SampleShape(), 1);
}

// Clicks the material dialog's ",,," button `id` and runs `inside` on the
// dialog it opens, which has no parent.
template <typename Dialog>
void OpenFrom(CDlgAttribute& editor, int id, const std::function<void(Dialog*)>& inside)
{
    const ModalAnswer<Dialog> answer([&](Dialog* opened) {
        ASSERT_NE(opened, nullptr);
        EXPECT_EQ(opened->parentWidget(), nullptr);
        inside(opened);
    });
    DlgItem<QAbstractButton>(&editor, id)->click();
    EXPECT_TRUE(answer.Seen());
}

TEST(ParameterButtons, OkBringsTheRecordBackAndCancelOnlyTheShape)
{
    CDlgAttribute editor(nullptr);
    ASSERT_TRUE(editor.Create());
    FZAttributeEx a;
    a.anisotropic = a.rainbow = 1;
    a.transparency = 0.5f;
    a.color.SetBytes(200, 40, 40);
    a.smoothWidth = 7.0f;  // no dialog edits it; it must come back as it was
    editor.SetAttribute(a);
    editor.UpdatePanelView();
    const FZAttributeEx& record = CDlgAttributeTestAccess::Record(editor);
    const CPreviewPanel& preview = CDlgAttributeTestAccess::Preview(editor);

    DlgItem<QPushButton>(&editor, kIdShapeNext)->click();  // to shape 2
    OpenFrom<CDlgRainbowHighlight>(editor, kIdRainbowParameter, [](CDlgRainbowHighlight* d) {
        EXPECT_EQ(d->SampleShape(), 2);
        EXPECT_EQ(d->Attribute().color.r, 200);
        DragTo(d, rainbow_id::kSpacing, 10);
        DlgItem<QPushButton>(d, rainbow_id::kNextShape)->click();
        DlgItem<QPushButton>(d, kIdOk)->click();
    });
    EXPECT_EQ(record.stripeSpacing, 1325.0f);
    EXPECT_EQ(record.smoothWidth, 7.0f);
    EXPECT_EQ(preview.ShapeNumber(), 3);  // shown with it

    const FZAttributeEx before = record;
    OpenFrom<CDlgAnisotropic>(editor, kIdAnisotropicParameter, [](CDlgAnisotropic* d) {
        DlgItem<QRadioButton>(d, anisotropic_id::kSpiral)->click();
        DlgItem<QPushButton>(d, anisotropic_id::kNextShape)->click();
        DlgItem<QPushButton>(d, kIdCancel)->click();
    });
    EXPECT_EQ(std::memcmp(&before, &record, sizeof(FZAttributeEx)), 0);
    EXPECT_EQ(preview.ShapeNumber(), 4);
}

} // namespace
