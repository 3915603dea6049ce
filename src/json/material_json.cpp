#include "json/material_json.h"

#include <QFile>

#include <fcntl.h>
#include <locale.h>
#include <unistd.h>
#include <stdlib.h>

#include <charconv>
#include <cinttypes>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <variant>

#include "json/json_value.h"
#include "material/attribute_file.h"
#include "material/bounded_read.h"
#include "material/result_codes.h"

namespace {

// ---- The fields, in declaration order ---------------------------------

using RecordMember = std::variant<float FZAttributeEx::*, std::int32_t FZAttributeEx::*,
                                  FZColor FZAttributeEx::*, FZAnisotropy FZAttributeEx::*>;
using AnisotropyMember = std::variant<float FZAnisotropy::*, std::int32_t FZAnisotropy::*,
                                      float (FZAnisotropy::*)[3], FZPackedVector FZAnisotropy::*>;

template <class Member>
struct Field {
    const char* name;
    Member member;
};

const Field<RecordMember> kRecordFields[] = {
    {"diffuse", &FZAttributeEx::diffuse},
    {"highlightStrength", &FZAttributeEx::highlightStrength},
    {"highlightSharpness", &FZAttributeEx::highlightSharpness},
    {"ambient", &FZAttributeEx::ambient},
    {"transparency", &FZAttributeEx::transparency},
    {"refractiveIndex", &FZAttributeEx::refractiveIndex},
    {"color", &FZAttributeEx::color},
    {"highlightColor", &FZAttributeEx::highlightColor},
    {"reflection", &FZAttributeEx::reflection},
    {"anisotropic", &FZAttributeEx::anisotropic},
    {"anisotropy", &FZAttributeEx::anisotropy},
    {"colorTransparency", &FZAttributeEx::colorTransparency},
    {"emission", &FZAttributeEx::emission},
    {"smoothHighlight", &FZAttributeEx::smoothHighlight},
    {"smoothWidth", &FZAttributeEx::smoothWidth},
    {"rainbow", &FZAttributeEx::rainbow},
    {"stripeSpacing", &FZAttributeEx::stripeSpacing},
    {"incidenceDependence", &FZAttributeEx::incidenceDependence},
    {"attenuation", &FZAttributeEx::attenuation},
    {"thinGlass", &FZAttributeEx::thinGlass},
    {"thickness", &FZAttributeEx::thickness},
};

const Field<AnisotropyMember> kAnisotropyFields[] = {
    {"type", &FZAnisotropy::type},
    {"grooveDepth", &FZAnisotropy::grooveDepth},
    {"center", &FZAnisotropy::center},
    {"axis", &FZAnisotropy::axis},
    {"amplitude", &FZAnisotropy::amplitude},
    {"waveCount", &FZAnisotropy::waveCount},
    {"spiralTwist", &FZAnisotropy::spiralTwist},
    {"wavePeriod", &FZAnisotropy::wavePeriod},
    {"depthVariation", &FZAnisotropy::depthVariation},
    {"angle", &FZAnisotropy::angle},
    {"grooveWidth", &FZAnisotropy::grooveWidth},
};

constexpr std::uint32_t kQuietNanBits = 0x7FC00000u;

std::uint32_t FloatBits(float v)
{
    std::uint32_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    return bits;
}

// ---- Writing ------------------------------------------------------------

class JsonWriter {
public:
    // Writes an object of the given fields, one a line; the top level starts
    // with "version".
    template <class Record, class Member>
    void Object(const Record& record, const Field<Member>* fields, std::size_t count,
                const std::string& versionText = std::string())
    {
        const std::string outer = indent_;
        indent_ += "  ";
        const char* separator = "{\n";
        if (!versionText.empty()) {
            out_ += separator + indent_ + "\"version\": " + versionText;
            separator = ",\n";
        }
        for (std::size_t i = 0; i < count; ++i) {
            out_ += separator + indent_ + "\"" + fields[i].name + "\": ";
            std::visit([&](auto member) { Value(record.*member); }, fields[i].member);
            separator = ",\n";
        }
        out_ += "\n" + outer + "}";
        indent_ = outer;
    }

    const std::string& Text() const { return out_; }

private:
    void Value(float v) { out_ += FloatText(v); }
    void Value(std::int32_t v) { out_ += std::to_string(v); }
    void Value(const FZColor& c) { Triple(std::to_string(c.r), std::to_string(c.g), std::to_string(c.b)); }
    void Value(const float (&v)[3]) { Triple(FloatText(v[0]), FloatText(v[1]), FloatText(v[2])); }
    void Value(const FZPackedVector& v) { Triple(std::to_string(v.x), std::to_string(v.y), std::to_string(v.z)); }
    void Value(const FZAnisotropy& a) { Object(a, kAnisotropyFields, std::size(kAnisotropyFields)); }

    void Triple(const std::string& a, const std::string& b, const std::string& c)
    {
        out_ += "[" + a + ", " + b + ", " + c + "]";
    }

    static std::string FloatText(float v)
    {
        if (std::isnan(v)) {
            const std::uint32_t bits = FloatBits(v);
            if (bits == kQuietNanBits)
                return "\"nan\"";
            char text[24];
            std::snprintf(text, sizeof text, "\"nan:0x%08" PRIx32 "\"", bits);
            return text;
        }
        if (std::isinf(v))
            return v > 0 ? "\"inf\"" : "\"-inf\"";
        char text[32];
        const auto result = std::to_chars(text, text + sizeof text, v);
        return std::string(text, result.ptr);
    }

    std::string out_;
    std::string indent_;
};

// ---- Reading ------------------------------------------------------------

// Reads one JSON value into one field; on failure sets error_ naming the key.
class FieldReader {
public:
    template <class Record, class Member>
    bool Members(const JsonValue& object, Record& record, const Field<Member>* fields, std::size_t count,
                 const std::string& prefix)
    {
        for (std::size_t m = 0; m < object.members.size(); ++m) {
            const auto& [key, value] = object.members[m];
            key_ = prefix + key;
            if (prefix.empty() && key == "version")
                continue;
            const Field<Member>* field = Find(fields, count, key);
            if (field == nullptr)
                return Fail("is unknown");
            for (std::size_t earlier = 0; earlier < m; ++earlier) {
                if (object.members[earlier].first == key)
                    return Fail("is given more than once");
            }
            const bool ok = std::visit([&](auto member) { return Value(value, record.*member); }, field->member);
            if (!ok)
                return false;
        }
        return true;
    }

    const std::string& Error() const { return error_; }

private:
    template <class Member>
    static const Field<Member>* Find(const Field<Member>* fields, std::size_t count, const std::string& key)
    {
        for (std::size_t i = 0; i < count; ++i) {
            if (key == fields[i].name)
                return &fields[i];
        }
        return nullptr;
    }

    bool Value(const JsonValue& v, float& out)
    {
        if (v.kind == JsonValue::Kind::String)
            return NonFinite(v.text, out) || Fail("must be a number, \"inf\", \"-inf\", \"nan\" or \"nan:0x\" and 8 hex digits");
        if (v.kind != JsonValue::Kind::Number)
            return Fail("must be a number");
        return FloatFromText(v.text, out) || Fail("is out of the range of a 32-bit float");
    }
    bool Value(const JsonValue& v, std::int32_t& out)
    {
        return Integer(v, out, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
    }
    bool Value(const JsonValue& v, FZColor& out)
    {
        std::uint8_t rgb[3] = {0, 0, 0};
        if (!Triple(v, rgb, 0, 255))
            return false;
        out.SetBytes(rgb[0], rgb[1], rgb[2]);
        return true;
    }
    bool Value(const JsonValue& v, float (&out)[3])
    {
        if (!IsTriple(v))
            return Fail("must be an array of 3 numbers");
        float xyz[3] = {0.0f, 0.0f, 0.0f};
        for (int i = 0; i < 3; ++i) {
            if (!Value(v.items[i], xyz[i]))
                return false;
        }
        std::memcpy(out, xyz, sizeof xyz);
        return true;
    }
    bool Value(const JsonValue& v, FZPackedVector& out)
    {
        std::int16_t xyz[3] = {0, 0, 0};
        if (!Triple(v, xyz, -32768, 32767))
            return false;
        out.x = xyz[0];
        out.y = xyz[1];
        out.z = xyz[2];
        return true;
    }
    bool Value(const JsonValue& v, FZAnisotropy& out)
    {
        if (v.kind != JsonValue::Kind::Object)
            return Fail("must be an object");
        FZAnisotropy read = out;
        if (!Members(v, read, kAnisotropyFields, std::size(kAnisotropyFields), key_ + "."))
            return false;
        out = read;
        return true;
    }

    // The float nearest to the decimal text, as a cast of the exact value
    // would give it: a number too small for a float becomes a subnormal or
    // zero of its sign. False only beyond the largest float.
    static bool FloatFromText(const std::string& text, float& out)
    {
        const char* end = text.data() + text.size();
        const auto result = std::from_chars(text.data(), end, out);
        if (result.ec == std::errc() && result.ptr == end)
            return true;
        if (result.ec != std::errc::result_out_of_range)
            return false;
        // from_chars leaves both overflow and underflow to the caller;
        // strtof tells them apart, read in the "C" locale whatever the
        // program's own.
        static const locale_t c = ::newlocale(LC_ALL_MASK, "C", nullptr);
        if (c == nullptr)
            return false;
        char* parsedEnd = nullptr;
        const float value = ::strtof_l(text.c_str(), &parsedEnd, c);
        if (parsedEnd != text.c_str() + text.size() || std::isinf(value))
            return false;
        out = value;
        return true;
    }

    static bool IsTriple(const JsonValue& v) { return v.kind == JsonValue::Kind::Array && v.items.size() == 3; }

    // Three integers in [lo, hi].
    template <class T>
    bool Triple(const JsonValue& v, T (&out)[3], std::int32_t lo, std::int32_t hi)
    {
        std::int32_t n[3] = {0, 0, 0};
        if (!IsTriple(v) || !IntegerIn(v.items[0], n[0], lo, hi) || !IntegerIn(v.items[1], n[1], lo, hi)
            || !IntegerIn(v.items[2], n[2], lo, hi))
            return Fail(RangeText("must be an array of 3 integers", lo, hi));
        for (int i = 0; i < 3; ++i)
            out[i] = static_cast<T>(n[i]);
        return true;
    }

    bool Integer(const JsonValue& v, std::int32_t& out, std::int32_t lo, std::int32_t hi)
    {
        return IntegerIn(v, out, lo, hi) || Fail(RangeText("must be an integer", lo, hi));
    }

    // A number written without fraction or exponent, within [lo, hi].
    static bool IntegerIn(const JsonValue& v, std::int32_t& out, std::int32_t lo, std::int32_t hi)
    {
        if (v.kind != JsonValue::Kind::Number)
            return false;
        long long n = 0;
        const char* end = v.text.data() + v.text.size();
        const auto result = std::from_chars(v.text.data(), end, n);
        if (result.ec != std::errc() || result.ptr != end || n < lo || n > hi)
            return false;
        out = static_cast<std::int32_t>(n);
        return true;
    }

    static std::string RangeText(const char* what, std::int32_t lo, std::int32_t hi)
    {
        return std::string(what) + " from " + std::to_string(lo) + " to " + std::to_string(hi);
    }

    static bool NonFinite(const std::string& text, float& out)
    {
        if (text == "inf" || text == "-inf") {
            out = text[0] == '-' ? -std::numeric_limits<float>::infinity() : std::numeric_limits<float>::infinity();
            return true;
        }
        std::uint32_t bits = kQuietNanBits;
        if (text != "nan") {
            const std::string prefix = "nan:0x";
            if (text.size() != prefix.size() + 8 || text.compare(0, prefix.size(), prefix) != 0)
                return false;
            const char* end = text.data() + text.size();
            const auto result = std::from_chars(text.data() + prefix.size(), end, bits, 16);
            if (result.ec != std::errc() || result.ptr != end)
                return false;
        }
        float v;
        std::memcpy(&v, &bits, sizeof v);
        if (!std::isnan(v))
            return false;
        out = v;
        return true;
    }

    // The first failure wins: nested readers report the innermost key.
    bool Fail(const std::string& what)
    {
        if (error_.empty())
            error_ = "key \"" + key_ + "\" " + what;
        return false;
    }

    std::string key_;
    std::string error_;
};

constexpr qint64 kMaxJsonBytes = 1 << 20;

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

// Editors on some systems start UTF-8 text with a byte-order mark; JSON
// readers skip it.
QByteArray WithoutByteOrderMark(const QByteArray& bytes)
{
    return bytes.startsWith(kByteOrderMark) ? bytes.mid(3) : bytes;
}

// Attribute files start with '<'; text whose first character (past white
// space and a byte-order mark) could start a JSON value is read as JSON, so
// that a wrong top level is reported as such rather than as a short file.
bool StartsLikeJson(const QByteArray& bytes)
{
    for (const char c : WithoutByteOrderMark(bytes)) {
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r')
            return std::strchr("{[\"-0123456789tfn", c) != nullptr && c != '\0';
    }
    return false;
}

// "line L, column C" of the first character that is not white space.
std::string PlaceOfFirstValue(const QByteArray& text)
{
    int line = 1;
    int column = 1;
    for (const char c : text) {
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r')
            break;
        column = c == '\n' ? 1 : column + 1;
        line += c == '\n' ? 1 : 0;
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

const char* KindName(JsonValue::Kind kind)
{
    switch (kind) {
    case JsonValue::Kind::Null:
        return "null";
    case JsonValue::Kind::Bool:
        return "a boolean";
    case JsonValue::Kind::Number:
        return "a number";
    case JsonValue::Kind::String:
        return "a string";
    case JsonValue::Kind::Array:
        return "an array";
    case JsonValue::Kind::Object:
        break;
    }
    return "an object";
}

}  // namespace

QByteArray MaterialToJson(const FZAttributeEx& record, int version)
{
    JsonWriter writer;
    writer.Object(record, kRecordFields, std::size(kRecordFields), std::to_string(version));
    return QByteArray::fromStdString(writer.Text() + "\n");
}

FZResult MaterialFromJson(const QByteArray& text, FZAttributeEx& record, QString& error)
{
    JsonValue document;
    std::string syntaxError;
    if (!ParseJson(WithoutByteOrderMark(text).toStdString(), document, syntaxError)) {
        error = QString::fromStdString("JSON " + syntaxError);
        return FZResult::BadFormat;
    }
    if (document.kind != JsonValue::Kind::Object) {
        error = QStringLiteral("JSON %1: the top level must be an object, not %2")
                    .arg(QString::fromStdString(PlaceOfFirstValue(WithoutByteOrderMark(text))),
                         QLatin1String(KindName(document.kind)));
        return FZResult::BadFormat;
    }
    FZAttributeEx read;
    FieldReader reader;
    if (!reader.Members(document, read, kRecordFields, std::size(kRecordFields), "")) {
        error = QString::fromStdString(reader.Error());
        return FZResult::BadParameter;
    }
    record = read;
    return FZResult::Ok;
}

FZResult ParseMaterial(const QByteArray& bytes, FZAttributeEx& record, QString& message, int* version,
                  const QString& source)
{
    if (!StartsLikeJson(bytes)) {
        const FZResult rc = LoadAttributeBytes(bytes.constData(), static_cast<std::size_t>(bytes.size()), record, version);
        if (rc != FZResult::Ok)
            message = ResultText(rc, source);
        return rc;
    }
    QString error;
    const FZResult rc = MaterialFromJson(bytes, record, error);
    if (rc != FZResult::Ok) {
        message = ResultText(rc, source, error);
        return rc;
    }
    if (version != nullptr)
        *version = kAttributeFileHeader.currentVersion;
    return FZResult::Ok;
}

bool LooksLikeJson(const QByteArray& bytes)
{
    return StartsLikeJson(bytes);
}

FZResult ReadMaterial(int fd, FZAttributeEx& record, QString& message, int* version, const QString& source)
{
    // An attribute file needs far less than this, and so does any material
    // written as JSON.
    std::string read;
    if (const int error = ReadAtMost(fd, kMaxJsonBytes + 1, read)) {
        message = ResultText(FZResult::ReadFailed, source, QString::fromLocal8Bit(std::strerror(error)));
        return FZResult::ReadFailed;
    }
    const QByteArray bytes = QByteArray::fromStdString(read);
    if (bytes.size() > kMaxJsonBytes && StartsLikeJson(bytes)) {
        message = ResultText(FZResult::TooLarge, source, "larger than 1 MiB");
        return FZResult::TooLarge;
    }
    return ParseMaterial(bytes, record, message, version, source);
}

FZResult LoadMaterial(const QByteArray& path, FZAttributeEx& record, QString& message, int* version)
{
    const QString name = QFile::decodeName(path);
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        message = ResultText(FZResult::OpenFailed, name, QString::fromLocal8Bit(std::strerror(errno)));
        return FZResult::OpenFailed;
    }
    const FZResult rc = ReadMaterial(fd, record, message, version, name);
    ::close(fd);
    return rc;
}

FZResult LoadMaterial(const QString& path, FZAttributeEx& record, QString& message, int* version)
{
    return LoadMaterial(QFile::encodeName(path), record, message, version);
}

namespace {

// The tools speak English on stderr, as command-line tools do; the dialogs
// keep their Japanese messages (material/result_codes.h). Indexed by
// -code - 1.
constexpr const char* kToolMessages[] = {
    "failed",
    "out of memory",
    "index out of range",
    "invalid parameter",
    "cannot open",
    "cannot read",
    "cannot write",
    "unsupported data format",
    "unsupported file version",
    "too large",
    "no data",
};
static_assert(std::size(kToolMessages) == -ResultCode(FZResult::NoData));

}  // namespace

QString ResultText(FZResult code, const QString& source, const QString& detail)
{
    const int index = -ResultCode(code) - 1;
    QStringList parts;
    if (!source.isEmpty())
        parts << source;
    if (index >= 0 && index < static_cast<int>(std::size(kToolMessages)))
        parts << QLatin1String(kToolMessages[index]);
    if (!detail.isEmpty())
        parts << detail;
    return parts.join(QStringLiteral(": "));
}

QString ErrorLine(FZResult code, const QString& message)
{
    return QStringLiteral("error %1: %2").arg(ResultCode(code)).arg(message);
}
