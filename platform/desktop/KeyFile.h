#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// A file of the desktop's in groups of keys with values: desktop entries, lists of default applications. Comments and
// lines that are neither are passed over; of equal keys in a group the last counts. Keys before the first group are in
// the one without a name.
class KeyFile {
public:
    static KeyFile read(std::string_view text);
    // Of a file of at most 1 MiB; without groups where it cannot be read.
    static KeyFile readFile(std::string const& path);

    // As it was written.
    std::optional<std::string_view> value(std::string const& group, std::string const& key) const;
    // With the escapes for blanks and line ends resolved.
    std::optional<std::string> text(std::string const& group, std::string const& key) const;
    // Split at semicolons, without empty parts.
    std::vector<std::string> list(std::string const& group, std::string const& key) const;

private:
    std::map<std::string, std::map<std::string, std::string>> m_groups;
};

// The words of a desktop entry's command line, its quotes resolved and the codes for files (%f) as they stand. Nothing
// for a quote that does not end.
std::optional<std::vector<std::string>> wordsOfCommandLine(std::string_view text);

} // namespace mac
