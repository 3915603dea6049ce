// The demo host's own reader of attribute files agrees with the library's.
#include <gtest/gtest.h>

#include <cstring>
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

TEST(HostAppReader, AgreesWithTheLibraryOnEveryVersion)
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
    FZAttributeEx material;  // a file cut short is refused and changes nothing
    const ByteVector v10 = HandBuiltFile(DistinctiveMaterial(2), 10);
    EXPECT_TRUE(ReadQvaFile(Written(dir, Bytes(v10).chopped(1)), material).contains("ends inside the material"));
    EXPECT_EQ(material.diffuse, FZAttributeEx().diffuse);
}
