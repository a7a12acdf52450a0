#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mac {

// What a property list may hold at most. Real lists stay far below; a larger one is treated as hostile.

// Containers within containers. Whatever walks a list may recurse: 512 steps of the hungriest walk fit in the smallest
// stack that a thread gets, also with sanitizers. Real lists are less than 20 deep.
inline constexpr std::size_t kPropertyListMaximumDepth = 512;

// Objects, keys included, with each shared one counted as often as a walk meets it. 100,000 login items have 700,000.
inline constexpr std::size_t kPropertyListMaximumObjects = std::size_t{1} << 20;

// Bytes of strings and data, shared ones counted as often as a walk meets them.
inline constexpr std::size_t kPropertyListMaximumContents = std::size_t{256} << 20;

// Bytes of a list to be read. Text is held up to six times while it is read.
inline constexpr std::size_t kPropertyListMaximumInput = std::size_t{256} << 20;

// How much of a list has been read or written, against the limits above.
class PropertyListBudget {
public:
    // False when the object, with so many bytes of text or data, is too much.
    bool add(std::size_t objects, std::size_t contents = 0) {
        // Each addend is at most a limit plus the size of what is in memory, so the sums cannot wrap.
        m_objects += objects;
        m_contents += contents;
        return m_objects <= kPropertyListMaximumObjects && m_contents <= kPropertyListMaximumContents;
    }

private:
    std::uint64_t m_objects{0};
    std::uint64_t m_contents{0};
};

inline constexpr std::string_view kPropertyListTooDeep = "The list is nested deeper than 512 containers";
inline constexpr std::string_view kPropertyListTooLarge = "The list holds too many objects or too much text and data";

inline std::string atLine(std::string_view reason, std::size_t line) {
    return std::string(reason) + " at line " + std::to_string(line);
}

inline std::string atOffset(std::string_view reason, std::uint64_t offset) {
    return std::string(reason) + " at offset " + std::to_string(offset);
}

} // namespace mac
