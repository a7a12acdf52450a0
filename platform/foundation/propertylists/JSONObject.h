#pragma once

#include "platform/system/Result.h"
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// An object of a JSON document (RFC 8259), read only. A value that shares the document with its copies; any thread.
class JSONObject {
public:
    // The parser's own object.
    struct Content;

    // Reads a document in UTF-8 whose outermost value is an object. Arrays and objects may be nested 1024 deep. The
    // problem says what is wrong and at which byte. The caller bounds the document's size: reading takes a small
    // multiple of it.
    static Result<JSONObject, Failure> read(std::string_view document);

    explicit JSONObject(std::shared_ptr<Content const> content) : m_content(std::move(content)) {}

    // Whether the object has a member of this key, be it null. Keys are ASCII; of several equal keys the last counts.
    bool has(std::string_view key) const;
    bool isNull(std::string_view key) const;
    // The member's value; nullopt if there is none, or one of another kind. Text is UTF-8, in which an escaped lone
    // surrogate is U+FFFD; a number with a fraction or beyond 64 bits is no integer.
    std::optional<std::string> text(std::string_view key) const;
    std::optional<bool> flag(std::string_view key) const;
    std::optional<std::int64_t> integer(std::string_view key) const;
    // The elements of an array; nullopt if the member is no array, or one of its elements is no object.
    std::optional<std::vector<JSONObject>> objects(std::string_view key) const;

private:
    std::shared_ptr<Content const> m_content;
};

} // namespace mac
