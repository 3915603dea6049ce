// tamerisk-qva as a user runs it: write then dump, and the error line and
// exit status of every kind of failure.
#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdint>
#include <cstring>

#include "common/material_json.h"
#include "material/attribute_file.h"

namespace {

struct ToolRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;

    QString FirstErrorLine() const { return QString::fromUtf8(err.left(err.indexOf('\n'))); }
};

ToolRun RunQva(const QStringList& args, const QByteArray& input = QByteArray())
{
    QProcess process;
    process.start(QStringLiteral(TAMERISK_BIN_DIR "/tamerisk-qva"), args);
    ToolRun run;
    if (!process.waitForStarted(10000))
        return run;
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(30000);
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

QByteArray ReadFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void WriteFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

// Every field a version 10 file stores, none at its default, with values
// that only an exact float round trip keeps.
const char kEveryStoredField[] = R"({
  "version": 2,
  "diffuse": 0.1, "highlightStrength": 0.33333334, "highlightSharpness": 1e-45,
  "ambient": -0, "transparency": 3.4028235e+38, "refractiveIndex": 1.0000001,
  "color": [1, 2, 3], "highlightColor": [254, 0, 128], "reflection": "nan:0x7fc00123",
  "anisotropic": -5,
  "anisotropy": {"type": 2, "grooveDepth": 0.2, "center": [0.1, "-inf", 0.7],
                 "axis": [-32768, 32767, 5], "amplitude": 0.24, "waveCount": 36,
                 "depthVariation": 0.95},
  "colorTransparency": 2147483647, "emission": "inf", "smoothHighlight": -2147483648,
  "smoothWidth": 2.5, "rainbow": 7, "stripeSpacing": 4999.5,
  "incidenceDependence": 0.05, "attenuation": "nan"
})";

}  // namespace

class QvaToolTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }
    QString Path(const char* name) const { return dir.filePath(name); }

    QTemporaryDir dir;
};

TEST_F(QvaToolTest, WriteThenDumpKeepsEveryStoredField)
{
    const QString qva = Path("every.qva");
    WriteFile(Path("every.json"), kEveryStoredField);
    const ToolRun write = RunQva({"write", qva, Path("every.json")});
    ASSERT_EQ(write.exitCode, 0) << write.err.toStdString();
    EXPECT_EQ(ReadFile(qva).size(), 136);

    const ToolRun dump = RunQva({"dump", qva});
    ASSERT_EQ(dump.exitCode, 0) << dump.err.toStdString();
    EXPECT_TRUE(dump.out.startsWith("{\n  \"version\": 10,\n  \"diffuse\": 0.1,\n")) << dump.out.toStdString();

    FZAttributeEx written, dumped;
    QString error;
    ASSERT_EQ(MaterialFromJson(kEveryStoredField, written, error), 0) << error.toStdString();
    ASSERT_EQ(MaterialFromJson(dump.out, dumped, error), 0) << error.toStdString();
    EXPECT_EQ(std::memcmp(&written, &dumped, sizeof written), 0) << dump.out.toStdString();

    // The same text through standard input gives the same file.
    ASSERT_EQ(RunQva({"write", Path("stdin.qva"), "-"}, kEveryStoredField).exitCode, 0);
    ASSERT_EQ(RunQva({"write", Path("implicit.qva")}, kEveryStoredField).exitCode, 0);
    EXPECT_EQ(ReadFile(Path("stdin.qva")), ReadFile(qva));
    EXPECT_EQ(ReadFile(Path("implicit.qva")), ReadFile(qva));
}

TEST_F(QvaToolTest, EmptyObjectWritesTheDefaultRecord)
{
    ASSERT_EQ(RunQva({"write", Path("default.qva"), "-"}, "{}").exitCode, 0);
    const QByteArray bytes = ReadFile(Path("default.qva"));
    EXPECT_EQ(bytes.size(), 98);
    EXPECT_TRUE(bytes.startsWith("<Quorvantel Attribute>0010"));
    const ToolRun dump = RunQva({"dump", Path("default.qva")});
    EXPECT_EQ(dump.out, MaterialToJson(FZAttributeEx(), 10));
}

TEST_F(QvaToolTest, DumpShowsTheFileVersion)
{
    // A version 5 file built by hand: header, the default base part,
    // anisotropic 0, colorTransparency 1, emission 0.5.
    QByteArray v5 = "<Quorvantel Attribute>0005";
    const auto le32 = [&v5](std::uint32_t v) {
        for (int i = 0; i < 4; ++i)
            v5.append(static_cast<char>(v >> (8 * i)));
    };
    for (std::uint32_t bits : {0x3F4CCCCDu, 0x3F000000u, 0x3F800000u, 0x3E99999Au, 0u, 0x3F800000u})
        le32(bits);  // 0.8, 0.5, 1, 0.3, 0, 1
    v5.append(6, '\xff').append(2, '\0');
    for (std::uint32_t v : {0u, 0u, 1u, 0x3F000000u})
        le32(v);  // reflection, anisotropic, colorTransparency, emission
    WriteFile(Path("v5.qva"), v5);
    const ToolRun dump = RunQva({"dump", Path("v5.qva")});
    ASSERT_EQ(dump.exitCode, 0) << dump.err.toStdString();
    EXPECT_TRUE(dump.out.startsWith("{\n  \"version\": 5,\n"));
    FZAttributeEx expected;
    expected.colorTransparency = 1;
    expected.emission = 0.5f;
    EXPECT_EQ(dump.out, MaterialToJson(expected, 5));
}

TEST_F(QvaToolTest, FailuresPrintTheCodeAndExitWithOne)
{
    WriteFile(Path("v11.qva"), "<Quorvantel Attribute>0011");
    WriteFile(Path("short.qva"), "<Quorvantel Attribute>0010\1\2\3");
    WriteFile(Path("magic.qva"), "<Quorvantel Attributes0010");
    WriteFile(Path("digits.qva"), "<Quorvantel Attribute>1O10");
    WriteFile(Path("bad.json"), R"({"anisotropy": {"waveCount": 1e3}})");
    const struct {
        QStringList args;
        QByteArray input;
        QString firstLine;
    } cases[] = {
        {{"dump", Path("absent.qva")}, {}, "error -5: ﾌｧｲﾙを開けませんでした。 " + Path("absent.qva") + ": "},
        {{"dump", Path("short.qva")}, {}, "error -6: ﾌｧｲﾙからﾃﾞｰﾀを読み込めませんでした。 " + Path("short.qva")},
        {{"dump", Path("magic.qva")}, {}, "error -8: 未対応のﾃﾞｰﾀ形式です。 " + Path("magic.qva")},
        {{"dump", Path("digits.qva")}, {}, "error -8: 未対応のﾃﾞｰﾀ形式です。 " + Path("digits.qva")},
        {{"dump", Path("v11.qva")}, {}, "error -9: ﾊﾞｰｼﾞｮﾝの異なるﾌｧｲﾙです。 " + Path("v11.qva")},
        {{"write", Path("out.qva"), Path("bad.json")}, {},
         "error -4: 不適当なﾊﾟﾗﾒｰﾀｰです。 " + Path("bad.json")
             + ": key \"anisotropy.waveCount\" must be an integer from -2147483648 to 2147483647"},
        {{"write", Path("out.qva"), "-"}, R"({"diffuse": 0.5, "glow": 1})",
         "error -4: 不適当なﾊﾟﾗﾒｰﾀｰです。 -: key \"glow\" is unknown"},
        {{"write", Path("out.qva"), "-"}, R"({"color": "white"})",
         "error -4: 不適当なﾊﾟﾗﾒｰﾀｰです。 -: key \"color\" must be an array of 3 integers from 0 to 255"},
        {{"write", Path("out.qva"), "-"}, "{\"diffuse\": }", "error -8: 未対応のﾃﾞｰﾀ形式です。 -: JSON line 1, column 13: "},
        {{"write", Path("no/such/dir/out.qva"), "-"}, "{}", "error -5: ﾌｧｲﾙを開けませんでした。 " + Path("no/such/dir/out.qva")},
        {{"write", Path("out.qva"), Path("absent.json")}, {}, "error -5: ﾌｧｲﾙを開けませんでした。 " + Path("absent.json") + ": "},
        {{"dump"}, {}, "error -4: 不適当なﾊﾟﾗﾒｰﾀｰです。 usage: "},
        {{"convert", Path("x.qva")}, {}, "error -4: 不適当なﾊﾟﾗﾒｰﾀｰです。 usage: "},
        {{"dump", Path("a.qva"), Path("b.qva")}, {}, "error -4: 不適当なﾊﾟﾗﾒｰﾀｰです。 usage: "},
        {{"--bogus"}, {}, "error -4: 不適当なﾊﾟﾗﾒｰﾀｰです。 Unknown option 'bogus'."},
    };
    for (const auto& c : cases) {
        const ToolRun run = RunQva(c.args, c.input);
        EXPECT_EQ(run.exitCode, 1) << c.args.join(' ').toStdString();
        EXPECT_TRUE(run.FirstErrorLine().startsWith(c.firstLine))
            << run.FirstErrorLine().toStdString() << "\nwanted: " << c.firstLine.toStdString();
        EXPECT_TRUE(run.out.isEmpty());
    }
    EXPECT_FALSE(QFile::exists(Path("out.qva")));
}

TEST_F(QvaToolTest, HelpNamesTheCommandsAndCodes)
{
    const ToolRun run = RunQva({"--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.out.contains("dump FILE.qva"));
    EXPECT_TRUE(run.out.contains("error <code>: <message>"));
    EXPECT_TRUE(run.out.contains("-4 a wrong command line"));
}
