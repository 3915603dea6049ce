// The demo host, tamerisk-host: its own reader of attribute files agrees with
// the library's, and the program runs offscreen to write a picture.
#include <gtest/gtest.h>

#include <cstring>

#include <QImage>
#include <QTemporaryDir>

#include "attribute_bytes.h"
#include "material/attribute_file.h"
#include "tamerisk-host/qva_reader.h"
#include "tool_run.h"

namespace {

QByteArray Bytes(const ByteVector& v) { return QByteArray(reinterpret_cast<const char*>(v.data()), qsizetype(v.size())); }

QString Written(const QTemporaryDir& dir, const QByteArray& bytes)
{
    WriteBytes(dir.filePath("m.qva"), bytes);
    return dir.filePath("m.qva");
}

} // namespace

TEST(HostAppReader, AgreesWithTheLibraryOrRefusesAndKeepsTheMaterial)
{
    const QTemporaryDir dir;
    for (int version = 0; version <= 10; ++version) {
        for (int type : {1, 2, 3, 5}) {
            const ByteVector bytes = HandBuiltFile(DistinctiveMaterial(type), version);
            FZAttributeEx expected, got;
            ASSERT_EQ(LoadAttributeBytes(bytes.data(), bytes.size(), expected), FZResult::Ok);
            EXPECT_EQ(ReadQvaFile(Written(dir, Bytes(bytes)), got), QString());
            got.padding[0] = got.padding[1] = expected.padding[0] = expected.padding[1] = 0;
            EXPECT_EQ(std::memcmp(&got, &expected, sizeof got), 0) << "version " << version << " type " << type;
        }
    }
    const QByteArray good = Bytes(HandBuiltFile(DistinctiveMaterial(2), 10));
    const std::pair<QByteArray, const char*> refused[] = {
        {"<Quorvantel", "too short"},
        {QByteArray(40, 'x'), "not an attribute file"},
        {QByteArray(good).replace(22, 4, "0011"), "version 11"},
        {good.left(good.size() - 1), "ends inside the material"},
    };
    for (const auto& [bytes, says] : refused) {
        FZAttributeEx material;
        material.diffuse = 0.125f;
        const QString error = ReadQvaFile(Written(dir, bytes), material);
        EXPECT_TRUE(error.contains(QLatin1String(says))) << error.toStdString();
        EXPECT_EQ(material.diffuse, 0.125f);
    }
}

TEST(HostApp, WritesAPictureOfTheEditorOffscreenOrSaysWhyNot)
{
    const QTemporaryDir dir;
    const QString picture = dir.filePath("editor.png");
    const QString material = Written(dir, Bytes(HandBuiltFile(DistinctiveMaterial(1), 10)));
    const ToolRun run = RunTool("tamerisk-host", {"--open", material, "--screenshot", picture}, {}, dir.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    EXPECT_GT(QImage(picture).width(), 100);

    const ToolRun bad = RunTool("tamerisk-host", {"--open", Written(dir, "nonsense"), "--screenshot", picture}, {},
                                dir.path());
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_TRUE(bad.err.contains("tamerisk-host: ")) << bad.err.constData();
    EXPECT_EQ(RunTool("tamerisk-host", {"--library", dir.filePath("no.so"), "--screenshot", picture}, {}, dir.path())
                  .exitCode, 1);
}
