// The editor's place on a real X display, where a window manager frames the
// client area: when xvfb-run, openbox, xrandr and xprop are installed, this
// program runs itself there, on two screens of 1920 pixels side by side.
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <gtest/gtest.h>

#include "host/support/host_support.h"

namespace {

// Starts openbox, waits until it manages the display, splits the display
// into two screens and runs the program given.
constexpr char kDesktop[] = R"(openbox >/dev/null 2>&1 &
for i in $(seq 100); do xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id' && break; sleep 0.1; done
xrandr --setmonitor left 1920/500x1080/280+0+0 screen && xrandr --setmonitor right 1920/500x1080/280+1920+0 none &&
exec "$@")";

bool Framed(const QWidget* w) { return w && w->isVisible() && w->frameGeometry() != w->geometry(); }

} // namespace

TEST(RealDisplay, EditorComesBackWhereItWasUnderAWindowManager)
{
    for (const char* tool : {"xvfb-run", "openbox", "xrandr", "xprop"}) {
        if (QStandardPaths::findExecutable(QLatin1String(tool)).isEmpty())
            GTEST_SKIP() << tool << " is not installed";
    }
    QProcess run;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "xcb");
    run.setProcessEnvironment(env);
    run.setProcessChannelMode(QProcess::MergedChannels);
    run.start("xvfb-run", {"-a", "-s", "-screen 0 3840x1080x24", "sh", "-c", kDesktop, "sh",
                           QCoreApplication::applicationFilePath(), "--gtest_filter=RealDisplay.OnTheDisplay"});
    ASSERT_TRUE(run.waitForFinished(120000));
    const QByteArray out = run.readAll();
    EXPECT_TRUE(run.exitCode() == 0 && out.contains("[  PASSED  ] 1 test.")) << out.constData();
}

TEST(RealDisplay, OnTheDisplay)
{
    if (QGuiApplication::platformName() != QLatin1String("xcb") || QGuiApplication::screens().size() != 2)
        GTEST_SKIP() << "run by the test above";
    ASSERT_EQ(Tamerisk().error, "");
    const TameriskFunctions& api = Tamerisk().api;
    WriteSettings("[Window]\nDisplay=1\n");
    ASSERT_EQ(api.Open(nullptr, 0), 1);
    // Each close and open moved the window up by its title bar, and a place on
    // the second screen came back on the first.
    for (const QPoint corner : {QPoint(300, 200), QPoint(2500, 300)}) {
        ASSERT_TRUE(QTest::qWaitFor([] { return Framed(EditorWindow()); }));
        EditorWindow()->move(corner);
        for (int reopened = 0; reopened < 3; ++reopened) {
            const bool there = QTest::qWaitFor(
                [&] { return Framed(EditorWindow()) && EditorWindow()->frameGeometry().topLeft() == corner; });
            const QPoint at = EditorWindow()->frameGeometry().topLeft();
            EXPECT_TRUE(there) << "reopened " << reopened << " times: at " << at.x() << ", " << at.y();
            api.Close();
            ASSERT_EQ(api.Open(nullptr, 0), 1);
        }
    }
    api.Close();
}
