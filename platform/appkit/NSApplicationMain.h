#pragma once

namespace mac {

// Runs the program: loads the main interface file that the main bundle names under NSMainNibFile, makes and connects
// the objects it describes, sends the controller awakeFromNib, shows the window and handles events until the end; the
// Apple events of other programs too: asked to quit, it ends as if the window were closed. If the controller ends the
// application in awakeFromNib, the window is not shown.
// Answers the exit status. Linux: 1, after a line on standard error, when there is no display or the interface file
// cannot be used.
int NSApplicationMain(int argc, char** argv);

} // namespace mac
