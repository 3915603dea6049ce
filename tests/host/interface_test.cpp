// The host interface as a host calls it: libtamerisk.so opened with dlopen,
// the functions looked up by name, and nothing but the public header.
#include <cstring>
#include <thread>
#include <tuple>
#include <vector>

#include <QAbstractButton>
#include <QPointer>
#include <QScrollBar>
#include <QTimer>
#include <gtest/gtest.h>

#include "attribute_bytes.h"
#include "host/support/host_support.h"
#include "tamerisk-host/host_window.h"

namespace {

// Diffuse 0.5 shows as slider position 32.
const FZAttributeEx kSample = [] { FZAttributeEx m; m.diffuse = 0.5f; m.thickness = 7.0f; return m; }();

template <typename Control>
Control* EditorControl(const char* id)
{
    return EditorWindow() ? EditorWindow()->findChild<Control*>(QLatin1String(id)) : nullptr;
}

// Answers the editor's notify event by reading the material back, as a
// host's handler does.
struct NotifyWindow : QWidget {
    unsigned int message = static_cast<unsigned int>(QEvent::registerEventType());
    std::vector<FZAttributeEx> received;
    bool event(QEvent* e) override
    {
        if (e->type() != static_cast<QEvent::Type>(message))
            return QWidget::event(e);
        Tamerisk().api.GetAttribute(&received.emplace_back());
        return true;
    }
};

class HostInterface : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(Tamerisk().error, "");
        WriteSettings({});
    }
    void TearDown() override { api.Close(); }
    FZAttributeEx Held() const  // read over a filled record
    {
        FZAttributeEx got = kSample;
        api.GetAttribute(&got);
        return got;
    }
    const TameriskFunctions& api = Tamerisk().api;
};

} // namespace

TEST_F(HostInterface, WithoutAnEditorNothingHappens)
{
    FZAttributeEx mine;
    api.SetAttribute(&mine);
    api.SetColorBind(1);
    api.ShowWindow(TAMERISK_SW_SHOWNORMAL);
    api.SetTitle("x");
    api.Close();
    EXPECT_EQ(api.GetShow(), 0xFFFFFFFFu);
    EXPECT_EQ(api.GetColorBind(), 0);
    EXPECT_TRUE(SameBytes(Held(), kSample));
    int opened = -1;
    std::thread([&] { opened = api.Open(nullptr, 0); }).join();  // off the GUI thread
    EXPECT_EQ(opened, 0);
    EXPECT_EQ(api.GetShow(), TAMERISK_NO_EDITOR);
}

TEST_F(HostInterface, MaterialAndColourBindTravelAsAHostExpects)
{
    api.SetColorBind(1);
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    EXPECT_EQ(api.GetColorBind(), 0);  // opening switches colour bind off
    EXPECT_FALSE(EditorWindow()->isVisible());  // no settings: hidden at (0, 0)
    EXPECT_EQ(EditorWindow()->pos(), QPoint(0, 0));
    EXPECT_TRUE(SameBytes(Held(), FZAttributeEx()));

    FZAttributeEx sent = kSample;
    api.SetAttribute(&sent);
    api.SetAttribute(nullptr);  // null records are ignored
    api.GetAttribute(nullptr);
    EXPECT_TRUE(SameBytes(Held(), sent));
    ASSERT_TRUE(EditorControl<QScrollBar>("1010") && EditorControl<QScrollBar>("1020"));
    EXPECT_EQ(EditorControl<QScrollBar>("1010")->value(), 32);
    api.SetColorBind(1);  // disables the colour sliders
    EXPECT_FALSE(EditorControl<QScrollBar>("1020")->isEnabled());
    FZAttributeEx garbage;  // any bytes at all are held and shown without harm
    std::memset(static_cast<void*>(&garbage), 0xFF, sizeof garbage);
    api.SetAttribute(&garbage);
    EXPECT_TRUE(SameBytes(Held(), garbage));
}

TEST_F(HostInterface, NotifyReachesTheHostBeforeTheButtonReturns)
{
    NotifyWindow host;
    ASSERT_EQ(api.Open(&host, host.message), 1);
    FZAttributeEx sent = kSample;
    api.SetAttribute(&sent);
    ASSERT_NE(EditorControl<QAbstractButton>("1017"), nullptr);
    EditorControl<QAbstractButton>("1017")->click();  // "更新"
    ASSERT_EQ(host.received.size(), 1u);
    EXPECT_TRUE(SameBytes(host.received[0], sent));
}

TEST_F(HostInterface, TheSettingsFileKeepsPlaceAndDisplayFromOneEditorToTheNext)
{
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    api.ShowWindow(TAMERISK_SW_SHOWNORMAL);
    EditorWindow()->move(30, 40);
    ASSERT_EQ(api.Open(nullptr, 0), 1);  // a second Open replaces the editor
    EXPECT_EQ(EditorWindow()->pos(), QPoint(30, 40));
    EXPECT_TRUE(EditorWindow()->isVisible());
    EditorWindow()->close();  // the close box only hides it, minimised
    EXPECT_EQ(api.GetShow(), unsigned{TAMERISK_SW_SHOWMINIMIZED});
    api.Close();
    EXPECT_EQ(ReadSettings(), "[Window]\nTop=40\nLeft=30\nDisplay=0\n");
}

TEST_F(HostInterface, ShowCommandsFollowTheWindowsNumbers)
{
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    // Command, then whether the window is visible and the show state after it.
    const std::tuple<int, bool, unsigned> steps[] = {
        {TAMERISK_SW_SHOWNORMAL, true, 1}, {TAMERISK_SW_MAXIMIZE, true, 3}, {TAMERISK_SW_MINIMIZE, true, 2},
        {TAMERISK_SW_RESTORE, true, 3},    {TAMERISK_SW_RESTORE, true, 1},  {TAMERISK_SW_HIDE, false, 1},
        {TAMERISK_SW_SHOWNA, true, 1},     {TAMERISK_SW_FORCEMINIMIZE, true, 2}, {TAMERISK_SW_HIDE, false, 2},
        {TAMERISK_SW_SHOW, true, 2},       {42, true, 2},                   {TAMERISK_SW_SHOWMAXIMIZED, true, 3},
    };
    for (const auto& [command, visible, show] : steps) {
        api.ShowWindow(command);
        EXPECT_EQ(EditorWindow()->isVisible(), visible) << command;
        EXPECT_EQ(api.GetShow(), show) << command;
    }
}

TEST_F(HostInterface, ClosingTheDemoHostClosesTheEditorAndEndsTheProgram)
{
    HostWindow host(api, kSample, QString());
    host.show();
    host.OpenEditor();
    QPointer<QWidget> editor = EditorWindow();
    ASSERT_TRUE(editor && editor->isVisible());
    QTimer::singleShot(0, &host, [&] { host.close(); });
    QTimer::singleShot(10000, &host, [] { QCoreApplication::exit(1); });  // the program would go on
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_TRUE(editor.isNull());
    EXPECT_TRUE(ReadSettings().contains("Display=1"));
}
