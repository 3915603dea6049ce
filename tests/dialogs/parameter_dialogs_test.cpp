// The three parameter dialogs: the anisotropic reflection dialog's types,
// controls and centre, the rainbow gloss and transparency sliders, and the
// material dialog's ",,," buttons that open them, with what all three share
// (the shape buttons, OK and Cancel).
#include <cmath>
#include <cstring>
#include <limits>

#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

#include "dialogs/dlg_anisotropic.h"
#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "support/dlg_attribute_access.h"
#include "support/parameter_dialogs.h"

namespace {

namespace id = anisotropic_id;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

std::unique_ptr<CDlgAnisotropic> Open(int type, void (*adjust)(FZAnisotropy&) = [](FZAnisotropy&) {})
{
    FZAttributeEx record;
    record.anisotropy.type = type;
    adjust(record.anisotropy);
    return OpenParameterDialog<CDlgAnisotropic>(record, type);
}

const QImage& Diagram(const QWidget* dialog)
{
    return DlgItem<FZCanvas>(dialog, id::kDiagram)->Surface();
}

bool HasPattern(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == qRgb(180, 180, 180))
                return true;
        }
    }
    return false;
}

QPoint DiagramCorner(const QWidget* dialog, bool bottomRight)
{
    const QRect r = GetDlgItem(dialog, id::kDiagram)->geometry();
    return bottomRight ? r.topLeft() + QPoint(r.width(), r.height()) : r.topLeft();
}

TEST(AnisotropicDialog, OpensAtTheRecordTakingValuesBetweenStepsToTheStepBelow)
{
    auto dialog = Open(1);
    EXPECT_TRUE(IsChecked(dialog.get(), id::kConcentric));
    EXPECT_EQ(DlgItem<QSpinBox>(dialog.get(), id::kWaveCount)->value(), 4);
    EXPECT_EQ(Position(dialog.get(), id::kAmplitude), 8);  // 20 x 0.1 x 4
    const QImage& diagram = Diagram(dialog.get());  // drawn at the control's size
    ASSERT_EQ(diagram.size(), GetDlgItem(dialog.get(), id::kDiagram)->size());
    EXPECT_TRUE(HasPattern(diagram));
    EXPECT_EQ(dialog->Attribute().anisotropy.grooveWidth, FZAnisotropy().grooveWidth);

    auto spiral = Open(3, [](FZAnisotropy& a) {
        a.spiralTwist = 0.01f, a.grooveWidth = 0.75f, a.depthVariation = 0.12f;
    });
    const FZAnisotropy& a = spiral->Attribute().anisotropy;
    EXPECT_EQ(a.spiralTwist, 0.009375f);
    EXPECT_EQ(a.grooveWidth, 0.5f);
    EXPECT_EQ(a.depthVariation, 0.1f);
}

TEST(AnisotropicDialog, TypesEnableTheirControls)
{
    auto dialog = Open(1);
    const auto enabled = [](const QWidget* d, int control) { return GetDlgItem(d, control)->isEnabled(); };
    for (auto [button, type] : {std::pair{id::kWavyConcentric, 2}, std::pair{id::kSpiral, 3},
                                std::pair{id::kConcentric, 1}}) {
        QTest::mouseClick(DlgItem<QRadioButton>(dialog.get(), button), Qt::LeftButton);
        EXPECT_EQ(dialog->Attribute().anisotropy.type, type);
        EXPECT_EQ(enabled(dialog.get(), id::kAmplitude), type == 2) << type;
        EXPECT_EQ(enabled(dialog.get(), id::kTwist), type == 3) << type;
    }
    // The hidden types 4 and 5 come from a host: their hidden button is
    // checked, their hidden controls enabled, and clicks place no centre.
    for (int type : {4, 5}) {
        auto opened = Open(type, [](FZAnisotropy& a) { a.angle = 30.0f; });
        EXPECT_TRUE(IsChecked(opened.get(), type == 4 ? id::kStraight : id::kWave));
        EXPECT_EQ(enabled(opened.get(), id::kStraightAngle), type == 4);
        EXPECT_EQ(enabled(opened.get(), id::kWaveAngle), type == 5);
        EXPECT_EQ(opened->Attribute().anisotropy.angle, 30.0f);  // a step of 3 degrees
        QTest::mouseClick(opened.get(), Qt::LeftButton, {}, DiagramCorner(opened.get(), false));
        EXPECT_EQ(opened->Attribute().anisotropy.center[0], 0.5f);
        EXPECT_EQ(HasPattern(Diagram(opened.get())), type == 4);  // waves show only axes
    }
}

TEST(AnisotropicDialog, SlidersAndSpinBoxesWriteTheRecord)
{
    auto dialog = Open(2, [](FZAnisotropy& a) { a.waveCount = 99, a.amplitude = 0.2f; });
    const FZAnisotropy& a = dialog->Attribute().anisotropy;
    EXPECT_EQ(a.waveCount, 36);  // held by the spin box
    EXPECT_EQ(a.amplitude, 0.2f);  // 16 / 20 / 4

    QTest::keyClick(DlgItem<QSpinBox>(dialog.get(), id::kWaveCount), Qt::Key_Down);
    EXPECT_EQ(a.waveCount, 35);
    DlgItem<QSpinBox>(dialog.get(), id::kGrooveWidth)->stepBy(+1);
    EXPECT_EQ(a.grooveWidth, 1.5f);

    QTest::mouseClick(DlgItem<QRadioButton>(dialog.get(), id::kSpiral), Qt::LeftButton);
    for (auto [to, twist] : {std::pair{0, -0.05f}, std::pair{16, 0.0f}, std::pair{40, 0.05f},
                             std::pair{31, 0.046875f}}) {
        DragTo(dialog.get(), id::kTwist, to);
        EXPECT_EQ(a.spiralTwist, twist) << to;
    }
    DragTo(dialog.get(), id::kDepth, 7);
    EXPECT_EQ(a.depthVariation, 0.35f);
}

TEST(AnisotropicDialog, ClicksAndDragsPlaceTheCentre)
{
    auto dialog = Open(1);
    const float* c = dialog->Attribute().anisotropy.center;
    const QPoint origin = DiagramCorner(dialog.get(), false);
    const QPoint end = DiagramCorner(dialog.get(), true);
    for (auto [at, x, y] : {std::tuple{origin, 0.0f, 1.0f}, std::tuple{end, 1.0f, 0.0f},
                            std::tuple{end + QPoint(1, 0), 1.0f, 0.0f}}) {  // outside
        QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, at);
        EXPECT_EQ(c[0], x);
        EXPECT_EQ(c[1], y);
    }
    QTest::mousePress(dialog.get(), Qt::LeftButton, {}, origin + QPoint(10, 10));
    QTest::mouseMove(dialog.get(), origin + QPoint(20, 30));
    EXPECT_TRUE(c[0] > 0.0f && c[0] < 0.5f);
    // A release off the dialog ends the drag: moves without a button leave
    // the centre where it is.
    QTest::mouseRelease(dialog.get(), Qt::LeftButton, {}, QPoint(-50, -50));
    const float settled = c[0];
    QTest::mouseMove(dialog.get(), origin + QPoint(60, 60));
    EXPECT_EQ(c[0], settled);
    // Losing the window ends a drag too.
    QTest::mousePress(dialog.get(), Qt::LeftButton, {}, origin + QPoint(10, 10));
    const float pressed = c[0];
    QEvent deactivate(QEvent::WindowDeactivate);
    QApplication::sendEvent(dialog.get(), &deactivate);
    QTest::mouseMove(dialog.get(), origin + QPoint(60, 60), 0);
    EXPECT_EQ(c[0], pressed);
}

TEST(AnisotropicDialog, BadHostValuesOpenAndDrawWithoutHarm)
{
    static float bad;
    for (int type : {1, 2, 3, 4, 5, 0, -7, 1 << 30}) {
        for (float value : {kNaN, kInf, -1e30f, 3.0e4f}) {
            bad = value;
            auto dialog = Open(type, [](FZAnisotropy& a) {
                a.center[0] = a.amplitude = a.spiralTwist = a.angle = bad;
                a.center[1] = a.depthVariation = a.grooveWidth = -bad;
                a.waveCount = a.type == 2 ? -5 : 1 << 30;
            });
            QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, DiagramCorner(dialog.get(), false));
            EXPECT_FALSE(Diagram(dialog.get()).isNull());
        }
    }
}

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
}

// Clicks the material dialog's ",,," button `id` and runs `inside` on the
// dialog it opens over the editor.
template <typename Dialog>
void OpenFrom(CDlgAttribute& editor, int id, const std::function<void(Dialog*)>& inside)
{
    const ModalAnswer<Dialog> answer([&](Dialog* opened) {
        ASSERT_NE(opened, nullptr);
        EXPECT_EQ(opened->parentWidget(), &editor);
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
    const auto record = [&editor] { return RecordOf(editor); };

    DlgItem<QPushButton>(&editor, kIdShapeNext)->click();  // to shape 2
    OpenFrom<CDlgRainbowHighlight>(editor, kIdRainbowParameter, [](CDlgRainbowHighlight* d) {
        EXPECT_EQ(d->SampleShape(), 2);
        EXPECT_EQ(d->Attribute().color.r, 200);
        DragTo(d, rainbow_id::kSpacing, 10);
        DlgItem<QPushButton>(d, rainbow_id::kNextShape)->click();
        DlgItem<QPushButton>(d, kIdOk)->click();
    });
    EXPECT_EQ(record().stripeSpacing, 1325.0f);
    EXPECT_EQ(record().smoothWidth, 7.0f);

    const FZAttributeEx before = record();
    OpenFrom<CDlgAnisotropic>(editor, kIdAnisotropicParameter, [](CDlgAnisotropic* d) {
        EXPECT_EQ(d->SampleShape(), 3);  // the editor took the shape with the record
        DlgItem<QRadioButton>(d, anisotropic_id::kSpiral)->click();
        DlgItem<QPushButton>(d, anisotropic_id::kNextShape)->click();
        DlgItem<QPushButton>(d, kIdCancel)->click();
    });
    const FZAttributeEx after = record();
    EXPECT_EQ(std::memcmp(&before, &after, sizeof after), 0);
    OpenFrom<CDlgTransparency>(editor, kIdTransparencyParameter, [](CDlgTransparency* d) {
        EXPECT_EQ(d->SampleShape(), 4);  // cancelled, yet the shape came back
        DlgItem<QPushButton>(d, kIdCancel)->click();
    });
}

} // namespace
