// The command line of tamerisk-render.
#include "options.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "preview/preview_panel.h"

namespace {

constexpr int kMaxThreads = 256;

// The parser is given every argument as Latin-1, one character for each
// byte, so that the values it returns turn back into the very bytes given;
// the options' names are ASCII and read the same either way.
QStringList OneCharacterPerByte(const QList<QByteArray>& arguments)
{
    QStringList characters;
    characters.reserve(arguments.size());
    for (const QByteArray& argument : arguments)
        characters << QString::fromLatin1(argument);
    return characters;
}

QByteArray Bytes(const QString& value)
{
    return value.toLatin1();
}

QList<QByteArray> Bytes(const QStringList& values)
{
    QList<QByteArray> bytes;
    bytes.reserve(values.size());
    for (const QString& value : values)
        bytes << Bytes(value);
    return bytes;
}

// A value or a message of the parser as the user's terminal shows it.
QString Shown(const QString& value)
{
    return QFile::decodeName(Bytes(value));
}

// "N" for a square frame or "WxH"; both at least 1.
bool ParseSize(const QString& text, Options& options, QString& error)
{
    static const QRegularExpression form(QStringLiteral("^(-?\\d+)(?:[xX](-?\\d+))?$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        error = QStringLiteral("invalid --size '%1': expected N or WxH").arg(Shown(text));
        return false;
    }
    bool okW = false;
    bool okH = true;
    const qlonglong w = match.captured(1).toLongLong(&okW);
    const qlonglong h = match.captured(2).isEmpty() ? w : match.captured(2).toLongLong(&okH);
    if (okW && okH && (w < 1 || h < 1)) {
        error = QStringLiteral("invalid --size '%1': width and height must be at least 1").arg(Shown(text));
        return false;
    }
    if (!okW || !okH || w > kMaxFrameSide || h > kMaxFrameSide || w * h > kMaxFramePixels) {
        error = QStringLiteral("--size '%1' is too large to render: at most %2 pixels a side and %3 pixels "
                               "in all (8192 x 8192)")
                    .arg(Shown(text))
                    .arg(kMaxFrameSide)
                    .arg(kMaxFramePixels);
        return false;
    }
    options.width = static_cast<std::int32_t>(w);
    options.height = static_cast<std::int32_t>(h);
    return true;
}

bool ParseOutput(const QByteArray& path, Options& options, QString& error)
{
    std::error_code ignored;
    if (path.endsWith('/') || std::filesystem::is_directory(path.toStdString(), ignored)) {
        error = QStringLiteral("'%1' is a folder: --output names one image; to render materials into a folder, "
                               "use --output-dir %1 FILE...")
                    .arg(QFile::decodeName(path));
        return false;
    }
    const QByteArray lower = path.toLower();
    // A thumbnail service names its output file as it likes.
    if (options.inPlace || lower.endsWith(".png")) {
        options.format = Format::Png;
    } else if (lower.endsWith(".ppm")) {
        options.format = Format::Ppm;
    } else {
        error = QStringLiteral("cannot tell the image format of '%1': the output must end in .png or .ppm")
                    .arg(QFile::decodeName(path));
        return false;
    }
    options.output = path;
    return true;
}

// The batch's materials: a file as it is, a folder as its .qva and .json
// files (not those of its subfolders), in the order of their names' bytes.
// False with a message for a folder that holds none.
bool ExpandFolders(const QList<QByteArray>& given, QList<QByteArray>& files, QString& error)
{
    for (const QByteArray& path : given) {
        std::error_code failure;
        if (!std::filesystem::is_directory(path.toStdString(), failure)) {
            files << path;
            continue;
        }
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path.toStdString(), failure)) {
            const std::string name = entry.path().filename().native();
            const QByteArray lower = QByteArray::fromStdString(name).toLower();
            std::error_code ignored;
            if ((lower.endsWith(".qva") || lower.endsWith(".json")) && !entry.is_directory(ignored))
                names.push_back(name);
        }
        if (failure) {
            error = QStringLiteral("cannot read the folder '%1': %2")
                        .arg(QFile::decodeName(path), QString::fromLocal8Bit(failure.message()));
            return false;
        }
        if (names.empty()) {
            error = QStringLiteral("the folder '%1' holds no .qva or .json file").arg(QFile::decodeName(path));
            return false;
        }
        std::sort(names.begin(), names.end());
        const QByteArray folder = path.endsWith('/') ? path : path + '/';
        for (const std::string& name : names)
            files << folder + QByteArray::fromStdString(name);
    }
    return true;
}

// Either --output and at most one material, or --output-dir and the
// materials as arguments.
bool ParseTargets(const QByteArray& output, const QByteArray& outputDir, const QByteArray& material,
                  const QList<QByteArray>& files, Options& options, QString& error)
{
    if (outputDir.isEmpty()) {
        if (!files.isEmpty()) {
            error = QStringLiteral("unexpected argument '%1'").arg(QFile::decodeName(files.first()));
            return false;
        }
        if (output.isEmpty()) {
            error = QStringLiteral("--output (or --output-dir with material files) is required");
            return false;
        }
        options.material = material;
        return ParseOutput(output, options, error);
    }
    if (!output.isEmpty() || !material.isEmpty()) {
        error = QStringLiteral("--output-dir takes the materials as arguments, without --output or --material");
        return false;
    }
    if (files.isEmpty()) {
        error = QStringLiteral("--output-dir needs at least one material FILE");
        return false;
    }
    options.outputDir = outputDir;
    return ExpandFolders(files, options.files, error);
}

} // namespace

bool ParseOptions(QCommandLineParser& parser, const QList<QByteArray>& arguments, Options& options,
                  QString& error)
{
    const QCommandLineOption material(QStringLiteral("material"),
                                      QStringLiteral("Material to render: an attribute file (.qva) or its JSON form "
                                                     "(.json). Without it, the default material."),
                                      QStringLiteral("FILE"));
    const QCommandLineOption shape(QStringLiteral("shape"),
                                   QStringLiteral("Sample shape: 1 plate with a dimple (default), 2 low dome, "
                                                  "3 flattened hemisphere, 4 ring."),
                                   QStringLiteral("N"));
    const QCommandLineOption size(QStringLiteral("size"),
                                  QStringLiteral("Frame size in pixels: N for N x N (default 120) or WxH."),
                                  QStringLiteral("N|WxH"));
    const QCommandLineOption colorBind(QStringLiteral("color-bind"),
                                       QStringLiteral("Show the sample white, as the editor does while the host "
                                                      "controls the colour."));
    const QCommandLineOption seed(QStringLiteral("seed"),
                                  QStringLiteral("Seed the random generator instead of the time, so the groove "
                                                 "depth variation of anisotropic materials is reproducible."),
                                  QStringLiteral("S"));
    const QCommandLineOption threads(QStringLiteral("threads"),
                                     QStringLiteral("Render with N threads: 0 (the default) for one per processor. "
                                                    "The picture is the same whatever N is."),
                                     QStringLiteral("N"));
    const QCommandLineOption output(QStringLiteral("output"),
                                    QStringLiteral("Image to write: .png, or .ppm (binary P6, top row first)."),
                                    QStringLiteral("OUT"));
    const QCommandLineOption outputDir(QStringLiteral("output-dir"),
                                       QStringLiteral("Render every material FILE given as an argument into "
                                                      "DIR/<its name>.png, building the shape once. A "
                                                      "folder FILE stands for its .qva and .json files."),
                                       QStringLiteral("DIR"));
    const QCommandLineOption inPlace(QStringLiteral("in-place"),
                                     QStringLiteral("Write PNG into OUT itself, whatever its name, instead of "
                                                    "replacing it by a new file: for thumbnail services, which "
                                                    "hand out an output file that they hold open."));
    parser.setApplicationDescription(
        QStringLiteral("Renders a material on a sample shape, as the material editor's preview shows it."));
    parser.addOptions({material, shape, size, colorBind, seed, threads, output, outputDir, inPlace});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Materials (or folders of them) to render with --output-dir."),
                                 QStringLiteral("[FILE...]"));
    parser.addHelpOption();
    parser.addVersionOption();

    if (!parser.parse(OneCharacterPerByte(arguments))) {
        error = Shown(parser.errorText());
        return false;
    }
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("help-all")))
        parser.showHelp(0);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    options.colorBind = parser.isSet(colorBind);
    options.inPlace = parser.isSet(inPlace);
    if (options.inPlace && parser.isSet(outputDir)) {
        error = QStringLiteral("--in-place writes one picture, to --output");
        return false;
    }
    if (parser.isSet(shape)) {
        bool ok = false;
        options.shape = parser.value(shape).toInt(&ok);
        if (!ok || options.shape < 1 || options.shape > 4) {
            error = QStringLiteral("invalid --shape '%1': expected 1, 2, 3 or 4").arg(Shown(parser.value(shape)));
            return false;
        }
    }
    if (parser.isSet(size) && !ParseSize(parser.value(size), options, error))
        return false;
    if (parser.isSet(seed)) {
        bool ok = false;
        const uint value = parser.value(seed).toUInt(&ok);
        if (!ok) {
            error = QStringLiteral("invalid --seed '%1': expected a number from 0 to 4294967295")
                        .arg(Shown(parser.value(seed)));
            return false;
        }
        options.seed = value;
    }
    if (parser.isSet(threads)) {
        bool ok = false;
        options.threads = parser.value(threads).toInt(&ok);
        if (!ok || options.threads < 0 || options.threads > kMaxThreads) {
            error = QStringLiteral("invalid --threads '%1': expected a number from 0 to %2")
                        .arg(Shown(parser.value(threads)))
                        .arg(kMaxThreads);
            return false;
        }
    }
    return ParseTargets(Bytes(parser.value(output)), Bytes(parser.value(outputDir)), Bytes(parser.value(material)),
                        Bytes(parser.positionalArguments()), options, error);
}

