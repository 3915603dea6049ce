// A small JSON reader for the tools. Unlike QJsonDocument it keeps each
// number as the text it was written as, so that a float can be read straight
// from its decimal text (decimal -> double -> float can round differently),
// and it keeps object members in their order, duplicates included.
#ifndef TAMERISK_APPS_JSON_VALUE_H
#define TAMERISK_APPS_JSON_VALUE_H

#include <string>
#include <utility>
#include <vector>

struct JsonValue {
    enum class Kind { Null, Bool, Number, String, Array, Object };

    // Defined where JsonValue is complete: a member vector of pairs that
    // hold JsonValue cannot be built or destroyed inside the class itself
    // (libstdc++ checks the pair's element types, and clang insists).
    JsonValue();
    JsonValue(const JsonValue&);
    JsonValue(JsonValue&&) noexcept;
    JsonValue& operator=(const JsonValue&);
    JsonValue& operator=(JsonValue&&) noexcept;
    ~JsonValue();

    Kind kind = Kind::Null;
    bool boolean = false;
    std::string text;  // a number as written, or a string's decoded UTF-8
    std::vector<JsonValue> items;
    std::vector<std::pair<std::string, JsonValue>> members;
};

// Parses one JSON value filling the whole text (white space around it
// allowed). On failure returns false and error says where and what
// ("line 3, column 7: expected ':'"). Nesting deeper than 64 levels is
// refused rather than risking the stack.
bool ParseJson(const std::string& text, JsonValue& value, std::string& error);

#endif
