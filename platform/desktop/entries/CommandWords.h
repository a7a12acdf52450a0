#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

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
