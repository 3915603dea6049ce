// The host interface as a host sees it: libtamerisk.so opened with dlopen,
// the nine functions looked up by name, and nothing but the public header.
#include <cstring>
#include <thread>

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QPointer>
#include <QScreen>
#include <QScrollBar>
#include <gtest/gtest.h>

#include <tamerisk/tamerisk.h>

#include "host/support/settings_directory.h"
#include "host/support/tamerisk_library.h"

namespace {

// The editor's window, found as a host would find it: among the top-level
// widgets, by its class name.
QWidget* EditorWindow()
{
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->inherits("CDlgAttribute"))
            return w;
    }
    return nullptr;
}

template <typename Control>
Control* EditorControl(const char* id)
{
    QWidget* editor = EditorWindow();
    return editor ? editor->findChild<Control*>(QLatin1String(id)) : nullptr;
}

bool SameBytes(const FZAttributeEx& a, const FZAttributeEx& b)
{
    return std::memcmp(&a, &b, sizeof(FZAttributeEx)) == 0;
}

FZAttributeEx SampleMaterial()
{
    FZAttributeEx m;
    m.diffuse = 0.5f;
    m.color.SetBytes(128, 64, 32);
    m.transparency = 0.25f;
    m.anisotropic = 1;
    m.anisotropy.type = 3;
    m.smoothWidth = 5.0f;
    m.thickness = 7.0f;
    return m;
}

// A host window that answers the editor's notify event by reading the
// material back, as a host's handler does.
class NotifyWindow : public QWidget {
public:
    NotifyWindow(unsigned int message, Tamerisk_GetAttributeFunction getAttribute)
        : message(message), getAttribute(getAttribute)
    {
    }

    unsigned int message;
    Tamerisk_GetAttributeFunction getAttribute;
    int notifications = 0;
    FZAttributeEx received;

protected:
    bool event(QEvent* e) override
    {
        if (e->type() != static_cast<QEvent::Type>(message))
            return QWidget::event(e);
        ++notifications;
        getAttribute(&received);
        return true;
    }
};

class HostInterface : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_STREQ(TameriskLoadError(), ""); }
    void TearDown() override
    {
        if (api.Close)
            api.Close();
    }

    // What the editor holds, read through the interface over a filled record.
    FZAttributeEx Held() const
    {
        FZAttributeEx got = SampleMaterial();
        api.GetAttribute(&got);
        return got;
    }

    const ScopedSettingsDirectory settings;  // outlives the editor's last save
    const TameriskFunctions& api = Tamerisk();
};

} // namespace

TEST_F(HostInterface, WithoutAnEditorNothingHappens)
{
    EXPECT_EQ(api.GetShow(), 0xFFFFFFFFu);
    EXPECT_EQ(api.GetShow(), TAMERISK_NO_EDITOR);
    EXPECT_EQ(api.GetColorBind(), 0);

    FZAttributeEx mine = Held();
    EXPECT_TRUE(SameBytes(mine, SampleMaterial()));
    api.SetAttribute(&mine);
    api.SetColorBind(1);
    EXPECT_EQ(api.GetColorBind(), 0);
    api.ShowWindow(TAMERISK_SW_SHOWNORMAL);
    api.SetTitle("x");
    api.Close();
    api.Close();
    EXPECT_EQ(EditorWindow(), nullptr);
    EXPECT_EQ(api.GetShow(), TAMERISK_NO_EDITOR);
}

TEST_F(HostInterface, OpenRefusesOffTheGuiThread)
{
    int opened = -1;
    std::thread other([&] { opened = api.Open(nullptr, 0); });
    other.join();
    EXPECT_EQ(opened, 0);
    EXPECT_EQ(api.GetShow(), TAMERISK_NO_EDITOR);
    EXPECT_EQ(EditorWindow(), nullptr);
}

TEST_F(HostInterface, OpenWithoutSettingsGivesAHiddenEditorWithTheDefaultMaterial)
{
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    QWidget* editor = EditorWindow();
    ASSERT_NE(editor, nullptr);
    EXPECT_FALSE(editor->isVisible());
    EXPECT_EQ(editor->pos(), QPoint(0, 0));
    EXPECT_EQ(api.GetShow(), unsigned{TAMERISK_SW_SHOWMINIMIZED});

    EXPECT_TRUE(SameBytes(Held(), FZAttributeEx()));
}

TEST_F(HostInterface, MaterialTravelsBothWaysAndReachesTheControls)
{
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    FZAttributeEx sent = SampleMaterial();
    api.SetAttribute(&sent);
    EXPECT_TRUE(SameBytes(Held(), sent));

    const QScrollBar* diffuse = EditorControl<QScrollBar>("1010");
    const QScrollBar* red = EditorControl<QScrollBar>("1020");
    ASSERT_TRUE(diffuse && red);
    EXPECT_EQ(diffuse->value(), 32);
    EXPECT_EQ(red->value(), 32);

    // Null records are ignored.
    api.SetAttribute(nullptr);
    api.GetAttribute(nullptr);
    EXPECT_TRUE(SameBytes(Held(), sent));

    // Any bytes at all are held and shown without harm.
    FZAttributeEx garbage;
    std::memset(static_cast<void*>(&garbage), 0xFF, sizeof garbage);
    api.SetAttribute(&garbage);
    EXPECT_TRUE(SameBytes(Held(), garbage));
}

TEST_F(HostInterface, OpeningSwitchesColourBindOff)
{
    api.SetColorBind(1);
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    EXPECT_EQ(api.GetColorBind(), 0);
    const QScrollBar* red = EditorControl<QScrollBar>("1020");
    ASSERT_NE(red, nullptr);
    EXPECT_TRUE(red->isEnabled());

    api.SetColorBind(1);
    EXPECT_EQ(api.GetColorBind(), 1);
    EXPECT_FALSE(red->isEnabled());

    ASSERT_EQ(api.Open(nullptr, 0), 1);
    EXPECT_EQ(api.GetColorBind(), 0);
}

TEST_F(HostInterface, NotifyReachesTheHostBeforeTheButtonReturns)
{
    const auto message = static_cast<unsigned int>(QEvent::registerEventType());
    NotifyWindow host(message, api.GetAttribute);
    ASSERT_EQ(api.Open(&host, message), 1);
    const FZAttributeEx sent = SampleMaterial();
    FZAttributeEx copy = sent;
    api.SetAttribute(&copy);

    QAbstractButton* update = EditorControl<QAbstractButton>("1017");
    ASSERT_NE(update, nullptr);
    update->click();
    // The event was sent, not posted: the handler has already run and read
    // the material through the interface from inside the notification.
    EXPECT_EQ(host.notifications, 1);
    EXPECT_TRUE(SameBytes(host.received, sent));
}

TEST_F(HostInterface, OpeningAgainReplacesTheEditorAndRereadsThePlacement)
{
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    QPointer<QWidget> first = EditorWindow();
    FZAttributeEx edited = SampleMaterial();
    api.SetAttribute(&edited);
    api.ShowWindow(TAMERISK_SW_SHOWNORMAL);
    first->move(50, 60);

    ASSERT_EQ(api.Open(nullptr, 0), 1);
    EXPECT_TRUE(first.isNull());
    QWidget* second = EditorWindow();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->pos(), QPoint(50, 60));
    EXPECT_TRUE(second->isVisible());
    EXPECT_TRUE(SameBytes(Held(), FZAttributeEx()));
}

TEST_F(HostInterface, ClosingRemembersWhetherTheEditorWasDisplayed)
{
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    api.ShowWindow(TAMERISK_SW_SHOWNORMAL);
    QPointer<QWidget> editor = EditorWindow();
    editor->move(30, 40);
    api.Close();
    EXPECT_TRUE(editor.isNull());
    EXPECT_EQ(api.GetShow(), TAMERISK_NO_EDITOR);
    QByteArray saved = settings.ReadText();
    EXPECT_TRUE(saved.contains("Top=40") && saved.contains("Left=30")
                && saved.contains("Display=1"))
        << saved.constData();

    // The close box only hides the editor, minimised first.
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    editor = EditorWindow();
    EXPECT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->pos(), QPoint(30, 40));
    editor->close();
    EXPECT_FALSE(editor.isNull());
    EXPECT_FALSE(editor->isVisible());
    EXPECT_EQ(api.GetShow(), unsigned{TAMERISK_SW_SHOWMINIMIZED});
    api.Close();
    saved = settings.ReadText();
    EXPECT_TRUE(saved.contains("Display=0")) << saved.constData();

    ASSERT_EQ(api.Open(nullptr, 0), 1);
    EXPECT_FALSE(EditorWindow()->isVisible());
    EXPECT_EQ(EditorWindow()->pos(), QPoint(30, 40));
}

TEST_F(HostInterface, OpenHoldsTheRememberedPlaceOnTheScreen)
{
    settings.WriteText("[Window]\nTop=5000\nLeft=-50\nDisplay=1\n");
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    const QWidget* editor = EditorWindow();
    ASSERT_NE(editor, nullptr);
    const int screenHeight = QGuiApplication::primaryScreen()->geometry().height();
    EXPECT_EQ(editor->pos(), QPoint(0, screenHeight - editor->frameGeometry().height()));
    EXPECT_TRUE(editor->isVisible());
    EXPECT_EQ(api.GetShow(), unsigned{TAMERISK_SW_SHOWNORMAL});
}

TEST_F(HostInterface, ShowCommandsFollowTheWindowsNumbers)
{
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    QWidget* editor = EditorWindow();
    ASSERT_NE(editor, nullptr);
    struct Step {
        int command;
        bool visible;
        unsigned int show;
    };
    const Step steps[] = {
        {TAMERISK_SW_SHOWNORMAL, true, 1},
        {TAMERISK_SW_MAXIMIZE, true, 3},
        {TAMERISK_SW_MINIMIZE, true, 2},
        {TAMERISK_SW_RESTORE, true, 3},  // back to maximised
        {TAMERISK_SW_RESTORE, true, 1},
        {TAMERISK_SW_SHOWMINNOACTIVE, true, 2},
        {TAMERISK_SW_SHOWDEFAULT, true, 1},
        {TAMERISK_SW_HIDE, false, 1},  // hidden, yet placed normally
        {TAMERISK_SW_SHOWNA, true, 1},
        {TAMERISK_SW_SHOWMINIMIZED, true, 2},
        {TAMERISK_SW_SHOWNOACTIVATE, true, 1},
        {TAMERISK_SW_HIDE, false, 1},
        {TAMERISK_SW_FORCEMINIMIZE, true, 2},
        {TAMERISK_SW_HIDE, false, 2},
        {TAMERISK_SW_SHOW, true, 2},  // shown in the state it had
        {42, true, 2},                // unknown: ignored
        {-1, true, 2},
        {TAMERISK_SW_SHOWMAXIMIZED, true, 3},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.command);
        api.ShowWindow(step.command);
        EXPECT_EQ(editor->isVisible(), step.visible);
        EXPECT_EQ(api.GetShow(), step.show);
    }
}

TEST_F(HostInterface, TitleIsSetFromUtf8)
{
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    api.SetTitle("質感 ﾘﾓｺﾝ - ガラス");
    EXPECT_EQ(EditorWindow()->windowTitle(), QString::fromUtf8("質感 ﾘﾓｺﾝ - ガラス"));
    api.SetTitle(nullptr);
    EXPECT_EQ(EditorWindow()->windowTitle(), QString());
}

TEST(HostLibrary, RegistersTheDialogPicturesWhenLoaded)
{
    ASSERT_STREQ(TameriskLoadError(), "");
    // This test program links no dialog code of its own, so the pictures can
    // only come from the loaded library, before any editor is opened.
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/bitmaps/4004.png")));
}
