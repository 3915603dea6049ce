#include "host/support/settings_directory.h"

#include <QFile>

namespace {
constexpr char kVariable[] = "TAMERISK_SETTINGS_DIR";
}

ScopedSettingsDirectory::ScopedSettingsDirectory()
    : previous(qgetenv(kVariable)), hadPrevious(qEnvironmentVariableIsSet(kVariable))
{
    qputenv(kVariable, directory.path().toLocal8Bit());
}

ScopedSettingsDirectory::~ScopedSettingsDirectory()
{
    if (hadPrevious)
        qputenv(kVariable, previous);
    else
        qunsetenv(kVariable);
}

QString ScopedSettingsDirectory::FilePath() const
{
    return directory.filePath(QStringLiteral("Tamerisk.ini"));
}

void ScopedSettingsDirectory::WriteText(const QByteArray& text) const
{
    QFile file(FilePath());
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(text);
}

QByteArray ScopedSettingsDirectory::ReadText() const
{
    QFile file(FilePath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
