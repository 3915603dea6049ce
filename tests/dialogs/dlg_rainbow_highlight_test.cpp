// The rainbow gloss dialog: the shared slider curve, the opening position,
// the stripe spacing each slider move stores, and what comes back.
#include <cmath>
#include <limits>

#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

#include "dialogs/dlg_rainbow_highlight.h"
#include "support/parameter_dialogs.h"

namespace {

constexpr int kSpacing = 4036;

TEST(RainbowCurve, EachConstructionSetsTheSquareCurveUp)
{
    {
        CDlgRainbowHighlight dialog;
    }
    const RainbowSliderCurve& curve = RainbowCurve();
    EXPECT_DOUBLE_EQ(curve.k, 2.0);
    EXPECT_DOUBLE_EQ(curve.a, 12.25);
    EXPECT_DOUBLE_EQ(curve.b, 100.0);
    EXPECT_EQ(curve.Spacing(0), 100.0f);
    EXPECT_EQ(curve.Spacing(20), 5000.0f);
    EXPECT_EQ(curve.Spacing(8), 884.0f);
    EXPECT_EQ(curve.Spacing(10), 1325.0f);
    EXPECT_EQ(curve.Position(1000.0f), 8);
    EXPECT_EQ(curve.Position(5000.0f), 20);
    EXPECT_EQ(curve.Position(884.0f), 8);
    EXPECT_EQ(curve.Position(883.9f), 7);
}

TEST(RainbowDialog, OpensAtTheRecordsPositionAndOkKeepsAnUntouchedValue)
{
    const FZAttributeEx record;  // stripeSpacing 1000
    auto dialog = OpenParameterDialog<CDlgRainbowHighlight>(record);
    EXPECT_EQ(Position(dialog.get(), kSpacing), 8);
    EXPECT_EQ(DlgItem<QScrollBar>(dialog.get(), kSpacing)->maximum(), 20);
    dialog->accept();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(dialog->Attribute().stripeSpacing, 1000.0f);  // not 884
}

TEST(RainbowDialog, SliderMovesStoreTheCurveOfTheShownPosition)
{
    auto dialog = OpenParameterDialog<CDlgRainbowHighlight>(FZAttributeEx());
    Scroll(dialog.get(), kSpacing, QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(dialog->Attribute().stripeSpacing, 1092.25f);  // position 9
    Scroll(dialog.get(), kSpacing, QAbstractSlider::SliderPageStepSub);
    EXPECT_EQ(dialog->Attribute().stripeSpacing, 700.25f);  // position 7
    DragTo(dialog.get(), kSpacing, 10);
    EXPECT_EQ(dialog->Attribute().stripeSpacing, 1325.0f);

    // Steps beyond either end keep the end's value, which the slider shows.
    DragTo(dialog.get(), kSpacing, 20);
    Scroll(dialog.get(), kSpacing, QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(Position(dialog.get(), kSpacing), 20);
    EXPECT_EQ(dialog->Attribute().stripeSpacing, 5000.0f);
    DragTo(dialog.get(), kSpacing, 0);
    Scroll(dialog.get(), kSpacing, QAbstractSlider::SliderPageStepSub);
    EXPECT_EQ(Position(dialog.get(), kSpacing), 0);
    EXPECT_EQ(dialog->Attribute().stripeSpacing, 100.0f);
}

TEST(RainbowDialog, SpacingsWithoutARealPositionOpenAtTheNearerEnd)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const struct {
        float spacing;
        bool high;
    } cases[] = {{50.0f, false}, {-1e30f, false}, {nan, false}, {-inf, false},
                 {inf, true},    {1e30f, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.spacing);
        FZAttributeEx record;
        record.stripeSpacing = c.spacing;
        auto dialog = OpenParameterDialog<CDlgRainbowHighlight>(record);
        EXPECT_EQ(Position(dialog.get(), kSpacing), c.high ? 20 : 0);
        if (c.high)
            EXPECT_GT(RainbowCurve().Position(c.spacing), 20);
        else
            EXPECT_EQ(RainbowCurve().Position(c.spacing), 0);
    }
}

TEST(RainbowDialog, CancelKeepsNoRecordButHandsBackTheShape)
{
    CDlgRainbowHighlight dialog;
    FZAttributeEx record;
    dialog.SetAttribute(record, 0);
    dialog.SetSampleShape(4);
    QTimer::singleShot(0, &dialog, [&dialog] {
        Scroll(&dialog, kSpacing, QAbstractSlider::SliderPageStepAdd);
        DlgItem<QPushButton>(&dialog, 4023)->click();  // "->" from 4 wraps to 1
        DlgItem<QPushButton>(&dialog, kIdCancel)->click();
    });
    EXPECT_EQ(dialog.exec(), QDialog::Rejected);
    EXPECT_EQ(dialog.SampleShape(), 1);
    // The dialog's own copy moved; the caller reads it only after OK.
    EXPECT_EQ(dialog.Attribute().stripeSpacing, 1325.0f);
}

} // namespace
