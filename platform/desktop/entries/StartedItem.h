#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// What the command line of a desktop entry starts (its Exec, with the escapes of the file resolved): the path of the
// bundle NAME.app that its program lies in, else that of the program, else the program's name as it stands. Empty for a
// command line without words or with a quote that does not end.
//
// Quotes are read as the standard has them and as shells do. A program that starts another one (env, nice, sh -c, an
// interpreter) is looked through, and so are symbolic links to a program in a bundle. Reads nothing but the file
// system's names; how many is bounded. Bytes; for implementations, any thread.
std::string itemStartedBy(std::string_view commandLine);

// The folders of programs that were resolved for other command lines before, so that many are read quickly.
using ResolvedFolders = std::map<std::string, std::string>;
std::string itemStartedBy(std::string_view commandLine, ResolvedFolders& folders);

// The bundle that the path leads into: "/a/NAME.app" for "/a/NAME.app/Contents/Linux/name". Of bundles in each other
// the innermost. Empty for a path that lies in no bundle, also for the bundle's own.
std::string_view bundleAround(std::string_view path);

// The launcher of entries whose program has a path that not every desktop reads alike: it takes the path of the bundle
// or program as pairs of hexadecimal digits. The path of the launcher, in the build's folder for a program of that
// folder, else where it is installed.
std::string loginLauncherPath();
// The launcher that was installed with the program below the same prefix, whatever that is; empty if there is none that
// belongs to root or to the program's owner.
std::string loginLauncherBeside(std::string const& program);
inline constexpr char LoginLauncherName[] = "framekeeper-login";

// The words of one command, quotes resolved.
using CommandWords = std::vector<std::string>;

// The words of a desktop entry's command line, in single or double quotes or with backslashes, without the codes for
// files (%f). An apostrophe that is no quote, since none ends it, stands for itself. nullopt if a double quote does not
// end. Any thread.
std::optional<CommandWords> wordsOfEntryCommand(std::string_view commandLine);

// The commands of a shell's text in their order, divided by ";", "&", "|", parentheses and line ends. Of expansions
// only the home folder's ($HOME, ${HOME}, "~/") is made. What does not end well ends with the text. Any thread.
std::vector<CommandWords> commandsOfShellText(std::string_view text);

} // namespace mac
