// The presets as they are built: enough of them, each one loadable, and the
// picture of them all still drawable.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include "tool_run.h"

// scripts/draw_presets.sh draws the README's picture this way; a preset
// that does not load fails it.
TEST(Presets, TheSheetOfAllPresetsIsDrawn)
{
    const QDir presets(QStringLiteral(TAMERISK_PRESET_DIR));
    QStringList files;
    for (const QString& name : presets.entryList({QStringLiteral("*.qva")}))
        files << presets.filePath(name);
    EXPECT_GE(files.size(), 24);
    const QTemporaryDir dir;
    const QString sheet = dir.filePath(QStringLiteral("presets.png"));
    const ToolRun run = RunTool("preset-sheet", QStringList{"--size", "32", "--columns", "6", sheet} + files);
    ASSERT_EQ(run.exitCode, 0) << run.Errors().toStdString();
    EXPECT_FALSE(QImage(sheet).isNull());
}
