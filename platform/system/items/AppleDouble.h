#pragma once

#include "platform/system/Result.h"
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// The contents of an AppleDouble file: version 2 of the format, with the table of attributes that Mac OS X stores after
// the Finder information. A value; any thread.
struct AppleDouble {
    static constexpr std::size_t FinderInformationSize = 32;
    using FinderInformation = std::array<std::byte, FinderInformationSize>;

    struct Attribute {
        std::string name;
        std::vector<std::byte> value;
        std::uint16_t flags{0};

        bool operator==(Attribute const&) const = default;
    };
    // An entry of another kind, kept for other programs.
    struct Part {
        std::uint32_t kind{0};
        std::vector<std::byte> bytes;

        bool operator==(Part const&) const = default;
    };

    // All zero if there is none; the fork is empty if there is none.
    FinderInformation finderInformation{};
    std::vector<std::byte> resourceFork{};
    // The size in bytes of a resource fork that lies after what was read; it is not written.
    std::size_t laterForkSize{0};
    std::vector<Attribute> attributes{};
    std::vector<Part> otherParts{};

    // Fields without a use here are written as they were read.
    std::array<std::byte, 16> homeFileSystem{defaultHomeFileSystem()};
    struct TableMarks {
        std::uint32_t tag{0};
        std::array<std::byte, 12> reserved{};
        std::uint16_t flags{0};

        bool operator==(TableMarks const&) const = default;
    } tableMarks{};
    // Bytes after the Finder information that are no table of attributes; if not empty, there can be no attributes.
    std::vector<std::byte> informationTail{};

    // Fails if the bytes are not an AppleDouble file or contradict themselves: offsets outside of the file, parts that
    // overlap, and duplicate attribute names are refused.
    static Result<AppleDouble, Failure> read(std::span<std::byte const> file);
    // Reads the first bytes of a file of `fileSize` bytes; values that lie after them are left empty. Fails if the
    // Finder information, the table of attributes, or what stands in the table's place lies after them.
    static Result<AppleDouble, Failure> readBeginning(std::span<std::byte const> beginning, std::size_t fileSize);
    // nullopt if the format cannot count that much, read() would refuse it, or an attribute's name is empty, too long
    // or has a NUL.
    std::optional<std::vector<std::byte>> written() const;

    bool isEmpty() const;
    // Attributes by name; the Finder information and the resource fork have names, too.
    std::optional<std::span<std::byte const>> valueOf(std::string_view name) const;
    std::vector<std::string> names() const;
    // False for Finder information of a size other than 32 bytes.
    bool setValue(std::string_view name, std::span<std::byte const> value);
    // Answers whether the value existed.
    bool removeValue(std::string_view name);

    bool operator==(AppleDouble const&) const = default;

private:
    static std::array<std::byte, 16> defaultHomeFileSystem();
};

} // namespace mac
