#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/KeyFile.h"
#include "platform/system/PercentEscapes.h"
#include "platform/system/XDGFolders.h"
#include "platform/system/processes/ProcessList.h"
#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace mac {

namespace {

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
    constexpr std::array codes{"%f", "%F", "%u", "%U"};
    return std::ranges::any_of(codes, [&](char const* code) { return word.find(code) != std::string::npos; });
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

std::string programOf(DesktopApplication const& application) {
    if (!isInterpreter(application.executable)) return application.executable;
    std::optional<std::string> const script = scriptInCommand(application.executable, application.words);
    return script ? resolvedProgram(*script).value_or("") : "";
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

std::string fileURIOfPath(std::string const& path) { return "file://" + percentEscaped(path); }

std::optional<std::string> resolvedProgram(std::string const& word) {
    std::vector<std::string> paths{word};
    if (word.find('/') == std::string::npos) {
        paths = listInEnvironment("PATH", "/usr/local/bin:/usr/bin:/bin");
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
