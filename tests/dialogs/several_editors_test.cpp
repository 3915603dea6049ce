// Several editors in one host: the ones it owns and the one of the C
// functions work side by side, each on its own material, and share only the
// window placement the settings file remembers.
#include <memory>

#include <QAbstractButton>
#include <QFile>
#include <QScrollBar>
#include <gtest/gtest.h>

#include <tamerisk/tamerisk.h>

#include "dialogs/templates.h"
#include "engine/display/canvas.h"
#include "host/settings.h"
#include "support/dlg_attribute_access.h"

namespace {

constexpr auto kNotify = static_cast<QEvent::Type>(QEvent::User + 44);

TEST(SeveralEditors, EachKeepsItsOwnMaterialHistoryColourBindAndNotifyWindow)
{
    NotifyCounter hostA(kNotify), hostB(kNotify);
    auto a = std::make_unique<CDlgAttribute>(&hostA, kNotify);
    auto b = std::make_unique<CDlgAttribute>(&hostB, kNotify);
    ASSERT_TRUE(a->Create() && b->Create());
    ASSERT_EQ(Tamerisk_Open(nullptr, 0), 1);  // the C functions' editor beside them
    FZAttributeEx red, blue;
    red.color.SetBytes(200, 0, 0);
    blue.color.SetBytes(0, 0, 200);
    Tamerisk_SetAttribute(&red);
    a->SetAttribute(red);
    b->SetAttribute(blue);
    for (CDlgAttribute* editor : {a.get(), b.get()})
        editor->UpdatePanelView();
    const auto frame = [](CDlgAttribute& e) { return DlgItem<FZCanvas>(&e, kIdPreview)->Surface(); };
    const QImage blueFrame = frame(*b);

    DlgItem<QScrollBar>(a.get(), kIdDiffuse)->setSliderPosition(16);
    DlgItem<QScrollBar>(b.get(), kIdAmbient)->setSliderPosition(64);
    EXPECT_EQ(RecordOf(*a).diffuse, 0.25f);
    EXPECT_EQ(RecordOf(*b).diffuse, blue.diffuse);
    a->actions().front()->trigger();  // undo in the first editor only
    EXPECT_EQ(RecordOf(*a).diffuse, red.diffuse);
    EXPECT_EQ(RecordOf(*b).ambient, 1.0f);

    a->SetColorBind(1);
    a->UpdatePanelView();
    EXPECT_FALSE(GetDlgItem(a.get(), kIdRed)->isEnabled());
    EXPECT_TRUE(GetDlgItem(b.get(), kIdRed)->isEnabled());
    EXPECT_EQ(b->GetColorBind(), 0);
    EXPECT_EQ(Tamerisk_GetColorBind(), 0);

    DlgItem<QAbstractButton>(b.get(), kIdUpdate)->click();
    EXPECT_EQ(hostA.notifications, 0);
    EXPECT_EQ(hostB.notifications, 1);

    // Destroying one leaves the others working.
    a.reset();
    DlgItem<QScrollBar>(b.get(), kIdRed)->setSliderPosition(64);
    EXPECT_EQ(RecordOf(*b).color.r, 255);
    EXPECT_NE(frame(*b), blueFrame);
    FZAttributeEx back;
    Tamerisk_GetAttribute(&back);
    EXPECT_EQ(back.color.r, 200);
    Tamerisk_Close();
}

TEST(SeveralEditors, OneRemembersThePlacementAndTheOthersOpenBesideIt)
{
    const QString file = SettingsFilePath();
    ASSERT_TRUE(WriteWindowSettings(file, {80, 100, 1}));
    auto first = std::make_unique<CDlgAttribute>(nullptr, 0u);
    auto second = std::make_unique<CDlgAttribute>(nullptr, 0u);
    ASSERT_TRUE(first->Create() && second->Create());
    EXPECT_EQ(first->pos(), QPoint(100, 80));
    EXPECT_EQ(second->pos(), QPoint(132, 112));  // one step aside, not hidden under the first
    ASSERT_EQ(Tamerisk_Open(nullptr, 0), 1);  // the C functions' editor goes where it always went
    const CDlgAttribute* other = EditorBesides({first.get(), second.get()});
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(other->pos(), QPoint(100, 80));

    second->move(500, 400);
    second.reset();
    EXPECT_EQ(ReadWindowSettings(file).left, 100);  // it remembered nothing
    first->move(300, 200);
    first.reset();
    EXPECT_EQ(ReadWindowSettings(file).left, 300);
    Tamerisk_Close();
    EXPECT_EQ(ReadWindowSettings(file).left, 100);  // where the C functions' editor was
    QFile::remove(file);
}

} // namespace
