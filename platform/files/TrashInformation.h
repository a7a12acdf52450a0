#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the trash writes down, as text. For implementations; any thread.

namespace mac {

// Of an item in the trash: the file "info/NAME.trashinfo".
struct TrashInformation {
    static constexpr std::string_view nameEnd = ".trashinfo";

    // Where the item was, in bytes: absolute, or from the folder that the trash counts from.
    std::string path{};
    // "2026-11-21T16:20:00", as the clock on the wall showed it; empty when it is not known.
    std::string date{};

    // Nothing for another kind of text, and where no path can be made of it: none, one with a NUL, one that leads to no
    // name, or over "..".
    static std::optional<TrashInformation> read(std::string_view text);
    std::string text() const;

    bool operator==(TrashInformation const&) const = default;
};

// A line of the file "directorysizes", which spares others to add up what the folders in a trash take.
struct DirectorySize {
    std::uint64_t bytes{0};
    // When the item's information was written, in seconds since 1970: of another time the line tells nothing.
    std::int64_t informationTime{0};
    std::string name{};

    // Lines of another form are left out.
    static std::vector<DirectorySize> read(std::string_view text);
    static std::string text(std::vector<DirectorySize> const& sizes);

    bool operator==(DirectorySize const&) const = default;
};

// The time on the wall here at so many seconds since 1970, and back; nothing for what is no such time.
std::string localTimeText(std::int64_t seconds);
std::optional<std::int64_t> secondsOfLocalTimeText(std::string const& text);

} // namespace mac
