// Attribute files against bytes assembled from the version table, every
// refusal, and replacing files on a full disk and over a protected file.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "scratch_dir.h"
#include "attribute_bytes.h"
#include "material/attribute_file.h"
#include "material/file_replace.h"
#include "material/result_codes.h"

namespace fs = std::filesystem;

namespace {

FZResult Load(const ByteVector& bytes, FZAttributeEx& record, int* version = nullptr)
{
    return LoadAttributeBytes(bytes.data(), bytes.size(), record, version);
}

ByteVector ReadAll(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return ByteVector(std::istreambuf_iterator<char>(in), {});
}

class AttributeFileTest : public ::testing::Test {
protected:
    ByteVector Saved(const FZAttributeEx& r)
    {
        EXPECT_EQ(SaveAttributeFile(target.c_str(), r), FZResult::Ok);
        return ReadAll(target);
    }
    void ExpectOnly(const ByteVector& old)  // and nothing else is left beside the target
    {
        EXPECT_EQ(ReadAll(target), old);
        EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
    }

    ScratchDirectory scratch{"tamerisk-qva"};
    const fs::path dir = scratch.path;
    const fs::path target = dir / "m.qva";
};

}  // namespace

TEST_F(AttributeFileTest, WriterMatchesTheHandBuiltBytesOfEveryGrooveType)
{
    const std::pair<std::int32_t, std::size_t> sizes[] = {{1, 128}, {2, 136}, {3, 132}, {4, 106}, {-7, 106}};
    for (const auto& [type, size] : sizes) {
        FZAttributeEx r = DistinctiveMaterial(type);
        r.padding[0] = 0xAB;  // padding is written as zeros
        EXPECT_EQ(Saved(r).size(), size) << type;
        EXPECT_EQ(Saved(r), HandBuiltFile(r, 10, 0)) << type;
    }
}

TEST_F(AttributeFileTest, EveryVersionReadsWhatItHoldsAndNoMore)
{
    for (std::int32_t type : {1, 2, 3, 4}) {
        for (int version = 0; version <= 10; ++version) {
            FZAttributeEx loaded = DistinctiveMaterial(5);
            int fileVersion = -1;
            ASSERT_EQ(Load(HandBuiltFile(DistinctiveMaterial(type), version), loaded, &fileVersion), FZResult::Ok);
            EXPECT_EQ(fileVersion, version);
            EXPECT_TRUE(SameBytes(loaded, ExpectedAfterLoad(DistinctiveMaterial(type), version)))
                << "version " << version << " type " << type;
        }
    }
    ByteVector v9 = HandBuiltFile(DistinctiveMaterial(3), 8);
    v9[25] = '9';  // version 9 reads like version 8
    FZAttributeEx loaded;
    ASSERT_EQ(Load(v9, loaded), FZResult::Ok);
    EXPECT_EQ(loaded.attenuation, 0.35f);
}

TEST_F(AttributeFileTest, RefusedFilesLeaveTheRecordAlone)
{
    const ByteVector good = HandBuiltFile(DistinctiveMaterial(2), 10);
    ByteVector badMagic = good;
    badMagic[11] = 'q';
    const std::pair<ByteVector, FZResult> cases[] = {
        {{}, FZResult::ReadFailed},
        {ByteVector(good.begin(), good.begin() + 24), FZResult::ReadFailed},  // inside the version
        {QvaHeader("0003", 200), FZResult::ReadFailed},                         // legacy padding cut short
        {badMagic, FZResult::BadFormat},
        {QvaHeader("0011", 200), FZResult::BadVersion},
        {QvaHeader("00a1", 200), FZResult::BadFormat},
        {QvaHeader("-001", 600), FZResult::BadFormat},
    };
    for (const auto& [bytes, code] : cases) {
        FZAttributeEx record = DistinctiveMaterial(5);
        EXPECT_EQ(Load(bytes, record), code) << bytes.size();
        EXPECT_TRUE(SameBytes(record, DistinctiveMaterial(5)));
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
}

TEST_F(AttributeFileTest, ReplacingKeepsPermissionsAndFollowsLinks)
{
    ASSERT_EQ(ReplaceFile(target.c_str(), "old", 3).code, FZResult::Ok);
    ::chmod(target.c_str(), 0640);
    ASSERT_EQ(SaveAttributeFile(target.c_str(), DistinctiveMaterial(1)), FZResult::Ok);
    ExpectOnly(HandBuiltFile(DistinctiveMaterial(1), 10, 0));
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
    fs::create_symlink(target, dir / "link.qva");  // saving through a link updates the file
    ASSERT_EQ(SaveAttributeFile((dir / "link.qva").c_str(), DistinctiveMaterial(3)), FZResult::Ok);
    EXPECT_EQ(ReadAll(target).size(), 132u);
}

TEST_F(AttributeFileTest, FailedWritesKeepTheOldFileAndSayWhy)
{
    const ByteVector old = HandBuiltFile(DistinctiveMaterial(2), 10, 0);
    ASSERT_EQ(ReplaceFile(target.c_str(), old.data(), old.size()).code, FZResult::Ok);
    // A file size limit, set in a child process, fails the write part way
    // through as a full disk does.
    const pid_t child = ::fork();
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{50, 50};
        std::string reason;
        const FZResult rc = ::setrlimit(RLIMIT_FSIZE, &limit) == 0 ? SaveAttributeFile(target.c_str(), {}, &reason) : FZResult::Ok;
        ::_exit(rc == FZResult::WriteFailed && reason == std::strerror(EFBIG) ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    ExpectOnly(old);

    // A write-protected file is refused, even for root, who could write it.
    ::chmod(target.c_str(), 0444);
    const FileWriteResult locked = ReplaceFile(target.c_str(), "x", 1);
    EXPECT_EQ(locked.code, FZResult::OpenFailed);
    EXPECT_EQ(locked.reason, std::string(std::strerror(EACCES)) + " (the file is write-protected)");
    ExpectOnly(old);

    EXPECT_EQ(ReplaceFile((dir / "no-dir" / "m.qva").c_str(), "x", 1).reason, std::strerror(ENOENT));
    EXPECT_EQ(ReplaceFile(dir.c_str(), "x", 1).code, FZResult::OpenFailed);  // a directory
}
