// tamerisk-render as a user runs it: pictures equal to the preview panel's,
// reproducible, batches, and refusals and interruptions that write nothing.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "engine/display/image_display.h"
#include "preview/preview_panel.h"
#include "tool_run.h"

namespace {

ToolRun RunRenderTool(const QStringList& arguments)
{
    return RunTool("tamerisk-render", arguments);
}

// What the preview panel shows, as an upright picture.
QImage PanelPicture(std::int32_t w, std::int32_t h, std::int32_t shape, const FZAttributeEx& material,
                    std::int32_t bind)
{
    CPreviewPanel panel;
    if (panel.SetUpFrame(w, h) != FZResult::Ok || panel.BuildSampleShape(shape) != FZResult::Ok
        || panel.ApplyMaterial(material, bind) != FZResult::Ok)
        return QImage();
    return MakeBitmap(*panel.Scene()->frame);
}

QImage ReadPng(const QString& path)
{
    return QImage(path).convertToFormat(QImage::Format_RGB888);
}

// Files named by bytes that need not be UTF-8, which QFile cannot open.
QByteArray ReadAt(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    return QByteArray::fromStdString(bytes);
}

QImage ReadPngAt(const std::filesystem::path& path)
{
    return QImage::fromData(ReadAt(path), "PNG").convertToFormat(QImage::Format_RGB888);
}

std::set<std::string> NamesIn(const std::filesystem::path& directory)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.insert(entry.path().filename().string());
    return names;
}

// Whether a new file whose name ends in ".tmp" appeared in the watched
// directory, waiting for it as long as the tool may run.
bool TempFileAppears(int watch)
{
    pollfd ready{watch, POLLIN, 0};
    while (::poll(&ready, 1, 120000) == 1) {
        alignas(inotify_event) char events[4096];
        const ssize_t n = ::read(watch, events, sizeof events);
        for (ssize_t at = 0; n > 0 && at < n;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events + at);
            if (event->len > 0 && QByteArray(event->name).endsWith(".tmp"))
                return true;
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
    return false;
}

// Ctrl+C for a tool still running. A tool that has already ended has no
// process id (0), and kill(0, ...) would interrupt this whole process group,
// the test runner with it.
void PressCtrlC(const QProcess& process)
{
    if (const qint64 pid = process.processId(); pid > 0)
        ::kill(static_cast<pid_t>(pid), SIGINT);
}

// Runs a tool and presses Ctrl+C as soon as it creates its new file in dir,
// that is while the file is written, flushed and renamed into place.
ToolRun InterruptWhileWriting(const char* tool, const QStringList& arguments, const QString& dir)
{
    const int watch = ::inotify_init1(IN_CLOEXEC);
    ::inotify_add_watch(watch, QFile::encodeName(dir).constData(), IN_CREATE);
    QProcess process;
    process.setProcessEnvironment(ToolEnvironment());
    process.start(QStringLiteral(TAMERISK_BIN_DIR "/") + QLatin1String(tool), arguments);
    process.closeWriteChannel();
    if (TempFileAppears(watch))
        PressCtrlC(process);
    ::close(watch);
    return Finish(process);
}

} // namespace

// Both formats hold the preview panel's picture (which way up MakeBitmap
// turns it is pinned where it is defined): PNG, and PPM as binary bytes.
TEST(RenderTool, PicturesAreThePreviewsUpright)
{
    QTemporaryDir dir;
    const QString png = dir.filePath(QStringLiteral("default.png")), ppm = dir.filePath(QStringLiteral("frame.ppm"));
    ToolRun run = RunRenderTool({"--output", png});
    ASSERT_EQ(run.exitCode, 0) << run.Errors().toStdString();
    EXPECT_EQ(ReadPng(png), PanelPicture(120, 120, 1, FZAttributeEx(), 0));  // shape 1 by default
    run = RunRenderTool({"--size", "30x20", "--shape", "2", "--output", ppm});
    ASSERT_EQ(run.exitCode, 0) << run.Errors().toStdString();
    EXPECT_TRUE(ReadBytes(ppm).startsWith("P6\n30 20\n255\n"));
    EXPECT_EQ(QImage(ppm, "PPM").convertToFormat(QImage::Format_RGB888), PanelPicture(30, 20, 2, FZAttributeEx(), 0));
}

TEST(RenderTool, SeedAloneDecidesThePicture)
{
    QTemporaryDir dir;
    const QString grooves = dir.filePath(QStringLiteral("grooves.json"));
    ASSERT_TRUE(WriteBytes(grooves, R"({"anisotropic": 1, "highlightSharpness": 0.5,
                           "anisotropy": {"type": 1, "depthVariation": 1, "grooveWidth": 2}})"));
    int n = 0;
    const auto render = [&](const char* seed) {
        const QString out = dir.filePath(QStringLiteral("%1.ppm").arg(++n));
        const QStringList options{"--seed", seed, "--material", grooves, "--output", out};
        EXPECT_EQ(RunRenderTool(options).exitCode, 0) << options.join(' ').toStdString();
        return ReadBytes(out);
    };
    const QByteArray first = render("42");
    EXPECT_FALSE(first.isEmpty());
    EXPECT_EQ(render("42"), first);
    EXPECT_NE(render("4242"), first);
}

TEST(RenderTool, BadArgumentsAreRefusedWithoutWritingAnything)
{
    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("out.png"));
    const struct {
        QStringList arguments;
        int exitCode;
        const char* says;
    } cases[] = {
        {{}, 2, "--output"},
        {{"--shape", "9", "--output", out}, 2, "--shape"},
        {{"--size", "0", "--output", out}, 2, "at least 1"},
        {{"--size", "12x", "--output", out}, 2, "N or WxH"},
        {{"--size", "99999999999", "--output", out}, 2, "too large"},
        {{"--size", "100000", "--output", out}, 2, "at most 32768 pixels a side"},
        {{"--size", "8193", "--output", out}, 2, "67108864 pixels in all"},
        {{"--output", dir.path()}, 2, "--output-dir"},
        {{"--seed", "abc", "--output", out}, 2, "--seed"},
        {{"--threads", "-1", "--output", out}, 2, "--threads"},
        {{"--output", dir.filePath(QStringLiteral("out.bmp"))}, 2, ".png or .ppm"},
        {{"--output", out, "extra"}, 2, "extra"},
        {{"--output-dir", dir.path()}, 2, "FILE"},
        {{"--output-dir", dir.path(), "--output", out, "a.qva"}, 2, "without --output"},
    };
    for (const auto& c : cases) {
        const ToolRun run = RunRenderTool(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.arguments.join(' ').toStdString();
        EXPECT_TRUE(run.Errors().contains(QLatin1String(c.says))) << run.Errors().toStdString();
        EXPECT_TRUE(QDir(dir.path()).isEmpty()) << c.arguments.join(' ').toStdString();
    }
}

TEST(RenderTool, FailuresLeaveNoHalfWrittenImage)
{
    QTemporaryDir dir;
    // A missing material: the image already there stays as it was.
    const QString keep = dir.filePath(QStringLiteral("keep.png"));
    ASSERT_TRUE(WriteBytes(keep, "old"));
    const QString missing = dir.filePath(QStringLiteral("missing.json"));
    ToolRun run = RunRenderTool({"--material", missing, "--output", keep});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.Errors().contains(QStringLiteral("missing.json"))) << run.Errors().toStdString();
    EXPECT_EQ(ReadBytes(keep), QByteArray("old"));

    // Outputs that cannot be written: below a plain file, and a directory
    // (refused before anything is drawn, pointing to --output-dir).
    const QString plain = dir.filePath(QStringLiteral("plain"));
    ASSERT_TRUE(WriteBytes(plain, "x"));
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("taken.ppm")));
    const struct {
        QString out;
        int status;
        QString says;
    } outputs[] = {{plain + QStringLiteral("/out.png"), 1, QStringLiteral("cannot write")},
                   {dir.filePath(QStringLiteral("taken.ppm")), 2, QStringLiteral("--output-dir")}};
    for (const auto& o : outputs) {
        run = RunRenderTool({"--output", o.out});
        EXPECT_EQ(run.exitCode, o.status) << o.out.toStdString();
        EXPECT_TRUE(run.Errors().contains(o.says)) << run.Errors().toStdString();
    }
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
              (QStringList{"keep.png", "plain", "taken.ppm"}));
    EXPECT_TRUE(QDir(dir.filePath(QStringLiteral("taken.ppm"))).isEmpty());
}

TEST(RenderTool, BatchDrawsWhatItCanAndNamesTheRest)
{
    QTemporaryDir dir;
    const QString red = dir.filePath(QStringLiteral("red.json"));
    const QString again = dir.filePath(QStringLiteral("again/red.json"));
    const QString broken = dir.filePath(QStringLiteral("broken.json"));
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("again")) && WriteBytes(again, "{}"));
    ASSERT_TRUE(WriteBytes(red, R"({"color": [255, 0, 0], "highlightStrength": 0})")
                && WriteBytes(broken, "{\"diffuse\": "));
    const QString out = dir.filePath(QStringLiteral("out"));
    const QStringList options{"--size", "40x30", "--shape", "3", "--output-dir", out};
    ToolRun run = RunRenderTool(options + QStringList{red, dir.filePath(QStringLiteral("missing.qva")), broken, again});
    EXPECT_EQ(run.exitCode, 1);
    // The second red.json would replace the first one's picture.
    for (const char* name : {"missing.qva", "broken.json", "again/red.json"})
        EXPECT_TRUE(run.Errors().contains(QLatin1String(name))) << run.Errors().toStdString();
    EXPECT_EQ(QDir(out).entryList(QDir::Files | QDir::Hidden), QStringList{"red.png"});
    FZAttributeEx m;
    m.color.SetBytes(255, 0, 0);
    m.highlightStrength = 0.0f;
    const QImage picture = ReadPng(out + QStringLiteral("/red.png"));
    EXPECT_EQ(picture, PanelPicture(40, 30, 3, m, 0));
    EXPECT_EQ(picture.pixel(20, 14), qRgb(255, 0, 0));

    // A folder stands for its materials; one that holds none is refused.
    const QString empty = dir.filePath(QStringLiteral("empty"));
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("empty")));
    run = RunRenderTool(options + QStringList{empty});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.Errors().contains(QStringLiteral("no .qva or .json"))) << run.Errors().toStdString();
    run = RunRenderTool(options + QStringList{dir.filePath(QStringLiteral("again"))});
    EXPECT_EQ(run.exitCode, 0) << run.Errors().toStdString();
    EXPECT_EQ(QDir(out).entryList(QDir::Files | QDir::Hidden), QStringList{"red.png"});

    // All drawn: status 0, and no progress off a terminal. The colour bind
    // shows the sample white.
    run = RunRenderTool(options + QStringList{"--color-bind", red});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.err.isEmpty()) << run.Errors().toStdString();
    EXPECT_EQ(ReadPng(out + QStringLiteral("/red.png")), PanelPicture(40, 30, 3, m, 1));
}

TEST(RenderTool, CtrlCEndsALongRenderWithoutWritingIt)
{
    QTemporaryDir dir;
    const QString plain = dir.filePath(QStringLiteral("plain.json")), lamp = dir.filePath(QStringLiteral("lamp.json"));
    ASSERT_TRUE(WriteBytes(plain, "{}") && WriteBytes(lamp, R"({"emission": 0.7})"));
    QProcess tool;
    tool.start(QStringLiteral(TAMERISK_BIN_DIR "/tamerisk-render"),
               {"--size", "2048", "--output-dir", dir.path(), plain, lamp});
    // The lamp, whose light takes many seconds at this size, comes second.
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(dir.filePath(QStringLiteral("plain.png"))); }, 120000));
    PressCtrlC(tool);
    ASSERT_TRUE(tool.waitForFinished(20000));
    EXPECT_EQ(tool.exitCode(), 130);
    EXPECT_TRUE(tool.readAllStandardError().contains("interrupted"));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{"lamp.json", "plain.json", "plain.png"}));
}

// The write cannot be taken back half-way, so it is finished and reported
// as done: never "not written" for a file that is in place.
TEST(RenderTool, CtrlCDuringTheFinalWriteReportsTheFileWritten)
{
    QTemporaryDir dir;
    const QString picture = dir.filePath(QStringLiteral("a.png")), material = dir.filePath(QStringLiteral("m.qva"));
    ASSERT_TRUE(WriteBytes(picture, "old") && WriteBytes(material, "old"));
    const struct {
        const char* tool;
        QStringList arguments;
        QString written;
        QByteArray input;
    } cases[] = {
        {"tamerisk-render", {"--size", "512", "--output", picture}, picture, {}},
        {"tamerisk-qva", {"write", material, "-"}, material, R"({"diffuse": 0.5})"},
    };
    for (const auto& c : cases) {
        const QString input = dir.filePath(QStringLiteral("input.json"));
        QStringList arguments = c.arguments;
        if (!c.input.isEmpty()) {
            ASSERT_TRUE(WriteBytes(input, c.input));
            arguments.last() = input;
        }
        const ToolRun run = InterruptWhileWriting(c.tool, arguments, dir.path());
        EXPECT_EQ(run.exitCode, 0) << c.tool << ": " << run.Errors().toStdString();
        EXPECT_NE(ReadBytes(c.written), "old") << c.tool;
        EXPECT_FALSE(run.err.contains("not written")) << c.tool;
    }
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 3);
}

// Names that are not UTF-8 would all read as the same text with a
// replacement character; taken as bytes they stay apart, in a batch and
// alone, and are shown readably in messages.
TEST(RenderTool, FileNamesThatAreNotUtf8StayApart)
{
    ScratchDir dir;
    const ToolRun run = RunShell(
        R"sh(printf '{"color": [255, 0, 0]}' > "$(printf 'm\377.json')" && )sh"
        R"sh(printf '{"color": [0, 255, 0]}' > "$(printf 'm\376.json')" && )sh"
        R"sh("$RENDER" --size 40x30 --output-dir "$(printf 'out\375')" "$(printf 'm\377.json')" )sh"
        R"sh("$(printf 'm\376.json')" && )sh"
        R"sh("$RENDER" --size 40x30 --material "$(printf 'm\377.json')" --output "$(printf 'one\377.png')")sh",
        dir.path());
    ASSERT_EQ(run.exitCode, 0) << run.Errors().toStdString();
    const std::filesystem::path root = QFile::encodeName(dir.path()).toStdString();
    const std::filesystem::path out = root / "out\375";
    EXPECT_EQ(NamesIn(root), (std::set<std::string>{"m\376.json", "m\377.json", "one\377.png", "out\375"}));
    EXPECT_EQ(NamesIn(out), (std::set<std::string>{"m\376.png", "m\377.png"}));
    FZAttributeEx red;
    red.color.SetBytes(255, 0, 0);
    FZAttributeEx green;
    green.color.SetBytes(0, 255, 0);
    EXPECT_EQ(ReadPngAt(out / "m\377.png"), PanelPicture(40, 30, 1, red, 0));
    EXPECT_EQ(ReadPngAt(out / "m\376.png"), PanelPicture(40, 30, 1, green, 0));
    EXPECT_EQ(ReadAt(root / "one\377.png"), ReadAt(out / "m\377.png"));

    // The same name twice is still refused, and named with a replacement
    // character where a byte is not UTF-8.
    const ToolRun again = RunShell(
        R"sh(mkdir again && cp "$(printf 'm\377.json')" again/ && )sh"
        R"sh("$RENDER" --size 8 --output-dir "$(printf 'out\375')" "$(printf 'm\377.json')" )sh"
        R"sh("$(printf 'again/m\377.json')" "$(printf 'gone\377.json')")sh",
        dir.path());
    EXPECT_EQ(again.exitCode, 1);
    for (const char* shown : {"again/m\uFFFD.json", "gone\uFFFD.json"})
        EXPECT_TRUE(again.Errors().contains(QString::fromUtf8(shown))) << again.Errors().toStdString();
    EXPECT_EQ(NamesIn(out), (std::set<std::string>{"m\376.png", "m\377.png"}));
}

// As a thumbnail service runs it: the output file it holds open, named as it
// likes, is written into and not replaced, with the picture a plain run
// writes.
TEST(RenderTool, InPlaceWritesIntoTheHeldFile)
{
    QTemporaryDir dir;
    const QString held = dir.filePath(QStringLiteral("tumbler-XXXX")), plain = dir.filePath(QStringLiteral("p.png"));
    ASSERT_TRUE(WriteBytes(held, QByteArray(100000, 'x')));
    QFile holder(held);
    ASSERT_TRUE(holder.open(QIODevice::ReadOnly));
    struct stat before;
    ASSERT_EQ(::stat(QFile::encodeName(held).constData(), &before), 0);
    ToolRun run = RunRenderTool({"--in-place", "--size", "48", "--output", held});
    ASSERT_EQ(run.exitCode, 0) << run.Errors().toStdString();
    ASSERT_EQ(RunRenderTool({"--size", "48", "--output", plain}).exitCode, 0);
    struct stat after;
    ASSERT_EQ(::stat(QFile::encodeName(held).constData(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(holder.readAll(), ReadBytes(plain));
}
