// Runs one of the built tools as a user would, offscreen, and reads and
// writes the files they work on.
#pragma once

#include <sys/resource.h>

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>

struct ToolRun {
    int exitCode = -1;  // -1 when the tool did not finish normally
    QByteArray out;
    QByteArray err;

    QString Errors() const { return QString::fromUtf8(err); }
    QString FirstErrorLine() const { return QString::fromUtf8(err.left(err.indexOf('\n'))); }
};

// tool is a program name in the build's bin directory; settingsDirectory,
// when given, keeps the tool's settings away from the user's. fileSizeLimit
// (bytes, when not negative) makes every write past it fail as on a full disk.
inline ToolRun RunTool(const char* tool, const QStringList& args, const QByteArray& input = {},
                       const QString& settingsDirectory = {}, long fileSizeLimit = -1)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    if (!settingsDirectory.isEmpty())
        env.insert(QStringLiteral("TAMERISK_SETTINGS_DIR"), settingsDirectory);
    process.setProcessEnvironment(env);
    if (fileSizeLimit >= 0) {
        process.setChildProcessModifier([fileSizeLimit] {
            const rlimit limit{rlim_t(fileSizeLimit), rlim_t(fileSizeLimit)};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        });
    }
    process.start(QStringLiteral(TAMERISK_BIN_DIR "/") + QLatin1String(tool), args);
    ToolRun run;
    if (!process.waitForStarted(10000))
        return run;
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(120000))
        return run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

inline QByteArray ReadBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool WriteBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
