// tamerisk-render: renders a material on a sample shape into an image file,
// exactly as the preview panel of the material editor shows it.
//
//   tamerisk-render [--material FILE.qva|FILE.json] [--shape N] [--size N|WxH]
//                   [--color-bind] [--seed S] [--threads N] --output OUT.png|OUT.ppm
//
// The picture is made through the panel's own calls (SetUpFrame,
// BuildSampleShape, ApplyMaterial), so a thumbnail made here and the dialog's
// preview agree pixel for pixel. Output goes to a temporary file beside the
// target and is renamed into place only when it is complete.
#include <QBuffer>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QRegularExpression>

#include <cstdint>
#include <csignal>
#include <cstdio>
#include <optional>

#include <tamerisk/attribute.h>

#include "common/material_json.h"
#include "engine/display/image_display.h"
#include "engine/parallel.h"
#include "engine/random.h"
#include "material/file_replace.h"
#include "preview/preview_panel.h"

namespace {

constexpr int kUsageError = 2;
constexpr int kRunError = 1;
constexpr int kMaxThreads = 256;

enum class Format { Png, Ppm };

struct Options {
    QString material;
    std::int32_t shape = 1;
    std::int32_t width = 120;
    std::int32_t height = 120;
    bool colorBind = false;
    std::optional<std::uint32_t> seed;
    int threads = 0;
    QString output;
    Format format = Format::Png;
};

void PrintError(const QString& message)
{
    std::fprintf(stderr, "tamerisk-render: %s\n", qPrintable(message));
}

// "N" for a square frame or "WxH"; both at least 1.
bool ParseSize(const QString& text, Options& options, QString& error)
{
    static const QRegularExpression form(QStringLiteral("^(-?\\d+)(?:[xX](-?\\d+))?$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        error = QStringLiteral("invalid --size '%1': expected N or WxH").arg(text);
        return false;
    }
    bool okW = false;
    bool okH = true;
    const qlonglong w = match.captured(1).toLongLong(&okW);
    const qlonglong h = match.captured(2).isEmpty() ? w : match.captured(2).toLongLong(&okH);
    if (okW && okH && (w < 1 || h < 1)) {
        error = QStringLiteral("invalid --size '%1': width and height must be at least 1").arg(text);
        return false;
    }
    if (!okW || !okH || w > INT32_MAX || h > INT32_MAX) {
        error = QStringLiteral("--size '%1' is too large to render").arg(text);
        return false;
    }
    options.width = static_cast<std::int32_t>(w);
    options.height = static_cast<std::int32_t>(h);
    return true;
}

bool ParseOutput(const QString& path, Options& options, QString& error)
{
    if (path.isEmpty()) {
        error = QStringLiteral("--output is required");
        return false;
    }
    if (path.endsWith(QStringLiteral(".png"), Qt::CaseInsensitive)) {
        options.format = Format::Png;
    } else if (path.endsWith(QStringLiteral(".ppm"), Qt::CaseInsensitive)) {
        options.format = Format::Ppm;
    } else {
        error = QStringLiteral("cannot tell the image format of '%1': the output must end in .png or .ppm")
                    .arg(path);
        return false;
    }
    options.output = path;
    return true;
}

// Fills options from the command line; false with a message on bad input.
bool ParseOptions(QCommandLineParser& parser, const QStringList& arguments, Options& options, QString& error)
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
                                     QStringLiteral("Render with N threads: 0 (the default) for one per processor, "
                                                    "1 for the straightforward single-threaded path. The picture "
                                                    "is the same whatever N is."),
                                     QStringLiteral("N"));
    const QCommandLineOption output(QStringLiteral("output"),
                                    QStringLiteral("Image to write: .png, or .ppm (binary P6, top row first)."),
                                    QStringLiteral("OUT"));
    parser.setApplicationDescription(
        QStringLiteral("Renders a material on a sample shape, as the material editor's preview shows it."));
    parser.addOptions({material, shape, size, colorBind, seed, threads, output});
    parser.addHelpOption();

    if (!parser.parse(arguments)) {
        error = parser.errorText();
        return false;
    }
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("help-all")))
        parser.showHelp(0);
    if (!parser.positionalArguments().isEmpty()) {
        error = QStringLiteral("unexpected argument '%1'").arg(parser.positionalArguments().first());
        return false;
    }

    options.material = parser.value(material);
    options.colorBind = parser.isSet(colorBind);
    if (parser.isSet(shape)) {
        bool ok = false;
        options.shape = parser.value(shape).toInt(&ok);
        if (!ok || options.shape < 1 || options.shape > 4) {
            error = QStringLiteral("invalid --shape '%1': expected 1, 2, 3 or 4").arg(parser.value(shape));
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
                        .arg(parser.value(seed));
            return false;
        }
        options.seed = value;
    }
    if (parser.isSet(threads)) {
        bool ok = false;
        options.threads = parser.value(threads).toInt(&ok);
        if (!ok || options.threads < 0 || options.threads > kMaxThreads) {
            error = QStringLiteral("invalid --threads '%1': expected a number from 0 to %2")
                        .arg(parser.value(threads))
                        .arg(kMaxThreads);
            return false;
        }
    }
    return ParseOutput(parser.value(output), options, error);
}

// The whole image file, encoded in memory.
bool EncodeImage(const QImage& image, Format format, QByteArray& bytes)
{
    if (format == Format::Ppm) {
        bytes = QStringLiteral("P6\n%1 %2\n255\n").arg(image.width()).arg(image.height()).toLatin1();
        const qsizetype rowBytes = qsizetype{image.width()} * 3;
        for (int row = 0; row < image.height(); ++row)
            bytes.append(reinterpret_cast<const char*>(image.constScanLine(row)), rowBytes);
        return true;
    }
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::WriteOnly) && QImageWriter(&buffer, "png").write(image);
}

// Writes the whole image or nothing: a failed write leaves the old file as
// it was and no temporary file behind.
bool WriteImage(const QImage& image, const Options& options, QString& error)
{
    QByteArray bytes;
    if (!EncodeImage(image, options.format, bytes)) {
        error = QStringLiteral("cannot encode the image for '%1'").arg(options.output);
        return false;
    }
    const FileWriteResult written =
        ReplaceFile(QFile::encodeName(options.output).constData(), bytes.constData(), static_cast<std::size_t>(bytes.size()));
    if (!written.Ok()) {
        error = QStringLiteral("cannot write '%1': %2").arg(options.output, QString::fromLocal8Bit(written.reason));
        return false;
    }
    return true;
}

// Renders as the preview does; false with a message when the frame cannot
// be built.
bool Render(const Options& options, const FZAttributeEx& material, QImage& image, QString& error)
{
    CPreviewPanel panel;
    const int made = panel.SetUpFrame(options.width, options.height);
    if (made == -2) {
        error = QStringLiteral("a frame of %1 x %2 pixels is too large to render")
                    .arg(options.width)
                    .arg(options.height);
        return false;
    }
    if (made != 0 || panel.BuildSampleShape(options.shape) != 0) {
        error = QStringLiteral("the preview could not be set up (result code %1)").arg(made);
        return false;
    }
    panel.ApplyMaterial(material, options.colorBind ? 1 : 0);
    const FZScene* scene = panel.Scene();
    if (scene == nullptr || scene->frame == nullptr || scene->frame->data == nullptr) {
        error = QStringLiteral("the preview rendered no frame");
        return false;
    }
    image = MakeBitmap(*scene->frame);
    if (image.isNull()) {
        error = QStringLiteral("out of memory for a picture of %1 x %2 pixels")
                    .arg(options.width)
                    .arg(options.height);
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Past a file size limit a write fails with EFBIG and is reported, and
    // the temporary file is removed, instead of the process being killed.
    std::signal(SIGXFSZ, SIG_IGN);
    QCoreApplication::setApplicationName(QStringLiteral("tamerisk-render"));

    QCommandLineParser parser;
    Options options;
    QString error;
    if (!ParseOptions(parser, QCoreApplication::arguments(), options, error)) {
        PrintError(error);
        PrintError(QStringLiteral("try 'tamerisk-render --help'"));
        return kUsageError;
    }

    FZAttributeEx material;
    if (!options.material.isEmpty()) {
        const int loaded = LoadMaterial(options.material, material, error);
        if (loaded != 0) {
            PrintError(ErrorLine(loaded, error));
            return kRunError;
        }
    }
    // Before anything draws: the groove noise seeds from this when it is
    // first used.
    if (options.seed)
        FZRandom::SetFixedSeed(options.seed);
    SetRenderThreads(options.threads);

    QImage image;
    if (!Render(options, material, image, error) || !WriteImage(image, options, error)) {
        PrintError(error);
        return kRunError;
    }
    return 0;
}
