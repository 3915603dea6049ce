// tamerisk-qva as a user runs it: write then dump, and the error line and
// exit status of every kind of failure.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstring>

#include "json/material_json.h"
#include "attribute_bytes.h"
#include "material/attribute_file.h"
#include "tool_run.h"

namespace {

ToolRun RunQva(const QStringList& args, const QByteArray& input = QByteArray())
{
    return RunTool("tamerisk-qva", args, input);
}

void WriteFile(const QString& path, const QByteArray& bytes)
{
    ASSERT_TRUE(WriteBytes(path, bytes));
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
    EXPECT_EQ(ReadBytes(qva).size(), 136);

    const ToolRun dump = RunQva({"dump", qva});
    ASSERT_EQ(dump.exitCode, 0) << dump.err.toStdString();
    EXPECT_TRUE(dump.out.startsWith("{\n  \"version\": 10,\n  \"diffuse\": 0.1,\n")) << dump.out.toStdString();

    FZAttributeEx written, dumped;
    QString error;
    ASSERT_EQ(MaterialFromJson(kEveryStoredField, written, error), FZResult::Ok) << error.toStdString();
    ASSERT_EQ(MaterialFromJson(dump.out, dumped, error), FZResult::Ok) << error.toStdString();
    EXPECT_EQ(std::memcmp(&written, &dumped, sizeof written), 0) << dump.out.toStdString();

    // The same text through standard input gives the same file.
    ASSERT_EQ(RunQva({"write", Path("stdin.qva"), "-"}, kEveryStoredField).exitCode, 0);
    ASSERT_EQ(RunQva({"write", Path("implicit.qva")}, kEveryStoredField).exitCode, 0);
    EXPECT_EQ(ReadBytes(Path("stdin.qva")), ReadBytes(qva));
    EXPECT_EQ(ReadBytes(Path("implicit.qva")), ReadBytes(qva));
}

TEST_F(QvaToolTest, EmptyObjectWritesTheDefaultRecord)
{
    ASSERT_EQ(RunQva({"write", Path("default.qva"), "-"}, "{}").exitCode, 0);
    const QByteArray bytes = ReadBytes(Path("default.qva"));
    EXPECT_EQ(bytes.size(), 98);
    EXPECT_TRUE(bytes.startsWith("<Quorvantel Attribute>0010"));
    const ToolRun dump = RunQva({"dump", Path("default.qva")});
    EXPECT_EQ(dump.out, MaterialToJson(FZAttributeEx(), 10));
}

TEST_F(QvaToolTest, DumpShowsTheFileVersion)
{
    FZAttributeEx expected;
    expected.colorTransparency = 1;
    expected.emission = 0.5f;
    const ByteVector v5 = HandBuiltFile(expected, 5);
    WriteFile(Path("v5.qva"), QByteArray(reinterpret_cast<const char*>(v5.data()), qsizetype(v5.size())));
    const ToolRun dump = RunQva({"dump", Path("v5.qva")});
    ASSERT_EQ(dump.exitCode, 0) << dump.err.toStdString();
    EXPECT_TRUE(dump.out.startsWith("{\n  \"version\": 5,\n"));
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
