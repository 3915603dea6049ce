// tamerisk-qva: looks into attribute files and writes them from JSON.
//
//   tamerisk-qva dump FILE.qva               prints the material as JSON
//   tamerisk-qva write FILE.qva [JSON|-]      writes a version 10 file
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

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
    "On failure the first line on standard error is\n"
    "\"tamerisk-qva: error <code>: <message>\" and the exit status is 1, or 2\n"
    "for a wrong command line. The codes: -4 a wrong command line or a\n"
    "wrong value in the JSON, -5 a file that cannot be opened or a\n"
    "write-protected one, -6 a file that ends too early, -7 a file that\n"
    "cannot be written (the reason follows the file name), -8 neither an\n"
    "attribute file nor JSON, -9 an attribute file newer than version 10,\n"
    "-10 a JSON file over 1 MiB. A file that cannot be written is left as it\n"
    "was.";

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

int Dump(const QString& path)
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

// Reads the material from source ("-" for standard input).
FZResult ReadSource(const QString& source, FZAttributeEx& record, QString& message)
{
    if (source != "-")
        return LoadMaterial(source, record, message);
    QFile in;
    if (!in.open(stdin, QIODevice::ReadOnly)) {
        message = ResultText(FZResult::OpenFailed, source, in.errorString());
        return FZResult::OpenFailed;
    }
    return ParseMaterial(in.readAll(), record, message, nullptr, source);
}

int Write(const QString& path, const QString& source)
{
    FZAttributeEx record;
    QString message;
    const FZResult parsed = ReadSource(source, record, message);
    if (parsed != FZResult::Ok)
        return Fail(parsed, message);
    std::string reason;
    const FZResult rc = SaveAttributeFile(QFile::encodeName(path).constData(), record, &reason);
    if (rc != FZResult::Ok)
        return Fail(rc, ResultText(rc, path, QString::fromLocal8Bit(reason)));
    return 0;
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

    const QStringList args = parser.positionalArguments();
    const QString command = args.value(0);
    if (command == "dump" && args.size() == 2)
        return Dump(args[1]);
    if (command == "write" && (args.size() == 2 || args.size() == 3))
        return Write(args[1], args.value(2, "-"));
    return Usage("usage: tamerisk-qva dump FILE.qva | tamerisk-qva write FILE.qva [JSON-FILE|-]");
}
