// What every tool does alike: --version names the tool and the library's
// version, and an unknown option ends the run with 2 and an English line
// that starts with the tool's name.
#include <gtest/gtest.h>

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
