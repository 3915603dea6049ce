// The large preview's size in the settings file: kept beside the window
// placement, read back within 64 to 4096 a side.
#include <gtest/gtest.h>

#include "host/large_preview_settings.h"
#include "host/settings.h"
#include "host/support/settings_directory.h"

TEST(LargePreviewSize, KeptBesideThePlacementAndHeldInRange)
{
    const ScopedSettingsDirectory directory;
    EXPECT_EQ(ReadLargePreviewSize(directory.FilePath()), QSize(512, 512));  // no file
    WriteWindowSettings(directory.FilePath(), {40, -50, 1});
    WriteLargePreviewSize(directory.FilePath(), {700, 300});
    EXPECT_EQ(ReadLargePreviewSize(directory.FilePath()), QSize(700, 300));
    EXPECT_EQ(ReadWindowSettings(directory.FilePath()).left, -50);
    EXPECT_TRUE(directory.ReadText().contains("[LargePreview]\nHeight=300\nWidth=700\n"));

    directory.WriteText("[LargePreview]\nWidth=-3\nHeight=99999999999\n");
    EXPECT_EQ(ReadLargePreviewSize(directory.FilePath()), QSize(64, 4096));
}
