#include "platform/processes/DesktopApplication.h"
#include "platform/processes/KeyFile.h"
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <unistd.h>

namespace mac {

namespace {

std::string environment(char const* name, std::string const& fallback) {
    char const* const value = std::getenv(name);
    return value && *value ? value : fallback;
}

std::vector<std::string> splitAtColons(std::string const& text) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        std::size_t const end = std::min(text.find(':', begin), text.size());
        if (end > begin) parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

std::string home() { return environment("HOME", "/"); }

std::vector<std::string> applicationFolders() {
    std::vector<std::string> folders = dataFolders();
    for (std::string& folder : folders)
        folder += "/applications";
    return folders;
}

std::string lowercase(std::string text) {
    for (char& character : text) {
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
    }
    return text;
}

// The lists of default applications, the weightiest first: in each folder the desktop's own before the common one.
std::vector<std::string> defaultLists() {
    std::vector<std::string> folders{environment("XDG_CONFIG_HOME", home() + "/.config")};
    for (std::string const& folder : splitAtColons(environment("XDG_CONFIG_DIRS", "/etc/xdg")))
        folders.push_back(folder);
    for (std::string const& folder : applicationFolders())
        folders.push_back(folder);
    std::vector<std::string> const desktops = splitAtColons(environment("XDG_CURRENT_DESKTOP", ""));
    std::vector<std::string> lists;
    for (std::string const& folder : folders) {
        for (std::string const& desktop : desktops)
            lists.push_back(std::string(folder).append("/").append(lowercase(desktop)).append("-mimeapps.list"));
        lists.push_back(folder + "/mimeapps.list");
    }
    return lists;
}

// The programs for the type by the names of their entries, in the order in which they are to be tried.
std::vector<std::string> candidatesFor(std::string const& contentType) {
    std::vector<std::string> names;
    std::set<std::string> removed;
    auto const add = [&](KeyFile const& file, char const* group) {
        for (std::string& name : file.list(group, contentType)) {
            if (!removed.contains(name)) names.push_back(std::move(name));
        }
    };
    std::vector<KeyFile> lists;
    for (std::string const& path : defaultLists())
        lists.push_back(KeyFile::readFile(path));
    for (KeyFile const& file : lists)
        add(file, "Default Applications");
    // What the user took away does not come back from lists that count less.
    for (KeyFile const& file : lists) {
        add(file, "Added Associations");
        for (std::string& name : file.list("Removed Associations", contentType))
            removed.insert(std::move(name));
    }
    for (std::string const& folder : applicationFolders())
        add(KeyFile::readFile(folder + "/mimeinfo.cache"), "MIME Cache");
    return names;
}

// The entry of that name in one of the folders; a dash in the name may stand for a folder's end.
std::optional<std::string> entryPath(std::string name) {
    // A name is no path out of the folders.
    if (name.find('/') != std::string::npos) return std::nullopt;
    for (std::size_t dash = 0; dash != std::string::npos; dash = name.find('-', dash + 1)) {
        if (name[dash] == '-') name[dash] = '/';
        for (std::string const& folder : applicationFolders()) {
            std::string path = folder;
            path.append("/").append(name);
            if (::access(path.c_str(), R_OK) == 0) return path;
        }
    }
    return std::nullopt;
}

// The word with the codes in it resolved that stand for a part of a word.
std::string expanded(std::string const& word, DesktopApplication const& application, std::string const& path) {
    std::string result;
    for (std::size_t index = 0; index < word.size(); ++index) {
        if (word[index] != '%' || index + 1 == word.size()) {
            result.push_back(word[index]);
            continue;
        }
        switch (word[++index]) {
        case '%':
            result.push_back('%');
            break;
        case 'f':
        case 'F':
            result += path;
            break;
        case 'u':
        case 'U':
            if (!path.empty()) result += fileURIOfPath(path);
            break;
        case 'c':
            result += application.name;
            break;
        case 'k':
            result += application.entryPath;
            break;
        // Others stand for nothing any more.
        default:
            break;
        }
    }
    return result;
}

bool isListOfFiles(std::string const& word) { return word == "%F" || word == "%U"; }

bool standsForFiles(std::string const& word) {
    for (char const* const code : {"%f", "%F", "%u", "%U"}) {
        if (word.find(code) != std::string::npos) return true;
    }
    return false;
}

} // namespace

std::optional<DesktopApplication> applicationOfEntryAtPath(std::string const& path) {
    constexpr char group[] = "Desktop Entry";
    KeyFile const entry = KeyFile::readFile(path);
    std::optional<std::string> const commandLine = entry.text(group, "Exec");
    if (!commandLine || entry.value(group, "Hidden") == "true") return std::nullopt;
    std::optional<std::vector<std::string>> words = wordsOfCommandLine(*commandLine);
    if (!words || words->empty()) return std::nullopt;
    std::optional<std::string> program = resolvedProgram(words->front());
    if (!program) return std::nullopt;
    bool const needsTerminal = entry.value(group, "Terminal") == "true";
    return DesktopApplication{path, entry.text(group, "Name").value_or(path.substr(path.rfind('/') + 1)),
                              std::move(*program), std::move(*words), needsTerminal};
}

std::optional<DesktopApplication> defaultApplicationFor(std::vector<std::string> const& contentTypes) {
    for (std::string const& contentType : contentTypes) {
        for (std::string const& name : candidatesFor(contentType)) {
            std::optional<std::string> const path = entryPath(name);
            if (!path) continue;
            if (std::optional<DesktopApplication> application = applicationOfEntryAtPath(*path)) return application;
        }
    }
    return std::nullopt;
}

std::vector<std::string> commandOf(DesktopApplication const& application, std::vector<std::string> const& paths) {
    std::vector<std::string> command{application.executable};
    std::string const first = paths.empty() ? "" : paths.front();
    bool hasFiles = paths.empty();
    for (std::size_t index = 1; index < application.words.size(); ++index) {
        std::string const& word = application.words[index];
        if (isListOfFiles(word)) {
            for (std::string const& path : paths)
                command.push_back(word == "%U" ? fileURIOfPath(path) : path);
        } else if (std::string text = expanded(word, application, first); !text.empty()) {
            command.push_back(std::move(text));
        }
        hasFiles = hasFiles || standsForFiles(word);
    }
    // It does not say that it takes files; most do.
    if (!hasFiles) command.push_back(first);
    return command;
}

std::string percentEscaped(std::string const& path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::string_view plain = "/-._~";
    std::string escaped;
    for (char const character : path) {
        bool const isLetter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
        if (isLetter || (character >= '0' && character <= '9') || plain.find(character) != std::string_view::npos) {
            escaped.push_back(character);
            continue;
        }
        auto const byte = static_cast<unsigned char>(character);
        escaped.push_back('%');
        escaped.push_back(digits[byte >> 4]);
        escaped.push_back(digits[byte & 0xF]);
    }
    return escaped;
}

std::string fileURIOfPath(std::string const& path) { return "file://" + percentEscaped(path); }

std::vector<std::string> dataFolders() {
    std::vector<std::string> folders{environment("XDG_DATA_HOME", home() + "/.local/share")};
    for (std::string& folder : splitAtColons(environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share")))
        folders.push_back(std::move(folder));
    return folders;
}

std::optional<std::string> resolvedProgram(std::string const& word) {
    std::vector<std::string> paths{word};
    if (word.find('/') == std::string::npos) {
        paths = splitAtColons(environment("PATH", "/usr/local/bin:/usr/bin:/bin"));
        for (std::string& folder : paths)
            folder += "/" + word;
    }
    for (std::string const& path : paths) {
        if (::access(path.c_str(), X_OK) != 0) continue;
        std::unique_ptr<char, decltype(&::free)> const resolved(::realpath(path.c_str(), nullptr), &::free);
        if (resolved) return std::string(resolved.get());
    }
    return std::nullopt;
}

} // namespace mac
