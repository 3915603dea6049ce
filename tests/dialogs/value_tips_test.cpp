// Sliders name their field and the value they write, on hover and while
// dragged; swatches show their RGB values.
#include <QScrollBar>
#include <QToolTip>
#include <gtest/gtest.h>

#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "dialogs/templates.h"
#include "support/parameter_dialogs.h"

namespace {

QString Tip(const QWidget* dialog, int id)
{
    return DlgItem<QScrollBar>(dialog, id)->toolTip();
}

TEST(ValueTips, ParameterSlidersNameTheValueTheyWrite)
{
    FZAttributeEx record;
    record.incidenceDependence = 0.5f;
    const auto transparency = OpenParameterDialog<CDlgTransparency>(record);
    EXPECT_EQ(Tip(transparency.get(), transparency_id::kIncidence), QString::fromUtf8("入射角依存率 0.50"));
    DragTo(transparency.get(), transparency_id::kAttenuation, 3);
    EXPECT_EQ(Tip(transparency.get(), transparency_id::kAttenuation), QString::fromUtf8("減衰率 0.15"));

    // The default spacing 1000 stands at 8, which writes 884.
    const auto rainbow = OpenParameterDialog<CDlgRainbowHighlight>(record);
    EXPECT_EQ(Tip(rainbow.get(), rainbow_id::kSpacing), QString::fromUtf8("縞模様の間隔 884.00"));
    // While the thumb is held the tooltip shows and follows it.
    auto* bar = DlgItem<QScrollBar>(rainbow.get(), rainbow_id::kSpacing);
    bar->setSliderDown(true);
    bar->setSliderPosition(10);
    EXPECT_TRUE(QToolTip::isVisible());
    EXPECT_EQ(QToolTip::text(), QString::fromUtf8("縞模様の間隔 1325.00"));
    bar->setSliderDown(false);
    QToolTip::hideText();
}

} // namespace
