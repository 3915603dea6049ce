// Test entry for the Qt test programs: one QApplication for the whole run,
// on the offscreen platform unless the caller chose another, with the
// settings file in a temporary directory of its own.
#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The material dialog keeps its window placement in a settings file
    // beside the executable. Test processes run in parallel from one build
    // directory, so each keeps its own, in a directory removed at exit.
    const QTemporaryDir settingsDirectory;
    if (qEnvironmentVariableIsEmpty("TAMERISK_SETTINGS_DIR"))
        qputenv("TAMERISK_SETTINGS_DIR", settingsDirectory.path().toLocal8Bit());
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
