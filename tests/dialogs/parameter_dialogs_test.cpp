// The rainbow gloss and transparency dialogs, what all three parameter
// dialogs share (the shape buttons, OK, Cancel, Esc), and the material
// dialog's ",,," buttons that open them.
#include <cstring>
#include <limits>

#include <QCheckBox>
#include <QPushButton>
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
    const struct {
        QAbstractSlider::SliderAction action;
        int dragTo;
        float spacing;
    } moves[] = {{QAbstractSlider::SliderSingleStepAdd, -1, 1092.25f},
                 {QAbstractSlider::SliderPageStepSub, -1, 700.25f},
                 {QAbstractSlider::SliderMove, 10, 1325.0f},
                 {QAbstractSlider::SliderMove, 20, 5000.0f},
                 {QAbstractSlider::SliderSingleStepAdd, -1, 5000.0f},  // held at the end
                 {QAbstractSlider::SliderMove, 0, 100.0f},
                 {QAbstractSlider::SliderPageStepSub, -1, 100.0f}};
    for (const auto& m : moves) {
        if (m.dragTo >= 0)
            DragTo(dialog.get(), rainbow_id::kSpacing, m.dragTo);
        else
            Scroll(dialog.get(), rainbow_id::kSpacing, m.action);
        EXPECT_EQ(dialog->Attribute().stripeSpacing, m.spacing);
    }
    EXPECT_EQ(RainbowCurve().Position(884.0f), 8);
    EXPECT_EQ(RainbowCurve().Position(883.9f), 7);
    for (float spacing : {50.0f, -1e30f, kNaN, -kInf, kInf, 1e30f}) {
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
    const struct {
        float thickness;
        int shown;
    } cases[] = {{4.0f, 4}, {25.0f, 20}, {4.9f, 4}, {0.0f, 1}, {-3.0f, 1}, {kNaN, 1}, {kInf, 20}};
    for (const auto& c : cases) {
        FZAttributeEx record;
        record.thickness = c.thickness;
        auto dialog = OpenParameterDialog<CDlgTransparency>(record, 99);
        EXPECT_EQ(DlgItem<QSpinBox>(dialog.get(), transparency_id::kThickness)->value(), c.shown);
        EXPECT_TRUE(std::isnan(c.thickness) ? std::isnan(dialog->Attribute().thickness)
                                            : dialog->Attribute().thickness == c.thickness);
    }
    auto dialog = OpenParameterDialog<CDlgTransparency>(FZAttributeEx());
    auto* spin = DlgItem<QSpinBox>(dialog.get(), transparency_id::kThickness);
    QTest::keyClick(spin, Qt::Key_Up);
    EXPECT_EQ(dialog->Attribute().thickness, 5.0f);
    QTest::keyClick(spin, Qt::Key_PageUp);  // ten at a time, held at 20
    QTest::keyClick(spin, Qt::Key_PageUp);
    EXPECT_EQ(dialog->Attribute().thickness, 20.0f);
}

// Runs a parameter dialog modally, driving it with `drive` once it shows.
template <typename Dialog>
int RunModal(Dialog& dialog, const std::function<void(Dialog&)>& drive)
{
    QTimer::singleShot(0, &dialog, [&] { drive(dialog); });
    return dialog.exec();
}

TEST(ParameterDialogs, CancelAndEscKeepNoRecordButHandBackTheShape)
{
    CDlgRainbowHighlight rainbow;
    rainbow.SetAttribute(FZAttributeEx(), 0);
    rainbow.SetSampleShape(4);
    EXPECT_EQ(RunModal<CDlgRainbowHighlight>(rainbow, [](CDlgRainbowHighlight& d) {
                  DragTo(&d, rainbow_id::kSpacing, 20);
                  DlgItem<QPushButton>(&d, rainbow_id::kNextShape)->click();  // wraps to 1
                  QTest::keyClick(&d, Qt::Key_Escape);
              }),
              QDialog::Rejected);
    EXPECT_EQ(rainbow.SampleShape(), 1);

    CDlgAnisotropic anisotropic;
    anisotropic.SetAttribute(FZAttributeEx(), 0);
    anisotropic.SetSampleShape(2);
    EXPECT_EQ(RunModal<CDlgAnisotropic>(anisotropic, [](CDlgAnisotropic& d) {
                  DlgItem<QPushButton>(&d, anisotropic_id::kNextShape)->click();
                  DlgItem<QPushButton>(&d, anisotropic_id::kNextShape)->click();
                  DlgItem<QPushButton>(&d, kIdCancel)->click();
              }),
              QDialog::Rejected);
    EXPECT_EQ(anisotropic.SampleShape(), 4);
}

class ParameterButtons : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dialog.Create());
        FZAttributeEx a;
        a.anisotropic = 1;
        a.rainbow = 1;
        a.transparency = 0.5f;
        a.color.SetBytes(200, 40, 40);
        a.smoothWidth = 7.0f;  // no dialog edits it; it must come back as it was
        dialog.SetAttribute(a);
        dialog.UpdatePanelView();
    }

    // Clicks the ",,," button `id` and runs `inside` on the dialog it opens.
    template <typename Dialog>
    void Open(int id, const std::function<void(Dialog*)>& inside)
    {
        const ModalAnswer answer([&](QWidget* w) {
            auto* opened = qobject_cast<Dialog*>(w);
            ASSERT_NE(opened, nullptr);
            EXPECT_EQ(opened->parentWidget(), nullptr);
            inside(opened);
        });
        DlgItem<QAbstractButton>(&dialog, id)->click();
        EXPECT_TRUE(answer.Seen());
    }

    const FZAttributeEx& Record() { return CDlgAttributeTestAccess::Record(dialog); }
    int Shape() { return CDlgAttributeTestAccess::Preview(dialog).ShapeNumber(); }

    CDlgAttribute dialog{nullptr};
};

TEST_F(ParameterButtons, OkBringsTheRecordBackAndCancelOnlyTheShape)
{
    DlgItem<QPushButton>(&dialog, kIdShapeNext)->click();  // to shape 2
    dialog.SetColorBind(1);
    Open<CDlgRainbowHighlight>(kIdRainbowParameter, [](CDlgRainbowHighlight* d) {
        EXPECT_EQ(d->SampleShape(), 2);
        EXPECT_EQ(d->Attribute().color.r, 200);
        DragTo(d, rainbow_id::kSpacing, 10);
        DlgItem<QPushButton>(d, rainbow_id::kNextShape)->click();
        DlgItem<QPushButton>(d, kIdOk)->click();
    });
    EXPECT_EQ(Record().stripeSpacing, 1325.0f);
    EXPECT_EQ(Record().smoothWidth, 7.0f);
    EXPECT_EQ(Shape(), 3);  // shown with it

    const FZAttributeEx before = Record();
    Open<CDlgTransparency>(kIdTransparencyParameter, [](CDlgTransparency* d) {
        DragTo(d, transparency_id::kIncidence, 20);
        DlgItem<QPushButton>(d, transparency_id::kNextShape)->click();
        DlgItem<QPushButton>(d, kIdCancel)->click();
    });
    EXPECT_EQ(std::memcmp(&before, &Record(), sizeof(FZAttributeEx)), 0);
    EXPECT_EQ(Shape(), 4);
}

} // namespace
