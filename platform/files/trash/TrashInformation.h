#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The names and texts that the trash writes. Any thread.

namespace mac {

// The candidate names of an item in the trash. A value.
class TrashNames {
public:
    // After so many names the item is not trashed.
    static constexpr unsigned MostNames = 10'000;

    // `timeOfDay` has the form "14-05-22"; `longest` is in bytes.
    TrashNames(std::string_view name, std::string_view timeOfDay, std::size_t longest);

    // 0 is the item's own name, 1 "NAME 14-05-22.txt", 2 "NAME 14-05-22 2.txt" and so on. A name that is too long is
    // shortened by whole characters before its extension.
    std::string name(unsigned number) const;

private:
    std::string m_base;
    std::string m_extension;
    std::string m_timeOfDay;
    std::size_t m_longest;
};

// The contents of an information file, "info/NAME.trashinfo".
struct TrashInformation {
    static constexpr std::string_view nameEnd = ".trashinfo";
    // The name of an item's information file.
    static std::string nameFor(std::string const& itemName) { return itemName + std::string(nameEnd); }

    // Where the item was, in bytes: absolute, or relative to the folder that the trash counts from.
    std::string path{};
    // Local time in the form "2026-11-21T16:20:00"; empty if it is not known.
    std::string date{};

    // nullopt for a text of another form, and if the recorded path is empty, holds a NUL or "..", or does not end in a
    // name.
    static std::optional<TrashInformation> read(std::string_view text);
    std::string text() const;

    bool operator==(TrashInformation const&) const = default;
};

// A line of the file "directorysizes", which caches the sizes of the folders in a trash.
struct DirectorySize {
    std::uint64_t bytes{0};
    // The modification time of the item's information file, in seconds since 1970; the line is ignored if the times
    // differ.
    std::int64_t informationTime{0};
    std::string name{};

    // Lines of another form are left out.
    static std::vector<DirectorySize> read(std::string_view text);
    static std::string text(std::vector<DirectorySize> const& sizes);

    bool operator==(DirectorySize const&) const = default;
};

// Seconds since 1970 as local time, in the form of TrashInformation::date; empty if the form cannot hold it.
std::string localTimeText(std::int64_t seconds);
// Seconds since 1970 of such a text; nullopt if it is no local time.
std::optional<std::int64_t> secondsOfLocalTimeText(std::string const& text);

} // namespace mac
