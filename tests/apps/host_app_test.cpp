// The demo host, tamerisk-host: its own reader of attribute files agrees with
// the library's for every version and groove pattern, and the program runs
// offscreen to write a picture of the editor.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include "material/attribute_file.h"
#include "attribute_bytes.h"
#include "tamerisk-host/qva_reader.h"
#include "tool_run.h"

namespace {

// Padding carries no meaning and readers ignore it.
bool SameMaterial(FZAttributeEx a, FZAttributeEx b)
{
    a.padding[0] = a.padding[1] = b.padding[0] = b.padding[1] = 0;
    a.anisotropy.padding[0] = a.anisotropy.padding[1] = 0;
    b.anisotropy.padding[0] = b.anisotropy.padding[1] = 0;
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Grooves of the given type; type 0 switches them off.
FZAttributeEx Varied(int anisotropyType)
{
    FZAttributeEx m = DistinctiveMaterial(anisotropyType);
    m.anisotropic = anisotropyType != 0;
    return m;
}

// A file of the given version as the library writes it.
QByteArray FileOfVersion(const FZAttributeEx& m, int version)
{
    FZFileHeader header = kAttributeFileHeader;
    header.currentVersion = version;
    if (version < header.legacyBelowVersion)
        header.headerSize = header.legacyHeaderSize;
    std::FILE* file = std::tmpfile();
    if (!file)
        return {};
    QByteArray bytes;
    if (WriteFileHeader(file, header) == FZResult::Ok && Write(file, m, version) == FZResult::Ok) {
        bytes.resize(std::ftell(file));
        std::rewind(file);
        bytes.resize(static_cast<qsizetype>(std::fread(bytes.data(), 1, bytes.size(), file)));
    }
    std::fclose(file);
    return bytes;
}

QString WriteFile(const QTemporaryDir& dir, const char* name, const QByteArray& bytes)
{
    const QString path = dir.filePath(QLatin1String(name));
    WriteBytes(path, bytes);
    return path;
}

ToolRun RunHost(const QStringList& args, const QString& settingsDirectory)
{
    return RunTool("tamerisk-host", args, {}, settingsDirectory);
}

} // namespace

TEST(HostAppReader, AgreesWithTheLibraryForEveryVersionAndPattern)
{
    const QTemporaryDir dir;
    for (int version = 0; version <= 10; ++version) {
        for (int type : {0, 1, 2, 3, 5}) {
            SCOPED_TRACE(testing::Message() << "version " << version << ", type " << type);
            const QByteArray bytes = FileOfVersion(Varied(type), version);
            ASSERT_FALSE(bytes.isEmpty());
            FZAttributeEx expected;
            ASSERT_EQ(LoadAttributeBytes(bytes.constData(), bytes.size(), expected), FZResult::Ok);

            FZAttributeEx got;
            EXPECT_EQ(ReadQvaFile(WriteFile(dir, "m.qva", bytes), got), QString());
            EXPECT_TRUE(SameMaterial(got, expected));
        }
    }
}

TEST(HostAppReader, RefusesWhatIsNotAnAttributeFileAndKeepsTheMaterial)
{
    const QTemporaryDir dir;
    const QByteArray good = FileOfVersion(Varied(2), 10);
    QByteArray newer = good;
    newer.replace(22, 4, "0011");
    QByteArray notDigits = good;
    notDigits.replace(22, 4, "00x1");
    const struct {
        QByteArray bytes;
        const char* says;
    } cases[] = {
        {"<Quorvantel", "too short"},
        {QByteArray(40, 'x'), "not an attribute file"},
        {notDigits, "not an attribute file"},
        {newer, "version 11"},
        {good.left(good.size() - 1), "ends inside the material"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.says);
        FZAttributeEx material = Varied(1);
        const QString error = ReadQvaFile(WriteFile(dir, "bad.qva", c.bytes), material);
        EXPECT_TRUE(error.contains(QLatin1String(c.says))) << error.toStdString();
        EXPECT_TRUE(SameMaterial(material, Varied(1)));
    }
    FZAttributeEx material;
    EXPECT_TRUE(ReadQvaFile(dir.filePath("missing.qva"), material).contains("cannot open"));
}

TEST(HostApp, WritesAPictureOfTheEditorOffscreen)
{
    const QTemporaryDir dir;
    const QString material = WriteFile(dir, "glass.qva", FileOfVersion(Varied(1), 10));
    const QString picture = dir.filePath("editor.png");
    const ToolRun run = RunHost({"--open", material, "--screenshot", picture}, dir.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const QImage image(picture);
    EXPECT_GT(image.width(), 100);
    EXPECT_GT(image.height(), 100);

    // Errors are one clear line and a failing exit status.
    const ToolRun badFile =
        RunHost({"--open", WriteFile(dir, "bad.qva", "nonsense"), "--screenshot", picture},
                dir.path());
    EXPECT_EQ(badFile.exitCode, 1);
    EXPECT_TRUE(badFile.err.contains("tamerisk-host: ")) << badFile.err.constData();
    const ToolRun noLibrary = RunHost(
        {"--library", dir.filePath("missing.so"), "--screenshot", picture}, dir.path());
    EXPECT_EQ(noLibrary.exitCode, 1);
}
