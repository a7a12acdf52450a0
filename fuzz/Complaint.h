#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

// What every fuzz target begins and ends with.

namespace mac::fuzz {

inline std::span<std::byte const> bytesOf(std::uint8_t const* data, std::size_t size) {
    return std::as_bytes(std::span(data, size));
}

inline std::string_view textOf(std::uint8_t const* data, std::size_t size) {
    return {reinterpret_cast<char const*>(data), size};
}

// The bytes of one input, as whatever a trial takes.
struct Input {
    std::uint8_t const* data;
    std::size_t size;

    operator std::span<std::byte const>() const { return bytesOf(data, size); }
    operator std::string_view() const { return textOf(data, size); }
};

// Ends the program with the complaint, if there is one.
inline void requireNone(std::string const& complaint) {
    if (complaint.empty()) return;
    std::fprintf(stderr, "%s\n", complaint.c_str());
    std::abort();
}

} // namespace mac::fuzz
