#include "platform/desktop/entries/StartedItem.h"
#include "platform/desktop/HexText.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::string_view BundleExtension = ".app";
// How many commands and words of one line are looked at; real ones have few.
constexpr int MostLooks = 100;

constexpr auto Shells = std::to_array<std::string_view>({"ash", "bash", "dash", "fish", "ksh", "mksh", "sh", "zsh"});
// Programs that start the one that their arguments name, and interpreters of the script that these name.
constexpr auto Starters =
    std::to_array<std::string_view>({"bwrap",  "chrt",    "command",     "dbus-launch", "dbus-run-session",
                                     "env",    "exec",    "firejail",    "gjs",         "ionice",
                                     "java",   "mono",    "nice",        "node",        "nohup",
                                     "perl",   "pkexec",  "prime-run",   "ruby",        "setsid",
                                     "stdbuf", "sudo",    "systemd-cat", "systemd-run", "taskset",
                                     "time",   "timeout", "unshare",     "uwsm-app",    "wine"});

template <std::size_t N>
bool isAmong(std::array<std::string_view, N> const& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

// Whether a shell would set a variable by it: "NAME=value".
bool isAssignment(std::string_view word) {
    std::size_t const equals = word.find('=');
    if (equals == std::string_view::npos || equals == 0) return false;
    return std::ranges::all_of(word.substr(0, equals), [](char character) {
        char16_t const letter = lowercaseASCII(static_cast<unsigned char>(character));
        return character == '_' || (letter >= u'a' && letter <= u'z') || (letter >= u'0' && letter <= u'9');
    });
}

bool isBundleName(std::string_view name) {
    return name.size() > BundleExtension.size() &&
           asciiLowercase(name.substr(name.size() - BundleExtension.size())) == BundleExtension;
}

// Finds what one command line starts.
class StartedItemSearch {
public:
    explicit StartedItemSearch(ResolvedFolders& folders) : m_folders(folders) {}

    // Empty if nothing is started.
    std::string itemOf(std::span<std::string const> words);

private:
    struct Program {
        // Absolute if it was given so or found.
        std::string path{};
        // The bundle that it lies in; empty without one.
        std::string bundle{};
    };

    bool mayLook() { return ++m_looks <= MostLooks; }
    Program programOf(std::string const& word) const;
    std::string resolvedProgramPath(std::string const& path) const;
    std::string itemBehindStarter(std::span<std::string const> arguments);
    std::string itemOfShell(std::span<std::string const> arguments);
    std::string itemOfShellText(std::string const& text);

    // The folder that a shell's text went to; empty if unknown.
    std::string m_folder{};
    int m_looks{0};
    ResolvedFolders& m_folders;
};

// With symbolic links followed; empty if nothing is there. Its folder is resolved once for all programs in it.
std::string StartedItemSearch::resolvedProgramPath(std::string const& path) const {
    BytePath const program(path);
    auto const [folder, isNew] = m_folders.try_emplace(std::string(program.parent()));
    if (isNew) folder->second = resolvedPath(folder->first);
    std::string resolved = BytePath(folder->second).joined(program.leaf());
    char first = 0;
    if (::readlink(resolved.c_str(), &first, 1) >= 0) return resolvedPath(resolved);
    return errno == EINVAL ? resolved : std::string();
}

StartedItemSearch::Program StartedItemSearch::programOf(std::string const& word) const {
    Program program{.path = word};
    bool const isPath = word.find('/') != std::string::npos;
    if (isPath && !word.starts_with('/') && !m_folder.empty()) program.path = BytePath(m_folder).joined(word);
    if (program.path.find("/..") != std::string::npos) program.path = resolvedPath(program.path);
    if (isPath) program.bundle = bundleAround(program.path);
    if (!program.bundle.empty()) return program;
    if (program.path.starts_with('/')) {
        std::string const resolved = resolvedProgramPath(program.path);
        program.bundle = bundleAround(resolved);
        return program;
    }
    std::optional<std::string> const found = resolvedProgram(program.path);
    if (!found) return program;
    program.bundle = bundleAround(*found);
    if (!isPath) program.path = *found;
    return program;
}

std::string StartedItemSearch::itemBehindStarter(std::span<std::string const> arguments) {
    while (!arguments.empty() && mayLook()) {
        std::string const& word = arguments.front();
        // What env splits into words itself.
        if (word == "-S" && arguments.size() > 1) return itemOfShellText(arguments[1]);
        bool const isOption = word.starts_with('-') || isAssignment(word);
        if (!isOption) {
            Program const program = programOf(word);
            bool const isFile = word.find('/') != std::string::npos && pathExists(program.path);
            if (!program.bundle.empty()) return program.bundle;
            if (resolvedProgram(program.path)) return itemOf(arguments);
            // An interpreter's script need not be executable.
            if (isFile) return program.path;
        }
        arguments = arguments.subspan(1);
    }
    return {};
}

std::string StartedItemSearch::itemOfShell(std::span<std::string const> arguments) {
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        std::string const& word = arguments[index];
        if (!word.starts_with('-')) return itemBehindStarter(arguments.subspan(index));
        bool const isText = !word.starts_with("--") && word.ends_with('c');
        if (isText) return index + 1 < arguments.size() ? itemOfShellText(arguments[index + 1]) : std::string();
    }
    return {};
}

std::string StartedItemSearch::itemOfShellText(std::string const& text) {
    std::string first;
    for (CommandWords const& command : commandsOfShellText(text)) {
        if (!mayLook()) break;
        if (command.size() > 1 && command.front() == "cd") {
            m_folder = command[1];
            continue;
        }
        std::string item = itemOf(command);
        if (isBundleName(BytePath(item).leaf())) return item;
        if (first.empty()) first = std::move(item);
    }
    return first;
}

std::string StartedItemSearch::itemOf(std::span<std::string const> words) {
    while (!words.empty() && isAssignment(words.front()))
        words = words.subspan(1);
    if (words.empty() || !mayLook()) return {};
    Program const program = programOf(words.front());
    if (!program.bundle.empty()) return program.bundle;
    std::string_view const name = BytePath(words.front()).leaf();
    std::span<std::string const> const arguments = words.subspan(1);
    std::string behind;
    if (name == LoginLauncherName && !arguments.empty()) {
        std::string const path = bytesFromHexText(arguments.front()).value_or("");
        std::string_view const bundle = bundleAround(path);
        behind = bundle.empty() ? path : bundle;
    } else if (isAmong(Shells, name)) {
        behind = itemOfShell(arguments);
    } else if (isAmong(Starters, name) || name.starts_with("python")) {
        behind = itemBehindStarter(arguments);
    }
    return behind.empty() ? program.path : behind;
}

} // namespace

std::string_view bundleAround(std::string_view path) {
    for (BytePath folder(BytePath(path).parent()); !folder.leaf().empty(); folder = BytePath(folder.parent())) {
        if (isBundleName(folder.leaf())) return folder.bytes();
    }
    return {};
}

std::string itemStartedBy(std::string_view commandLine, ResolvedFolders& folders) {
    std::optional<CommandWords> const words = wordsOfEntryCommand(commandLine);
    return words ? StartedItemSearch(folders).itemOf(*words) : std::string();
}

std::string itemStartedBy(std::string_view commandLine) {
    ResolvedFolders folders;
    return itemStartedBy(commandLine, folders);
}

std::string loginLauncherPath() {
    std::unique_ptr<char, decltype(&::free)> const program(::realpath("/proc/self/exe", nullptr), &::free);
    bool const isOfBuild = program && BytePath(program.get()).isBelow(BUILD_FOLDER);
    if (isOfBuild) return BUILT_LOGIN_LAUNCHER;
    std::string const beside = program ? loginLauncherBeside(program.get()) : std::string();
    return beside.empty() ? INSTALLED_LOGIN_LAUNCHER : beside;
}

std::string loginLauncherBeside(std::string const& program) {
    // An installed program lies up to six folders below the prefix.
    constexpr int mostFoldersAbove = 6;
    struct stat ofProgram {};
    if (::stat(program.c_str(), &ofProgram) != 0) return {};
    BytePath folder(BytePath(program).parent());
    for (int above = 0; above < mostFoldersAbove && !folder.leaf().empty(); ++above) {
        folder = BytePath(folder.parent());
        std::string launcher = folder.joined(LAUNCHER_BELOW_PREFIX);
        struct stat status {};
        bool const isThere = ::stat(launcher.c_str(), &status) == 0 && S_ISREG(status.st_mode);
        bool const isTrusted = isThere && (status.st_uid == 0 || status.st_uid == ofProgram.st_uid);
        if (isTrusted && ::access(launcher.c_str(), X_OK) == 0) return launcher;
    }
    return {};
}

} // namespace mac
