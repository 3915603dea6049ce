// The JSON form of a material: exact float round trips, key order, and
// refusals that name the key or the place.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cstring>
#include <random>
#include <string>

#include "common/json_value.h"
#include "common/material_json.h"
#include "material/attribute_file.h"
#include "material/result_codes.h"
#include "tool_run.h"

namespace {

bool SameBytes(const FZAttributeEx& a, const FZAttributeEx& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// A record of random bytes (padding aside, which JSON does not carry): every
// float bit pattern, NaNs and infinities included, can turn up.
FZAttributeEx RandomRecord(std::mt19937& rng)
{
    FZAttributeEx r;
    auto* bytes = reinterpret_cast<unsigned char*>(&r);
    for (std::size_t i = 0; i < sizeof r; ++i)
        bytes[i] = static_cast<unsigned char>(rng());
    r.padding[0] = r.padding[1] = r.anisotropy.padding[0] = r.anisotropy.padding[1] = 0;
    return r;
}

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

TEST(MaterialJson, EveryFloatBitSurvivesTheRoundTripInTheRecordsOrder)
{
    std::mt19937 rng(20240601);
    for (int i = 0; i < 2000; ++i) {
        const FZAttributeEx r = RandomRecord(rng);
        std::string error;
        ASSERT_TRUE(SameBytes(Read(MaterialToJson(r, 10).toStdString(), FZResult::Ok, error), r)) << error;
    }
    const std::string text = MaterialToJson(FZAttributeEx(), 7).toStdString();
    EXPECT_EQ(text.substr(0, 38), "{\n  \"version\": 7,\n  \"diffuse\": 0.8,\n  ");
    JsonValue doc;
    std::string error;
    ASSERT_TRUE(ParseJson(text, doc, error)) << error;
    std::string keys;
    for (const auto& [key, value] : doc.members)
        keys += key + " ";
    EXPECT_EQ(keys, "version diffuse highlightStrength highlightSharpness ambient transparency refractiveIndex "
                    "color highlightColor reflection anisotropic anisotropy colorTransparency emission "
                    "smoothHighlight smoothWidth rainbow stripeSpacing incidenceDependence attenuation thinGlass "
                    "thickness ");
}

TEST(MaterialJson, ReadsWhatEditorsWrite)
{
    std::string error;
    FZAttributeEx expected;
    expected.diffuse = 0.5f;
    expected.anisotropy.waveCount = 12;
    // A byte-order mark is skipped; "version" is ignored; missing keys keep
    // their defaults.
    EXPECT_TRUE(SameBytes(Read("\xEF\xBB\xBF{\"version\": 3, \"diffuse\": 0.5, \"anisotropy\": {\"waveCount\": 12}}",
                               FZResult::Ok, error), expected)) << error;
    // Numbers too small for a float round as a float cast does.
    const FZAttributeEx tiny = Read(R"({"diffuse": 1e-50, "emission": -1e-50, "ambient": 1e-45, "reflection": 8e-46})",
                                    FZResult::Ok, error);
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
        {R"({"anisotropy": {"center": [0, true, 0]}})", FZResult::BadParameter, "key \"anisotropy.center\" must be a number"},
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
    stored.anisotropic = 1;
    stored.thickness = 9.0f;  // not kept by attribute files, kept by JSON
    const QString qva = dir.filePath("m.qva");
    const QString json = dir.filePath("m.json");
    ASSERT_EQ(SaveAttributeFile(QFile::encodeName(qva).constData(), stored), FZResult::Ok);
    ASSERT_TRUE(WriteBytes(json, "\n  " + MaterialToJson(stored, 4)));
    FZAttributeEx record;
    QString message;
    int version = 0;
    ASSERT_EQ(LoadMaterial(qva, record, message, &version), FZResult::Ok) << message.toStdString();
    EXPECT_EQ(record.thickness, 4.0f);
    ASSERT_EQ(LoadMaterial(json, record, message, &version), FZResult::Ok) << message.toStdString();
    EXPECT_EQ(version, 10);
    EXPECT_TRUE(SameBytes(record, stored));

    ASSERT_TRUE(WriteBytes(dir.filePath("big.json"), "{\"diffuse\": 0.5" + QByteArray(1 << 20, ' ') + "}"));
    EXPECT_EQ(LoadMaterial(dir.filePath("big.json"), record, message), FZResult::TooLarge);
    EXPECT_EQ(ParseMaterial("GIF89a" + QByteArray(40, 0), record, message, nullptr, "x.gif"), FZResult::BadFormat);
    EXPECT_EQ(message, QString::fromUtf8("未対応のﾃﾞｰﾀ形式です。 x.gif"));
    EXPECT_TRUE(SameBytes(record, stored));
}
