// tamerisk-render as a user runs it: pictures equal to the preview panel's,
// reproducible, and refusals that write nothing.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

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

const QRgb kBlue = qRgb(25, 102, 153);
const QRgb kWhite = qRgb(255, 255, 255);

} // namespace

TEST(RenderTool, DefaultMaterialMatchesThePreviewOnEveryShape)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    for (int shape = 1; shape <= 4; ++shape) {
        const QString out = dir.filePath(QStringLiteral("shape%1.png").arg(shape));
        const ToolRun run = RunRenderTool({"--shape", QString::number(shape), "--output", out});
        ASSERT_EQ(run.exitCode, 0) << run.Errors().toStdString();
        const QImage picture = ReadPng(out);
        ASSERT_EQ(picture.size(), QSize(120, 120));
        EXPECT_EQ(picture, PanelPicture(120, 120, shape, FZAttributeEx(), 0)) << shape;
        // Upright: the blue cell of the frame origin is at the bottom left.
        EXPECT_EQ(picture.pixel(0, 119), kBlue);
        EXPECT_EQ(picture.pixel(0, 0), kWhite);
    }
    // Shape 1 is the default.
    const QString out = dir.filePath(QStringLiteral("default.png"));
    ASSERT_EQ(RunRenderTool({"--output", out}).exitCode, 0);
    EXPECT_EQ(ReadPng(out), ReadPng(dir.filePath(QStringLiteral("shape1.png"))));
}

TEST(RenderTool, PpmIsBinaryWithTheTopRowFirst)
{
    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("frame.ppm"));
    const ToolRun run = RunRenderTool({"--size", "30x20", "--shape", "2", "--output", out});
    ASSERT_EQ(run.exitCode, 0) << run.Errors().toStdString();
    const QByteArray bytes = ReadBytes(out);
    const QByteArray header("P6\n30 20\n255\n");
    ASSERT_EQ(bytes.size(), header.size() + 30 * 20 * 3);
    EXPECT_TRUE(bytes.startsWith(header));

    const QImage expected = PanelPicture(30, 20, 2, FZAttributeEx(), 0);
    const QImage got(reinterpret_cast<const uchar*>(bytes.constData()) + header.size(), 30, 20, 30 * 3,
                     QImage::Format_RGB888);
    EXPECT_EQ(got.copy(), expected.convertToFormat(QImage::Format_RGB888));
    // Top row first: frame row 19 lies in cell row 1, so its first cell is
    // white and the bottom row's is blue.
    EXPECT_EQ(expected.pixel(0, 0), kWhite);
    EXPECT_EQ(expected.pixel(0, 19), kBlue);
}

TEST(RenderTool, MaterialFileAndColourBind)
{
    QTemporaryDir dir;
    const QString material = dir.filePath(QStringLiteral("red.json"));
    ASSERT_TRUE(WriteBytes(material, R"({"color": [255, 0, 0], "highlightStrength": 0})"));
    const QString red = dir.filePath(QStringLiteral("red.png"));
    const QString bound = dir.filePath(QStringLiteral("bound.png"));
    ASSERT_EQ(RunRenderTool({"--material", material, "--output", red}).exitCode, 0);
    ASSERT_EQ(RunRenderTool({"--material", material, "--color-bind", "--output", bound}).exitCode, 0);
    // The bottom of shape 1's dimple faces the viewer.
    EXPECT_EQ(ReadPng(red).pixel(60, 59), qRgb(255, 0, 0));
    EXPECT_EQ(ReadPng(bound).pixel(60, 59), kWhite);

    FZAttributeEx m;
    m.color.SetBytes(255, 0, 0);
    m.highlightStrength = 0.0f;
    EXPECT_EQ(ReadPng(red), PanelPicture(120, 120, 1, m, 0));
    EXPECT_EQ(ReadPng(bound), PanelPicture(120, 120, 1, m, 1));
}

TEST(RenderTool, SeedAloneDecidesThePicture)
{
    QTemporaryDir dir;
    const QString grooves = dir.filePath(QStringLiteral("grooves.json"));
    ASSERT_TRUE(WriteBytes(grooves, R"({"anisotropic": 1, "highlightSharpness": 0.5,
                           "anisotropy": {"type": 1, "depthVariation": 1, "grooveWidth": 2}})"));
    const QString lamp = dir.filePath(QStringLiteral("lamp.json"));
    ASSERT_TRUE(WriteBytes(lamp, R"({"emission": 0.7, "transparency": 0.4, "anisotropic": 1, "smoothHighlight": 1,
                        "color": [200, 60, 20], "highlightSharpness": 0.5})"));
    int n = 0;
    const auto render = [&](const QString& material, QStringList options) {
        const QString out = dir.filePath(QStringLiteral("%1.ppm").arg(++n));
        options << "--material" << material << "--output" << out;
        EXPECT_EQ(RunRenderTool(options).exitCode, 0) << options.join(' ').toStdString();
        return ReadBytes(out);
    };
    const QByteArray first = render(grooves, {"--seed", "42"});
    EXPECT_FALSE(first.isEmpty());
    EXPECT_EQ(render(grooves, {"--seed", "42"}), first);
    EXPECT_NE(render(grooves, {"--seed", "4242"}), first);

    // The thread count never changes the picture.
    const QStringList lampOptions{"--seed", "7", "--size", "150x110", "--shape", "4", "--threads"};
    const QByteArray oneThread = render(lamp, lampOptions + QStringList{"1"});
    EXPECT_FALSE(oneThread.isEmpty());
    for (const char* threads : {"0", "2", "5"})
        EXPECT_EQ(render(lamp, lampOptions + QStringList{threads}), oneThread) << threads;
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
        {{"--bogus", "--output", out}, 2, "bogus"},
        {{"--shape", "9", "--output", out}, 2, "--shape"},
        {{"--shape", "x", "--output", out}, 2, "--shape"},
        {{"--size", "0", "--output", out}, 2, "at least 1"},
        {{"--size", "-5x10", "--output", out}, 2, "at least 1"},
        {{"--size", "12x", "--output", out}, 2, "N or WxH"},
        {{"--size", "99999999999", "--output", out}, 2, "too large"},
        {{"--size", "100000", "--output", out}, 1, "too large"},
        {{"--seed", "abc", "--output", out}, 2, "--seed"},
        {{"--threads", "-1", "--output", out}, 2, "--threads"},
        {{"--threads", "two", "--output", out}, 2, "--threads"},
        {{"--output", dir.filePath(QStringLiteral("out.bmp"))}, 2, ".png or .ppm"},
        {{"--output", out, "extra"}, 2, "extra"},
    };
    for (const auto& c : cases) {
        const ToolRun run = RunRenderTool(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.arguments.join(' ').toStdString();
        EXPECT_TRUE(run.Errors().contains(QLatin1String(c.says))) << run.Errors().toStdString();
        EXPECT_TRUE(QDir(dir.path()).isEmpty()) << c.arguments.join(' ').toStdString();
    }
    const ToolRun help = RunRenderTool({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    const QString text = QString::fromUtf8(help.out);
    for (const char* option : {"--material", "--shape", "--size", "--color-bind", "--seed", "--threads", "--output"})
        EXPECT_TRUE(text.contains(QLatin1String(option))) << option;
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

    // A broken material file.
    const QString broken = dir.filePath(QStringLiteral("broken.json"));
    ASSERT_TRUE(WriteBytes(broken, "{\"diffuse\": "));
    EXPECT_EQ(RunRenderTool({"--material", broken, "--output", keep}).exitCode, 1);
    EXPECT_EQ(ReadBytes(keep), QByteArray("old"));

    // Outputs that cannot be written: below a plain file, and a directory.
    const QString plain = dir.filePath(QStringLiteral("plain"));
    ASSERT_TRUE(WriteBytes(plain, "x"));
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("taken.ppm")));
    for (const QString& out : {plain + QStringLiteral("/out.png"), dir.filePath(QStringLiteral("taken.ppm"))}) {
        run = RunRenderTool({"--output", out});
        EXPECT_EQ(run.exitCode, 1) << out.toStdString();
        EXPECT_TRUE(run.Errors().contains(QStringLiteral("cannot write"))) << run.Errors().toStdString();
    }
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
              (QStringList{"broken.json", "keep.png", "plain", "taken.ppm"}));
    EXPECT_TRUE(QDir(dir.filePath(QStringLiteral("taken.ppm"))).isEmpty());
}
