#pragma once

#include "platform/system/Result.h"
#include <string>
#include <vector>

namespace framekeeper {

enum class Verb { Help, Version, List, Info, Reveal, Quit, Trash, Restore, Delete, SwapIcon, Login, Places, Report };
// What the verbs login and places do with their list.
enum class ListEdit { Show, Add, Remove };
// Table is the verb's form for people: text, or a page in HTML of report. CSV is a form of report alone, JSON and
// NullSeparated are forms of all other verbs.
enum class OutputForm { Table, JSON, NullSeparated, CSV };
enum class Confirmation { IsAsked, IsGiven };

// A parsed command line.
struct CommandLine {
    Verb verb{Verb::Help};
    ListEdit edit{ListEdit::Show};
    OutputForm form{OutputForm::Table};
    Confirmation confirmation{Confirmation::IsAsked};
    // In bytes, as they were given.
    std::vector<std::string> paths{};
};

// Reads the words behind the program's name. Options may stand anywhere before "--". The problem says what is wrong
// with them.
mac::Result<CommandLine, mac::Failure> readCommandLine(std::vector<std::string> const& words);

// How the command is used, as text for a terminal in the user's language.
std::string usageText();

} // namespace framekeeper
