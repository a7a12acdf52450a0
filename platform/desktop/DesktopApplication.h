#pragma once

#include <optional>
#include <string>
#include <vector>

// The applications that the desktop knows, by their desktop entries. For implementations; any thread.

namespace mac {

struct DesktopApplication {
    // The desktop entry's own file.
    std::string entryPath{};
    // Its name for people, in UTF-8 and not translated.
    std::string name{};
    // The program's file, with links resolved.
    std::string executable{};
    // Of its command line, with the codes for files (%f) as they stand.
    std::vector<std::string> words{};
    bool needsTerminal{false};
};

// The default application for the first of the content types ("text/plain") that has one, as the user's and the
// system's lists say, then those known for the type. The first whose program is there; nothing where there is none.
// Looked up anew.
std::optional<DesktopApplication> defaultApplicationFor(std::vector<std::string> const& contentTypes);

// Of a desktop entry; nothing for what is none, is hidden, or has a program that is not there.
std::optional<DesktopApplication> applicationOfEntryAtPath(std::string const& path);

// What programOf answers for the application's processes: its executable, or the script that its command runs; empty
// where an interpreter is all that can be told.
std::string programOf(DesktopApplication const& application);

// What starts the application with the files, each word a whole argument and the program's own file first. One that
// takes only one file gets the first.
std::vector<std::string> commandOf(DesktopApplication const& application, std::vector<std::string> const& paths);

// "file://" and the path's bytes, those with a meaning in a URI as percent escapes.
std::string fileURIOfPath(std::string const& path);

// The user's folder and then the system's, the weightiest first: for settings ("/etc/xdg"), for data ("/usr/share") and
// for desktop entries ("/usr/share/applications").
std::vector<std::string> configFolders();
std::vector<std::string> dataFolders();
std::vector<std::string> applicationFolders();

// The program's file with links resolved, of a path or by the search path; nothing when there is none that can be run.
std::optional<std::string> resolvedProgram(std::string const& word);

} // namespace mac
