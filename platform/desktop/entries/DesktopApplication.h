#pragma once

#include "platform/desktop/DesktopProblem.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mac {

// An application that the desktop knows by its desktop entry, ready to be started. A value; for implementations.
struct DesktopApplication {
    // The desktop entry's own file.
    std::string entryPath{};
    // The name for people, in UTF-8 and not translated.
    std::string name{};
    // The program's file, with links resolved.
    std::string executable{};
    // The words of the command line, with the codes for files (%f) as they stand.
    std::vector<std::string> words{};
    bool needsTerminal{false};
};

// nullopt for an entry that is hidden, has no command line, or whose program is not there. Any thread.
std::optional<DesktopApplication> applicationOfEntry(DesktopEntry const& entry);

// What programOf answers for the application's processes: its executable, or the script that its command runs; empty
// if only the interpreter is known. Any thread.
std::string programOf(DesktopApplication const& application);

// The application's command with the files, one argument a word, the program's own file first. A command that takes
// only one file gets the first. Any thread.
std::vector<std::string> commandOf(DesktopApplication const& application, std::vector<std::string> const& paths);

// "file://" and the path's bytes, percent-escaped where they have a meaning in a URI. Any thread.
std::string fileURIOfPath(std::string const& path);

// How a program is started.
struct ProgramStart {
    // The file that is executed: the interpreter of a script.
    std::string executable;
    std::vector<std::string> words;
    // The current folder; empty for this process's own.
    std::string folder{};
};

// Starts a program that shows windows, detached, and answers its process ID. NoDisplay without a display, NoAnswer if
// the system refuses to start it. Main thread.
DesktopResult<std::int32_t> startProgram(ProgramStart const& start);

// Starts the application with the files, in a terminal if it needs one, and does not wait for it. As startProgram, and
// Refused if there is no terminal. Main thread.
DesktopOutcome startApplication(DesktopApplication const& application, std::vector<std::string> const& paths);
// Starts the application with a URL in the place of its files, otherwise as startApplication. Main thread.
DesktopOutcome startApplicationAt(DesktopApplication const& application, std::string const& url);

} // namespace mac
