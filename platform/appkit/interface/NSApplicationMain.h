#pragma once

namespace mac {

// Runs the program: loads the main interface file that the main bundle names under NSMainNibFile, makes and connects
// the objects it describes, sends the controller awakeFromNib, shows the window and handles events until the end; the
// Apple events of other programs too: asked to quit, it ends as if the window were closed. If the controller ends the
// application in awakeFromNib, the window is not shown.
// Answers the exit status. Linux: 1, after a line on standard error, when there is no display or the interface file
// cannot be used; what LaunchOptions.h says for --help, --version and words that are no options.
//
// Linux: a program whose information file names its desktop entry under DesktopApplicationID runs once in a session: a
// second start brings the first one's window to the front and answers 0 (ApplicationInstance.h). It opens a window of
// its own if the environment variable FRAMEKEEPER_OWN_INSTANCE is set, without a session bus, and if the first one does
// not answer within 2 seconds.
int NSApplicationMain(int argc, char** argv);

} // namespace mac
