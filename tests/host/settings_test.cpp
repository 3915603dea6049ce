// The settings file, and where a saved placement puts the window.
#include <climits>
#include <vector>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "host/support/host_support.h"

namespace {

std::vector<int> Values(const WindowSettings& s) { return {s.top, s.left, s.display}; }

QStringList warnings;

void KeepWarning(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtWarningMsg)
        warnings << message;
}

} // namespace

// Beside the executable, or in the user's configuration when that
// directory cannot be written.
TEST(SettingsFile, LiesInTheDirectoryOfTheExecutableOrTheUsersConfiguration)
{
    EXPECT_EQ(SettingsFilePathFor("/opt/studio/bin/studio"), "/opt/studio/bin/Tamerisk.ini");
    EXPECT_EQ(SettingsFilePathFor("C:\\Studio\\studio.exe"), "C:\\Studio/Tamerisk.ini");
    EXPECT_EQ(SettingsFilePathFor("/studio"), QDir::currentPath() + "/Tamerisk.ini");
    const QTemporaryDir home;
    const bool hadConfig = qEnvironmentVariableIsSet("XDG_CONFIG_HOME");
    const QByteArray savedConfig = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    EXPECT_EQ(WritableSettingsFilePathFor(home.filePath("bin/studio")), home.filePath("Tamerisk/Tamerisk.ini"));
    EXPECT_TRUE(QFileInfo(home.filePath("Tamerisk")).isDir());  // ready for the first write
    ASSERT_TRUE(QDir(home.path()).mkdir("bin"));
    EXPECT_EQ(WritableSettingsFilePathFor(home.filePath("bin/studio")), home.filePath("bin/Tamerisk.ini"));
    hadConfig ? void(qputenv("XDG_CONFIG_HOME", savedConfig)) : void(qunsetenv("XDG_CONFIG_HOME"));
}

TEST(SettingsFile, ReadsLikeAPrivateProfileAndWritesOnlyItsKeys)
{
    WriteSettings({});
    EXPECT_EQ(Values(ReadWindowSettings(SettingsFilePath())), (std::vector{0, 0, 0}));
    // How values read and lines are kept is the profile text's own concern.
    WriteSettings("[Other]\nTop=3\n[window]\r\n top = 12px\nLeft=abc\nDisplay=+7\n[More]\nName=kept\n");
    EXPECT_EQ(Values(ReadWindowSettings(SettingsFilePath())), (std::vector{12, 0, 7}));
    ASSERT_TRUE(WriteWindowSettings(SettingsFilePath(), {40, -50, 1}));
    EXPECT_EQ(ReadSettings(), "[Other]\nTop=3\n[window]\r\nTop=40\nLeft=-50\nDisplay=1\n[More]\nName=kept\n");

    // A write that cannot be done says why and leaves the file as it was.
    QFile::setPermissions(SettingsFilePath(), QFile::ReadOwner);
    QString reason;
    EXPECT_FALSE(WriteWindowSettings(SettingsFilePath(), {1, 2, 1}, &reason));
    EXPECT_EQ(reason, "Permission denied (the file is write-protected)");
    EXPECT_EQ(ReadWindowSettings(SettingsFilePath()).top, 40);
    WriteSettings({});
}

TEST(SettingsFile, KeepsTheLargePreviewsPlaceAndTheFileDialogsMemoryBesideThePlacement)
{
    WriteSettings({});
    EXPECT_EQ(ReadLargePreviewPlace(SettingsFilePath()).size, QSize(512, 512));
    EXPECT_FALSE(ReadLargePreviewPlace(SettingsFilePath()).corner);
    ASSERT_TRUE(WriteWindowSettings(SettingsFilePath(), {40, -50, 1}));
    WriteLargePreviewPlace(SettingsFilePath(), {700, 300}, {-20, 30});
    RememberFile(SettingsFilePath(), QStringLiteral("/tmp/m/red.qva"), false);
    EXPECT_EQ(ReadFileMemory(SettingsFilePath()).folder, QStringLiteral("/tmp/m"));
    EXPECT_EQ(ReadFileMemory(SettingsFilePath()).file, QString());
    RememberFile(SettingsFilePath(), QString::fromUtf8("/tmp/質感/赤.qva"), true);
    RememberFile(SettingsFilePath(), QStringLiteral("/tmp/two\nlines.qva"), true);
    EXPECT_EQ(ReadSettings(), QByteArray("[Window]\nTop=40\nLeft=-50\nDisplay=1\n"
                                         "[LargePreview]\nWidth=700\nHeight=300\nLeft=-20\nTop=30\n"
                                         "[Files]\nFolder=/tmp/質感\nFile=赤.qva\n"));
    EXPECT_EQ(ReadLargePreviewPlace(SettingsFilePath()).corner, QPoint(-20, 30));
    WriteSettings("[LargePreview]\nWidth=-3\nHeight=99999999999\nLeft=5\n");
    EXPECT_EQ(ReadLargePreviewPlace(SettingsFilePath()).size, QSize(64, 4096));
    EXPECT_FALSE(ReadLargePreviewPlace(SettingsFilePath()).corner);
    WriteSettings({});
}

// A host's editor opens and closes over a settings file that is none: the
// file is refused with a warning, never overwritten. Which files are refused
// is the profile file's concern; one kind is enough here.
TEST(SettingsFile, AFileThatIsNoSettingsIsRefusedWithAWarningAndKept)
{
    ASSERT_EQ(Tamerisk().error, "");
    const QByteArray binary("[Window]\nTop=5\n\0\0\x01", 17);
    WriteSettings(binary);
    warnings.clear();
    const QtMessageHandler previous = qInstallMessageHandler(KeepWarning);
    EXPECT_EQ(Values(ReadWindowSettings(SettingsFilePath())), (std::vector{0, 0, 0}));
    EXPECT_EQ(Tamerisk().api.Open(nullptr, 0), 1);
    Tamerisk().api.Close();
    qInstallMessageHandler(previous);
    ASSERT_FALSE(warnings.isEmpty());
    EXPECT_TRUE(warnings.first().contains(SettingsFilePath())) << warnings.first().toStdString();
    EXPECT_EQ(ReadSettings(), binary);
    WriteSettings({});
}

TEST(WindowPlacement, StaysOnTheScreenThatHoldsItsCornerOrMovesToTheNearest)
{
    const QSize window(400, 300);
    const std::vector<QRect> one = {{0, 0, 1024, 768}};
    const std::vector<QRect> two = {{0, 0, 1920, 1080}, {1920, 0, 1920, 1080}};
    const std::vector<QRect> stacked = {{0, 0, 1920, 1080}, {0, -1200, 1600, 1200}};
    const struct {
        QPoint saved;
        QSize size;
        const std::vector<QRect>& screens;
        QPoint placed;
    } cases[] = {
        {{-50, 10}, window, one, {0, 10}},
        {{5000, 10}, window, one, {624, 10}},
        {{100, 5000}, window, one, {100, 468}},
        {{0, 0}, {1200, 900}, one, {-176, -132}},  // larger than the screen
        {{INT_MAX, INT_MIN}, window, one, {624, 0}},
        {{2500, 300}, window, two, {2500, 300}},  // on the second screen
        {{3700, 300}, window, two, {3440, 300}},  // held inside the second screen
        {{1800, 300}, window, two, {1520, 300}},  // its corner is on the first
        {{5000, -90}, window, two, {3440, 0}},    // off every screen: the nearest
        {{1700, -1000}, window, stacked, {1200, -1000}},  // nearer the upper screen
        {{-50, 7}, window, {}, {0, 7}},  // no screen at all
    };
    for (const auto& c : cases)
        EXPECT_EQ(PlaceWindow(c.saved, c.size, c.screens), c.placed) << c.saved.x() << ", " << c.saved.y();
}
