#include "platform/applescript/applications/Program.h"
#include "platform/events/AppleEvents.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/FolderContents.h"
#include "platform/processes/KeyFile.h"
#include "platform/processes/ProgramStart.h"
#include <algorithm>
#include <cstdlib>

namespace mac::applescript {

namespace {

std::string fileName(std::string const& path) { return path.substr(path.rfind('/') + 1); }

std::optional<std::u16string> textIn(NSDictionary const& information, char const* key) {
    NSString const found = as<NSString>(information.objectForKey_(NSString::stringWithUTF8String_(key)));
    return found == nil ? std::nullopt : std::optional(std::u16string(found.codeUnits()));
}

NamedProcess named(RunningProcess const& process) {
    ProcessSerialNumber const number = serialNumberOf(process.identity);
    NSDictionary const information =
        ProcessInformationCopyDictionary(&number, kProcessDictionaryIncludeAllInformationMask);
    return {.identity = process.identity,
            .name =
                textIn(information, kCFBundleNameKey).value_or(unitsFromFileSystemBytes(fileName(process.executable))),
            .identifier = textIn(information, kCFBundleIdentifierKey).value_or(std::u16string())};
}

std::vector<std::string> entryFolders() {
    auto const variable = [](char const* name, std::string const& fallback) {
        char const* const value = std::getenv(name);
        return value && *value ? std::string(value) : fallback;
    };
    std::string const all = variable("XDG_DATA_HOME", variable("HOME", "/") + "/.local/share") + ":" +
                            variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    std::vector<std::string> folders;
    for (std::size_t begin = 0; begin <= all.size();) {
        std::size_t const end = std::min(all.find(':', begin), all.size());
        if (end > begin) folders.push_back(all.substr(begin, end - begin) + "/applications");
        begin = end + 1;
    }
    return folders;
}

// Codes for files and the like are nothing that a program without files is given.
std::vector<std::string> wordsWithoutCodes(std::string_view commandLine) {
    std::vector<std::string> words = wordsOfCommandLine(commandLine).value_or(std::vector<std::string>());
    std::erase_if(words, [](std::string const& word) { return word.size() == 2 && word.front() == '%'; });
    return words;
}

template <class Matches>
std::optional<InstalledProgram> installedProgram(Matches const& matches) {
    constexpr char group[] = "Desktop Entry";
    constexpr std::string_view ending = ".desktop";
    for (std::string const& folder : entryFolders()) {
        for (std::string const& file :
             namesInFolder(folder, LinkAtEnd::IsFollowed).value_or(std::vector<std::string>())) {
            if (!file.ends_with(ending)) continue;
            KeyFile const entry = KeyFile::readFile(std::string(folder).append("/").append(file));
            std::optional<std::string> const name = entry.text(group, "Name");
            std::optional<std::string> const commandLine = entry.text(group, "Exec");
            if (!name || !commandLine || entry.value(group, "Hidden") == "true") continue;
            InstalledProgram program{.name = unitsFromFileSystemBytes(*name),
                                     .identifier =
                                         unitsFromFileSystemBytes(file.substr(0, file.size() - ending.size())),
                                     .words = wordsWithoutCodes(*commandLine)};
            if (!program.words.empty() && matches(program)) return program;
        }
    }
    return {};
}

} // namespace

bool isProgramRunning(std::span<char const* const> names) {
    return std::ranges::any_of(runningProcesses(), [&](RunningProcess const& process) {
        return std::ranges::find(names, fileName(process.executable)) != names.end();
    });
}

void quitPrograms(std::span<char const* const> names) {
    for (RunningProcess const& process : runningProcesses())
        if (std::ranges::find(names, fileName(process.executable)) != names.end()) askToEnd(process.identity);
}

std::optional<NamedProcess> processNamed(std::u16string_view name) {
    for (RunningProcess const& process : runningProcesses()) {
        NamedProcess found = named(process);
        bool const isIt = foldedName(found.name) == foldedName(name) ||
                          foldedName(unitsFromFileSystemBytes(fileName(process.executable))) == foldedName(name);
        if (isIt) return found;
    }
    return {};
}

std::optional<NamedProcess> processIdentified(std::u16string_view identifier) {
    for (RunningProcess const& process : runningProcesses()) {
        NamedProcess found = named(process);
        if (!found.identifier.empty() && foldedName(found.identifier) == foldedName(identifier)) return found;
    }
    return {};
}

std::optional<InstalledProgram> installedProgramNamed(std::u16string_view name) {
    return installedProgram([&](InstalledProgram const& program) {
        return foldedName(program.name) == foldedName(name) || foldedName(program.identifier) == foldedName(name);
    });
}

std::optional<InstalledProgram> installedProgramIdentified(std::u16string_view identifier) {
    return installedProgram(
        [&](InstalledProgram const& program) { return foldedName(program.identifier) == foldedName(identifier); });
}

} // namespace mac::applescript
