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

// What a file "._NAME" holds for the item NAME beside it: version 2 of the form, with the table of attributes that Mac
// OS X keeps behind the Finder information. A value; for implementations.
struct AppleDouble {
    static constexpr std::size_t FinderInformationSize = 32;
    using FinderInformation = std::array<std::byte, FinderInformationSize>;

    struct Attribute {
        std::string name;
        std::vector<std::byte> value;
        std::uint16_t flags{0};

        bool operator==(Attribute const&) const = default;
    };
    // A part that means nothing here and is kept for others.
    struct Part {
        std::uint32_t kind{0};
        std::vector<std::byte> bytes;

        bool operator==(Part const&) const = default;
    };

    // All zero: there is none. An empty fork likewise.
    FinderInformation finderInformation{};
    std::vector<std::byte> resourceFork{};
    std::vector<Attribute> attributes{};
    std::vector<Part> otherParts{};

    // What means nothing here either, and stays as it was read.
    std::array<std::byte, 16> homeFileSystem{defaultHomeFileSystem()};
    struct TableMarks {
        std::uint32_t tag{0};
        std::array<std::byte, 12> reserved{};
        std::uint16_t flags{0};

        bool operator==(TableMarks const&) const = default;
    } tableMarks{};
    // Behind the Finder information, where it is no table of attributes: then there can be none.
    std::vector<std::byte> informationTail{};

    // Fails for what is no such file or contradicts itself: nothing outside of the bytes is believed, no byte counts
    // twice, and no name does.
    static Result<AppleDouble, Failure> read(std::span<std::byte const> file);
    // The same of the first bytes of a file of that size, for who looks for something small: what lies behind them is
    // left empty, but for the Finder information and the table of attributes. Fails where these are not among them.
    static Result<AppleDouble, Failure> readBeginning(std::span<std::byte const> beginning, std::size_t fileSize);
    // Nothing when it is more than the form can count or read() takes, or a name is empty, too long or holds a NUL.
    std::optional<std::vector<std::byte>> written() const;

    bool isEmpty() const;
    // By name, those for the Finder information and the resource fork included.
    std::optional<std::span<std::byte const>> valueOf(std::string_view name) const;
    std::vector<std::string> names() const;
    // False for Finder information of another size.
    bool setValue(std::string_view name, std::span<std::byte const> value);
    // Whether it was there.
    bool removeValue(std::string_view name);

    bool operator==(AppleDouble const&) const = default;

private:
    static std::array<std::byte, 16> defaultHomeFileSystem();
};

} // namespace mac
