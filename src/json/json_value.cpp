#include "json/json_value.h"

#include <cstdint>
#include <cstring>

JsonValue::JsonValue() = default;
JsonValue::JsonValue(const JsonValue&) = default;
JsonValue::JsonValue(JsonValue&&) noexcept = default;
JsonValue& JsonValue::operator=(const JsonValue&) = default;
JsonValue& JsonValue::operator=(JsonValue&&) noexcept = default;
JsonValue::~JsonValue() = default;

namespace {

constexpr int kMaxDepth = 64;

class JsonParser {
public:
    explicit JsonParser(const std::string& text) : text_(text) {}

    bool ParseDocument(JsonValue& value)
    {
        SkipSpace();
        if (!ParseValue(value, 0))
            return false;
        SkipSpace();
        return pos_ == text_.size() || Fail("unexpected text after the value");
    }

    std::string Error() const { return error_; }

private:
    bool ParseValue(JsonValue& value, int depth)
    {
        if (depth > kMaxDepth)
            return Fail("nested too deeply");
        if (pos_ >= text_.size())
            return Fail("unexpected end of text");
        const char c = text_[pos_];
        if (c == '{')
            return ParseObject(value, depth);
        if (c == '[')
            return ParseArray(value, depth);
        if (c == '"') {
            value.kind = JsonValue::Kind::String;
            return ParseString(value.text);
        }
        if (c == '-' || (c >= '0' && c <= '9'))
            return ParseNumber(value);
        return ParseWord(value);
    }

    bool ParseObject(JsonValue& value, int depth)
    {
        value.kind = JsonValue::Kind::Object;
        ++pos_;
        SkipSpace();
        if (Take('}'))
            return true;
        do {
            SkipSpace();
            std::string key;
            if (!Peek('"'))
                return Fail("expected a key in double quotes");
            if (!ParseString(key))
                return false;
            SkipSpace();
            if (!Take(':'))
                return Fail("expected ':'");
            SkipSpace();
            value.members.emplace_back(std::move(key), JsonValue());
            if (!ParseValue(value.members.back().second, depth + 1))
                return false;
            SkipSpace();
        } while (Take(','));
        return Take('}') || Fail("expected ',' or '}'");
    }

    bool ParseArray(JsonValue& value, int depth)
    {
        value.kind = JsonValue::Kind::Array;
        ++pos_;
        SkipSpace();
        if (Take(']'))
            return true;
        do {
            SkipSpace();
            value.items.emplace_back();
            if (!ParseValue(value.items.back(), depth + 1))
                return false;
            SkipSpace();
        } while (Take(','));
        return Take(']') || Fail("expected ',' or ']'");
    }

    // -?(0|[1-9][0-9]*)(.[0-9]+)?([eE][+-]?[0-9]+)?
    bool ParseNumber(JsonValue& value)
    {
        const std::size_t start = pos_;
        Take('-');
        if (!Take('0')) {
            if (!Digits())
                return Fail("invalid number");
        }
        if (Take('.') && !Digits())
            return Fail("invalid number");
        if (Take('e') || Take('E')) {
            if (!Take('+'))
                Take('-');
            if (!Digits())
                return Fail("invalid number");
        }
        value.kind = JsonValue::Kind::Number;
        value.text = text_.substr(start, pos_ - start);
        return true;
    }

    bool ParseWord(JsonValue& value)
    {
        if (TakeWord("true")) {
            value.kind = JsonValue::Kind::Bool;
            value.boolean = true;
        } else if (TakeWord("false")) {
            value.kind = JsonValue::Kind::Bool;
        } else if (TakeWord("null")) {
            value.kind = JsonValue::Kind::Null;
        } else {
            return Fail("unexpected character");
        }
        return true;
    }

    bool ParseString(std::string& out)
    {
        ++pos_;  // the opening quote
        while (pos_ < text_.size()) {
            const char c = text_[pos_++];
            if (c == '"')
                return true;
            if (static_cast<unsigned char>(c) < 0x20)
                return Fail("control character in a string");
            if (c != '\\') {
                out += c;
                continue;
            }
            if (!ParseEscape(out))
                return false;
        }
        return Fail("unterminated string");
    }

    bool ParseEscape(std::string& out)
    {
        if (pos_ >= text_.size())
            return Fail("unterminated string");
        const char c = text_[pos_++];
        static const char kFrom[] = "\"\\/bfnrt";
        static const char kTo[] = "\"\\/\b\f\n\r\t";
        if (const char* hit = std::strchr(kFrom, c); hit != nullptr && c != '\0') {
            out += kTo[hit - kFrom];
            return true;
        }
        if (c != 'u')
            return Fail("invalid escape");
        std::uint32_t code = 0;
        if (!Hex4(code))
            return false;
        if (code >= 0xD800 && code <= 0xDBFF) {
            std::uint32_t low = 0;
            if (!(Take('\\') && Take('u') && Hex4(low) && low >= 0xDC00 && low <= 0xDFFF))
                return Fail("unpaired surrogate");
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        } else if (code >= 0xDC00 && code <= 0xDFFF) {
            return Fail("unpaired surrogate");
        }
        AppendUtf8(out, code);
        return true;
    }

    bool Hex4(std::uint32_t& code)
    {
        for (int i = 0; i < 4; ++i, ++pos_) {
            if (pos_ >= text_.size())
                return Fail("invalid \\u escape");
            const char c = text_[pos_];
            int digit = -1;
            if (c >= '0' && c <= '9')
                digit = c - '0';
            else if (c >= 'a' && c <= 'f')
                digit = c - 'a' + 10;
            else if (c >= 'A' && c <= 'F')
                digit = c - 'A' + 10;
            if (digit < 0)
                return Fail("invalid \\u escape");
            code = code * 16 + static_cast<std::uint32_t>(digit);
        }
        return true;
    }

    static void AppendUtf8(std::string& out, std::uint32_t code)
    {
        if (code < 0x80) {
            out += static_cast<char>(code);
        } else if (code < 0x800) {
            out += static_cast<char>(0xC0 | (code >> 6));
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            out += static_cast<char>(0xE0 | (code >> 12));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (code >> 18));
            out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        }
    }

    bool Digits()
    {
        const std::size_t start = pos_;
        while (pos_ < text_.size() && text_[pos_] >= '0' && text_[pos_] <= '9')
            ++pos_;
        return pos_ > start;
    }

    void SkipSpace()
    {
        while (pos_ < text_.size()
               && (text_[pos_] == ' ' || text_[pos_] == '\t' || text_[pos_] == '\n' || text_[pos_] == '\r'))
            ++pos_;
    }

    bool Peek(char c) const { return pos_ < text_.size() && text_[pos_] == c; }
    bool Take(char c)
    {
        if (!Peek(c))
            return false;
        ++pos_;
        return true;
    }
    bool TakeWord(const char* word)
    {
        const std::size_t n = std::strlen(word);
        if (text_.compare(pos_, n, word) != 0)
            return false;
        pos_ += n;
        return true;
    }

    // Records the first error with its line and column (both from 1).
    bool Fail(const char* what)
    {
        if (error_.empty()) {
            int line = 1;
            int column = 1;
            for (std::size_t i = 0; i < pos_ && i < text_.size(); ++i) {
                column = text_[i] == '\n' ? 1 : column + 1;
                line += text_[i] == '\n' ? 1 : 0;
            }
            error_ = "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + what;
        }
        return false;
    }

    const std::string& text_;
    std::size_t pos_ = 0;
    std::string error_;
};

}  // namespace

bool ParseJson(const std::string& text, JsonValue& value, std::string& error)
{
    JsonParser parser(text);
    value = JsonValue();
    if (parser.ParseDocument(value))
        return true;
    error = parser.Error();
    return false;
}
