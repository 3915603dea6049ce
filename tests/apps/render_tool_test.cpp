#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include "engine/display/image_display.h"
#include "preview/preview_panel.h"

namespace {

struct ToolRun {
    int exitCode = -1;
    QString errors;
};

ToolRun RunRenderTool(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(TAMERISK_BIN_DIR "/tamerisk-render"), arguments);
    ToolRun run;
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.exitCode = process.exitCode();
    run.errors = QString::fromUtf8(process.readAllStandardError());
    return run;
}

// What the preview panel shows, as an upright picture.
QImage PanelPicture(std::int32_t w, std::int32_t h, std::int32_t shape, const FZAttributeEx& material,
                    std::int32_t bind)
{
    CPreviewPanel panel;
    if (panel.SetUpFrame(w, h) != 0 || panel.BuildSampleShape(shape) != 0)
        return QImage();
    panel.ApplyMaterial(material, bind);
    return MakeBitmap(*panel.Scene()->frame);
}

QImage ReadPng(const QString& path)
{
    return QImage(path).convertToFormat(QImage::Format_RGB888);
}

void WriteText(const QString& path, const QByteArray& text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

QByteArray ReadBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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
        ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
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
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const QByteArray bytes = ReadBytes(out);
    const QByteArray header("P6\n30 20\n255\n");
    ASSERT_EQ(bytes.size(), header.size() + 30 * 20 * 3);
    EXPECT_TRUE(bytes.startsWith(header));

    const QImage expected = PanelPicture(30, 20, 2, FZAttributeEx(), 0);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) {
            const char* p = bytes.constData() + header.size() + (y * 30 + x) * 3;
            const QRgb got = qRgb(static_cast<uchar>(p[0]), static_cast<uchar>(p[1]), static_cast<uchar>(p[2]));
            ASSERT_EQ(got, expected.pixel(x, y)) << x << "," << y;
        }
    // Top row first: frame row 19 lies in cell row 1, so its first cell is
    // white and the bottom row's is blue.
    EXPECT_EQ(expected.pixel(0, 0), kWhite);
    EXPECT_EQ(expected.pixel(0, 19), kBlue);
}

TEST(RenderTool, MaterialFileAndColourBind)
{
    QTemporaryDir dir;
    const QString material = dir.filePath(QStringLiteral("red.json"));
    WriteText(material, R"({"color": [255, 0, 0], "highlightStrength": 0})");
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

TEST(RenderTool, SeedMakesGrooveVariationReproducible)
{
    QTemporaryDir dir;
    const QString material = dir.filePath(QStringLiteral("grooves.json"));
    WriteText(material, R"({"anisotropic": 1, "highlightSharpness": 0.5,
                            "anisotropy": {"type": 1, "depthVariation": 1, "grooveWidth": 2}})");
    const auto render = [&](const QString& seed, const QString& name) {
        const QString out = dir.filePath(name);
        EXPECT_EQ(RunRenderTool({"--material", material, "--seed", seed, "--output", out}).exitCode, 0);
        return ReadBytes(out);
    };
    const QByteArray first = render(QStringLiteral("42"), QStringLiteral("a.ppm"));
    EXPECT_FALSE(first.isEmpty());
    EXPECT_EQ(render(QStringLiteral("42"), QStringLiteral("b.ppm")), first);
    EXPECT_NE(render(QStringLiteral("4242"), QStringLiteral("c.ppm")), first);
}

TEST(RenderTool, ThreadCountNeverChangesThePicture)
{
    QTemporaryDir dir;
    const QString material = dir.filePath(QStringLiteral("lamp.json"));
    WriteText(material, R"({"emission": 0.7, "transparency": 0.4, "anisotropic": 1, "smoothHighlight": 1,
                            "color": [200, 60, 20], "highlightSharpness": 0.5})");
    const auto render = [&](const QString& threads) {
        const QString out = dir.filePath(threads + QStringLiteral(".ppm"));
        EXPECT_EQ(RunRenderTool({"--material", material, "--seed", "7", "--size", "150x110", "--shape", "4",
                                 "--threads", threads, "--output", out})
                      .exitCode,
                  0);
        return ReadBytes(out);
    };
    const QByteArray straightforward = render(QStringLiteral("1"));
    EXPECT_FALSE(straightforward.isEmpty());
    for (const char* threads : {"0", "2", "5"})
        EXPECT_EQ(render(QLatin1String(threads)), straightforward) << threads;
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
        EXPECT_TRUE(run.errors.contains(QLatin1String(c.says))) << run.errors.toStdString();
        EXPECT_TRUE(QDir(dir.path()).isEmpty()) << c.arguments.join(' ').toStdString();
    }
}

TEST(RenderTool, FailuresLeaveNoHalfWrittenImage)
{
    QTemporaryDir dir;
    // A missing material: the image already there stays as it was.
    const QString keep = dir.filePath(QStringLiteral("keep.png"));
    WriteText(keep, "old");
    const QString missing = dir.filePath(QStringLiteral("missing.json"));
    ToolRun run = RunRenderTool({"--material", missing, "--output", keep});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains(QStringLiteral("missing.json"))) << run.errors.toStdString();
    EXPECT_EQ(ReadBytes(keep), QByteArray("old"));

    // A broken material file.
    const QString broken = dir.filePath(QStringLiteral("broken.json"));
    WriteText(broken, "{\"diffuse\": ");
    EXPECT_EQ(RunRenderTool({"--material", broken, "--output", keep}).exitCode, 1);
    EXPECT_EQ(ReadBytes(keep), QByteArray("old"));

    // Outputs that cannot be written: below a plain file, and a directory.
    const QString plain = dir.filePath(QStringLiteral("plain"));
    WriteText(plain, "x");
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("taken.ppm")));
    for (const QString& out : {plain + QStringLiteral("/out.png"), dir.filePath(QStringLiteral("taken.ppm"))}) {
        run = RunRenderTool({"--output", out});
        EXPECT_EQ(run.exitCode, 1) << out.toStdString();
        EXPECT_TRUE(run.errors.contains(QStringLiteral("cannot write"))) << run.errors.toStdString();
    }
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
              (QStringList{"broken.json", "keep.png", "plain", "taken.ppm"}));
    EXPECT_TRUE(QDir(dir.filePath(QStringLiteral("taken.ppm"))).isEmpty());
}

TEST(RenderTool, HelpNamesEveryOption)
{
    QProcess process;
    process.start(QStringLiteral(TAMERISK_BIN_DIR "/tamerisk-render"), {"--help"});
    ASSERT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitCode(), 0);
    const QString help = QString::fromUtf8(process.readAllStandardOutput());
    for (const char* option : {"--material", "--shape", "--size", "--color-bind", "--seed", "--threads", "--output"})
        EXPECT_TRUE(help.contains(QLatin1String(option))) << option;
}
