#include "platform/applescript/applications/Program.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/launchservices/Applications.h"
#include "platform/processes/SerialNumbers.h"
#include "platform/system/BytePath.h"
#include "platform/system/processes/DetachedProcess.h"
#include <algorithm>
#include <unistd.h>

namespace mac::applescript {

namespace {

std::string_view fileName(std::string const& path) { return BytePath(path).leaf(); }

std::optional<std::u16string> textIn(NSDictionary const& information, char const* key) {
    NSString const found = as<NSString>(information.objectForKey_(NSString::stringWithUTF8String_(key)));
    return found == nil ? std::nullopt : std::optional(std::u16string(found.codeUnits()));
}

NamedProcess named(RunningProcess const& process) {
    ProcessSerialNumber const number = serialNumberOf(process.identity);
    NSDictionary const information =
        ProcessInformationCopyDictionary(&number, kProcessDictionaryIncludeAllInformationMask);
    return {.identity = process.identity,
            .executable = process.executable,
            .name =
                textIn(information, kCFBundleNameKey).value_or(unitsFromFileSystemBytes(fileName(process.executable))),
            .identifier = textIn(information, kCFBundleIdentifierKey).value_or(std::u16string())};
}

// The command of the entry without its codes for files and the like, for a program that is started without files.
std::vector<std::string> wordsOf(DesktopEntry const& entry) {
    std::vector<std::string> words = entry.command().value_or(std::vector<std::string>());
    std::erase_if(words, [](std::string const& word) { return word.size() == 2 && word.front() == '%'; });
    return words;
}

template <class Matches>
std::optional<InstalledProgram> installedProgram(Matches const& matches) {
    for (InstalledEntry const& installed : installedEntries()) {
        DesktopEntry const entry = DesktopEntry::readFile(installed.path);
        std::optional<std::string> const name = entry.name();
        if (!name || entry.isHidden()) continue;
        InstalledProgram program{.name = unitsFromFileSystemBytes(*name),
                                 .identifier = unitsFromFileSystemBytes(installed.identifier()),
                                 .words = wordsOf(entry)};
        if (!program.words.empty() && matches(program)) return program;
    }
    return {};
}

} // namespace

std::optional<std::string> pathOfApplicationIdentified(std::u16string_view identifier) {
    CFURLRef url;
    NSString const wanted = NSString::stringWithCodeUnits(std::u16string(identifier));
    if (LSFindApplicationForInfo(kLSUnknownCreator, wanted, nil, nullptr, &url) == noErr)
        return url.path().fileSystemRepresentation();
    for (InstalledEntry const& installed : installedEntries())
        if (foldedName(unitsFromFileSystemBytes(installed.identifier())) == foldedName(identifier))
            return installed.path;
    return {};
}

std::optional<std::string> pathOfApplicationNamed(std::u16string_view name) {
    std::u16string const plain(foldedName(name).ends_with(u".app") ? name.substr(0, name.size() - 4) : name);
    // The Finder is the desktop's file browser.
    if (foldedName(plain) == u"finder") return pathOfApplicationIdentified(u"com.apple.finder");
    if (foldedName(plain) == u"system preferences") return pathOfApplicationIdentified(u"com.apple.systempreferences");
    CFURLRef url;
    NSString const bundle = NSString::stringWithCodeUnits(plain + u".app");
    if (LSFindApplicationForInfo(kLSUnknownCreator, nil, bundle, nullptr, &url) == noErr)
        return url.path().fileSystemRepresentation();
    for (InstalledEntry const& installed : installedEntries()) {
        DesktopEntry const entry = DesktopEntry::readFile(installed.path);
        std::optional<std::string> const found = entry.name();
        if (found && foldedName(unitsFromFileSystemBytes(*found)) == foldedName(plain)) return installed.path;
    }
    // A program that runs without being installed.
    if (std::optional<NamedProcess> const process = processNamed(plain)) return process->executable;
    return {};
}

namespace {

// A bundle, or an entry of the desktop that has the role of an application of Mac OS X.
std::optional<InstalledProgram> launchServicesProgram(std::u16string_view identifier) {
    CFURLRef url;
    NSString const wanted = NSString::stringWithCodeUnits(std::u16string(identifier));
    if (LSFindApplicationForInfo(kLSUnknownCreator, wanted, nil, nullptr, &url) != noErr) return {};
    NSString const path = url.path();
    NSBundle const bundle = NSBundle::bundleWithPath_(path);
    std::optional<std::string> const executable = bundle.executablePath().fileSystemRepresentation();
    if (!executable) return {};
    return InstalledProgram{.name =
                                std::u16string(path.lastPathComponent().stringByDeletingPathExtension().codeUnits()),
                            .identifier = std::u16string(identifier),
                            .words = {*executable}};
}

} // namespace

bool startProgram(std::vector<std::string> const& words) {
    std::optional<std::string> const file = words.empty() ? std::nullopt : resolvedProgram(words.front());
    return file && startDetached(*file, words).hasValue();
}

bool isProgramRunning(std::span<char const* const> names) {
    return std::ranges::any_of(runningProcesses(), [&](RunningProcess const& process) {
        return std::ranges::find(names, fileName(process.executable)) != names.end();
    });
}

void quitPrograms(std::span<char const* const> names) {
    for (RunningProcess const& process : runningProcesses())
        if (std::ranges::find(names, fileName(process.executable)) != names.end()) askToEnd(process.identity);
}

// This very process before others of its name.
template <class Matches>
std::optional<NamedProcess> firstProcess(Matches const& matches) {
    std::vector<RunningProcess> processes = runningProcesses();
    std::stable_partition(processes.begin(), processes.end(),
                          [](RunningProcess const& process) { return process.identity.pid == ::getpid(); });
    for (RunningProcess const& process : processes) {
        NamedProcess found = named(process);
        if (matches(found, process)) return found;
    }
    return {};
}

std::optional<NamedProcess> processNamed(std::u16string_view name) {
    return firstProcess([&](NamedProcess const& found, RunningProcess const& process) {
        return foldedName(found.name) == foldedName(name) ||
               foldedName(unitsFromFileSystemBytes(fileName(process.executable))) == foldedName(name);
    });
}

std::optional<NamedProcess> processIdentified(std::u16string_view identifier) {
    return firstProcess([&](NamedProcess const& found, RunningProcess const& /*process*/) {
        return !found.identifier.empty() && foldedName(found.identifier) == foldedName(identifier);
    });
}

std::vector<InstalledProgram> installedPrograms() {
    std::vector<InstalledProgram> all;
    (void)installedProgram([&](InstalledProgram const& program) {
        all.push_back(program);
        return false;
    });
    return all;
}

std::optional<InstalledProgram> installedProgramNamed(std::u16string_view name) {
    return installedProgram([&](InstalledProgram const& program) {
        return foldedName(program.name) == foldedName(name) || foldedName(program.identifier) == foldedName(name);
    });
}

std::optional<InstalledProgram> installedProgramIdentified(std::u16string_view identifier) {
    std::optional<InstalledProgram> found = installedProgram(
        [&](InstalledProgram const& program) { return foldedName(program.identifier) == foldedName(identifier); });
    return found ? found : launchServicesProgram(identifier);
}

} // namespace mac::applescript
