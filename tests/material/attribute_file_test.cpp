// Attribute files against bytes assembled from the version table, every
// refusal, and replacing files on a full disk and over a protected file.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "attribute_bytes.h"
#include "material/attribute_file.h"
#include "material/file_replace.h"
#include "material/result_codes.h"

namespace fs = std::filesystem;

namespace {

bool SameBytes(const FZAttributeEx& a, const FZAttributeEx& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

FZResult Load(const ByteVector& bytes, FZAttributeEx& record, int* version = nullptr)
{
    return LoadAttributeBytes(bytes.data(), bytes.size(), record, version);
}

ByteVector ReadAll(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return ByteVector(std::istreambuf_iterator<char>(in), {});
}

// Runs body in a forked child, so that a limit set there stays there; its
// exit status, or -1.
int InChild(const std::function<int()>& body)
{
    const pid_t pid = ::fork();
    if (pid == 0)
        ::_exit(body());
    int status = 0;
    return pid > 0 && ::waitpid(pid, &status, 0) == pid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class AttributeFileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "tamerisk-qva-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        dir = pattern;
        target = dir / "m.qva";
    }
    void TearDown() override { fs::remove_all(dir); }
    ByteVector Saved(const FZAttributeEx& r)
    {
        EXPECT_EQ(SaveAttributeFile(target.c_str(), r), FZResult::Ok);
        return ReadAll(target);
    }
    // target holds old, and nothing else is left in the directory.
    void ExpectOnly(const ByteVector& old)
    {
        EXPECT_EQ(ReadAll(target), old);
        EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
    }

    fs::path dir;
    fs::path target;
};

}  // namespace

TEST(ResultCodes, MessagesOfTheTable)
{
    EXPECT_STREQ(ResultMessage(FZResult::Error), "何らかのｴﾗｰが起りました。");
    EXPECT_STREQ(ResultMessage(FZResult::WriteFailed), "ﾌｧｲﾙにﾃﾞｰﾀを書き込めませんでした。");
    EXPECT_STREQ(ResultMessage(FZResult::NoData), "ﾃﾞｰﾀがありません。");
    for (int code : {0, -12, 1})
        EXPECT_EQ(ResultMessage(static_cast<FZResult>(code)), nullptr) << code;
}

TEST_F(AttributeFileTest, WriterMatchesTheHandBuiltBytesOfEveryGrooveType)
{
    const std::pair<std::int32_t, std::size_t> sizes[] = {{1, 128}, {2, 136}, {3, 132}, {4, 106}, {-7, 106}};
    for (const auto& [type, size] : sizes) {
        FZAttributeEx r = DistinctiveMaterial(type);
        r.padding[0] = 0xAB;  // padding is written as zeros
        EXPECT_EQ(Saved(r).size(), size) << type;
        EXPECT_EQ(Saved(r), HandBuiltFile(r, 10, 0)) << type;
    }
    FZAttributeEx off = DistinctiveMaterial(2);
    off.anisotropic = 0;  // no block, however the block looks
    EXPECT_EQ(Saved(off), HandBuiltFile(off, 10, 0));
    EXPECT_EQ(Saved(off).size(), 98u);
}

TEST_F(AttributeFileTest, EveryVersionReadsWhatItHoldsAndNoMore)
{
    for (std::int32_t type : {1, 2, 3, 4}) {
        for (int version = 0; version <= 10; ++version) {
            SCOPED_TRACE(testing::Message() << "version " << version << " type " << type);
            FZAttributeEx loaded = DistinctiveMaterial(5);
            int fileVersion = -1;
            ASSERT_EQ(Load(HandBuiltFile(DistinctiveMaterial(type), version), loaded, &fileVersion), FZResult::Ok);
            EXPECT_EQ(fileVersion, version);
            EXPECT_TRUE(SameBytes(loaded, ExpectedAfterLoad(DistinctiveMaterial(type), version)));
        }
    }
    // Concrete values, so that the builder cannot drift with the reader: old
    // versions skip a 512-byte header, and unstored fields load as defaults.
    FZAttributeEx loaded;
    ASSERT_EQ(Load(HandBuiltFile(DistinctiveMaterial(2), 3), loaded), FZResult::Ok);
    EXPECT_EQ(loaded.reflection, 0.625f);
    EXPECT_EQ(loaded.anisotropic, 0);
    EXPECT_EQ(loaded.thickness, 4.0f);
    ByteVector v9 = HandBuiltFile(DistinctiveMaterial(3), 8);
    v9[25] = '9';  // version 9 reads like version 8
    ASSERT_EQ(Load(v9, loaded), FZResult::Ok);
    EXPECT_EQ(loaded.attenuation, 0.35f);
}

TEST_F(AttributeFileTest, RoundTripKeepsEveryStoredBit)
{
    FZAttributeEx r = DistinctiveMaterial(2);
    const std::uint32_t oddNan = 0xFFC01234u;
    std::memcpy(&r.diffuse, &oddNan, 4);
    r.emission = -INFINITY;
    r.anisotropy.waveCount = INT32_MIN;
    ByteVector bytes = Saved(r);
    bytes.insert(bytes.end(), 40, 0x77);  // bytes after the record change nothing
    FZAttributeEx loaded;
    ASSERT_EQ(Load(bytes, loaded), FZResult::Ok);
    EXPECT_TRUE(SameBytes(loaded, ExpectedAfterLoad(r, 10)));
}

TEST_F(AttributeFileTest, RefusedFilesLeaveTheRecordAlone)
{
    const ByteVector good = HandBuiltFile(DistinctiveMaterial(2), 10);
    ByteVector badMagic = good;
    badMagic[11] = 'q';
    const struct {
        ByteVector bytes;
        FZResult code;
    } cases[] = {
        {{}, FZResult::ReadFailed},
        {ByteVector(good.begin(), good.begin() + 24), FZResult::ReadFailed},  // inside the version
        {QvaHeader("0003", 200), FZResult::ReadFailed},                         // legacy padding cut short
        {badMagic, FZResult::BadFormat},
        {QvaHeader("0011", 200), FZResult::BadVersion},
        {QvaHeader("00a1", 200), FZResult::BadFormat},
        {QvaHeader("-001", 600), FZResult::BadFormat},
    };
    for (const auto& c : cases) {
        FZAttributeEx record = DistinctiveMaterial(5);
        int version = 123;
        EXPECT_EQ(Load(c.bytes, record, &version), c.code) << c.bytes.size();
        EXPECT_TRUE(SameBytes(record, DistinctiveMaterial(5)));
        EXPECT_EQ(version, 123);
    }
    for (int v : {3, 4, 7, 10}) {  // every cut inside the record
        const ByteVector whole = HandBuiltFile(DistinctiveMaterial(2), v);
        for (std::size_t size = v < 4 ? 512 : 26; size < whole.size(); ++size) {
            FZAttributeEx record;
            EXPECT_EQ(Load(ByteVector(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)), record),
                      FZResult::ReadFailed) << "version " << v << ", " << size << " bytes";
            EXPECT_TRUE(SameBytes(record, FZAttributeEx()));
        }
    }
    FZAttributeEx record;
    EXPECT_EQ(LoadAttributeFile((dir / "absent.qva").c_str(), record), FZResult::OpenFailed);
    EXPECT_EQ(LoadAttributeFile(dir.c_str(), record), FZResult::ReadFailed);  // a directory
}

TEST_F(AttributeFileTest, ReplacingKeepsPermissionsAndFollowsLinks)
{
    ASSERT_EQ(ReplaceFile(target.c_str(), "old", 3).code, FZResult::Ok);
    ::chmod(target.c_str(), 0640);
    ASSERT_EQ(SaveAttributeFile(target.c_str(), DistinctiveMaterial(1)), FZResult::Ok);
    ExpectOnly(HandBuiltFile(DistinctiveMaterial(1), 10, 0));
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
    fs::create_symlink(target, dir / "link.qva");
    ASSERT_EQ(SaveAttributeFile((dir / "link.qva").c_str(), DistinctiveMaterial(3)), FZResult::Ok);
    EXPECT_TRUE(fs::is_symlink(dir / "link.qva"));
    EXPECT_EQ(ReadAll(target).size(), 132u);
}

TEST_F(AttributeFileTest, FailedWritesKeepTheOldFileAndSayWhy)
{
    const ByteVector old = HandBuiltFile(DistinctiveMaterial(2), 10, 0);
    ASSERT_EQ(ReplaceFile(target.c_str(), old.data(), old.size()).code, FZResult::Ok);
    // A file size limit fails the write part way through, as a full disk does.
    EXPECT_EQ(InChild([&] {
                  ::signal(SIGXFSZ, SIG_IGN);
                  const rlimit limit{50, 50};
                  std::string reason;
                  const FZResult rc = ::setrlimit(RLIMIT_FSIZE, &limit) == 0
                                          ? SaveAttributeFile(target.c_str(), DistinctiveMaterial(1), &reason)
                                          : FZResult::Ok;
                  return rc == FZResult::WriteFailed && reason == std::strerror(EFBIG) ? 0 : 1;
              }),
              0);
    ExpectOnly(old);

    // A write-protected file is refused, even for root, who could write it.
    ::chmod(target.c_str(), 0444);
    const FileWriteResult locked = ReplaceFile(target.c_str(), "x", 1);
    EXPECT_EQ(locked.code, FZResult::OpenFailed);
    EXPECT_EQ(locked.reason, std::string(std::strerror(EACCES)) + " (the file is write-protected)");
    ExpectOnly(old);

    const FileWriteResult noDir = ReplaceFile((dir / "no-such-dir" / "m.qva").c_str(), "x", 1);
    EXPECT_EQ(noDir.code, FZResult::OpenFailed);
    EXPECT_EQ(noDir.reason, std::strerror(ENOENT));
    EXPECT_EQ(ReplaceFile(dir.c_str(), "x", 1).code, FZResult::OpenFailed);  // a directory
}
