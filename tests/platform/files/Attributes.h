#pragma once

#include "platform/files/ExtendedAttributes.h"
#include <cerrno>
#include <optional>
#include <string>
#include <vector>

namespace mac::test {

// The attribute calls on strings, with position 0; they answer what the calls answer.

inline int set(std::string const& path, std::string const& name, std::string const& value, int options = 0) {
    return setxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0, options);
}

// The attribute's value; nullopt, with errno set, if it cannot be read.
inline std::optional<std::string> get(std::string const& path, std::string const& name, int options = 0) {
    std::ptrdiff_t const length = getxattr(path.c_str(), name.c_str(), nullptr, 0, 0, options);
    if (length < 0) return std::nullopt;
    std::string value(static_cast<std::size_t>(length), '?');
    if (getxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0, options) != length) return std::nullopt;
    return value;
}

inline int removeAttribute(std::string const& path, std::string const& name, int options = 0) {
    return removexattr(path.c_str(), name.c_str(), options);
}

inline std::vector<std::string> list(std::string const& path, int options = 0) {
    std::ptrdiff_t const length = listxattr(path.c_str(), nullptr, 0, options);
    std::string names(length > 0 ? static_cast<std::size_t>(length) : 0, '?');
    if (names.empty() || listxattr(path.c_str(), names.data(), names.size(), options) != length) return {};
    std::vector<std::string> result;
    for (std::size_t place = 0; place < names.size(); place = names.find('\0', place) + 1)
        result.emplace_back(names.c_str() + place);
    return result;
}

// Bytes that differ from their neighbours and from those a page further on.
inline std::string bytesOfLength(std::size_t length) {
    std::string bytes(length, '\0');
    for (std::size_t index = 0; index < length; ++index)
        bytes[index] = static_cast<char>(index * 31 + index / 256);
    return bytes;
}

} // namespace mac::test
