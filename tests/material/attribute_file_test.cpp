// Attribute files against bytes assembled from the version table, and every
// refusal. How the file is replaced on disk is file_replace_test's concern.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "scratch_dir.h"
#include "attribute_bytes.h"
#include "material/attribute_file.h"
#include "material/result_codes.h"

namespace fs = std::filesystem;

namespace {

FZResult Load(const ByteVector& bytes, FZAttributeEx& record, int* version = nullptr)
{
    return LoadAttributeBytes(bytes.data(), bytes.size(), record, version);
}

class AttributeFileTest : public ::testing::Test {
protected:
    ByteVector Saved(const FZAttributeEx& r)
    {
        EXPECT_EQ(SaveAttributeFile(target.c_str(), r), FZResult::Ok);
        const std::string bytes = ReadAll(target);
        return ByteVector(bytes.begin(), bytes.end());
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
