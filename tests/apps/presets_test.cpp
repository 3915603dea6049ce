// The presets as they are built: enough of them, every effect of the editor
// shown by at least one, and the picture of them all still drawable.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <set>

#include "json/material_json.h"
#include "tool_run.h"

namespace {

QStringList Presets()
{
    QStringList files;
    for (const QString& name : QDir(QStringLiteral(TAMERISK_PRESET_DIR)).entryList({QStringLiteral("*.qva")}))
        files << QStringLiteral(TAMERISK_PRESET_DIR "/") + name;
    return files;
}

} // namespace

TEST(Presets, EveryEffectIsShownByAPreset)
{
    const QStringList files = Presets();
    EXPECT_GE(files.size(), 24);
    std::set<std::string> shown;
    for (const QString& file : files) {
        FZAttributeEx m;
        QString error;
        ASSERT_EQ(LoadMaterial(file, m, error), FZResult::Ok) << error.toStdString();
        if (m.anisotropic != 0)
            shown.insert("grooves of type " + std::to_string(m.anisotropy.type));
        const std::pair<bool, const char*> effects[] = {
            {m.reflection > 0.5f, "a mirror"},
            {m.transparency > 0.0f && m.refractiveIndex > 1.0f, "refraction"},
            {m.transparency > 0.0f && m.colorTransparency != 0, "coloured transparency"},
            {m.transparency > 0.0f && m.incidenceDependence > 0.0f, "incidence dependence"},
            {m.transparency > 0.0f && m.attenuation > 0.0f, "attenuation"},
            {m.emission > 0.0f, "emission"},
            {m.rainbow != 0, "rainbow gloss"},
            {m.smoothHighlight != 0, "the smooth highlight"},
        };
        for (const auto& [on, effect] : effects)
            if (on)
                shown.insert(effect);
    }
    for (const char* effect : {"grooves of type 1", "grooves of type 2", "grooves of type 3", "grooves of type 4",
                               "grooves of type 5", "a mirror", "refraction", "coloured transparency",
                               "incidence dependence", "attenuation", "emission", "rainbow gloss",
                               "the smooth highlight"})
        EXPECT_TRUE(shown.count(effect)) << "no preset shows " << effect;
}

// scripts/draw_presets.sh draws the README's picture this way.
TEST(Presets, TheSheetOfAllPresetsIsDrawn)
{
    const QTemporaryDir dir;
    const QString sheet = dir.filePath(QStringLiteral("presets.png"));
    const QStringList files = Presets();
    const ToolRun run = RunTool("preset-sheet", QStringList{"--size", "32", "--columns", "6", sheet} + files);
    ASSERT_EQ(run.exitCode, 0) << run.Errors().toStdString();
    const QImage picture(sheet);
    // Six 32-pixel pictures a row with their gaps, a caption under each.
    EXPECT_EQ(picture.width(), 8 + 6 * 40);
    EXPECT_EQ(picture.height(), 8 + (files.size() + 5) / 6 * (32 + 22 + 8));
}
