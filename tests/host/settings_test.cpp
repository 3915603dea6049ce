#include <climits>
#include <vector>

#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QTemporaryFile>
#include <QWidget>
#include <gtest/gtest.h>

#include "host/settings.h"
#include "host/support/settings_directory.h"

namespace {

QSize ScreenSize()
{
    return QGuiApplication::primaryScreen()->geometry().size();
}

// top, left, display
std::vector<int> Values(const WindowSettings& s) { return {s.top, s.left, s.display}; }

} // namespace

TEST(SettingsFile, LiesInTheDirectoryOfTheExecutable)
{
    EXPECT_EQ(SettingsFilePathFor("/opt/studio/bin/studio"), "/opt/studio/bin/Tamerisk.ini");
    EXPECT_EQ(SettingsFilePathFor("C:\\Studio\\studio.exe"), "C:\\Studio/Tamerisk.ini");
    EXPECT_EQ(SettingsFilePathFor("/opt/a\\b/studio"), "/opt/a\\b/Tamerisk.ini");
    // No directory part, or only a leading separator: the current directory.
    const QString current = QDir::currentPath() + "/Tamerisk.ini";
    EXPECT_EQ(SettingsFilePathFor("studio"), current);
    EXPECT_EQ(SettingsFilePathFor("/studio"), current);
    EXPECT_EQ(SettingsFilePathFor(""), current);
}

TEST(SettingsFile, OverrideDirectoryReplacesTheExecutableDirectory)
{
    {
        const ScopedSettingsDirectory directory;
        EXPECT_EQ(SettingsFilePath(), directory.FilePath());
    }
    const QByteArray previous = qgetenv("TAMERISK_SETTINGS_DIR");
    qunsetenv("TAMERISK_SETTINGS_DIR");
    EXPECT_EQ(SettingsFilePath(), SettingsFilePathFor(QCoreApplication::applicationFilePath()));
    qputenv("TAMERISK_SETTINGS_DIR", previous);
}

TEST(SettingsFile, WritesPlainDecimalKeysAndReadsThemBack)
{
    const ScopedSettingsDirectory directory;
    WriteWindowSettings(directory.FilePath(), {40, -50, 1});

    const QByteArray text = directory.ReadText();
    EXPECT_TRUE(text.startsWith("[Window]\n")) << text.constData();
    for (const char* line : {"\nTop=40\n", "\nLeft=-50\n", "\nDisplay=1\n"})
        EXPECT_TRUE(text.contains(line)) << text.constData();
    EXPECT_EQ(Values(ReadWindowSettings(directory.FilePath())), (std::vector{40, -50, 1}));
}

TEST(SettingsFile, ReadsLikeAPrivateProfile)
{
    const ScopedSettingsDirectory directory;
    EXPECT_EQ(Values(ReadWindowSettings(directory.FilePath())), (std::vector{0, 0, 0}));

    // Each text below differs in length from the one before: QSettings
    // re-reads a file whose size or time changed, and these writes fall
    // within the same millisecond.
    directory.WriteText("[Other]\nName=kept\n[Window]\nTop = 12px\nLeft=abc\nDisplay=+7\n");
    EXPECT_EQ(Values(ReadWindowSettings(directory.FilePath())), (std::vector{12, 0, 7}));
    directory.WriteText("[Window]\nTop=99999999999999999999\nLeft=-99999999999\n");
    EXPECT_EQ(Values(ReadWindowSettings(directory.FilePath())), (std::vector{INT_MAX, INT_MIN, 0}));

    // Writing keeps what else the file holds.
    directory.WriteText("[Other]\nName=kept\n");
    WriteWindowSettings(directory.FilePath(), {1, 2, 0});
    EXPECT_TRUE(directory.ReadText().contains("Name=kept"));
}

TEST(SettingsFile, UnwritableLocationIsNotAnError)
{
    // A regular file where the directory should be: nothing can be created.
    QTemporaryFile notADirectory;
    ASSERT_TRUE(notADirectory.open());
    const QString path = notADirectory.fileName() + "/Tamerisk.ini";
    WriteWindowSettings(path, {5, 6, 1});
    EXPECT_EQ(ReadWindowSettings(path).display, 0);
}

TEST(WindowClamp, HoldsTheWindowOnTheScreen)
{
    const QSize screen(1024, 768);
    const QSize window(400, 300);
    EXPECT_EQ(ClampWindowPosition(-50, 10, window, screen), QPoint(0, 10));
    EXPECT_EQ(ClampWindowPosition(5000, 10, window, screen), QPoint(624, 10));
    EXPECT_EQ(ClampWindowPosition(100, 5000, window, screen), QPoint(100, 468));
    EXPECT_EQ(ClampWindowPosition(624, 468, window, screen), QPoint(624, 468));
    // A window larger than the screen ends with negative coordinates.
    EXPECT_EQ(ClampWindowPosition(0, 0, QSize(1200, 900), screen), QPoint(-176, -132));
    // Extreme saved values do not overflow.
    EXPECT_EQ(ClampWindowPosition(INT_MAX, INT_MIN, window, screen), QPoint(624, 0));
}

TEST(WindowPlacement, LoadPlacesTheWindowThenShowsOrClosesIt)
{
    const QSize screen = ScreenSize();
    constexpr int kFarEdge = INT_MIN;  // the window's frame ends on the screen's edge
    struct Case {
        const char* file;  // null: no settings file
        QSize size;
        int x, y;
        bool visible;
    };
    const Case cases[] = {
        {nullptr, {200, 100}, 0, 0, false},
        {"[Window]\nTop=20\nLeft=-50\nDisplay=1\n", {200, 100}, 0, 20, true},
        {"[Window]\nTop=5000\nLeft=0\nDisplay=1\n", {screen.width() + 200, 100}, kFarEdge,
         kFarEdge, true},
        {"[Window]\nTop=10\nLeft=5000\nDisplay=0\n", {200, 100}, kFarEdge, 10, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file ? c.file : "no file");
        const ScopedSettingsDirectory directory;
        if (c.file)
            directory.WriteText(c.file);
        QWidget window;
        window.move(300, 200);
        window.resize(c.size);
        LoadWindowPlacement(&window);
        // The frame counts: it is known once the window exists.
        const QSize frame = window.frameGeometry().size();
        EXPECT_EQ(window.pos().x(), c.x == kFarEdge ? screen.width() - frame.width() : c.x);
        EXPECT_EQ(window.pos().y(), c.y == kFarEdge ? screen.height() - frame.height() : c.y);
        EXPECT_EQ(window.isVisible(), c.visible);
        // A closed dialog is minimised and hidden, as its close box leaves it.
        EXPECT_EQ(window.isMinimized(), !c.visible);
        if (c.size.width() > screen.width()) {
            EXPECT_LT(window.pos().x(), 0);
        }
    }
}

TEST(WindowPlacement, SaveWritesTheNormalCornerAndWhetherDisplayed)
{
    const ScopedSettingsDirectory directory;
    QWidget window;
    const auto saved = [&] {
        SaveWindowPlacement(&window);
        return Values(ReadWindowSettings(directory.FilePath()));
    };
    using Expected = std::vector<int>;  // top, left, display

    window.resize(200, 100);
    window.move(30, 40);
    window.show();
    EXPECT_EQ(saved(), (Expected{40, 30, 1}));

    window.showMaximized();
    EXPECT_EQ(saved(), (Expected{40, 30, 1}));

    // Closed as the close box closes: minimised, then hidden.
    window.showNormal();
    window.showMinimized();
    window.hide();
    EXPECT_EQ(saved(), (Expected{40, 30, 0}));

    // Hidden without being minimised still counts as displayed.
    window.showNormal();
    window.hide();
    EXPECT_EQ(saved(), (Expected{40, 30, 1}));
}
