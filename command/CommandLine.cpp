#include "command/CommandLine.h"
#include "command/Report.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <algorithm>
#include <array>

namespace framekeeper {

namespace {

using mac::Failure;
using mac::localizable;
using mac::Result;

enum class Operands { None, Paths };

struct VerbRow {
    std::string_view word;
    Verb verb;
    Operands operands;
};

constexpr std::array Verbs{
    VerbRow{"list", Verb::List, Operands::None},      VerbRow{"info", Verb::Info, Operands::Paths},
    VerbRow{"reveal", Verb::Reveal, Operands::Paths}, VerbRow{"quit", Verb::Quit, Operands::Paths},
    VerbRow{"trash", Verb::Trash, Operands::Paths},   VerbRow{"restore", Verb::Restore, Operands::Paths},
    VerbRow{"delete", Verb::Delete, Operands::Paths}, VerbRow{"swap-icon", Verb::SwapIcon, Operands::Paths},
    VerbRow{"login", Verb::Login, Operands::None},    VerbRow{"places", Verb::Places, Operands::None},
    VerbRow{"report", Verb::Report, Operands::Paths},
};

// The text with the word in its place.
Failure wrongUse(char const* text, std::string const& word = {}) { return {filledIn(localized(text), word)}; }

// Whether the word is an option, which is then taken.
bool takeOption(CommandLine& line, std::string_view word) {
    if (word == "--json")
        line.form = OutputForm::JSON;
    else if (word == "-0" || word == "--null")
        line.form = OutputForm::NullSeparated;
    else if (word == "--csv")
        line.form = OutputForm::CSV;
    else if (word == "-y" || word == "--yes")
        line.confirmation = Confirmation::IsGiven;
    else
        return false;
    return true;
}

// Takes "add" or "remove" behind the name of a list; the places know only "remove".
Result<void, Failure> takeEdit(CommandLine& line, std::vector<std::string>& operands) {
    bool const isList = line.verb == Verb::Login || line.verb == Verb::Places;
    if (!isList || operands.empty()) return {};
    std::string const word = operands.front();
    bool const adds = word == "add" && line.verb == Verb::Login;
    if (!adds && word != "remove") return wrongUse(localizable("There is no list operation “%@”"), word);
    line.edit = adds ? ListEdit::Add : ListEdit::Remove;
    operands.erase(operands.begin());
    return {};
}

bool isFormOf(Verb verb, OutputForm form) {
    if (form == OutputForm::Table) return true;
    return (form == OutputForm::CSV) == (verb == Verb::Report);
}

Result<CommandLine, Failure> withOperands(CommandLine line, std::vector<std::string> operands) {
    if (operands.empty()) return wrongUse(localizable("No verb is given"));
    auto const* const row = std::ranges::find(Verbs, operands.front(), &VerbRow::word);
    if (row == Verbs.end()) return wrongUse(localizable("There is no verb “%@”"), operands.front());
    line.verb = row->verb;
    operands.erase(operands.begin());
    if (Result<void, Failure> const edit = takeEdit(line, operands); !edit.isDone()) return edit.problem();
    bool const takesPaths = row->operands == Operands::Paths || line.edit != ListEdit::Show;
    std::string const verb(row->word);
    if (takesPaths && operands.empty()) return wrongUse(localizable("%@ needs a path"), verb);
    if (!takesPaths && !operands.empty()) return wrongUse(localizable("%@ takes no path"), verb);
    if (line.edit == ListEdit::Add && operands.size() > 1) return wrongUse(localizable("%@ add takes one path"), verb);
    bool const isPathEmpty = std::ranges::any_of(operands, &std::string::empty);
    if (isPathEmpty) return wrongUse(localizable("A path is empty"));
    if (line.confirmation == Confirmation::IsGiven && line.verb != Verb::Delete)
        return wrongUse(localizable("--yes belongs to delete alone"));
    if (!isFormOf(line.verb, line.form)) return wrongUse(localizable("%@ has no output of this form"), verb);
    line.paths = std::move(operands);
    return line;
}

} // namespace

Result<CommandLine, Failure> readCommandLine(std::vector<std::string> const& words) {
    CommandLine line;
    std::vector<std::string> operands;
    bool areOptionsOver = false;
    for (std::string const& word : words) {
        bool const isOption = !areOptionsOver && word.size() > 1 && word.front() == '-';
        if (!isOption) {
            operands.push_back(word);
            continue;
        }
        if (word == "--help" || word == "-h") return CommandLine{.verb = Verb::Help};
        if (word == "--version") return CommandLine{.verb = Verb::Version};
        if (word == "--")
            areOptionsOver = true;
        else if (!takeOption(line, word))
            return wrongUse(localizable("There is no option “%@”"), word);
    }
    return withOperands(std::move(line), std::move(operands));
}

std::string usageText() {
    return localized(R"(usage: framekeeper-cli [OPTION]... VERB [PATH]...

Finds the copies of Mirror Frame and cleans up.

  list                 all copies on this computer, and the paths of those that
                       run, start at login or stand in the places
  info PATH...         what is known of these copies
  reveal PATH...       show them in the file browser
  quit PATH...         ask the running copies to quit
  trash PATH...        move them to the trash
  restore PATH...      put them back: the path in the trash, or where they came from
  delete PATH...       delete them for good
  swap-icon PATH...    give them the other one of their two icons
  login                the copies that start at login
  login add PATH       make this copy the one that starts at login
  login remove PATH... remove these from the login items
  places               the copies in the file browser's places
  places remove PATH...
                       remove these from the places
  report FILE...|FOLDER...
                       what many hosts told with list --json, as one page in
                       HTML: a file HOST.json each, or folders of such files

  --json       output for programs
  -0, --null   paths alone, each with a NUL behind it
  --csv        the report as rows for a spreadsheet
  -y, --yes    delete without asking
  -h, --help   this text
  --version    the version

Exit status: 0 done, 1 failed, 2 wrong usage, 3 no such copy, 4 done but not shown in the
file browser, 5 not confirmed, 6 output could not be written, 130 interrupted.
)");
}

} // namespace framekeeper
