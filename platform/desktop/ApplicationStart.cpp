#include "platform/desktop/ApplicationStart.h"
#include "platform/desktop/FileBrowserService.h"
#include "platform/system/processes/DetachedProcess.h"

namespace mac {

FinderOutcome startApplication(DesktopApplication const& application, std::vector<std::string> const& paths) {
    if (!hasDisplay()) return noDisplay();
    std::vector<std::string> words = commandOf(application, paths);
    std::string program = application.executable;
    if (application.needsTerminal) {
        std::optional<std::string> const terminal = resolvedProgram("x-terminal-emulator");
        if (!terminal) return {FinderProblem::Refused, "There is no terminal to run the application in"};
        program = *terminal;
        words.insert(words.begin(), {program, "-e"});
    }
    Result<std::int32_t> const started = startDetached(program, words);
    return started.hasValue() ? FinderOutcome() : notStarted(started.problem());
}

} // namespace mac
