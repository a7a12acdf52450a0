#pragma once

#include "platform/applescript/runtime/Application.h"
#include "platform/system/processes/ProcessList.h"
#include <span>

// Other programs of this computer, as far as the system tells of them.

namespace mac::applescript {

// Starts a program that goes on by itself; the first word is its name or path. False when it cannot be run.
bool startProgram(std::vector<std::string> const& words);

// Whether one of the programs, by the names of their files, runs.
bool isProgramRunning(std::span<char const* const> names);
// Asks each of them to end.
void quitPrograms(std::span<char const* const> names);

// The first process that is called so: by the name of its bundle or of its program's file, or by its identifier.
struct NamedProcess {
    ProcessIdentity identity{};
    // The path of the program; a process may execute another one later.
    std::string executable{};
    std::u16string name{};
    std::u16string identifier{};
};
std::optional<NamedProcess> processNamed(std::u16string_view name);
std::optional<NamedProcess> processIdentified(std::u16string_view identifier);

// What the desktop knows as an application: its name, its identifier, and how it is started.
struct InstalledProgram {
    std::u16string name{};
    std::u16string identifier{};
    std::vector<std::string> words{};
};
std::vector<InstalledProgram> installedPrograms();
std::optional<InstalledProgram> installedProgramNamed(std::u16string_view name);
std::optional<InstalledProgram> installedProgramIdentified(std::u16string_view identifier);
// The path of the application's bundle, or of its desktop entry if it has none.
std::optional<std::string> pathOfApplicationIdentified(std::u16string_view identifier);
std::optional<std::string> pathOfApplicationNamed(std::u16string_view name);

// The applications that this engine itself is; each one object.
Application& finderApplication();
Application& systemEventsApplication();
Application& systemPreferencesApplication();

// A program of this computer by name or identifier; null if no such program is installed. Answered anew each time, and
// the same object for the same program.
Application* programNamed(std::u16string_view name);
Application* programIdentified(std::u16string_view identifier);

} // namespace mac::applescript
