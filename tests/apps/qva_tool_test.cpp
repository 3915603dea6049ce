// tamerisk-qva as a user runs it, and what the tools leave on a full disk
// and over a write-protected file.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <QDir>
#include <QTemporaryDir>

#include <cstring>
#include <filesystem>
#include <iterator>

#include "json/material_json.h"
#include "tool_run.h"

namespace {

// Every field a version 10 file stores, none at its default, with values
// that only an exact float round trip keeps.
const char kEveryStoredField[] = R"({"version": 2,
  "diffuse": 0.1, "highlightStrength": 0.33333334, "highlightSharpness": 1e-45, "ambient": -0,
  "transparency": 3.4028235e+38, "refractiveIndex": 1.0000001, "color": [1, 2, 3], "highlightColor": [254, 0, 128],
  "reflection": "nan:0x7fc00123", "anisotropic": -5,
  "anisotropy": {"type": 2, "grooveDepth": 0.2, "center": [0.1, "-inf", 0.7],
                 "axis": [-32768, 32767, 5], "amplitude": 0.24, "waveCount": 36, "depthVariation": 0.95},
  "colorTransparency": 2147483647, "emission": "inf", "smoothHighlight": -2147483648,
  "smoothWidth": 2.5, "rainbow": 7, "stripeSpacing": 4999.5, "incidenceDependence": 0.05, "attenuation": "nan"
})";

class QvaTool : public ::testing::Test {
protected:
    QString Path(const char* name) const { return dir.filePath(name); }
    ToolRun Qva(const QStringList& args, const QByteArray& input = {}, long limit = -1) const
    {
        return RunTool("tamerisk-qva", args, input, {}, limit);
    }
    // A shell line run in the test's directory.
    ToolRun Shell(const QString& line) const { return RunShell(line, dir.path()); }
    ScratchDir dir;
};

}  // namespace

TEST_F(QvaTool, WriteThenDumpKeepsEveryStoredField)
{
    ASSERT_EQ(Qva({"write", Path("every.qva")}, kEveryStoredField).exitCode, 0);
    EXPECT_EQ(ReadBytes(Path("every.qva")).size(), 136);
    const ToolRun dump = Qva({"dump", Path("every.qva")});
    EXPECT_TRUE(dump.out.startsWith("{\n  \"version\": 10,\n  \"diffuse\": 0.1,\n")) << dump.err.toStdString();
    FZAttributeEx written, dumped;
    QString error;
    ASSERT_EQ(MaterialFromJson(kEveryStoredField, written, error), FZResult::Ok) << error.toStdString();
    ASSERT_EQ(MaterialFromJson(dump.out, dumped, error), FZResult::Ok) << error.toStdString();
    EXPECT_EQ(std::memcmp(&written, &dumped, sizeof written), 0) << dump.out.toStdString();
}

TEST_F(QvaTool, FailuresPrintTheCodeAndExitWithOneOrTwoForTheCommandLine)
{
    ASSERT_TRUE(WriteBytes(Path("v11.qva"), "<Quorvantel Attribute>0011"));
    const struct {
        QStringList args;
        QByteArray input;
        int exitCode;
        QString firstLine;
    } cases[] = {
        {{"dump", Path("absent.qva")}, {}, 1, "tamerisk-qva: error -5: " + Path("absent.qva") + ": cannot open: "},
        {{"dump", Path("v11.qva")}, {}, 1, "tamerisk-qva: error -9: " + Path("v11.qva") + ": unsupported file version"},
        {{"write", Path("out.qva")}, R"({"glow": 1})", 1,
         "tamerisk-qva: error -4: -: invalid parameter: key \"glow\" is unknown"},
        {{"write", Path("out.qva")}, "\xEF\xBB\xBF[]", 1,
         "tamerisk-qva: error -8: -: unsupported data format: JSON line 1, column 1: the top level must be an "
         "object, not an array"},
        {{"write", Path("no/dir/out.qva")}, "{}", 1,
         "tamerisk-qva: error -5: " + Path("no/dir/out.qva") + ": cannot open: No such file or directory"},
        {{"dump"}, {}, 2, "tamerisk-qva: error -4: invalid parameter: usage: "},
    };
    for (const auto& c : cases) {
        const ToolRun run = Qva(c.args, c.input);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.args.join(' ').toStdString();
        EXPECT_TRUE(run.FirstErrorLine().startsWith(c.firstLine)) << run.FirstErrorLine().toStdString();
        EXPECT_TRUE(run.out.isEmpty());
    }
    EXPECT_FALSE(QFile::exists(Path("out.qva")));
}

TEST_F(QvaTool, FailedWritesKeepTheOldFileAndNameTheReason)
{
    ASSERT_TRUE(WriteBytes(Path("a.png"), "old picture") && WriteBytes(Path("m.qva"), "old material"));
    // Both files are larger than the limit.
    const ToolRun render = RunTool("tamerisk-render", {"--size", "64", "--output", Path("a.png")}, {}, {}, 50);
    EXPECT_EQ(render.exitCode, 1);
    EXPECT_EQ(render.FirstErrorLine(), "tamerisk-render: cannot write '" + Path("a.png") + "': File too large");
    const ToolRun qva = Qva({"write", Path("m.qva")}, "{}", 50);
    EXPECT_EQ(qva.exitCode, 1);
    EXPECT_EQ(qva.FirstErrorLine(), "tamerisk-qva: error -7: " + Path("m.qva") + ": cannot write: File too large");

    // A write-protected file is refused, whoever runs the tool.
    ::chmod(QFile::encodeName(Path("m.qva")).constData(), 0444);
    const ToolRun locked = Qva({"write", Path("m.qva")}, "{}");
    EXPECT_EQ(locked.exitCode, 1);
    EXPECT_TRUE(locked.FirstErrorLine().endsWith(": Permission denied (the file is write-protected)"));

    EXPECT_EQ(ReadBytes(Path("a.png")), "old picture");
    EXPECT_EQ(ReadBytes(Path("m.qva")), "old material");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 2);  // no temporary file left
}

TEST_F(QvaTool, WriteLeavesAJsonFileAndItsOwnInputAlone)
{
    ASSERT_TRUE(WriteBytes(Path("m.json"), R"({"diffuse": 0.25})"));
    ASSERT_EQ(Qva({"write", Path("m.qva"), Path("m.json")}).exitCode, 0);
    ASSERT_TRUE(QFile::link(Path("m.qva"), Path("link.qva")));
    const QByteArray json = ReadBytes(Path("m.json"));
    const QByteArray qva = ReadBytes(Path("m.qva"));
    const struct {
        const char* line;
        const char* reason;
    } cases[] = {
        {R"("$QVA" write m.json m.qva)", "m.json: invalid parameter: the file holds JSON text and is left as it is"},
        {R"("$QVA" write m.qva m.qva)", "m.qva: invalid parameter: the file is both the input and the output"},
        {R"("$QVA" write link.qva m.qva)", "link.qva: invalid parameter: the file is both the input and the output"},
        {R"("$QVA" write m.qva - < m.qva)", "m.qva: invalid parameter: the file is both the input and the output"},
        {R"("$QVA" write m.qva < link.qva)", "m.qva: invalid parameter: the file is both the input and the output"},
    };
    for (const auto& c : cases) {
        const ToolRun run = Shell(c.line);
        EXPECT_EQ(run.exitCode, 1) << c.line;
        EXPECT_TRUE(run.FirstErrorLine().startsWith("tamerisk-qva: error -4: ")) << run.FirstErrorLine().toStdString();
        EXPECT_TRUE(run.FirstErrorLine().contains(c.reason)) << run.FirstErrorLine().toStdString();
        EXPECT_EQ(ReadBytes(Path("m.json")), json) << c.line;
        EXPECT_EQ(ReadBytes(Path("m.qva")), qva) << c.line;
    }
}

TEST_F(QvaTool, StandardInputIsHeldToOneMebibyteAsFilesAre)
{
    const struct {
        qsizetype size;
        int exitCode;
        const char* firstLine;
    } cases[] = {
        {qsizetype{1} << 20, 0, ""},
        {(qsizetype{1} << 20) + 1, 1, "tamerisk-qva: error -10: "},
        {qsizetype{64} << 20, 1, "tamerisk-qva: error -10: "},
    };
    for (const auto& c : cases) {
        QByteArray input(c.size, ' ');
        input[0] = '{';
        input[c.size - 1] = '}';
        const ToolRun run = Qva({"write", Path("big.qva")}, input);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.size;
        EXPECT_TRUE(run.FirstErrorLine().startsWith(c.firstLine)) << run.FirstErrorLine().toStdString();
        EXPECT_EQ(QFile::exists(Path("big.qva")), c.exitCode == 0) << c.size;
        QFile::remove(Path("big.qva"));
    }
}

// Both names would read as the same text with a replacement character.
TEST_F(QvaTool, FileNamesThatAreNotUtf8StayApart)
{
    ASSERT_TRUE(WriteBytes(Path("one.json"), R"({"diffuse": 0.25})"));
    ASSERT_TRUE(WriteBytes(Path("two.json"), R"({"diffuse": 0.75})"));
    const ToolRun run = Shell(R"sh("$QVA" write "$(printf 'm\377.qva')" one.json && )sh"
                              R"sh("$QVA" write "$(printf 'm\376.qva')" two.json && )sh"
                              R"sh("$QVA" dump "$(printf 'm\377.qva')" && "$QVA" dump "$(printf 'm\376.qva')")sh");
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const qsizetype first = run.out.indexOf("\"diffuse\": 0.25");
    EXPECT_GE(first, 0) << run.out.toStdString();
    EXPECT_GT(run.out.indexOf("\"diffuse\": 0.75"), first);
    const std::filesystem::path where = QFile::encodeName(dir.path()).toStdString();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(where), {}), 4);
}
