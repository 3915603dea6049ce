// Pictures of the three parameter dialogs for the documentation. They are
// written only when TAMERISK_SCREENSHOT_DIR names a directory:
//     TAMERISK_SCREENSHOT_DIR=docs/images build/bin/test_dialogs \
//         --gtest_filter='ParameterDialogScreenshots.*'
#include <QDir>
#include <gtest/gtest.h>

#include "dialogs/dlg_anisotropic.h"
#include "dialogs/dlg_rainbow_highlight.h"
#include "dialogs/dlg_transparency.h"
#include "support/parameter_dialogs.h"

namespace {

// A polished, coloured material that shows each effect on the sample.
FZAttributeEx ShowcaseMaterial()
{
    FZAttributeEx record;
    record.color.SetBytes(200, 170, 90);
    record.highlightStrength = 0.9f;
    record.highlightSharpness = 0.6f;
    record.anisotropic = 1;
    record.anisotropy.type = 2;
    record.anisotropy.waveCount = 6;
    record.anisotropy.amplitude = 0.15f;
    record.anisotropy.center[0] = 0.4f;
    record.anisotropy.center[1] = 0.6f;
    return record;
}

template <typename Dialog>
void Save(const QString& directory, const char* name, const FZAttributeEx& record, int shape)
{
    auto dialog = OpenParameterDialog<Dialog>(record, shape);
    const QImage picture = dialog->grab().toImage();
    ASSERT_FALSE(picture.isNull());
    EXPECT_TRUE(picture.save(QDir(directory).filePath(QString::fromLatin1(name))));
}

TEST(ParameterDialogScreenshots, WriteTheThreeDialogs)
{
    const QString directory = qEnvironmentVariable("TAMERISK_SCREENSHOT_DIR");
    if (directory.isEmpty())
        GTEST_SKIP() << "TAMERISK_SCREENSHOT_DIR is not set";
    ASSERT_TRUE(QDir().mkpath(directory));

    Save<CDlgAnisotropic>(directory, "anisotropic-dialog.png", ShowcaseMaterial(), 1);

    FZAttributeEx rainbow;
    rainbow.color.SetBytes(70, 70, 90);
    rainbow.highlightStrength = 1.0f;
    rainbow.highlightSharpness = 0.3f;
    rainbow.reflection = 0.5f;
    rainbow.rainbow = 1;
    Save<CDlgRainbowHighlight>(directory, "rainbow-gloss-dialog.png", rainbow, 2);

    FZAttributeEx glass;
    glass.color.SetBytes(120, 190, 230);
    glass.transparency = 0.7f;
    glass.refractiveIndex = 1.5f;
    glass.incidenceDependence = 0.5f;
    glass.attenuation = 0.25f;
    Save<CDlgTransparency>(directory, "transparency-dialog.png", glass, 3);
}

} // namespace
