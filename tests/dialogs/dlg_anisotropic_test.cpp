// The anisotropic reflection dialog: controls to record and back, the type
// buttons, the spin boxes, and the centre placed with the mouse.
#include <limits>
#include <set>

#include <QRadioButton>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

#include "dialogs/dlg_anisotropic.h"
#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "support/parameter_dialogs.h"

namespace {

namespace id = anisotropic_id;

// Every control that the type enables.
constexpr int kTypeControls[] = {4025, 1028, 4026, 4024, 4028, 4027,
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
    for (int control : kTypeControls) {
        if (GetDlgItem(dialog, control)->isEnabled())
            enabled.insert(control);
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
    const QRect r = GetDlgItem(dialog, id::kDiagram)->geometry();
    return bottomRight ? r.topLeft() + QPoint(r.width(), r.height()) : r.topLeft();
}

TEST(AnisotropicDialog, ADefaultRecordOpensConcentricAndComesBackUnchanged)
{
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(FZAttributeEx());
    EXPECT_TRUE(IsChecked(dialog.get(), id::kConcentric));
    EXPECT_TRUE(EnabledTypeControls(dialog.get()).empty());
    EXPECT_EQ(DlgItem<QSpinBox>(dialog.get(), id::kWaveCount)->value(), 4);
    EXPECT_EQ(Position(dialog.get(), id::kAmplitude), 8);  // 20 x 0.1 x 4
    EXPECT_EQ(Position(dialog.get(), id::kTwist), 19);

    // The diagram shows rings round the middle and the yellow mark on it.
    const QImage& diagram = DlgItem<FZCanvas>(dialog.get(), id::kDiagram)->Surface();
    ASSERT_EQ(diagram.size(), GetDlgItem(dialog.get(), id::kDiagram)->size());
    const int w = diagram.width();
    const int h = diagram.height();
    EXPECT_EQ(diagram.pixel(w / 2, h - h / 2), qRgb(255, 255, 0));
    EXPECT_GT(CountPixels(diagram, qRgb(180, 180, 180)), w * 4);

    dialog->accept();  // every default is a step of its control
    const FZAnisotropy& back = dialog->Attribute().anisotropy;
    EXPECT_EQ(back.type, 1);
    EXPECT_EQ(back.grooveWidth, FZAnisotropy().grooveWidth);
    EXPECT_EQ(back.depthVariation, 0.0f);
    EXPECT_EQ(back.center[0], 0.5f);
}

TEST(AnisotropicDialog, TypesEnableExactlyTheirControls)
{
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(FZAttributeEx());
    const struct {
        int button, type;
        std::set<int> enabled;
    } clicks[] = {{id::kWavyConcentric, 2, {4025, 1028, 4026, 4024}},
                  {id::kSpiral, 3, {4028, 4027}},
                  {id::kConcentric, 1, {}}};
    for (const auto& c : clicks) {
        QTest::mouseClick(DlgItem<QRadioButton>(dialog.get(), c.button), Qt::LeftButton);
        EXPECT_EQ(dialog->Attribute().anisotropy.type, c.type);
        EXPECT_EQ(EnabledTypeControls(dialog.get()), c.enabled);
    }
    // The hidden types 4 and 5 come from a host: their hidden button is
    // checked, their hidden controls enabled, and clicks place no centre.
    for (int type : {4, 5}) {
        FZAttributeEx record = WithType(type);
        record.anisotropy.angle = 30.0f;
        auto opened = OpenParameterDialog<CDlgAnisotropic>(record);
        EXPECT_TRUE(IsChecked(opened.get(), type == 4 ? id::kStraight : id::kWave));
        EXPECT_FALSE(IsChecked(opened.get(), id::kConcentric));
        const std::set<int> enabled = type == 4 ? std::set<int>{4036, 4035}
                                                : std::set<int>{4039, 4034, 4040, 4037};
        EXPECT_EQ(EnabledTypeControls(opened.get()), enabled);
        EXPECT_EQ(opened->Attribute().anisotropy.angle, 30.0f);  // a step of 3 degrees
        QTest::mouseClick(opened.get(), Qt::LeftButton, {}, DiagramCorner(opened.get(), false));
        EXPECT_EQ(opened->Attribute().anisotropy.center[0], 0.5f);
        const QImage& diagram = DlgItem<FZCanvas>(opened.get(), id::kDiagram)->Surface();
        EXPECT_EQ(CountPixels(diagram, qRgb(180, 180, 180)) > 0, type == 4);
    }
}

TEST(AnisotropicDialog, SlidersAndSpinBoxesWriteTheRecord)
{
    FZAttributeEx record = WithType(2);
    record.anisotropy.waveCount = 99;
    record.anisotropy.amplitude = 0.2f;
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(record);
    const FZAnisotropy& a = dialog->Attribute().anisotropy;
    EXPECT_EQ(a.waveCount, 36);  // held by the spin box
    EXPECT_EQ(a.amplitude, 0.2f);  // 16 / 20 / 4

    // Typed as a user types: the spin box takes numbers within its range;
    // the Up key and the wheel step by one.
    auto* waves = DlgItem<QSpinBox>(dialog.get(), id::kWaveCount);
    waves->setFocus();
    QTest::keyClick(waves, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(waves, "12");
    EXPECT_EQ(a.waveCount, 12);
    QTest::keyClick(waves, Qt::Key_Up);
    EXPECT_EQ(a.waveCount, 13);
    QTest::keyClick(waves, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(waves, "99");  // 9 is taken, 99 is refused
    EXPECT_EQ(a.waveCount, 9);
    DlgItem<QSpinBox>(dialog.get(), id::kGrooveWidth)->stepBy(+1);
    EXPECT_EQ(a.grooveWidth, 1.5f);

    QTest::mouseClick(DlgItem<QRadioButton>(dialog.get(), id::kSpiral), Qt::LeftButton);
    const struct {
        int to;
        float twist;
    } drags[] = {{0, -0.05f}, {16, 0.0f}, {32, 0.05f}, {40, 0.05f}, {31, 0.046875f}};
    for (const auto& d : drags) {
        DragTo(dialog.get(), id::kTwist, d.to);
        EXPECT_EQ(a.spiralTwist, d.twist) << d.to;
    }
    DragTo(dialog.get(), id::kDepth, 7);
    EXPECT_EQ(a.depthVariation, 0.35f);
}

TEST(AnisotropicDialog, OpeningTakesValuesBetweenStepsToTheStepBelow)
{
    FZAttributeEx record = WithType(3);
    record.anisotropy.spiralTwist = 0.01f;
    record.anisotropy.grooveWidth = 0.75f;
    record.anisotropy.depthVariation = 0.12f;
    CDlgAnisotropic dialog;
    dialog.SetAttribute(record, 0);
    DlgItem<QRadioButton>(&dialog, id::kWavyConcentric)->click();  // not read before opening
    EXPECT_EQ(dialog.Attribute().anisotropy.type, 3);
    dialog.show();
    EXPECT_EQ(dialog.Attribute().anisotropy.spiralTwist, 0.009375f);
    EXPECT_EQ(dialog.Attribute().anisotropy.grooveWidth, 0.5f);
    EXPECT_EQ(dialog.Attribute().anisotropy.depthVariation, 0.1f);
}

TEST(AnisotropicDialog, ClicksAndDragsPlaceTheCentre)
{
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(FZAttributeEx());
    const float* c = dialog->Attribute().anisotropy.center;
    QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, DiagramCorner(dialog.get(), false));
    EXPECT_EQ(c[0], 0.0f);
    EXPECT_EQ(c[1], 1.0f);
    EXPECT_EQ(c[2], 0.0f);
    QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, DiagramCorner(dialog.get(), true));
    EXPECT_EQ(c[0], 1.0f);
    EXPECT_EQ(c[1], 0.0f);
    QTest::mouseClick(dialog.get(), Qt::LeftButton, {},
                      DiagramCorner(dialog.get(), true) + QPoint(1, 0));  // outside
    EXPECT_EQ(c[0], 1.0f);

    const QPoint origin = DiagramCorner(dialog.get(), false);
    QTest::mousePress(dialog.get(), Qt::LeftButton, {}, origin + QPoint(10, 10));
    QTest::mouseMove(dialog.get(), origin + QPoint(20, 30));
    EXPECT_GT(c[0], 0.0f);
    EXPECT_LT(c[0], 0.5f);
    QTest::mouseRelease(dialog.get(), Qt::LeftButton, {}, origin + QPoint(40, 50));
    const float settled = c[0];
    QTest::mouseMove(dialog.get(), origin + QPoint(60, 60));
    EXPECT_EQ(c[0], settled);
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
            a.amplitude = a.spiralTwist = a.angle = a.depthVariation = a.grooveWidth = bad;
            a.waveCount = type == 2 ? -5 : 1 << 30;
            auto dialog = OpenParameterDialog<CDlgAnisotropic>(record, type);
            QTest::mouseClick(dialog.get(), Qt::LeftButton, {}, DiagramCorner(dialog.get(), false));
            EXPECT_FALSE(DlgItem<FZCanvas>(dialog.get(), id::kDiagram)->Surface().isNull());
        }
    }
}

} // namespace
