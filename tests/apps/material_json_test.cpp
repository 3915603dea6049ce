// The JSON form of a material: what editors write, and refusals that name
// the key or the place. Exact round trips are checked through tamerisk-qva.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <string>

#include "attribute_bytes.h"
#include "json/material_json.h"
#include "material/attribute_file.h"
#include "material/result_codes.h"
#include "tool_run.h"

namespace {

// The record read from text, which must give code, and the error text.
FZAttributeEx Read(const std::string& text, FZResult code, std::string& error)
{
    FZAttributeEx record;
    QString message;
    EXPECT_EQ(MaterialFromJson(QByteArray::fromStdString(text), record, message), code) << text.substr(0, 40);
    error = message.toStdString();
    return record;
}

}  // namespace

TEST(MaterialJson, ReadsWhatEditorsWrite)
{
    std::string error;
    // A byte-order mark is skipped; "version" is ignored.
    EXPECT_EQ(Read("\xEF\xBB\xBF{\"version\": 3, \"diffuse\": 0.5}", FZResult::Ok, error).diffuse, 0.5f) << error;
    // Numbers too small for a float round as a float cast does.
    const FZAttributeEx tiny =
        Read(R"({"diffuse": 1e-50, "emission": -1e-50, "ambient": 1e-45, "reflection": 8e-46})", FZResult::Ok, error);
    EXPECT_EQ(tiny.diffuse, 0.0f);
    EXPECT_TRUE(std::signbit(tiny.emission) && tiny.emission == 0.0f);
    EXPECT_EQ(tiny.ambient, static_cast<float>(1e-45));
    EXPECT_EQ(tiny.reflection, static_cast<float>(8e-46));
}

TEST(MaterialJson, RefusalsNameTheKeyOrThePlace)
{
    const std::string integer = " must be an integer from -2147483648 to 2147483647";
    const struct {
        std::string json;
        FZResult code;
        std::string error;
    } cases[] = {
        {R"({"anisotropy": {"type": 2, "wave": 1}})", FZResult::BadParameter, "key \"anisotropy.wave\" is unknown"},
        {R"({"anisotropy": {"waveCount": 4.5}})", FZResult::BadParameter, "key \"anisotropy.waveCount\"" + integer},
        {R"({"anisotropic": 2147483648})", FZResult::BadParameter, "key \"anisotropic\"" + integer},
        {R"({"color": [1, 2, 256]})", FZResult::BadParameter, "key \"color\" must be an array of 3 integers from 0 to 255"},
        {R"({"anisotropy": {"axis": [0, 0, 32768]}})", FZResult::BadParameter,
         "key \"anisotropy.axis\" must be an array of 3 integers from -32768 to 32767"},
        {R"({"emission": 3.4028236e38})", FZResult::BadParameter, "key \"emission\" is out of the range of a 32-bit float"},
        {R"({"emission": -1e400})", FZResult::BadParameter, "key \"emission\" is out of the range of a 32-bit float"},
        {R"({"diffuse": 1, "diffuse": 2})", FZResult::BadParameter, "key \"diffuse\" is given more than once"},
        {"{\"diffuse\": 0.5,\n  \"ambient\" 1}", FZResult::BadFormat, "JSON line 2, column 13: expected ':'"},
        {"\n  [1, 2]", FZResult::BadFormat, "JSON line 2, column 3: the top level must be an object, not an array"},
        {"{} x", FZResult::BadFormat, "JSON line 1, column 4: unexpected text after the value"},
        {"{\"a\": \"\\ud800\"}", FZResult::BadFormat, "JSON line 1, column 14: unpaired surrogate"},
        {std::string(100000, '['), FZResult::BadFormat, "JSON line 1, column 66: nested too deeply"},
    };
    for (const auto& c : cases) {
        std::string error;
        EXPECT_TRUE(SameBytes(Read(c.json, c.code, error), FZAttributeEx()));
        EXPECT_EQ(error, c.error) << c.json.substr(0, 40);
    }
}

TEST(MaterialJson, LoadMaterialTakesEitherFormAndNamesTheFile)
{
    QTemporaryDir dir;
    FZAttributeEx stored;
    stored.thickness = 9.0f;  // not kept by attribute files, kept by JSON
    ASSERT_EQ(SaveAttributeFile(QFile::encodeName(dir.filePath("m.qva")).constData(), stored), FZResult::Ok);
    ASSERT_TRUE(WriteBytes(dir.filePath("m.json"), "\n  " + MaterialToJson(stored, 4)));
    FZAttributeEx record;
    QString message;
    ASSERT_EQ(LoadMaterial(dir.filePath("m.qva"), record, message), FZResult::Ok) << message.toStdString();
    EXPECT_EQ(record.thickness, 4.0f);
    ASSERT_EQ(LoadMaterial(dir.filePath("m.json"), record, message), FZResult::Ok) << message.toStdString();
    EXPECT_TRUE(SameBytes(record, stored));
    ASSERT_TRUE(WriteBytes(dir.filePath("big.json"), "{\"diffuse\": 0.5" + QByteArray(1 << 20, ' ') + "}"));
    EXPECT_EQ(LoadMaterial(dir.filePath("big.json"), record, message), FZResult::TooLarge);
    EXPECT_EQ(ParseMaterial("GIF89a" + QByteArray(40, 0), record, message, nullptr, "x.gif"), FZResult::BadFormat);
    EXPECT_EQ(message, "x.gif: unsupported data format");
    EXPECT_TRUE(SameBytes(record, stored));
}
