// tamerisk-qva: looks into attribute files and writes them from JSON.
//
//   tamerisk-qva dump FILE.qva               prints the material as JSON
//   tamerisk-qva write FILE.qva [JSON|-]      writes a version 10 file
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>

#include <tamerisk/version.h>

#include "json/material_json.h"
#include "material/attribute_file.h"
#include "material/result_codes.h"

namespace {

constexpr const char* kDescription =
    "Reads and writes Tamerisk attribute files (.qva).\n"
    "\n"
    "  dump FILE.qva            print the material in FILE.qva as JSON, with the\n"
    "                           file's version\n"
    "  write FILE.qva [JSON]    write a version 10 file from the JSON form read\n"
    "                           from the file JSON, or from standard input when it\n"
    "                           is \"-\" or not given; missing keys take the\n"
    "                           defaults, \"version\" is ignored (an attribute\n"
    "                           file is accepted in place of JSON too)\n"
    "\n"
    "Floats are printed so that they read back to the same float; infinities\n"
    "and NaNs are the strings \"inf\", \"-inf\", \"nan\" or \"nan:0x\" and the\n"
    "8 hex digits of the NaN's bits.\n"
    "\n"
    "write refuses to overwrite a file that holds JSON text (the arguments\n"
    "the wrong way round) and to write the file it reads. File names are\n"
    "taken as they are given, byte for byte.\n"
    "\n"
    "On failure the first line on standard error is\n"
    "\"tamerisk-qva: error <code>: <message>\" and the exit status is 1, or 2\n"
    "for a wrong command line. The codes: -4 a wrong command line or a\n"
    "wrong value in the JSON, -5 a file that cannot be opened or a\n"
    "write-protected one, -6 a file that ends too early, -7 a file that\n"
    "cannot be written (the reason follows the file name), -8 neither an\n"
    "attribute file nor JSON, -9 an attribute file newer than version 10,\n"
    "-10 JSON over 1 MiB (a file or standard input). A file that cannot be\n"
    "written is left as it was.";

constexpr int kRunError = 1;
constexpr int kUsageError = 2;

void Say(const QString& line)
{
    QTextStream(stderr) << "tamerisk-qva: " << line << Qt::endl;
}

int Fail(FZResult code, const QString& message)
{
    Say(ErrorLine(code, message));
    return kRunError;
}

int Usage(const QString& detail)
{
    Say(ErrorLine(FZResult::BadParameter, ResultText(FZResult::BadParameter, QString(), detail)));
    Say(QStringLiteral("try 'tamerisk-qva --help'"));
    return kUsageError;
}

int Dump(const QByteArray& path)
{
    FZAttributeEx record;
    QString message;
    int version = 0;
    const FZResult rc = LoadMaterial(path, record, message, &version);
    if (rc != FZResult::Ok)
        return Fail(rc, message);
    const QByteArray json = MaterialToJson(record, version);
    std::fwrite(json.constData(), 1, static_cast<std::size_t>(json.size()), stdout);
    if (std::fflush(stdout) != 0)
        return Fail(FZResult::WriteFailed, ResultText(FZResult::WriteFailed, "-"));
    return 0;
}

// Reads the material from source ("-" for standard input, with the same
// 1 MiB limit as a file).
FZResult ReadSource(const QByteArray& source, FZAttributeEx& record, QString& message)
{
    if (source != "-")
        return LoadMaterial(source, record, message);
    return ReadMaterial(STDIN_FILENO, record, message, nullptr, "-");
}

bool SameFile(const QByteArray& path, const QByteArray& source)
{
    struct stat out;
    struct stat in;
    if (::stat(path.constData(), &out) != 0)
        return false;
    const int read = source == "-" ? ::fstat(STDIN_FILENO, &in) : ::stat(source.constData(), &in);
    return read == 0 && in.st_dev == out.st_dev && in.st_ino == out.st_ino;
}

// Whether the existing file at path holds JSON text: a JSON file named
// first, as "write m.json m.qva" would, is not overwritten.
bool HoldsJson(const QByteArray& path)
{
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    struct stat st;
    QByteArray start(4096, '\0');
    ssize_t n = -1;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode))
        n = ::read(fd, start.data(), static_cast<std::size_t>(start.size()));
    ::close(fd);
    return n > 0 && LooksLikeJson(start.left(n));
}

// Why path must not be written from source; 0 when it may be.
int RefuseTarget(const QByteArray& path, const QByteArray& source)
{
    const QString name = QFile::decodeName(path);
    if (SameFile(path, source))
        return Fail(FZResult::BadParameter,
                    ResultText(FZResult::BadParameter, name, "the file is both the input and the output"));
    if (HoldsJson(path))
        return Fail(FZResult::BadParameter,
                    ResultText(FZResult::BadParameter, name,
                               "the file holds JSON text and is left as it is (the attribute file comes "
                               "first: tamerisk-qva write FILE.qva JSON)"));
    return 0;
}

// Ctrl+C (or TERM, HUP) that comes while the file is replaced waits until
// it is, so that the tool says what happened to the file: a file that was
// written is reported written (status 0), one that was not says why.
int SaveHoldingSignals(const QByteArray& path, const FZAttributeEx& record)
{
    static constexpr int kHeld[] = {SIGINT, SIGTERM, SIGHUP};
    sigset_t held;
    sigset_t old;
    sigemptyset(&held);
    for (const int sig : kHeld)
        sigaddset(&held, sig);
    pthread_sigmask(SIG_BLOCK, &held, &old);
    std::string reason;
    const FZResult rc = SaveAttributeFile(path.constData(), record, &reason);
    if (rc == FZResult::Ok) {
        // The work is done; ending by the signal now would only hide that.
        for (const int sig : kHeld)
            std::signal(sig, SIG_IGN);
    }
    const int status = rc == FZResult::Ok
                           ? 0
                           : Fail(rc, ResultText(rc, QFile::decodeName(path), QString::fromLocal8Bit(reason)));
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
    return status;
}

int Write(const QByteArray& path, const QByteArray& source)
{
    if (const int refused = RefuseTarget(path, source))
        return refused;
    FZAttributeEx record;
    QString message;
    const FZResult parsed = ReadSource(source, record, message);
    if (parsed != FZResult::Ok)
        return Fail(parsed, message);
    return SaveHoldingSignals(path, record);
}

// The operands as the system passed them: file names are bytes and need not
// be UTF-8, which QStringList would not keep. The parser has checked the
// options; "--" ends them.
QList<QByteArray> Operands(int argc, char** argv)
{
    QList<QByteArray> operands;
    bool options = true;
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (options && arg == "--")
            options = false;
        else if (!options || arg == "-" || !arg.startsWith('-'))
            operands << arg;
    }
    return operands;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Past a file size limit a write fails with EFBIG and is reported, and
    // the temporary file is removed, instead of the process being killed.
    std::signal(SIGXFSZ, SIG_IGN);
    QCoreApplication::setApplicationName("tamerisk-qva");
    QCoreApplication::setApplicationVersion(TAMERISK_VERSION_STRING);
    QCommandLineParser parser;
    parser.setApplicationDescription(kDescription);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("command", "dump or write");
    parser.addPositionalArgument("file", "the attribute file (.qva)");
    parser.addPositionalArgument("json", "for write: the JSON file, or - for standard input", "[json]");
    if (!parser.parse(app.arguments()))
        return Usage(parser.errorText());
    if (parser.isSet("help"))
        parser.showHelp(0);
    if (parser.isSet("version"))
        parser.showVersion();

    const QList<QByteArray> args = Operands(argc, argv);
    const QByteArray command = args.value(0);
    if (command == "dump" && args.size() == 2)
        return Dump(args[1]);
    if (command == "write" && (args.size() == 2 || args.size() == 3))
        return Write(args[1], args.value(2, "-"));
    return Usage("usage: tamerisk-qva dump FILE.qva | tamerisk-qva write FILE.qva [JSON-FILE|-]");
}
