#pragma once

#include <optional>
#include <span>
#include <string>

namespace mac {

// Runs the program: loads the main interface file that the main bundle names under NSMainNibFile, makes and connects
// the objects it describes, sends the controller awakeFromNib, shows the window and handles events until the end; the
// Apple events of other programs too: asked to quit, it ends as if the window were closed. If the controller ends the
// application in awakeFromNib, the window is not shown.
// Answers the exit status. Linux: 1, after a line on standard error, when there is no display or the interface file
// cannot be used; what answerOptions says for --help, --version and words that are no options.
//
// Linux: a program whose information file names its desktop entry under DesktopApplicationID runs once in a session: a
// second start brings the first one's window to the front and answers 0 (ApplicationInstance.h). It opens a window of
// its own if the environment variable FRAMEKEEPER_OWN_INSTANCE is set, without a session bus, and if the first one does
// not answer within 2 seconds.
int NSApplicationMain(int argc, char** argv);

// The program as it is named to people.
struct ProgramNames {
    // The name of its file: "framekeeper".
    std::string command{};
    // "0.1.0"
    std::string version{};
};

// Answers --help and --version on standard output, and refuses what is no option with a usage text on standard error.
// Words are bytes, the program's own name first. The exit status: 0, 1 if the output could not be written, 2 for words
// that are not known; nullopt if the program is to start. Words "-KEY VALUE" are settings (NSUserDefaults.h), and the
// toolkit has options of its own; both are let through.
std::optional<int> answerOptions(std::span<std::string const> words, ProgramNames const& names);

} // namespace mac
