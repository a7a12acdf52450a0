#include "platform/desktop/entries/KeyFile.h"
#include "platform/system/LongPath.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <iterator>

namespace mac {

namespace {

constexpr std::size_t LargestFile = std::size_t{1} << 20;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    std::size_t const first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string unescaped(std::string_view text) {
    if (text.find('\\') == std::string_view::npos) return std::string(text);
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '\\' || index + 1 == text.size()) {
            result.push_back(text[index]);
            continue;
        }
        char const next = text[++index];
        switch (next) {
        case 's':
            result.push_back(' ');
            break;
        case 'n':
            result.push_back('\n');
            break;
        case 't':
            result.push_back('\t');
            break;
        case 'r':
            result.push_back('\r');
            break;
        case '\\':
            result.push_back('\\');
            break;
        // Kept: not an escape of key files; command lines have escapes of their own.
        default:
            result.append({'\\', next});
        }
    }
    return result;
}

// Reads a word from the front of the text; false if a quote does not end.
bool readWord(std::string_view& text, std::string& word) {
    bool isQuoted = false;
    while (!text.empty()) {
        char const character = text.front();
        bool const isBlank = character == ' ' || character == '\t' || character == '\n';
        if (isBlank && !isQuoted) return true;
        text.remove_prefix(1);
        if (character == '"') {
            isQuoted = !isQuoted;
        } else if (character == '\\' && isQuoted && !text.empty()) {
            word.push_back(text.front());
            text.remove_prefix(1);
        } else {
            word.push_back(character);
        }
    }
    return !isQuoted;
}

std::vector<std::string> withListInEnvironment(std::string home, char const* variable, char const* fallback) {
    std::vector<std::string> folders{std::move(home)};
    std::ranges::move(listInEnvironment(variable, fallback), std::back_inserter(folders));
    return folders;
}

} // namespace

KeyFile KeyFile::read(std::string_view text) {
    KeyFile file;
    std::map<std::string, std::string>* group = &file.m_groups[""];
    while (!text.empty()) {
        std::size_t const end = text.find('\n');
        std::string_view const line = trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty() || line.front() == '#') continue;
        if (line.front() == '[' && line.back() == ']') {
            group = &file.m_groups[std::string(line.substr(1, line.size() - 2))];
            continue;
        }
        std::size_t const equals = line.find('=');
        if (equals == std::string_view::npos) continue;
        (*group)[std::string(trimmed(line.substr(0, equals)))] = trimmed(line.substr(equals + 1));
    }
    return file;
}

KeyFile KeyFile::readFile(std::string const& path) {
    Result<FileContents> const contents = readFileAtPath(path, LargestFile);
    if (!contents.hasValue()) return {};
    std::vector<std::byte> const& bytes = contents.value().bytes;
    return read({reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

std::vector<std::string> KeyFile::groups() const {
    std::vector<std::string> names;
    for (auto const& [name, keys] : m_groups)
        names.push_back(name);
    return names;
}

std::optional<std::string_view> KeyFile::value(std::string const& group, std::string const& key) const {
    auto const foundGroup = m_groups.find(group);
    if (foundGroup == m_groups.end()) return std::nullopt;
    auto const found = foundGroup->second.find(key);
    return found == foundGroup->second.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

std::optional<std::string> KeyFile::text(std::string const& group, std::string const& key) const {
    std::optional<std::string_view> const written = value(group, key);
    return written ? std::optional(unescaped(*written)) : std::nullopt;
}

std::vector<std::string> KeyFile::list(std::string const& group, std::string const& key) const {
    std::vector<std::string> parts;
    std::string_view rest = value(group, key).value_or(std::string_view());
    while (!rest.empty()) {
        std::size_t const end = rest.find(';');
        std::string_view const part = trimmed(rest.substr(0, end));
        if (!part.empty()) parts.emplace_back(part);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return parts;
}

std::optional<std::vector<std::string>> wordsOfCommandLine(std::string_view text) {
    std::vector<std::string> words;
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(" \t\n"), text.size()));
        if (text.empty()) return words;
        if (!readWord(text, words.emplace_back())) return std::nullopt;
    }
}

std::vector<std::string> configFolders() { return withListInEnvironment(configHome(), "XDG_CONFIG_DIRS", "/etc/xdg"); }

std::vector<std::string> dataFolders() {
    return withListInEnvironment(dataHome(), "XDG_DATA_DIRS", "/usr/local/share:/usr/share");
}

} // namespace mac
