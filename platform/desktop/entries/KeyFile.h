#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// A file of groups of keys with values, such as a desktop entry or a list of default applications. Comments and lines
// that are neither are ignored; of equal keys in a group the last counts. Keys before the first group belong to the
// group "". A value; for implementations, any thread.
class KeyFile {
public:
    static KeyFile read(std::string_view text);
    // Reads at most 1 MiB; a longer file and one that cannot be read have no groups.
    static KeyFile readFile(std::string const& path);

    // The groups' names as they were written, sorted: "A][B" for "[A][B]".
    std::vector<std::string> groups() const;
    // The value as it was written.
    std::optional<std::string_view> value(std::string const& group, std::string const& key) const;
    // The value with the escapes for blanks and line ends resolved.
    std::optional<std::string> text(std::string const& group, std::string const& key) const;
    // The value's parts between semicolons, without empty ones.
    std::vector<std::string> list(std::string const& group, std::string const& key) const;

private:
    std::map<std::string, std::map<std::string, std::string>> m_groups{};
};

// The words of a desktop entry's command line, its quotes resolved and the codes for files (%f) as they stand; nullopt
// if a quote does not end.
std::optional<std::vector<std::string>> wordsOfCommandLine(std::string_view text);

// The user's folder and then the system's, by precedence: for settings ("/etc/xdg") and for data ("/usr/share").
std::vector<std::string> configFolders();
std::vector<std::string> dataFolders();

} // namespace mac
