// The material dialog's ",,," buttons: each opens its parameter dialog on a
// copy of the record, the colour-bind flag and the shape the preview shows;
// the record comes back after OK only, the sample shape always.
#include <cstring>
#include <memory>

#include <QAbstractButton>
#include <QPushButton>
#include <QScrollBar>
#include <gtest/gtest.h>

#include "dialogs/dialog_template.h"
#include "dialogs/dlg_anisotropic.h"
#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "dialogs/templates.h"
#include "support/dlg_attribute_access.h"

namespace {

using Access = CDlgAttributeTestAccess;

class ParameterButtons : public ::testing::Test {
protected:
    void SetUp() override
    {
        dialog = std::make_unique<CDlgAttribute>(nullptr);
        ASSERT_TRUE(dialog->Create());
        FZAttributeEx a;
        a.anisotropic = 1;
        a.rainbow = 1;
        a.transparency = 0.5f;
        a.color.SetBytes(200, 40, 40);
        a.smoothWidth = 7.0f;  // no dialog edits it; it must come back as it was
        dialog->SetAttribute(a);
        dialog->UpdatePanelView();
    }

    FZAttributeEx& Record() { return Access::Record(*dialog); }

    // Clicks the ",,," button `id` and runs `inside` on the dialog it opens.
    template <typename Dialog>
    void Open(int id, const std::function<void(Dialog&)>& inside)
    {
        const ModalAnswer answer([&](QWidget* w) {
            auto* opened = qobject_cast<Dialog*>(w);
            ASSERT_NE(opened, nullptr);
            EXPECT_EQ(opened->parentWidget(), nullptr);
            inside(*opened);
        });
        DlgItem<QAbstractButton>(dialog.get(), id)->click();
        EXPECT_TRUE(answer.Seen());
    }

    std::unique_ptr<CDlgAttribute> dialog;
};

TEST_F(ParameterButtons, OkBringsTheRecordBackAndTheShapeIsShown)
{
    DlgItem<QPushButton>(dialog.get(), kIdShapeNext)->click();  // to shape 2
    dialog->SetColorBind(1);
    Open<CDlgRainbowHighlight>(kIdRainbowParameter, [](CDlgRainbowHighlight& d) {
        EXPECT_EQ(d.SampleShape(), 2);
        EXPECT_EQ(d.Attribute().color.r, 200);
        DlgItem<QScrollBar>(&d, 4036)->setSliderPosition(10);
        DlgItem<QPushButton>(&d, 4023)->click();
        DlgItem<QPushButton>(&d, kIdOk)->click();
    });
    EXPECT_EQ(Record().stripeSpacing, 1325.0f);
    EXPECT_EQ(Record().smoothWidth, 7.0f);
    EXPECT_EQ(Access::SampleShape(*dialog), 3);
    EXPECT_EQ(Access::Preview(*dialog).ShapeNumber(), 3);  // redrawn with it
}

TEST_F(ParameterButtons, CancelKeepsTheRecordButTakesTheShape)
{
    const FZAttributeEx before = Record();
    Open<CDlgTransparency>(kIdTransparencyParameter, [](CDlgTransparency& d) {
        DlgItem<QScrollBar>(&d, 4037)->setSliderPosition(20);
        DlgItem<QPushButton>(&d, 4024)->click();  // "<-" from 1 wraps to 4
        DlgItem<QPushButton>(&d, kIdCancel)->click();
    });
    EXPECT_EQ(std::memcmp(&before, &Record(), sizeof(FZAttributeEx)), 0);
    EXPECT_EQ(Access::SampleShape(*dialog), 4);
    EXPECT_EQ(Access::Preview(*dialog).ShapeNumber(), 4);

    Open<CDlgAnisotropic>(kIdAnisotropicParameter, [](CDlgAnisotropic& d) {
        EXPECT_EQ(d.SampleShape(), 4);
        DlgItem<QAbstractButton>(&d, 4022)->click();  // spiral
        DlgItem<QPushButton>(&d, kIdOk)->click();
    });
    EXPECT_EQ(Record().anisotropy.type, 3);
    EXPECT_EQ(Record().anisotropy.spiralTwist, 0.009375f);
    EXPECT_EQ(Record().smoothWidth, 7.0f);
}

} // namespace
