#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace mac::fuzz {

// The bytes of one input, as the span or the text that a trial takes; owned by the caller.
struct Input {
    std::uint8_t const* data;
    std::size_t size;

    operator std::span<std::byte const>() const { return std::as_bytes(std::span(data, size)); }
    operator std::string_view() const { return {reinterpret_cast<char const*>(data), size}; }
};

// A fuzz target: its name, which is that of its corpus, and the trial of one input, which returns what did not hold or
// an empty text.
struct Target {
    std::string_view name;
    std::string (*complaint)(Input const& input);
};

// All targets of fuzz/CMakeLists.txt. The build writes the list.
std::span<Target const> allTargets();

} // namespace mac::fuzz
