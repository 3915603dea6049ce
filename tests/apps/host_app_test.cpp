// The demo host, tamerisk-host: its own reader of attribute files agrees with
// the library's for every version and groove pattern, and the program runs
// offscreen to write a picture of the editor.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include "material/attribute_file.h"
#include "tamerisk-host/qva_reader.h"

namespace {

// Padding carries no meaning and readers ignore it.
bool SameMaterial(FZAttributeEx a, FZAttributeEx b)
{
    a.padding[0] = a.padding[1] = b.padding[0] = b.padding[1] = 0;
    a.anisotropy.padding[0] = a.anisotropy.padding[1] = 0;
    b.anisotropy.padding[0] = b.anisotropy.padding[1] = 0;
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Every stored field away from its default; anisotropyType 0 switches the
// grooves off.
FZAttributeEx Varied(int anisotropyType)
{
    FZAttributeEx m;
    m.diffuse = 0.1f;
    m.highlightStrength = 0.2f;
    m.highlightSharpness = 0.3f;
    m.ambient = 0.4f;
    m.transparency = 0.5f;
    m.refractiveIndex = 1.5f;
    m.color.SetBytes(10, 20, 30);
    m.highlightColor.SetBytes(40, 50, 60);
    m.reflection = 0.6f;
    m.anisotropic = anisotropyType != 0;
    m.anisotropy.type = anisotropyType;
    m.anisotropy.grooveDepth = 0.25f;
    m.anisotropy.center[0] = 0.125f;
    m.anisotropy.center[1] = 0.75f;
    m.anisotropy.axis.SetFloats(0.0f, 1.0f, 0.0f, true);
    m.anisotropy.amplitude = 0.2f;
    m.anisotropy.waveCount = 9;
    m.anisotropy.spiralTwist = -0.03f;
    m.anisotropy.depthVariation = 0.35f;
    m.colorTransparency = 1;
    m.emission = 0.7f;
    m.smoothHighlight = 1;
    m.smoothWidth = 3.0f;
    m.rainbow = 1;
    m.stripeSpacing = 2500.0f;
    m.incidenceDependence = 0.45f;
    m.attenuation = 0.55f;
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
    if (WriteFileHeader(file, header) == 0 && Write(file, m, version) == 0) {
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
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return path;
}

struct HostRun {
    int exitCode = -1;
    QByteArray err;
};

HostRun RunHost(const QStringList& args, const QString& settingsDirectory)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("TAMERISK_SETTINGS_DIR"), settingsDirectory);
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(TAMERISK_BIN_DIR "/tamerisk-host"), args);
    HostRun run;
    if (!process.waitForFinished(60000))
        return run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.err = process.readAllStandardError();
    return run;
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
            ASSERT_EQ(LoadAttributeBytes(bytes.constData(), bytes.size(), expected), 0);

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
    const HostRun run = RunHost({"--open", material, "--screenshot", picture}, dir.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const QImage image(picture);
    EXPECT_GT(image.width(), 100);
    EXPECT_GT(image.height(), 100);

    // Errors are one clear line and a failing exit status.
    const HostRun badFile =
        RunHost({"--open", WriteFile(dir, "bad.qva", "nonsense"), "--screenshot", picture},
                dir.path());
    EXPECT_EQ(badFile.exitCode, 1);
    EXPECT_TRUE(badFile.err.contains("tamerisk-host: ")) << badFile.err.constData();
    const HostRun noLibrary = RunHost(
        {"--library", dir.filePath("missing.so"), "--screenshot", picture}, dir.path());
    EXPECT_EQ(noLibrary.exitCode, 1);
}
