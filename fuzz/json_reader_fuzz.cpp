// Fuzz target for the JSON reader. Any input must parse or be refused with
// a placed message, without crashing or reading out of bounds; a parsed
// value written out again must parse to the very same value.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "json/json_value.h"

namespace {

void WriteString(const std::string& s, std::string& out)
{
    static const char kHex[] = "0123456789abcdef";
    out += '"';
    for (const char c : s) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20) {
            out += "\\u00";
            out += kHex[byte >> 4];
            out += kHex[byte & 0xF];
        } else {
            out += c;
        }
    }
    out += '"';
}

void Write(const JsonValue& v, std::string& out)
{
    switch (v.kind) {
    case JsonValue::Kind::Null:
        out += "null";
        return;
    case JsonValue::Kind::Bool:
        out += v.boolean ? "true" : "false";
        return;
    case JsonValue::Kind::Number:
        out += v.text;
        return;
    case JsonValue::Kind::String:
        WriteString(v.text, out);
        return;
    case JsonValue::Kind::Array:
        out += '[';
        for (std::size_t i = 0; i < v.items.size(); ++i) {
            out += i == 0 ? "" : ",";
            Write(v.items[i], out);
        }
        out += ']';
        return;
    case JsonValue::Kind::Object:
        out += '{';
        for (std::size_t i = 0; i < v.members.size(); ++i) {
            out += i == 0 ? "" : ",";
            WriteString(v.members[i].first, out);
            out += ':';
            Write(v.members[i].second, out);
        }
        out += '}';
        return;
    }
}

bool Same(const JsonValue& a, const JsonValue& b)
{
    if (a.kind != b.kind || a.boolean != b.boolean || a.text != b.text || a.items.size() != b.items.size()
        || a.members.size() != b.members.size())
        return false;
    for (std::size_t i = 0; i < a.items.size(); ++i) {
        if (!Same(a.items[i], b.items[i]))
            return false;
    }
    for (std::size_t i = 0; i < a.members.size(); ++i) {
        if (a.members[i].first != b.members[i].first || !Same(a.members[i].second, b.members[i].second))
            return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    JsonValue value;
    std::string error;
    if (!ParseJson(text, value, error)) {
        if (error.compare(0, 5, "line ") != 0)
            std::abort();
        return 0;
    }
    std::string again;
    Write(value, again);
    JsonValue reread;
    if (!ParseJson(again, reread, error) || !Same(value, reread))
        std::abort();
    return 0;
}
