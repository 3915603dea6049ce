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
#include "attribute_bytes.h"

namespace fs = std::filesystem;

namespace {

bool SameBytes(const FZAttributeEx& a, const FZAttributeEx& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

FZResult Load(const ByteVector& bytes, FZAttributeEx& record, int* version = nullptr)
{
    return LoadAttributeBytes(bytes.data(), bytes.size(), record, version);
}

ByteVector ReadAll(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return ByteVector(std::istreambuf_iterator<char>(in), {});
}

void WriteAll(const fs::path& p, const ByteVector& bytes)
{
    std::ofstream out(p, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

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
    ByteVector Saved(const FZAttributeEx& r)
    {
        const fs::path p = dir / "saved.qva";
        EXPECT_EQ(SaveAttributeFile(p.c_str(), r), FZResult::Ok);
        return ReadAll(p);
    }
    // Checks that target still holds old and nothing else was left behind.
    void ExpectOnly(const fs::path& target, const ByteVector& old)
    {
        EXPECT_EQ(ReadAll(target), old);
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(dir))
            names.push_back(e.path().filename().string());
        EXPECT_EQ(names, std::vector<std::string>{target.filename().string()});
    }

    fs::path dir;
};

}  // namespace

TEST(ResultCodes, MessagesOfTheTable)
{
    EXPECT_STREQ(ResultMessage(FZResult::Error), "何らかのｴﾗｰが起りました。");
    EXPECT_STREQ(ResultMessage(FZResult::OpenFailed), "ﾌｧｲﾙを開けませんでした。");
    EXPECT_STREQ(ResultMessage(FZResult::ReadFailed), "ﾌｧｲﾙからﾃﾞｰﾀを読み込めませんでした。");
    EXPECT_STREQ(ResultMessage(FZResult::BadVersion), "ﾊﾞｰｼﾞｮﾝの異なるﾌｧｲﾙです。");
    EXPECT_STREQ(ResultMessage(FZResult::NoData), "ﾃﾞｰﾀがありません。");
    for (int code : {0, -12, 1})
        EXPECT_EQ(ResultMessage(static_cast<FZResult>(code)), nullptr) << code;
}

TEST_F(AttributeFileTest, WriterSizesFollowTheGrooveType)
{
    const ByteVector empty = Saved(FZAttributeEx());
    ASSERT_EQ(empty.size(), 98u);
    EXPECT_EQ(std::string(empty.begin(), empty.begin() + 26), "<Quorvantel Attribute>0010");
    EXPECT_EQ(empty, HandBuiltFile(FZAttributeEx(), 10, 0));

    const std::pair<std::int32_t, std::size_t> sizes[] = {{1, 128}, {2, 136}, {3, 132}, {4, 106},
                                                          {5, 106}, {0, 106}, {-7, 106}};
    for (const auto& [type, size] : sizes) {
        SCOPED_TRACE(testing::Message() << "type " << type);
        const FZAttributeEx r = DistinctiveMaterial(type);
        const ByteVector bytes = Saved(r);
        EXPECT_EQ(bytes.size(), size);
        EXPECT_EQ(bytes, HandBuiltFile(r, 10, 0));  // padding written as zeros
    }
    FZAttributeEx negativeFlag = DistinctiveMaterial(1);
    negativeFlag.anisotropic = -1;  // any non-zero value switches the block on
    EXPECT_EQ(Saved(negativeFlag).size(), 128u);
    FZAttributeEx off = DistinctiveMaterial(2);
    off.anisotropic = 0;  // no block, however the block looks
    EXPECT_EQ(Saved(off).size(), 98u);
}

TEST_F(AttributeFileTest, EncodingIsLittleEndianWhateverTheHost)
{
    FZAttributeEx r;
    r.diffuse = 1.5f;  // 0x3FC00000
    r.anisotropic = 0x01020304;
    r.anisotropy.type = 1;
    r.anisotropy.axis.x = -2;  // 0xFFFE
    r.padding[0] = 0xAB;       // padding never reaches the file
    r.padding[1] = 0xCD;
    FZAttributeEx wavy = DistinctiveMaterial(2);
    wavy.anisotropy.waveCount = 9;
    wavy.anisotropy.amplitude = 0.25f;
    const ByteVector b = Saved(r);
    const ByteVector w = Saved(wavy);
    ASSERT_EQ(b.size(), 128u);
    ASSERT_EQ(w.size(), 136u);
    const struct {
        const ByteVector& file;
        std::size_t at;
        ByteVector bytes;
    } cases[] = {
        {b, 26, {0x00, 0x00, 0xC0, 0x3F}},  // diffuse
        {b, 56, {0, 0}},                    // padding
        {b, 62, {0x04, 0x03, 0x02, 0x01}},  // anisotropic
        {b, 86, {0xFE, 0xFF}},              // axis.x after type, depth and centre
        {w, 92, {9, 0, 0, 0}},              // waveCount comes before amplitude
        {w, 96, {0x00, 0x00, 0x80, 0x3E}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ByteVector(c.file.begin() + c.at, c.file.begin() + c.at + c.bytes.size()), c.bytes)
            << "at " << c.at;
}

TEST_F(AttributeFileTest, EveryVersionReadsWhatItHolds)
{
    for (std::int32_t type : {1, 2, 3, 4}) {
        const FZAttributeEx r = DistinctiveMaterial(type);
        for (int version = 0; version <= 10; ++version) {
            SCOPED_TRACE(testing::Message() << "version " << version << " type " << type);
            FZAttributeEx loaded = DistinctiveMaterial(5);
            int fileVersion = -1;
            ASSERT_EQ(Load(HandBuiltFile(r, version), loaded, &fileVersion), FZResult::Ok);
            EXPECT_EQ(fileVersion, version);
            EXPECT_TRUE(SameBytes(loaded, ExpectedAfterLoad(r, version)));
        }
    }
    // Concrete values, so that the expectation above cannot drift with the
    // builder: old versions skip a 512-byte header; version 4 starts at 26.
    const ByteVector v3 = HandBuiltFile(DistinctiveMaterial(2), 3);
    ASSERT_EQ(v3.size(), 512u + 36u);
    FZAttributeEx loaded;
    ASSERT_EQ(Load(v3, loaded), FZResult::Ok);
    EXPECT_EQ(loaded.diffuse, 0.25f);
    EXPECT_EQ(loaded.reflection, 0.625f);
    EXPECT_EQ(loaded.anisotropic, 0);
    EXPECT_EQ(loaded.stripeSpacing, 1000.0f);
    EXPECT_EQ(loaded.smoothWidth, 2.0f);
    ASSERT_EQ(Load(HandBuiltFile(DistinctiveMaterial(2), 4), loaded), FZResult::Ok);
    EXPECT_EQ(loaded.anisotropy.waveCount, 7);
    EXPECT_EQ(loaded.anisotropy.depthVariation, 0.0f);
    EXPECT_EQ(loaded.emission, 0.0f);

    // Version 9 reads like version 8.
    const FZAttributeEx spiral = DistinctiveMaterial(3);
    ByteVector v9 = HandBuiltFile(spiral, 8);
    v9[25] = '9';
    FZAttributeEx from8, from9;
    ASSERT_EQ(Load(HandBuiltFile(spiral, 8), from8), FZResult::Ok);
    ASSERT_EQ(Load(v9, from9), FZResult::Ok);
    EXPECT_TRUE(SameBytes(from8, from9));
    EXPECT_EQ(from9.attenuation, 0.35f);
    EXPECT_EQ(from9.anisotropy.depthVariation, 0.0f);
}

TEST_F(AttributeFileTest, UnstoredFieldsComeBackAsDefaults)
{
    FZAttributeEx loaded;
    // Type 4 keeps type and depthVariation only.
    ASSERT_EQ(Load(Saved(DistinctiveMaterial(4)), loaded), FZResult::Ok);
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
    FZAttributeEx r = DistinctiveMaterial(2);
    const std::uint32_t oddNan = 0xFFC01234u;
    std::memcpy(&r.diffuse, &oddNan, 4);
    r.emission = -INFINITY;
    r.reflection = -0.0f;
    r.anisotropy.waveCount = INT32_MIN;
    r.anisotropy.axis.z = -32768;
    FZAttributeEx loaded;
    ASSERT_EQ(Load(Saved(r), loaded), FZResult::Ok);
    EXPECT_TRUE(SameBytes(loaded, ExpectedAfterLoad(r, 10)));
    // Extra bytes after the record change nothing.
    ByteVector longer = Saved(r);
    longer.insert(longer.end(), 40, 0x77);
    FZAttributeEx fromLonger;
    ASSERT_EQ(Load(longer, fromLonger), FZResult::Ok);
    EXPECT_TRUE(SameBytes(fromLonger, loaded));
}

TEST_F(AttributeFileTest, RefusedFilesLeaveTheRecordAlone)
{
    const ByteVector good = HandBuiltFile(DistinctiveMaterial(2), 10);
    const ByteVector legacy = HandBuiltFile(DistinctiveMaterial(2), 3);
    ByteVector badMagic = good;
    badMagic[11] = 'q';
    const struct {
        const char* what;
        ByteVector bytes;
        FZResult code;
    } cases[] = {
        {"empty file", {}, FZResult::ReadFailed},
        {"shorter than the magic text", ByteVector(good.begin(), good.begin() + 21), FZResult::ReadFailed},
        {"ends inside the version", ByteVector(good.begin(), good.begin() + 24), FZResult::ReadFailed},
        {"legacy padding cut short", ByteVector(legacy.begin(), legacy.begin() + 300), FZResult::ReadFailed},
        {"one byte of the magic differs", badMagic, FZResult::BadFormat},
        {"version 11", QvaHeader("0011", 200), FZResult::BadVersion},
        {"version 9999", QvaHeader("9999", 200), FZResult::BadVersion},
        {"letters as version", QvaHeader("00a1", 200), FZResult::BadFormat},
        {"blank in the version", QvaHeader(" 010", 200), FZResult::BadFormat},
        {"negative version", QvaHeader("-001", 600), FZResult::BadFormat},
        {"signed version", QvaHeader("+010", 200), FZResult::BadFormat},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        FZAttributeEx record = DistinctiveMaterial(5);
        int version = 123;
        EXPECT_EQ(Load(c.bytes, record, &version), c.code);
        EXPECT_TRUE(SameBytes(record, DistinctiveMaterial(5)));
        EXPECT_EQ(version, 123);
    }
    // Every cut inside the record.
    for (int v : {3, 4, 7, 10}) {
        const ByteVector whole = HandBuiltFile(DistinctiveMaterial(2), v);
        for (std::size_t size = v < 4 ? 512 : 26; size < whole.size(); ++size) {
            SCOPED_TRACE(testing::Message() << "version " << v << ", " << size << " bytes");
            FZAttributeEx record;
            EXPECT_EQ(Load(ByteVector(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)), record),
                      FZResult::ReadFailed);
            EXPECT_TRUE(SameBytes(record, FZAttributeEx()));
        }
    }
}

TEST_F(AttributeFileTest, LoadingFromPathsAndMissingFiles)
{
    FZAttributeEx record;
    EXPECT_EQ(LoadAttributeFile((dir / "absent.qva").c_str(), record), FZResult::OpenFailed);
    EXPECT_EQ(LoadAttributeFile(nullptr, record), FZResult::OpenFailed);
    EXPECT_EQ(LoadAttributeFile(dir.c_str(), record), FZResult::ReadFailed);  // a directory
    WriteAll(dir / "old.qva", HandBuiltFile(DistinctiveMaterial(3), 6));
    int version = 0;
    ASSERT_EQ(LoadAttributeFile((dir / "old.qva").c_str(), record, &version), FZResult::Ok);
    EXPECT_EQ(version, 6);
    EXPECT_TRUE(SameBytes(record, ExpectedAfterLoad(DistinctiveMaterial(3), 6)));
}

TEST_F(AttributeFileTest, SavingReplacesTheFileAndKeepsItsPermissions)
{
    const fs::path target = dir / "material.qva";
    WriteAll(target, ByteVector(300, 0x11));
    ::chmod(target.c_str(), 0640);
    ASSERT_EQ(SaveAttributeFile(target.c_str(), DistinctiveMaterial(1)), FZResult::Ok);
    ExpectOnly(target, HandBuiltFile(DistinctiveMaterial(1), 10, 0));
    EXPECT_EQ(fs::status(target).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

    // Saving through a symbolic link updates the file it names.
    fs::create_symlink(target, dir / "link.qva");
    ASSERT_EQ(SaveAttributeFile((dir / "link.qva").c_str(), DistinctiveMaterial(3)), FZResult::Ok);
    EXPECT_TRUE(fs::is_symlink(dir / "link.qva"));
    EXPECT_EQ(ReadAll(target).size(), 132u);
}

TEST_F(AttributeFileTest, FailedSavesKeepTheOldFile)
{
    const fs::path target = dir / "material.qva";
    const ByteVector old = HandBuiltFile(DistinctiveMaterial(2), 10, 0);
    WriteAll(target, old);
    // With a file size limit of 50 bytes the write fails for real, part way
    // through the record.
    EXPECT_EQ(ExitStatusOfChild([&] {
                  ::signal(SIGXFSZ, SIG_IGN);
                  const rlimit limit{50, 50};
                  if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
                      return 100;
                  return -ResultCode(SaveAttributeFile(target.c_str(), DistinctiveMaterial(1)));
              }),
              -ResultCode(FZResult::WriteFailed));
    ExpectOnly(target, old);

    // An unwritable directory; root writes anywhere, so the child gives up
    // root before it tries.
    fs::permissions(dir, fs::perms::all & ~(fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write));
    EXPECT_EQ(ExitStatusOfChild([&] {
                  if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
                      return 100;
                  return -ResultCode(SaveAttributeFile(target.c_str(), DistinctiveMaterial(1)));
              }),
              -ResultCode(FZResult::OpenFailed));
    ExpectOnly(target, old);

    EXPECT_EQ(SaveAttributeFile((dir / "no-such-dir" / "m.qva").c_str(), DistinctiveMaterial(1)), FZResult::OpenFailed);
    EXPECT_EQ(SaveAttributeFile("", DistinctiveMaterial(1)), FZResult::OpenFailed);
}
