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

std::unique_ptr<CDlgAnisotropic> Open(int type, void (*adjust)(FZAnisotropy&) = [](FZAnisotropy&) {})
{
    FZAttributeEx record;
    record.anisotropy.type = type;
    adjust(record.anisotropy);
    return OpenParameterDialog<CDlgAnisotropic>(record, type);
}

std::set<int> EnabledTypeControls(const QWidget* dialog)
{
    std::set<int> enabled;
    for (int control : {4025, 1028, 4026, 4024, 4028, 4027, 4036, 4035, 4039, 4034, 4040, 4037})
        enabled.insert(GetDlgItem(dialog, control)->isEnabled() ? control : 0);
    enabled.erase(0);
    return enabled;
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

TEST(AnisotropicDialog, ADefaultRecordOpensConcentricAndComesBackUnchanged)
{
    auto dialog = OpenParameterDialog<CDlgAnisotropic>(FZAttributeEx());
    EXPECT_TRUE(IsChecked(dialog.get(), id::kConcentric));
    EXPECT_EQ(DlgItem<QSpinBox>(dialog.get(), id::kWaveCount)->value(), 4);
    EXPECT_EQ(Position(dialog.get(), id::kAmplitude), 8);  // 20 x 0.1 x 4
    EXPECT_EQ(Position(dialog.get(), id::kTwist), 19);
    // Rings round the middle, with the yellow mark on it.
    const QImage& diagram = Diagram(dialog.get());
    ASSERT_EQ(diagram.size(), GetDlgItem(dialog.get(), id::kDiagram)->size());
    EXPECT_EQ(diagram.pixel(diagram.width() / 2, diagram.height() - diagram.height() / 2),
              qRgb(255, 255, 0));
    EXPECT_TRUE(HasPattern(diagram));

    dialog->accept();  // every default is a step of its control
    const FZAnisotropy& back = dialog->Attribute().anisotropy;
    EXPECT_EQ(back.type, 1);
    EXPECT_EQ(back.grooveWidth, FZAnisotropy().grooveWidth);
    EXPECT_EQ(back.center[0], 0.5f);
}

TEST(AnisotropicDialog, TypesEnableExactlyTheirControls)
{
    auto dialog = Open(1);
    EXPECT_TRUE(EnabledTypeControls(dialog.get()).empty());
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
        auto opened = Open(type, [](FZAnisotropy& a) { a.angle = 30.0f; });
        EXPECT_TRUE(IsChecked(opened.get(), type == 4 ? id::kStraight : id::kWave));
        const std::set<int> enabled = type == 4 ? std::set<int>{4036, 4035}
                                                : std::set<int>{4039, 4034, 4040, 4037};
        EXPECT_EQ(EnabledTypeControls(opened.get()), enabled);
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

    // Typed as a user types: the spin box takes numbers within its range;
    // the Up key steps by one.
    auto* waves = DlgItem<QSpinBox>(dialog.get(), id::kWaveCount);
    for (auto [typed, count] : {std::pair{"12", 12}, std::pair{"99", 9}}) {
        QTest::keyClick(waves, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(waves, typed);  // "99": the second 9 is refused
        EXPECT_EQ(a.waveCount, count);
    }
    QTest::keyClick(waves, Qt::Key_Up);
    EXPECT_EQ(a.waveCount, 10);
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

TEST(AnisotropicDialog, OpeningTakesValuesBetweenStepsToTheStepBelow)
{
    auto dialog = Open(3, [](FZAnisotropy& a) {
        a.spiralTwist = 0.01f, a.grooveWidth = 0.75f, a.depthVariation = 0.12f;
    });
    const FZAnisotropy& a = dialog->Attribute().anisotropy;
    EXPECT_EQ(a.spiralTwist, 0.009375f);
    EXPECT_EQ(a.grooveWidth, 0.5f);
    EXPECT_EQ(a.depthVariation, 0.1f);
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
    QTest::mouseRelease(dialog.get(), Qt::LeftButton, {}, origin + QPoint(40, 50));
    const float settled = c[0];
    QTest::mouseMove(dialog.get(), origin + QPoint(60, 60));
    EXPECT_EQ(c[0], settled);
}

TEST(AnisotropicDialog, BadHostValuesOpenAndDrawWithoutHarm)
{
    static float bad;
    for (int type : {1, 2, 3, 4, 5, 0, -7, 1 << 30}) {
        for (float value : {std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(), -1e30f, 3.0e4f}) {
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

} // namespace
