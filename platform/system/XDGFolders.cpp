#include "platform/system/XDGFolders.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/Users.h"
#include <algorithm>
#include <cstdlib>

namespace mac {

namespace {

constexpr std::string_view Blanks = " \t";
// The size in bytes beyond which a file is no list of folders.
constexpr std::size_t LongestList = std::size_t{1} << 20;

std::string_view withoutBlanks(std::string_view text) {
    std::size_t const first = text.find_first_not_of(Blanks);
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

// The text between double quotes, in which a backslash stands before a character that means itself.
std::optional<std::string> quotedText(std::string_view text) {
    if (!text.starts_with('"')) return {};
    std::string value;
    for (std::size_t index = 1; index < text.size(); ++index) {
        if (text[index] == '"') return value;
        if (text[index] == '\\' && ++index == text.size()) return {};
        value += text[index];
    }
    return {};
}

std::string environmentValue(char const* name) {
    char const* const value = std::getenv(name);
    return value ? value : "";
}

// The text after "$HOME" is empty or begins with a slash.
std::string pathBelowHome(std::string_view home, std::string_view rest) {
    return rest.empty() ? std::string(home) : BytePath(home).joined(rest.substr(1));
}

// A variable that holds a relative path is ignored.
std::string baseFolder(char const* variable, std::string_view usual) {
    std::string folder = environmentValue(variable);
    return BytePath(folder).isAbsolute() ? folder : BytePath(ownHomeFolder()).joined(usual);
}

std::string listOfFolders() {
    Result<FileContents> const file = readFileAtPath(BytePath(configHome()).joined("user-dirs.dirs"), LongestList);
    if (!file.hasValue()) return {};
    std::vector<std::byte> const& bytes = file.value().bytes;
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

} // namespace

std::string configHome() { return baseFolder("XDG_CONFIG_HOME", ".config"); }

std::string cacheHome() { return baseFolder("XDG_CACHE_HOME", ".cache"); }

std::string stateHome() { return baseFolder("XDG_STATE_HOME", ".local/state"); }

std::string dataHome() { return baseFolder("XDG_DATA_HOME", ".local/share"); }

std::optional<std::string> folderInList(std::string_view list, std::string_view variable, std::string_view home) {
    constexpr std::string_view homeVariable = "$HOME";
    std::optional<std::string> found;
    while (!list.empty()) {
        std::string_view line = withoutBlanks(list.substr(0, list.find('\n')));
        list.remove_prefix(std::min(list.size(), list.find('\n')));
        if (!list.empty()) list.remove_prefix(1);
        if (!line.starts_with(variable)) continue;
        line = withoutBlanks(line.substr(variable.size()));
        if (!line.starts_with('=')) continue;
        std::optional<std::string> folder = quotedText(withoutBlanks(line.substr(1)));
        if (!folder || folder->find('\0') != std::string::npos) continue;
        bool const isInHome = folder->starts_with(homeVariable) &&
                              (folder->size() == homeVariable.size() || (*folder)[homeVariable.size()] == '/');
        if (isInHome) folder = pathBelowHome(home, std::string_view(*folder).substr(homeVariable.size()));
        if (folder->starts_with('/')) found = std::move(folder);
    }
    return found;
}

std::optional<std::string> desktopFolder(std::string const& variable) {
    std::string folder = environmentValue(variable.c_str());
    if (folder.starts_with('/')) return folder;
    return folderInList(listOfFolders(), variable, ownHomeFolder());
}

std::vector<std::string> listInEnvironment(char const* variable, std::string_view fallback) {
    std::string const value = environmentValue(variable);
    std::string_view rest = value.empty() ? fallback : value;
    std::vector<std::string> parts;
    while (!rest.empty()) {
        std::size_t const end = std::min(rest.find(':'), rest.size());
        if (end > 0) parts.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return parts;
}

std::vector<std::string> localComputerFolders() { return listInEnvironment("FRAMEKEEPER_LOCAL_COMPUTER", ""); }

} // namespace mac
