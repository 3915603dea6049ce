// Points the settings file of this test process at a fresh temporary
// directory for the lifetime of the object, and back afterwards.
#ifndef TAMERISK_TESTS_HOST_SETTINGS_DIRECTORY_H
#define TAMERISK_TESTS_HOST_SETTINGS_DIRECTORY_H

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

class ScopedSettingsDirectory {
public:
    ScopedSettingsDirectory();
    ~ScopedSettingsDirectory();
    ScopedSettingsDirectory(const ScopedSettingsDirectory&) = delete;
    ScopedSettingsDirectory& operator=(const ScopedSettingsDirectory&) = delete;

    QString FilePath() const;
    // Writes the file as a person or another program would.
    void WriteText(const QByteArray& text) const;
    QByteArray ReadText() const;

private:
    QTemporaryDir directory;
    QByteArray previous;
    bool hadPrevious = false;
};

#endif
