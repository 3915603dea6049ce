// Sliders name their field and the value they write, on hover and while
// dragged; swatches show their RGB values.
#include <QScrollBar>
#include <QToolTip>
#include <gtest/gtest.h>

#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "dialogs/templates.h"
#include "support/dlg_attribute_access.h"
#include "support/parameter_dialogs.h"

namespace {

QString Tip(const QWidget* dialog, int id)
{
    return DlgItem<QScrollBar>(dialog, id)->toolTip();
}

TEST(ValueTips, SlidersAndSwatchesShowTheValueTheyWrite)
{
    CDlgAttribute editor(nullptr);
    ASSERT_TRUE(editor.Create());
    FZAttributeEx a;
    a.diffuse = 0.8f;
    a.color.SetBytes(128, 0, 255);
    a.refractiveIndex = 1.5f;
    editor.SetAttribute(a);
    editor.UpdatePanelView();
    // Position 51 writes 51 / 64; the red slider at 32 writes the byte 127.
    EXPECT_EQ(Tip(&editor, kIdDiffuse), QString::fromUtf8("拡散反射率 0.80"));
    EXPECT_EQ(Tip(&editor, kIdRed), QString::fromUtf8("赤 127"));
    EXPECT_EQ(Tip(&editor, kIdRefractiveIndex), QString::fromUtf8("屈折率 1.50"));
    DlgItem<QScrollBar>(&editor, kIdSpread)->setSliderPosition(64);  // dragged to the right end
    EXPECT_EQ(Tip(&editor, kIdSpread), QString::fromUtf8("広がり 1.00"));
    EXPECT_EQ(GetDlgItem(&editor, kIdColorSwatch)->toolTip(), QStringLiteral("RGB 128, 0, 255"));

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
