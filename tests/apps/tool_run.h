// Runs one of the built tools as a user would, offscreen, and reads and
// writes the files they work on.
#pragma once

#include <sys/resource.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <filesystem>
#include <system_error>

struct ToolRun {
    int exitCode = -1;  // -1 when the tool did not finish normally
    QByteArray out;
    QByteArray err;
    QString Errors() const { return QString::fromUtf8(err); }
    QString FirstErrorLine() const { return QString::fromUtf8(err.left(err.indexOf('\n'))); }
};

// The tools run offscreen; $QVA and $RENDER name them for shell lines.
inline QProcessEnvironment ToolEnvironment()
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    env.insert("QVA", TAMERISK_BIN_DIR "/tamerisk-qva");
    env.insert("RENDER", TAMERISK_BIN_DIR "/tamerisk-render");
    return env;
}

// Waits for a started process as long as a tool may take.
inline ToolRun Finish(QProcess& process)
{
    process.closeWriteChannel();
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

// tool is a program in the build's bin directory. settingsDirectory keeps
// its settings away from the user's; past fileSizeLimit bytes (when not
// negative) every write fails, as on a full disk.
inline ToolRun RunTool(const char* tool, const QStringList& args, const QByteArray& input = {},
                       const QString& settingsDirectory = {}, long fileSizeLimit = -1)
{
    QProcess process;
    QProcessEnvironment env = ToolEnvironment();
    if (!settingsDirectory.isEmpty())
        env.insert("TAMERISK_SETTINGS_DIR", settingsDirectory);
    process.setProcessEnvironment(env);
    if (fileSizeLimit >= 0) {
        process.setChildProcessModifier([fileSizeLimit] {
            const rlimit limit{rlim_t(fileSizeLimit), rlim_t(fileSizeLimit)};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        });
    }
    process.start(QStringLiteral(TAMERISK_BIN_DIR "/") + QLatin1String(tool), args);
    process.write(input);
    return Finish(process);
}

// A shell line run in directory: file names that are not UTF-8, which
// QProcess cannot pass, and redirections need the shell.
inline ToolRun RunShell(const QString& line, const QString& directory)
{
    QProcess shell;
    shell.setProcessEnvironment(ToolEnvironment());
    shell.setWorkingDirectory(directory);
    shell.start("/bin/sh", {"-c", line});
    return Finish(shell);
}

// A temporary directory removed with everything in it, names that are not
// UTF-8 included, which QTemporaryDir leaves behind.
class ScratchDir : public QTemporaryDir {
public:
    ~ScratchDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(QFile::encodeName(path()).toStdString(), ignored);
    }
};

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
