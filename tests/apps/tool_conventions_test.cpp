// What every tool does alike: --version names the tool and the library's
// version, and an unknown option ends the run with 2 and an English line
// that starts with the tool's name.
#include <gtest/gtest.h>

#include <QProcess>

#include <tamerisk/version.h>

#include "tool_run.h"

TEST(ToolConventions, VersionAndBadOptions)
{
    for (const char* tool : {"tamerisk-render", "tamerisk-qva", "tamerisk-host"}) {
        const ToolRun version = RunTool(tool, {"--version"});
        EXPECT_EQ(version.exitCode, 0) << tool;
        EXPECT_EQ(version.out, QByteArray(tool) + " " TAMERISK_VERSION_STRING "\n");

        const ToolRun bad = RunTool(tool, {"--no-such-option"});
        EXPECT_EQ(bad.exitCode, 2) << tool;
        // Qt may say something of its own first (no XDG_RUNTIME_DIR here).
        const QStringList lines = bad.Errors().split(u'\n').filter(QStringLiteral("no-such-option"));
        ASSERT_EQ(lines.size(), 1) << bad.Errors().toStdString();
        EXPECT_TRUE(lines[0].startsWith(QLatin1String(tool) + ": ")) << lines[0].toStdString();
        EXPECT_TRUE(bad.out.isEmpty()) << tool;
    }
}

TEST(ToolConventions, HostAnswersHelpAndVersionWithoutADisplay)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        env.remove(QLatin1String(variable));
    for (const char* option : {"--help", "--version"}) {
        QProcess host;
        host.setProcessEnvironment(env);
        host.start(QStringLiteral(TAMERISK_BIN_DIR "/tamerisk-host"), {QLatin1String(option)});
        ASSERT_TRUE(host.waitForFinished(60000)) << option;
        EXPECT_EQ(host.exitStatus(), QProcess::NormalExit) << option;
        EXPECT_EQ(host.exitCode(), 0) << option;
        EXPECT_TRUE(host.readAllStandardOutput().contains("tamerisk-host")) << option;
    }
}
