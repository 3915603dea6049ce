// The JSON form of a material: exact float round trips, key order, and
// refusals that name the key.
#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "json/json_value.h"
#include "json/material_json.h"
#include "material/attribute_file.h"
#include "material/result_codes.h"
#include "tool_run.h"

namespace {

bool SameBytes(const FZAttributeEx& a, const FZAttributeEx& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// A record filled with random bytes (padding aside, which JSON does not
// carry): every float bit pattern, NaNs and infinities included, and every
// integer value can turn up.
FZAttributeEx RandomRecord(std::mt19937& rng)
{
    FZAttributeEx r;
    auto* bytes = reinterpret_cast<unsigned char*>(&r);
    for (std::size_t i = 0; i < sizeof r; ++i)
        bytes[i] = static_cast<unsigned char>(rng());
    r.padding[0] = r.padding[1] = 0;
    r.anisotropy.padding[0] = r.anisotropy.padding[1] = 0;
    return r;
}

FZResult FromJson(const std::string& text, FZAttributeEx& record, QString& error)
{
    return MaterialFromJson(QByteArray::fromStdString(text), record, error);
}

std::string ErrorOf(const std::string& text, FZResult expectedCode)
{
    FZAttributeEx record;
    QString error;
    EXPECT_EQ(FromJson(text, record, error), expectedCode) << text;
    EXPECT_TRUE(SameBytes(record, FZAttributeEx())) << text;
    return error.toStdString();
}

}  // namespace

TEST(MaterialJson, EveryFloatBitSurvivesTheRoundTrip)
{
    std::mt19937 rng(20240601);
    for (int i = 0; i < 2000; ++i) {
        const FZAttributeEx r = RandomRecord(rng);
        FZAttributeEx back;
        QString error;
        ASSERT_EQ(MaterialFromJson(MaterialToJson(r, 10), back, error), FZResult::Ok) << error.toStdString();
        ASSERT_TRUE(SameBytes(back, r)) << MaterialToJson(r, 10).toStdString();
    }
}

TEST(MaterialJson, FloatsArePrintedShortest)
{
    FZAttributeEx r;
    r.emission = 1e-45f;
    r.stripeSpacing = 3.4028235e38f;
    r.reflection = -0.0f;
    r.attenuation = std::numeric_limits<float>::infinity();
    r.incidenceDependence = std::numeric_limits<float>::quiet_NaN();
    const std::uint32_t payload = 0xFF800001u;  // a negative signalling NaN
    std::memcpy(&r.anisotropy.angle, &payload, 4);
    const std::string text = MaterialToJson(r, 7).toStdString();
    for (const char* line : {"\"version\": 7,", "\"diffuse\": 0.8,", "\"grooveDepth\": 0.15,",
                             "\"center\": [0.5, 0.5, 0],", "\"axis\": [0, 0, 30000],",
                             "\"color\": [255, 255, 255],", "\"emission\": 1e-45,",
                             "\"stripeSpacing\": 3.4028235e+38,", "\"reflection\": -0,",
                             "\"attenuation\": \"inf\",", "\"incidenceDependence\": \"nan\",",
                             "\"angle\": \"nan:0xff800001\",", "\"thickness\": 4\n}"})
        EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
}

TEST(MaterialJson, KeysFollowTheRecord)
{
    JsonValue doc;
    std::string error;
    ASSERT_TRUE(ParseJson(MaterialToJson(FZAttributeEx(), 10).toStdString(), doc, error)) << error;
    std::vector<std::string> keys;
    for (const auto& [key, value] : doc.members)
        keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{
                        "version", "diffuse", "highlightStrength", "highlightSharpness", "ambient",
                        "transparency", "refractiveIndex", "color", "highlightColor", "reflection",
                        "anisotropic", "anisotropy", "colorTransparency", "emission", "smoothHighlight",
                        "smoothWidth", "rainbow", "stripeSpacing", "incidenceDependence", "attenuation",
                        "thinGlass", "thickness"}));
    keys.clear();
    for (const auto& [key, value] : doc.members[11].second.members)
        keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{"type", "grooveDepth", "center", "axis", "amplitude",
                                              "waveCount", "spiralTwist", "wavePeriod", "depthVariation",
                                              "angle", "grooveWidth"}));
}

TEST(MaterialJson, MissingKeysTakeDefaultsAndVersionIsIgnored)
{
    std::mt19937 rng(7);
    FZAttributeEx record = RandomRecord(rng);
    QString error;
    ASSERT_EQ(FromJson(R"({"version": 3, "diffuse": 0.5, "anisotropy": {"waveCount": 12}})", record, error), FZResult::Ok);
    FZAttributeEx expected;
    expected.diffuse = 0.5f;
    expected.anisotropy.waveCount = 12;
    EXPECT_TRUE(SameBytes(record, expected));
    ASSERT_EQ(FromJson(" {} ", record, error), FZResult::Ok);
    EXPECT_TRUE(SameBytes(record, FZAttributeEx()));
}

TEST(MaterialJson, RefusalsNameTheKeyOrThePlace)
{
    const std::string integer = " must be an integer from -2147483648 to 2147483647";
    const std::string bytes = " must be an array of 3 integers from 0 to 255";
    const struct {
        std::string json;
        FZResult code;
        std::string error;
    } cases[] = {
        {R"({"diffuse": 0.5, "shine": 1})", FZResult::BadParameter, "key \"shine\" is unknown"},
        {R"({"anisotropy": {"type": 2, "wave": 1}})", FZResult::BadParameter, "key \"anisotropy.wave\" is unknown"},
        {R"({"anisotropy": {"waveCount": 4.5}})", FZResult::BadParameter, "key \"anisotropy.waveCount\"" + integer},
        {R"({"anisotropic": 2147483648})", FZResult::BadParameter, "key \"anisotropic\"" + integer},
        {R"({"color": [1, 2, 256]})", FZResult::BadParameter, "key \"color\"" + bytes},
        {R"({"highlightColor": [1, 2]})", FZResult::BadParameter, "key \"highlightColor\"" + bytes},
        {R"({"anisotropy": {"axis": [0, 0, 32768]}})", FZResult::BadParameter,
         "key \"anisotropy.axis\" must be an array of 3 integers from -32768 to 32767"},
        {R"({"anisotropy": {"center": [0, true, 0]}})", FZResult::BadParameter,
         "key \"anisotropy.center\" must be a number"},
        {R"({"emission": 1e39})", FZResult::BadParameter, "key \"emission\" is out of the range of a 32-bit float"},
        {R"({"anisotropy": 1})", FZResult::BadParameter, "key \"anisotropy\" must be an object"},
        {R"({"diffuse": 1, "diffuse": 2})", FZResult::BadParameter, "key \"diffuse\" is given more than once"},
        {"{\"diffuse\": 0.5,\n  \"ambient\" 1}", FZResult::BadFormat, "JSON line 2, column 13: expected ':'"},
        {"[1, 2]", FZResult::BadFormat, "the JSON text is not an object"},
        {"{} x", FZResult::BadFormat, "JSON line 1, column 4: unexpected text after the value"},
        {"{\"a\": 01}", FZResult::BadFormat, "JSON line 1, column 8: expected ',' or '}'"},
        {"{\"a\": \"\\ud800\"}", FZResult::BadFormat, "JSON line 1, column 14: unpaired surrogate"},
        {std::string(100000, '['), FZResult::BadFormat, "JSON line 1, column 66: nested too deeply"},
        {"", FZResult::BadFormat, "JSON line 1, column 1: unexpected end of text"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ErrorOf(c.json, c.code), c.error) << c.json.substr(0, 40);
    // Strings are not numbers, unless they spell one of the special values.
    EXPECT_EQ(ErrorOf(R"({"diffuse": "0.5"})", FZResult::BadParameter).substr(0, 25), "key \"diffuse\" must be a n");
    EXPECT_EQ(ErrorOf(R"({"emission": "nan:0x3f800000"})", FZResult::BadParameter).substr(0, 26),
              "key \"emission\" must be a n");
}

TEST(MaterialJson, ParserDecodesEscapesAndKeepsNumberText)
{
    JsonValue value;
    std::string error;
    ASSERT_TRUE(ParseJson(R"({"k\u00e9y\n": ["\ud83d\ude00", null, false, -1.5e+3]})", value, error)) << error;
    EXPECT_EQ(value.members[0].first, "k\xc3\xa9y\n");
    EXPECT_EQ(value.members[0].second.items[0].text, "\xf0\x9f\x98\x80");
    EXPECT_EQ(value.members[0].second.items[3].text, "-1.5e+3");
}

TEST(MaterialJson, LoadMaterialTakesEitherForm)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    FZAttributeEx stored;
    stored.anisotropic = 1;
    stored.anisotropy.type = 3;
    stored.anisotropy.spiralTwist = -0.03f;
    stored.thickness = 9.0f;  // not kept by attribute files, kept by JSON
    const QString qva = dir.filePath("m.qva");
    ASSERT_EQ(SaveAttributeFile(QFile::encodeName(qva).constData(), stored), FZResult::Ok);
    const QString json = dir.filePath("m.json");
    ASSERT_TRUE(WriteBytes(json, "\n  " + MaterialToJson(stored, 4)));

    FZAttributeEx record;
    QString message;
    int version = 0;
    ASSERT_EQ(LoadMaterial(qva, record, message, &version), FZResult::Ok) << message.toStdString();
    EXPECT_EQ(version, 10);
    EXPECT_EQ(record.anisotropy.spiralTwist, -0.03f);
    EXPECT_EQ(record.thickness, 4.0f);
    ASSERT_EQ(LoadMaterial(json, record, message, &version), FZResult::Ok) << message.toStdString();
    EXPECT_EQ(version, 10);
    EXPECT_TRUE(SameBytes(record, stored));

    const FZAttributeEx before = record;
    EXPECT_EQ(LoadMaterial(dir.filePath("absent"), record, message), FZResult::OpenFailed);
    EXPECT_TRUE(message.startsWith(QString::fromUtf8("ﾌｧｲﾙを開けませんでした。 ") + dir.filePath("absent") + ": "));
    ASSERT_TRUE(WriteBytes(dir.filePath("big.json"), "{\"diffuse\": 0.5" + QByteArray(1 << 20, ' ') + "}"));
    EXPECT_EQ(LoadMaterial(dir.filePath("big.json"), record, message), FZResult::TooLarge);
    EXPECT_EQ(ParseMaterial("<Quorvantel Attribute>0011", record, message, nullptr, "x.qva"), FZResult::BadVersion);
    EXPECT_EQ(message, QString::fromUtf8("ﾊﾞｰｼﾞｮﾝの異なるﾌｧｲﾙです。 x.qva"));
    EXPECT_EQ(ParseMaterial("GIF89a" + QByteArray(40, 0), record, message), FZResult::BadFormat);
    EXPECT_EQ(ParseMaterial("{\"x\": 1}", record, message, nullptr, "-"), FZResult::BadParameter);
    EXPECT_EQ(message, QString::fromUtf8("不適当なﾊﾟﾗﾒｰﾀｰです。 -: key \"x\" is unknown"));
    EXPECT_TRUE(SameBytes(record, before));
    EXPECT_EQ(ErrorLine(FZResult::ReadFailed, "m"), "error -6: m");
}
