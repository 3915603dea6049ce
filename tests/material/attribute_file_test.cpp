// Attribute files: every version read from files assembled here byte by byte,
// the version 10 writer checked against hand-built bytes, every refusal, and
// saving that never loses the file it replaces.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "material/attribute_file.h"
#include "material/result_codes.h"

namespace fs = std::filesystem;

namespace {

using ByteVector = std::vector<std::uint8_t>;

// Assembles a file little-endian, independently of the code under test.
class FileBytes {
public:
    FileBytes& Text(const std::string& s)
    {
        bytes.insert(bytes.end(), s.begin(), s.end());
        return *this;
    }
    FileBytes& U8(std::uint8_t v)
    {
        bytes.push_back(v);
        return *this;
    }
    FileBytes& I16(std::int16_t v) { return Le(static_cast<std::uint16_t>(v), 2); }
    FileBytes& I32(std::int32_t v) { return Le(static_cast<std::uint32_t>(v), 4); }
    FileBytes& F32(float v)
    {
        std::uint32_t bits;
        std::memcpy(&bits, &v, 4);
        return Le(bits, 4);
    }
    FileBytes& Fill(std::size_t n, std::uint8_t v)
    {
        bytes.insert(bytes.end(), n, v);
        return *this;
    }
    // The magic text and the four version characters.
    FileBytes& Header(const std::string& version) { return Text("<Quorvantel Attribute>").Text(version); }

    ByteVector bytes;

private:
    FileBytes& Le(std::uint32_t v, int n)
    {
        for (int i = 0; i < n; ++i)
            bytes.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
        return *this;
    }
};

// A record in which every field differs from its default.
FZAttributeEx Distinctive(std::int32_t type)
{
    FZAttributeEx r;
    r.diffuse = 0.25f;
    r.highlightStrength = 0.75f;
    r.highlightSharpness = 0.125f;
    r.ambient = 0.5f;
    r.transparency = 0.375f;
    r.refractiveIndex = 1.5f;
    r.color.SetBytes(10, 20, 30);
    r.highlightColor.SetBytes(40, 50, 60);
    r.reflection = 0.625f;
    r.anisotropic = 1;
    r.anisotropy.type = type;
    r.anisotropy.grooveDepth = 0.3f;
    r.anisotropy.center[0] = 0.2f;
    r.anisotropy.center[1] = 0.7f;
    r.anisotropy.center[2] = -1.0f;
    r.anisotropy.axis.x = 1000;
    r.anisotropy.axis.y = -2000;
    r.anisotropy.axis.z = 29900;
    r.anisotropy.amplitude = 0.2f;
    r.anisotropy.waveCount = 7;
    r.anisotropy.spiralTwist = -0.04f;
    r.anisotropy.wavePeriod = 12.0f;
    r.anisotropy.depthVariation = 0.85f;
    r.anisotropy.angle = 45.0f;
    r.anisotropy.grooveWidth = 2.5f;
    r.colorTransparency = 1;
    r.emission = 0.45f;
    r.smoothHighlight = 1;
    r.smoothWidth = 3.0f;
    r.rainbow = 1;
    r.stripeSpacing = 2500.0f;
    r.incidenceDependence = 0.65f;
    r.attenuation = 0.35f;
    r.thinGlass = 1;
    r.thickness = 12.0f;
    return r;
}

// What a file of the given version holds of r, written out field by field
// from the version table. Padding bytes are given as 0xEE, which readers
// must ignore.
ByteVector HandBuiltFile(const FZAttributeEx& r, int version, std::uint8_t padding = 0xEE)
{
    char digits[8];
    std::snprintf(digits, sizeof digits, "%04d", version);
    FileBytes f;
    f.Header(digits);
    if (version < 4)
        f.Fill(512 - 26, 0x5A);
    f.F32(r.diffuse).F32(r.highlightStrength).F32(r.highlightSharpness).F32(r.ambient);
    f.F32(r.transparency).F32(r.refractiveIndex);
    f.U8(r.color.r).U8(r.color.g).U8(r.color.b);
    f.U8(r.highlightColor.r).U8(r.highlightColor.g).U8(r.highlightColor.b);
    f.Fill(2, padding).F32(r.reflection);
    if (version < 4)
        return f.bytes;
    f.I32(r.anisotropic);
    if (r.anisotropic != 0) {
        const FZAnisotropy& a = r.anisotropy;
        f.I32(a.type);
        if (a.type >= 1 && a.type <= 3) {
            f.F32(a.grooveDepth).F32(a.center[0]).F32(a.center[1]).F32(a.center[2]);
            f.I16(a.axis.x).I16(a.axis.y).I16(a.axis.z);
        }
        if (a.type == 2)
            f.I32(a.waveCount).F32(a.amplitude);
        if (a.type == 3)
            f.F32(a.spiralTwist);
        if (version >= 10)
            f.F32(a.depthVariation);
    }
    if (version >= 5)
        f.I32(r.colorTransparency).F32(r.emission);
    if (version >= 6)
        f.I32(r.smoothHighlight).F32(r.smoothWidth);
    if (version >= 7)
        f.I32(r.rainbow).F32(r.stripeSpacing);
    if (version >= 8)
        f.F32(r.incidenceDependence).F32(r.attenuation);
    return f.bytes;
}

// What loading a file of the given version made from r must give: r's
// stored fields, every other field at its default.
FZAttributeEx ExpectedAfterLoad(const FZAttributeEx& r, int version)
{
    FZAttributeEx e;
    static_cast<FZAttribute&>(e) = r;
    e.padding[0] = e.padding[1] = 0;
    if (version < 4)
        return e;
    e.anisotropic = r.anisotropic;
    if (r.anisotropic != 0) {
        const FZAnisotropy& a = r.anisotropy;
        e.anisotropy.type = a.type;
        if (a.type >= 1 && a.type <= 3) {
            e.anisotropy.grooveDepth = a.grooveDepth;
            std::memcpy(e.anisotropy.center, a.center, sizeof a.center);
            e.anisotropy.axis = a.axis;
        }
        if (a.type == 2) {
            e.anisotropy.waveCount = a.waveCount;
            e.anisotropy.amplitude = a.amplitude;
        }
        if (a.type == 3)
            e.anisotropy.spiralTwist = a.spiralTwist;
        if (version >= 10)
            e.anisotropy.depthVariation = a.depthVariation;
    }
    if (version >= 5) {
        e.colorTransparency = r.colorTransparency;
        e.emission = r.emission;
    }
    if (version >= 6) {
        e.smoothHighlight = r.smoothHighlight;
        e.smoothWidth = r.smoothWidth;
    }
    if (version >= 7) {
        e.rainbow = r.rainbow;
        e.stripeSpacing = r.stripeSpacing;
    }
    if (version >= 8) {
        e.incidenceDependence = r.incidenceDependence;
        e.attenuation = r.attenuation;
    }
    return e;
}

bool SameBytes(const FZAttributeEx& a, const FZAttributeEx& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

int Load(const ByteVector& bytes, FZAttributeEx& record, int* version = nullptr)
{
    return LoadAttributeBytes(bytes.data(), bytes.size(), record, version);
}

// A directory of its own for each test, removed afterwards.
class AttributeFileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "tamerisk-qva-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        dir = pattern;
    }
    void TearDown() override
    {
        fs::permissions(dir, fs::perms::owner_all, fs::perm_options::add);
        fs::remove_all(dir);
    }

    static ByteVector ReadAll(const fs::path& p)
    {
        std::ifstream in(p, std::ios::binary);
        return ByteVector(std::istreambuf_iterator<char>(in), {});
    }
    static void WriteAll(const fs::path& p, const ByteVector& bytes)
    {
        std::ofstream out(p, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    ByteVector Saved(const FZAttributeEx& r)
    {
        const fs::path p = dir / "saved.qva";
        EXPECT_EQ(SaveAttributeFile(p.c_str(), r), 0);
        return ReadAll(p);
    }
    std::vector<std::string> Entries() const
    {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(dir))
            names.push_back(e.path().filename().string());
        return names;
    }

    fs::path dir;
};

// Runs body in a forked child and returns its exit status (or -1 when it did
// not exit normally), so that limits and identities changed there stay there.
int ExitStatusOfChild(const std::function<int()>& body)
{
    const pid_t pid = ::fork();
    if (pid == 0)
        ::_exit(body());
    int status = 0;
    if (pid < 0 || ::waitpid(pid, &status, 0) != pid || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

}  // namespace

TEST(ResultCodes, MessagesOfTheTable)
{
    EXPECT_STREQ(ResultMessage(kResultError), "何らかのｴﾗｰが起りました。");
    EXPECT_STREQ(ResultMessage(kResultOpenFailed), "ﾌｧｲﾙを開けませんでした。");
    EXPECT_STREQ(ResultMessage(kResultReadFailed), "ﾌｧｲﾙからﾃﾞｰﾀを読み込めませんでした。");
    EXPECT_STREQ(ResultMessage(kResultBadVersion), "ﾊﾞｰｼﾞｮﾝの異なるﾌｧｲﾙです。");
    EXPECT_STREQ(ResultMessage(kResultNoData), "ﾃﾞｰﾀがありません。");
    EXPECT_EQ(ResultMessage(0), nullptr);
    EXPECT_EQ(ResultMessage(-12), nullptr);
    EXPECT_EQ(ResultMessage(1), nullptr);
}

TEST_F(AttributeFileTest, DefaultRecordSavesTo98Bytes)
{
    const ByteVector bytes = Saved(FZAttributeEx());
    ASSERT_EQ(bytes.size(), 98u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 26), "<Quorvantel Attribute>0010");
    EXPECT_EQ(bytes, HandBuiltFile(FZAttributeEx(), 10, 0));
}

TEST_F(AttributeFileTest, BlockSizeFollowsTheType)
{
    const std::pair<std::int32_t, std::size_t> sizes[] = {{1, 128}, {2, 136}, {3, 132}, {4, 106}, {5, 106}, {0, 106}, {-7, 106}};
    for (const auto& [type, size] : sizes) {
        FZAttributeEx r = Distinctive(type);
        const ByteVector bytes = Saved(r);
        EXPECT_EQ(bytes.size(), size) << "type " << type;
        // The writer writes exactly what the table describes, padding as zeros.
        EXPECT_EQ(bytes, HandBuiltFile(r, 10, 0)) << "type " << type;
    }
    FZAttributeEx negativeFlag = Distinctive(1);
    negativeFlag.anisotropic = -1;  // any non-zero value switches the block on
    EXPECT_EQ(Saved(negativeFlag).size(), 128u);
}

TEST_F(AttributeFileTest, EncodingIsLittleEndianWhateverTheHost)
{
    FZAttributeEx r;
    r.diffuse = 1.5f;            // 0x3FC00000
    r.anisotropic = 0x01020304;
    r.anisotropy.type = 1;
    r.anisotropy.axis.x = -2;    // 0xFFFE
    r.padding[0] = 0xAB;         // padding never reaches the file
    r.padding[1] = 0xCD;
    const ByteVector b = Saved(r);
    ASSERT_EQ(b.size(), 128u);
    EXPECT_EQ((ByteVector{b[26], b[27], b[28], b[29]}), (ByteVector{0x00, 0x00, 0xC0, 0x3F}));
    EXPECT_EQ((ByteVector{b[56], b[57]}), (ByteVector{0, 0}));
    EXPECT_EQ((ByteVector{b[62], b[63], b[64], b[65]}), (ByteVector{0x04, 0x03, 0x02, 0x01}));
    // type (4), grooveDepth (4), center (12), then axis.x at 66 + 20.
    EXPECT_EQ((ByteVector{b[86], b[87]}), (ByteVector{0xFE, 0xFF}));
}

TEST_F(AttributeFileTest, WavyConcentricStoresWaveCountBeforeAmplitude)
{
    FZAttributeEx r = Distinctive(2);
    r.anisotropy.waveCount = 9;
    r.anisotropy.amplitude = 0.25f;
    const ByteVector b = Saved(r);
    ASSERT_EQ(b.size(), 136u);
    // The block starts at 66; type, grooveDepth, center and axis take 26 bytes.
    EXPECT_EQ((ByteVector{b[92], b[93], b[94], b[95]}), (ByteVector{9, 0, 0, 0}));
    EXPECT_EQ((ByteVector{b[96], b[97], b[98], b[99]}), (ByteVector{0x00, 0x00, 0x80, 0x3E}));
    FZAttributeEx loaded;
    ASSERT_EQ(Load(b, loaded), 0);
    EXPECT_EQ(loaded.anisotropy.waveCount, 9);
    EXPECT_EQ(loaded.anisotropy.amplitude, 0.25f);
}

TEST_F(AttributeFileTest, EveryVersionReadsWhatItHolds)
{
    for (std::int32_t type : {1, 2, 3, 4}) {
        const FZAttributeEx r = Distinctive(type);
        for (int version = 0; version <= 10; ++version) {
            FZAttributeEx loaded = Distinctive(5);
            int fileVersion = -1;
            ASSERT_EQ(Load(HandBuiltFile(r, version), loaded, &fileVersion), 0)
                << "version " << version << " type " << type;
            EXPECT_EQ(fileVersion, version);
            EXPECT_TRUE(SameBytes(loaded, ExpectedAfterLoad(r, version)))
                << "version " << version << " type " << type;
        }
    }
}

TEST_F(AttributeFileTest, OldVersionsSkipTheir512ByteHeader)
{
    const FZAttributeEx r = Distinctive(2);
    const ByteVector v3 = HandBuiltFile(r, 3);
    ASSERT_EQ(v3.size(), 512u + 36u);
    FZAttributeEx loaded;
    ASSERT_EQ(Load(v3, loaded), 0);
    EXPECT_EQ(loaded.diffuse, 0.25f);
    EXPECT_EQ(loaded.reflection, 0.625f);
    EXPECT_EQ(loaded.anisotropic, 0);
    EXPECT_EQ(loaded.stripeSpacing, 1000.0f);
    EXPECT_EQ(loaded.smoothWidth, 2.0f);

    // Version 4 has the short header: its record starts right at byte 26.
    const ByteVector v4 = HandBuiltFile(r, 4);
    ASSERT_EQ(Load(v4, loaded), 0);
    EXPECT_EQ(loaded.anisotropy.waveCount, 7);
    EXPECT_EQ(loaded.anisotropy.depthVariation, 0.0f);
    EXPECT_EQ(loaded.emission, 0.0f);
}

TEST_F(AttributeFileTest, Version9ReadsLikeVersion8)
{
    const FZAttributeEx r = Distinctive(3);
    ByteVector v9 = HandBuiltFile(r, 8);
    v9[25] = '9';
    FZAttributeEx from8, from9;
    ASSERT_EQ(Load(HandBuiltFile(r, 8), from8), 0);
    ASSERT_EQ(Load(v9, from9), 0);
    EXPECT_TRUE(SameBytes(from8, from9));
    EXPECT_EQ(from9.attenuation, 0.35f);
    EXPECT_EQ(from9.anisotropy.depthVariation, 0.0f);
}

TEST_F(AttributeFileTest, UnstoredFieldsComeBackAsDefaults)
{
    // anisotropic 0 stores no block, however the block looks.
    FZAttributeEx off = Distinctive(2);
    off.anisotropic = 0;
    const ByteVector bytes = Saved(off);
    EXPECT_EQ(bytes.size(), 98u);
    FZAttributeEx loaded;
    ASSERT_EQ(Load(bytes, loaded), 0);
    EXPECT_TRUE(SameBytes(loaded, ExpectedAfterLoad(off, 10)));

    // Type 4 keeps type and depthVariation only.
    FZAttributeEx straight = Distinctive(4);
    ASSERT_EQ(Load(Saved(straight), loaded), 0);
    EXPECT_EQ(loaded.anisotropy.type, 4);
    EXPECT_EQ(loaded.anisotropy.depthVariation, 0.85f);
    EXPECT_EQ(loaded.anisotropy.amplitude, 0.1f);
    EXPECT_EQ(loaded.anisotropy.angle, 0.0f);
    EXPECT_EQ(loaded.anisotropy.grooveDepth, 0.15f);

    // thinGlass, thickness, wavePeriod and grooveWidth are never stored.
    EXPECT_EQ(loaded.thickness, 4.0f);
    EXPECT_EQ(loaded.thinGlass, 0);
    EXPECT_EQ(loaded.anisotropy.wavePeriod, 30.0f);
    EXPECT_EQ(loaded.anisotropy.grooveWidth, 1.0f);
}

TEST_F(AttributeFileTest, RoundTripKeepsEveryStoredBit)
{
    FZAttributeEx r = Distinctive(2);
    const std::uint32_t oddNan = 0xFFC01234u;
    std::memcpy(&r.diffuse, &oddNan, 4);
    r.emission = -INFINITY;
    r.reflection = -0.0f;
    r.anisotropy.waveCount = INT32_MIN;
    r.anisotropy.axis.z = -32768;
    FZAttributeEx loaded;
    ASSERT_EQ(Load(Saved(r), loaded), 0);
    EXPECT_TRUE(SameBytes(loaded, ExpectedAfterLoad(r, 10)));
    // Extra bytes after the record change nothing.
    ByteVector longer = Saved(r);
    longer.insert(longer.end(), 40, 0x77);
    FZAttributeEx fromLonger;
    ASSERT_EQ(Load(longer, fromLonger), 0);
    EXPECT_TRUE(SameBytes(fromLonger, loaded));
}

TEST_F(AttributeFileTest, RefusedFilesLeaveTheRecordAlone)
{
    const ByteVector good = HandBuiltFile(Distinctive(2), 10);
    const ByteVector legacy = HandBuiltFile(Distinctive(2), 3);
    const struct {
        const char* what;
        ByteVector bytes;
        int code;
    } cases[] = {
        {"empty file", {}, kResultReadFailed},
        {"shorter than the magic text", ByteVector(good.begin(), good.begin() + 21), kResultReadFailed},
        {"ends inside the version", ByteVector(good.begin(), good.begin() + 24), kResultReadFailed},
        {"legacy padding cut short", ByteVector(legacy.begin(), legacy.begin() + 300), kResultReadFailed},
        {"one byte of the magic differs", [&] { ByteVector b = good; b[11] = 'q'; return b; }(), kResultBadFormat},
        {"version 11", FileBytes().Header("0011").Fill(200, 0).bytes, kResultBadVersion},
        {"version 9999", FileBytes().Header("9999").Fill(200, 0).bytes, kResultBadVersion},
        {"letters as version", FileBytes().Header("00a1").Fill(200, 0).bytes, kResultBadFormat},
        {"blank in the version", FileBytes().Header(" 010").Fill(200, 0).bytes, kResultBadFormat},
        {"negative version", FileBytes().Header("-001").Fill(600, 0).bytes, kResultBadFormat},
        {"signed version", FileBytes().Header("+010").Fill(200, 0).bytes, kResultBadFormat},
    };
    for (const auto& c : cases) {
        FZAttributeEx record = Distinctive(5);
        const FZAttributeEx before = record;
        int version = 123;
        EXPECT_EQ(Load(c.bytes, record, &version), c.code) << c.what;
        EXPECT_TRUE(SameBytes(record, before)) << c.what;
        EXPECT_EQ(version, 123) << c.what;
    }
}

TEST_F(AttributeFileTest, FileEndingInsideTheRecordIsRefused)
{
    for (int version : {3, 4, 7, 10}) {
        const ByteVector whole = HandBuiltFile(Distinctive(2), version);
        const std::size_t header = version < 4 ? 512 : 26;
        for (std::size_t size = header; size < whole.size(); ++size) {
            FZAttributeEx record;
            EXPECT_EQ(Load(ByteVector(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)), record),
                      kResultReadFailed)
                << "version " << version << ", " << size << " bytes";
            EXPECT_TRUE(SameBytes(record, FZAttributeEx()));
        }
    }
}

TEST_F(AttributeFileTest, LoadingFromPathsAndMissingFiles)
{
    FZAttributeEx record;
    EXPECT_EQ(LoadAttributeFile((dir / "absent.qva").c_str(), record), kResultOpenFailed);
    EXPECT_EQ(LoadAttributeFile(nullptr, record), kResultOpenFailed);
    EXPECT_EQ(LoadAttributeFile(dir.c_str(), record), kResultReadFailed);  // a directory
    WriteAll(dir / "old.qva", HandBuiltFile(Distinctive(3), 6));
    int version = 0;
    ASSERT_EQ(LoadAttributeFile((dir / "old.qva").c_str(), record, &version), 0);
    EXPECT_EQ(version, 6);
    EXPECT_TRUE(SameBytes(record, ExpectedAfterLoad(Distinctive(3), 6)));
}

TEST_F(AttributeFileTest, SavingReplacesTheFileAndKeepsItsPermissions)
{
    const fs::path target = dir / "material.qva";
    WriteAll(target, ByteVector(300, 0x11));
    ::chmod(target.c_str(), 0640);
    ASSERT_EQ(SaveAttributeFile(target.c_str(), Distinctive(1)), 0);
    EXPECT_EQ(ReadAll(target), HandBuiltFile(Distinctive(1), 10, 0));
    EXPECT_EQ(fs::status(target).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(Entries(), std::vector<std::string>{"material.qva"});

    // Saving through a symbolic link updates the file it names.
    fs::create_symlink(target, dir / "link.qva");
    ASSERT_EQ(SaveAttributeFile((dir / "link.qva").c_str(), Distinctive(3)), 0);
    EXPECT_TRUE(fs::is_symlink(dir / "link.qva"));
    EXPECT_EQ(ReadAll(target).size(), 132u);
}

TEST_F(AttributeFileTest, FailedWriteKeepsTheOldFile)
{
    const fs::path target = dir / "material.qva";
    const ByteVector old = HandBuiltFile(Distinctive(2), 10, 0);
    WriteAll(target, old);
    // With a file size limit of 50 bytes the write fails for real, part way
    // through the record.
    const int status = ExitStatusOfChild([&] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{50, 50};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 100;
        return -SaveAttributeFile(target.c_str(), Distinctive(1));
    });
    EXPECT_EQ(status, -kResultWriteFailed);
    EXPECT_EQ(ReadAll(target), old);
    EXPECT_EQ(Entries(), std::vector<std::string>{"material.qva"});
}

TEST_F(AttributeFileTest, UnwritableDirectoryKeepsTheOldFile)
{
    const fs::path target = dir / "material.qva";
    const ByteVector old = HandBuiltFile(Distinctive(4), 10, 0);
    WriteAll(target, old);
    fs::permissions(dir, fs::perms::all & ~(fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write));
    // Root writes anywhere, so the child gives up root before it tries.
    const int status = ExitStatusOfChild([&] {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            return 100;
        return -SaveAttributeFile(target.c_str(), Distinctive(1));
    });
    EXPECT_EQ(status, -kResultOpenFailed);
    EXPECT_EQ(ReadAll(target), old);
    EXPECT_EQ(Entries(), std::vector<std::string>{"material.qva"});

    EXPECT_EQ(SaveAttributeFile((dir / "no-such-dir" / "m.qva").c_str(), Distinctive(1)), kResultOpenFailed);
    EXPECT_EQ(SaveAttributeFile("", Distinctive(1)), kResultOpenFailed);
}
