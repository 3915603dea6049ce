// tamerisk-render: renders a material on a sample shape into an image file,
// exactly as the preview panel of the material editor shows it.
//
//   tamerisk-render [--material FILE.qva|FILE.json] [--shape N] [--size N|WxH]
//                   [--color-bind] [--seed S] [--threads N] --output OUT.png|OUT.ppm
//   tamerisk-render [--shape N] [--size N|WxH] [--color-bind] [--seed S]
//                   [--threads N] --output-dir DIR FILE|FOLDER...
//
// The picture is the preview panel's, made as Tamerisk_RenderPreview makes
// it (preview/preview_picture.h), so a thumbnail made here, a host's and the
// dialog's preview agree pixel for pixel. A batch builds the shape once and
// applies each material in turn, as the dialog does when the user loads
// another.
// Every image is written to a temporary file beside the target and renamed
// into place only when it is complete; a batch flushes its files together
// before it renames them. With --in-place the one picture is written into
// the output file itself, as thumbnail services want it.
#include <QCoreApplication>
#include <QFile>
#include <QHash>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <new>
#include <system_error>
#include <vector>

#include <tamerisk/attribute.h>
#include <tamerisk/version.h>

#include "json/material_json.h"
#include "engine/parallel.h"
#include "engine/random.h"
#include "image_file.h"
#include "material/file_replace.h"
#include "options.h"
#include "preview/preview_picture.h"
#include "progress.h"

namespace {

constexpr int kUsageError = 2;
constexpr int kRunError = 1;
constexpr int kInterrupted = 130;

void PrintError(const QString& message)
{
    std::fprintf(stderr, "tamerisk-render: %s\n", qPrintable(message));
}

QString WriteError(const QByteArray& path, const FileWriteResult& written)
{
    return QStringLiteral("cannot write '%1': %2").arg(QFile::decodeName(path), QString::fromLocal8Bit(written.reason));
}

enum class Encoded { Ok, Failed, OutOfMemory };

// The whole image file, in memory. Running out of memory here ends only
// this picture: a batch goes on with the next.
Encoded EncodeImage(const FZImage& image, Format format, std::vector<std::uint8_t>& bytes)
{
    try {
        const bool done = format == Format::Ppm ? EncodePpm(image, bytes) : EncodePng(image, bytes);
        return done ? Encoded::Ok : Encoded::Failed;
    } catch (const std::bad_alloc&) {
        bytes = {};
        return Encoded::OutOfMemory;
    }
}

enum class Written { Yes, Stopped, Failed };

// Where the bytes of a picture go: ReplaceFile, WriteFileInPlace or a
// FileBatch.
using Writer = std::function<FileWriteResult(const char* path, const void* data, std::size_t size)>;

// Writes the whole image or nothing: a failed write leaves the old file as
// it was and no temporary file behind.
// Nothing is written once Ctrl+C was pressed, which may also stop the
// encoding half-way; Ctrl+C during the write itself lets it finish, and the
// picture then counts as written.
Written WriteImage(const FZImage& image, const QByteArray& path, Format format, const Writer& write, QString& error)
{
    std::vector<std::uint8_t> bytes;
    const Encoded encoded = EncodeImage(image, format, bytes);
    if (Progress::Interrupted())
        return Written::Stopped;
    if (encoded == Encoded::OutOfMemory) {
        error = QStringLiteral("out of memory for a picture of %1 x %2 pixels").arg(image.width).arg(image.height);
        return Written::Failed;
    }
    if (encoded == Encoded::Failed) {
        error = QStringLiteral("cannot encode the image for '%1'").arg(QFile::decodeName(path));
        return Written::Failed;
    }
    const FileWriteResult written = write(path.constData(), bytes.data(), bytes.size());
    if (!written.Ok()) {
        error = WriteError(path, written);
        return Written::Failed;
    }
    return Written::Yes;
}

// What Ctrl+C left: whether the picture being made when it came was written.
int Stopped(Progress& progress, bool pictureWritten)
{
    progress.Say(pictureWritten ? QStringLiteral("interrupted; the last picture was written")
                                : QStringLiteral("interrupted; the picture in progress was not written"));
    return kInterrupted;
}

// The material on the options' shape, as the preview shows it; null with
// a message when it cannot be drawn. A picture after the first in a batch
// only changes the material.
const FZImage* Draw(const Options& options, FZPreviewPicture& picture, const FZAttributeEx& material,
                    QString& error)
{
    const FZResult drawn
        = picture.Draw(material, options.shape, options.width, options.height, options.colorBind ? 1 : 0);
    if (drawn == FZResult::OutOfMemory)
        error = QStringLiteral("a frame of %1 x %2 pixels is too large to render")
                    .arg(options.width)
                    .arg(options.height);
    else if (drawn != FZResult::Ok)
        error = QStringLiteral("the material could not be rendered (result code %1)").arg(ResultCode(drawn));
    else if (picture.Frame() == nullptr)
        error = QStringLiteral("the preview rendered no frame");
    return drawn == FZResult::Ok ? picture.Frame() : nullptr;
}

int RunSingle(const Options& options, Progress& progress)
{
    FZAttributeEx material;
    QString error;
    if (!options.material.isEmpty()) {
        const FZResult loaded = LoadMaterial(options.material, material, error);
        if (loaded != FZResult::Ok) {
            progress.Say(ErrorLine(loaded, error));
            return kRunError;
        }
    }
    progress.Start(0, QFile::decodeName(options.output));
    FZPreviewPicture picture;
    const FZImage* frame = Draw(options, picture, material, error);
    const Writer write = options.inPlace ? Writer(WriteFileInPlace) : Writer(ReplaceFile);
    const Written done
        = frame != nullptr ? WriteImage(*frame, options.output, options.format, write, error) : Written::Failed;
    // A picture that was written is reported so, whenever Ctrl+C came.
    if (done == Written::Yes)
        return 0;
    if (Progress::Interrupted())
        return Stopped(progress, false);
    if (done == Written::Failed) {
        progress.Say(error);
        return kRunError;
    }
    return 0;
}

// DIR/<name without extension>.png for each material file, made of the
// bytes given: names that differ in any byte make different images. A name
// that is all extension (".qva") keeps it.
QByteArray BatchTarget(const Options& options, const QByteArray& file)
{
    const QByteArray name = file.mid(file.lastIndexOf('/') + 1);
    const qsizetype dot = name.lastIndexOf('.');
    const QByteArray stem = dot > 0 ? name.left(dot) : name;
    const QByteArray& dir = options.outputDir;
    return dir + (dir.endsWith('/') ? "" : "/") + stem + ".png";
}

// One picture of the batch; a message when it failed.
Written RenderOne(const Options& options, FZPreviewPicture& picture, const QByteArray& file, const QByteArray& target,
                  FileBatch& batch, QString& error)
{
    FZAttributeEx material;
    const FZResult loaded = LoadMaterial(file, material, error);
    if (loaded != FZResult::Ok) {
        error = ErrorLine(loaded, error);
        return Written::Failed;
    }
    const FZImage* frame = Draw(options, picture, material, error);
    const Writer add = [&batch](const char* path, const void* data, std::size_t size) {
        return batch.Add(path, data, size);
    };
    return frame != nullptr ? WriteImage(*frame, target, Format::Png, add, error) : Written::Failed;
}

// The batch's directory and those above it; false with a message when it
// cannot be made.
bool MakeDirectory(const QByteArray& path, QString& error)
{
    std::error_code failure;
    std::filesystem::create_directories(path.toStdString(), failure);
    if (!failure)
        return true;
    error = QStringLiteral("cannot create the directory '%1': %2")
                .arg(QFile::decodeName(path), QString::fromLocal8Bit(failure.message()));
    return false;
}

// A batch's pictures wait in a FileBatch and go into place together when
// this many wait or the first of them waited this long: a batch of
// thumbnails waits for the disk about once, and the pictures of a long
// batch still appear as they come. Pictures larger than a thumbnail take
// far longer to draw than to flush, so each goes into place when drawn.
constexpr std::size_t kMostWaiting = 48;
constexpr auto kLongestWait = std::chrono::milliseconds(250);
constexpr std::int64_t kThumbnailPixels = 256 * 256;

// Puts the waiting pictures in place; the number that failed, each named.
int Commit(FileBatch& batch, Progress& progress)
{
    const std::vector<FileBatchFailure> failures = batch.Commit();
    for (const FileBatchFailure& f : failures)
        progress.Say(WriteError(QByteArray::fromStdString(f.path), f.result));
    return static_cast<int>(failures.size());
}

int RunBatch(const Options& options, Progress& progress)
{
    QString error;
    if (!MakeDirectory(options.outputDir, error)) {
        progress.Say(error);
        return kRunError;
    }
    FZPreviewPicture picture;
    FileBatch batch;
    const bool thumbnails = std::int64_t{options.width} * options.height <= kThumbnailPixels;
    auto firstWaiting = std::chrono::steady_clock::now();
    int failed = 0;
    // Two materials of the same name would make the same image.
    QHash<QByteArray, QByteArray> made;
    for (int i = 0; i < options.files.size(); ++i) {
        const QByteArray& file = options.files[i];
        const QByteArray target = BatchTarget(options, file);
        progress.Start(i, QFile::decodeName(target));
        if (batch.Pending() == 0)
            firstWaiting = std::chrono::steady_clock::now();
        Written done = Written::Failed;
        if (made.contains(target))
            error = QStringLiteral("'%1': its image '%2' is already made from '%3'")
                        .arg(QFile::decodeName(file), QFile::decodeName(target), QFile::decodeName(made[target]));
        else
            done = RenderOne(options, picture, file, target, batch, error);
        if (done == Written::Yes)
            made.insert(target, file);
        // The pictures made before Ctrl+C are whole: they go into place.
        if (Progress::Interrupted()) {
            Commit(batch, progress);
            return Stopped(progress, done == Written::Yes);
        }
        if (done == Written::Failed) {
            progress.Say(error);
            ++failed;
        }
        if (!thumbnails || batch.Pending() >= kMostWaiting ||
            std::chrono::steady_clock::now() - firstWaiting >= kLongestWait)
            failed += Commit(batch, progress);
    }
    failed += Commit(batch, progress);
    return failed == 0 ? 0 : kRunError;
}

// The command line as the system passed it: file names are bytes and need
// not be UTF-8, which QCoreApplication::arguments() would not keep.
QList<QByteArray> Arguments(int argc, char** argv)
{
    QList<QByteArray> arguments;
    arguments.reserve(argc);
    for (int i = 0; i < argc; ++i)
        arguments << QByteArray(argv[i]);
    return arguments;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Past a file size limit a write fails with EFBIG and is reported, and
    // the temporary file is removed, instead of the process being killed.
    std::signal(SIGXFSZ, SIG_IGN);
    QCoreApplication::setApplicationName(QStringLiteral("tamerisk-render"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TAMERISK_VERSION_STRING));

    QCommandLineParser parser;
    Options options;
    QString error;
    if (!ParseOptions(parser, Arguments(argc, argv), options, error)) {
        PrintError(error);
        PrintError(QStringLiteral("try 'tamerisk-render --help'"));
        return kUsageError;
    }
    // Before anything draws: the groove noise seeds from this when it is
    // first used.
    if (options.seed)
        FZRandom::SetFixedSeed(options.seed);
    SetRenderThreads(options.threads);

    Progress progress(options.outputDir.isEmpty() ? 1 : static_cast<int>(options.files.size()));
    int status = kRunError;
    try {
        status = options.outputDir.isEmpty() ? RunSingle(options, progress) : RunBatch(options, progress);
    } catch (const std::bad_alloc&) {
        progress.Say(ResultText(FZResult::OutOfMemory, QString()));
    }
    return status;
}
