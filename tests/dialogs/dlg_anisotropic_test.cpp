// The anisotropic reflection dialog: controls to record and back, the type
// buttons, the centre placed with the mouse, and what comes back.
#include <chrono>
#include <limits>
#include <set>

#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include "dialogs/dlg_anisotropic.h"
#include "engine/display/canvas.h"
#include "support/paint_counter.h"
#include "support/parameter_dialogs.h"

namespace {

constexpr int kConcentric = 4019;
constexpr int kWavy = 4021;
constexpr int kSpiral = 4022;
constexpr int kStraight = 4032;
constexpr int kWave = 4033;
constexpr int kWaveCountEdit = 1027;
constexpr int kWaveCountSpin = 1028;
constexpr int kAmplitude = 4024;
constexpr int kTwist = 4027;
constexpr int kDepth = 4031;
constexpr int kDiagram = 4038;
constexpr int kGrooveWidthSpin = 1030;

// Every control that EnableByType switches.
constexpr int kTypeControls[] = {4025, 1027, 1028, 4026, 4024, 4028, 4027,
                                 4036, 4035, 4039, 4034, 4040, 4037};

FZAttributeEx WithType(int type)
{
    FZAttributeEx record;
    record.anisotropy.type = type;
    return record;
}

std::set<int> EnabledTypeControls(const QWidget* dialog)
{
    std::set<int> enabled;
    for (int id : kTypeControls) {
        if (GetDlgItem(dialog, id)->isEnabled())
            enabled.insert(id);
    }
    return enabled;
}

int CountPixels(const QImage& image, QRgb colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) == colour ? 1 : 0;
    }
    return count;
}

QPoint DiagramCorner(const QWidget* dialog, bool bottomRight)
{
    const QRect r = GetDlgItem(dialog, kDiagram)->geometry();
    return bottomRight ? r.topLeft() + QPoint(r.width(), r.height()) : r.topLeft();
}

TEST(AnisotropicDialog, ADefaultRecordOpensConcentricWithWaveControlsOff)
{
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(FZAttributeEx());
    EXPECT_TRUE(IsDlgButtonChecked(dialog.get(), kConcentric));
    EXPECT_TRUE(EnabledTypeControls(dialog.get()).empty());
    EXPECT_TRUE(GetDlgItem(dialog.get(), kDepth)->isEnabled());
    EXPECT_TRUE(GetDlgItem(dialog.get(), kGrooveWidthSpin)->isEnabled());
    EXPECT_EQ(DlgItem<QLineEdit>(dialog.get(), kWaveCountEdit)->text(), "4");
    EXPECT_EQ(Position(dialog.get(), kAmplitude), 8);  // 20 x 0.1 x 4
    EXPECT_EQ(Position(dialog.get(), kTwist), 19);

    // The diagram shows rings round the middle and the yellow mark on it.
    const QImage& diagram = DlgItem<FZCanvas>(dialog.get(), kDiagram)->Surface();
    ASSERT_EQ(diagram.size(), GetDlgItem(dialog.get(), kDiagram)->size());
    const int w = diagram.width();
    const int h = diagram.height();
    EXPECT_EQ(diagram.pixel(w / 2, h - h / 2), qRgb(255, 255, 0));
    EXPECT_GT(CountPixels(diagram, qRgb(180, 180, 180)), w * 4);

    // OK hands back the default record unchanged: every default is a step.
    dialog->accept();
    const FZAttributeEx& back = dialog->Attribute();
    const FZAttributeEx defaults;
    EXPECT_EQ(back.anisotropy.type, 1);
    EXPECT_EQ(back.anisotropy.grooveWidth, defaults.anisotropy.grooveWidth);
    EXPECT_EQ(back.anisotropy.depthVariation, 0.0f);
    EXPECT_EQ(back.anisotropy.center[0], 0.5f);
}

TEST(AnisotropicDialog, TypeButtonsEnableExactlyTheirControls)
{
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(FZAttributeEx());
    QTest::mouseClick(DlgItem<QRadioButton>(dialog.get(), kWavy), Qt::LeftButton);
    EXPECT_EQ(dialog->Attribute().anisotropy.type, 2);
    EXPECT_EQ(EnabledTypeControls(dialog.get()), (std::set<int>{4025, 1027, 1028, 4026, 4024}));
    QTest::mouseClick(DlgItem<QRadioButton>(dialog.get(), kSpiral), Qt::LeftButton);
    EXPECT_EQ(dialog->Attribute().anisotropy.type, 3);
    EXPECT_EQ(EnabledTypeControls(dialog.get()), (std::set<int>{4028, 4027}));
    QTest::mouseClick(DlgItem<QRadioButton>(dialog.get(), kConcentric), Qt::LeftButton);
    EXPECT_EQ(dialog->Attribute().anisotropy.type, 1);
    EXPECT_TRUE(EnabledTypeControls(dialog.get()).empty());

    // The hidden types enable their (hidden) controls when a host sets them.
    auto straight = OpenParameterDialog<CDlgAnisotropic>(WithType(4));
    EXPECT_EQ(EnabledTypeControls(straight.get()), (std::set<int>{4036, 4035}));
    auto wave = OpenParameterDialog<CDlgAnisotropic>(WithType(5));
    EXPECT_EQ(EnabledTypeControls(wave.get()), (std::set<int>{4039, 4034, 4040, 4037}));
}

TEST(AnisotropicDialog, SpiralSliderSpansMinusToPlusFiveHundredths)
{
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(WithType(3));
    DragTo(dialog.get(), kTwist, 0);
    EXPECT_EQ(dialog->Attribute().anisotropy.spiralTwist, -0.05f);
    DragTo(dialog.get(), kTwist, 16);
    EXPECT_EQ(dialog->Attribute().anisotropy.spiralTwist, 0.0f);
    DragTo(dialog.get(), kTwist, 32);
    EXPECT_EQ(dialog->Attribute().anisotropy.spiralTwist, 0.05f);
    Scroll(dialog.get(), kTwist, QAbstractSlider::SliderPageStepAdd);  // held at 32
    EXPECT_EQ(dialog->Attribute().anisotropy.spiralTwist, 0.05f);
    Scroll(dialog.get(), kTwist, QAbstractSlider::SliderSingleStepSub);
    EXPECT_EQ(dialog->Attribute().anisotropy.spiralTwist, 0.046875f);
    DragTo(dialog.get(), kDepth, 7);
    EXPECT_EQ(dialog->Attribute().anisotropy.depthVariation, 0.35f);
}

TEST(AnisotropicDialog, NothingIsReadBackBeforeTheFirstPaintWhichTakesValuesToTheStepBelow)
{
    FZAttributeEx record = WithType(3);
    record.anisotropy.spiralTwist = 0.01f;
    record.anisotropy.grooveWidth = 0.75f;
    record.anisotropy.depthVariation = 0.12f;
    record.anisotropy.waveCount = 7;
    CDlgAnisotropic dialog;
    dialog.SetAttribute(record, 0);
    // Before the dialog is ready nothing is read back from its controls.
    DlgItem<QLineEdit>(&dialog, kWaveCountEdit)->setText("20");
    DlgItem<QRadioButton>(&dialog, kWavy)->click();
    EXPECT_EQ(dialog.Attribute().anisotropy.type, 3);
    EXPECT_EQ(dialog.Attribute().anisotropy.waveCount, 7);
    EXPECT_EQ(dialog.Attribute().anisotropy.spiralTwist, 0.01f);
    dialog.show();
    dialog.grab();
    EXPECT_EQ(dialog.Attribute().anisotropy.spiralTwist, 0.009375f);
    EXPECT_EQ(dialog.Attribute().anisotropy.grooveWidth, 0.5f);
    EXPECT_EQ(dialog.Attribute().anisotropy.depthVariation, 0.1f);
}

TEST(AnisotropicDialog, WaveCountStaysWithinItsSpinAndKeepsTheLastNumber)
{
    FZAttributeEx record = WithType(2);
    record.anisotropy.waveCount = 99;
    record.anisotropy.amplitude = 0.2f;
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(record);
    EXPECT_EQ(dialog->Attribute().anisotropy.waveCount, 36);
    EXPECT_EQ(dialog->Attribute().anisotropy.amplitude, 0.2f);  // 16 / 20 / 4

    auto* edit = DlgItem<QLineEdit>(dialog.get(), kWaveCountEdit);
    edit->setText("0");
    EXPECT_EQ(dialog->Attribute().anisotropy.waveCount, 1);
    edit->setText("12");
    EXPECT_EQ(dialog->Attribute().anisotropy.waveCount, 12);
    edit->setText("");  // no number: the last one stays
    EXPECT_EQ(dialog->Attribute().anisotropy.waveCount, 12);
    DlgItem<CSpinButton>(dialog.get(), kWaveCountSpin)->Step(+1);
    EXPECT_EQ(edit->text(), "13");
    EXPECT_EQ(dialog->Attribute().anisotropy.waveCount, 13);
    DlgItem<CSpinButton>(dialog.get(), kGrooveWidthSpin)->Step(+1);
    EXPECT_EQ(dialog->Attribute().anisotropy.grooveWidth, 1.5f);
}

TEST(AnisotropicDialog, ClicksAtTheDiagramsCornersPlaceTheCentre)
{
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(FZAttributeEx());
    QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, DiagramCorner(dialog.get(), false));
    const float* c = dialog->Attribute().anisotropy.center;
    EXPECT_EQ(c[0], 0.0f);
    EXPECT_EQ(c[1], 1.0f);
    EXPECT_EQ(c[2], 0.0f);
    QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, DiagramCorner(dialog.get(), true));
    EXPECT_EQ(c[0], 1.0f);
    EXPECT_EQ(c[1], 0.0f);

    // A click on the diagram itself reaches the dialog too.
    auto* diagram = GetDlgItem(dialog.get(), kDiagram);
    QTest::mouseClick(diagram, Qt::LeftButton, {}, QPoint(diagram->width() / 4, 0));
    EXPECT_EQ(c[0], static_cast<float>(diagram->width() / 4 / double(diagram->width())));
    EXPECT_EQ(c[1], 1.0f);

    // Outside the diagram nothing moves.
    QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, DiagramCorner(dialog.get(), true) + QPoint(1, 0));
    EXPECT_EQ(c[1], 1.0f);
}

TEST(AnisotropicDialog, ADragEndsAtTheReleaseWhereverItHappens)
{
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(FZAttributeEx());
    const QPoint origin = DiagramCorner(dialog.get(), false);
    const float* c = dialog->Attribute().anisotropy.center;
    QTest::mousePress(dialog.get(), Qt::LeftButton, {}, origin + QPoint(10, 10));
    QTest::mouseMove(dialog.get(), origin + QPoint(20, 30));
    const float x = c[0];
    EXPECT_GT(x, 0.0f);
    QTest::mouseRelease(dialog.get(), Qt::LeftButton, {}, QPoint(-50, -50));  // off the dialog
    QTest::mouseMove(dialog.get(), origin + QPoint(40, 50));  // no button held: the centre stays
    EXPECT_EQ(c[0], x);
    // Losing the window ends a drag too; a press beside the diagram starts none.
    QTest::mousePress(dialog.get(), Qt::LeftButton, {}, origin + QPoint(10, 10));
    QEvent deactivate(QEvent::WindowDeactivate);
    QApplication::sendEvent(dialog.get(), &deactivate);
    QTest::mouseMove(dialog.get(), origin + QPoint(60, 60));
    EXPECT_EQ(c[0], static_cast<float>(10.0 / GetDlgItem(dialog.get(), kDiagram)->width()));
}

TEST(AnisotropicDialog, HostTypesFourAndFiveCheckTheirHiddenButtonAndIgnoreClicks)
{
    for (int type : {4, 5}) {
        FZAttributeEx record = WithType(type);
        record.anisotropy.angle = 30.0f;
        auto dialog = OpenParameterDialog<CDlgAnisotropic>(record);
        EXPECT_TRUE(IsDlgButtonChecked(dialog.get(), type == 4 ? kStraight : kWave));
        for (int id : {kConcentric, kWavy, kSpiral})
            EXPECT_FALSE(IsDlgButtonChecked(dialog.get(), id));
        EXPECT_EQ(dialog->Attribute().anisotropy.type, type);
        EXPECT_EQ(dialog->Attribute().anisotropy.angle, 30.0f);  // a step of 3 degrees

        QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, DiagramCorner(dialog.get(), false));
        EXPECT_EQ(dialog->Attribute().anisotropy.center[0], 0.5f);

        // Straight lines, or only the axes for the wave pattern.
        const QImage& diagram = DlgItem<FZCanvas>(dialog.get(), kDiagram)->Surface();
        EXPECT_EQ(CountPixels(diagram, qRgb(180, 180, 180)) > 0, type == 4);
    }
}

TEST(AnisotropicDialog, CancelKeepsTheRecordButHandsBackTheShape)
{
    CDlgAnisotropic dialog;
    dialog.SetAttribute(FZAttributeEx(), 0);
    dialog.SetSampleShape(2);
    QTimer::singleShot(0, &dialog, [&dialog] {
        QTest::mouseClick(DlgItem<QRadioButton>(&dialog, kSpiral), Qt::LeftButton);
        DlgItem<QPushButton>(&dialog, 4029)->click();  // "->"
        DlgItem<QPushButton>(&dialog, 4029)->click();
        DlgItem<QPushButton>(&dialog, kIdCancel)->click();
    });
    EXPECT_EQ(dialog.exec(), QDialog::Rejected);
    EXPECT_EQ(dialog.SampleShape(), 4);
}

TEST(AnisotropicDialog, PaintingDrawsBothPicturesWithoutAskingForMorePaints)
{
    CDlgAnisotropic dialog;
    dialog.SetAttribute(FZAttributeEx(), 0);
    PaintCounter counter;
    dialog.installEventFilter(&counter);
    dialog.show();
    QTest::qWait(50);
    dialog.update();
    QTest::qWait(50);
    const int settled = counter.paints;
    EXPECT_GE(settled, 1);
    QTest::qWait(150);
    EXPECT_EQ(counter.paints, settled);
    EXPECT_FALSE(DlgItem<FZCanvas>(&dialog, kDiagram)->Surface().isNull());
}

TEST(AnisotropicDialog, BadHostValuesOpenAndDrawWithoutHarm)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    for (int type : {1, 2, 3, 4, 5, 0, -7, 1 << 30}) {
        for (float bad : {nan, inf, -inf, 1e30f, -1e30f, 3.0e4f}) {
            FZAttributeEx record = WithType(type);
            FZAnisotropy& a = record.anisotropy;
            a.center[0] = bad;
            a.center[1] = -bad;
            a.amplitude = bad;
            a.spiralTwist = bad;
            a.angle = bad;
            a.depthVariation = bad;
            a.grooveWidth = bad;
            a.waveCount = type == 2 ? -5 : 1 << 30;
            const auto start = std::chrono::steady_clock::now();
            auto dialog = OpenParameterDialog<CDlgAnisotropic>(record, type);
            QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, DiagramCorner(dialog.get(), false));
            const auto took = std::chrono::steady_clock::now() - start;
            EXPECT_LT(took, std::chrono::seconds(2)) << type << " " << bad;
        }
    }
}

} // namespace
