#include "platform/applescript/Evaluator.h"
#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/desktop/FileBrowserProcess.h"
#include "platform/desktop/FileBrowserWindows.h"
#include "platform/files/Trash.h"
#include "platform/foundation/Encodings.h"

// What the Finder shows: the windows of the desktop's file browser.

namespace mac::applescript::finder {

namespace {

constexpr std::int32_t ApplicationNotFound = -10814;
constexpr std::int32_t EventFailed = -10000;

// Nothing, or the error that says why it was not done.
Value done(FinderOutcome const& outcome, Value const& object) {
    switch (outcome.problem) {
    case FinderProblem::None:
        return {};
    case FinderProblem::NotThere:
        throw cannotGet(object);
    case FinderProblem::NoApplication:
        throw plainError(ApplicationNotFound);
    case FinderProblem::NoBus:
    case FinderProblem::NoDisplay:
        throw plainError(errors::NoUserInteraction);
    case FinderProblem::NoAnswer:
        throw plainError(errors::TimedOut);
    default:
        throw ScriptError{.number = EventFailed, .message = unitsFromFileSystemBytes(outcome.reason), .from = object};
    }
}

std::vector<std::string> pathsOf(ModelApplication& finder, Value const& meant, TextContext const& context) {
    std::vector<ModelPointer> const found = finder.objects(meant, context);
    if (isTrash(found)) return {trashFolderForPath(homePath(), MissingTrash::IsMade).valueOr(homePath())};
    std::vector<std::string> paths;
    for (std::shared_ptr<FinderItem> const& item : itemsOf(found))
        paths.push_back(item->path());
    return paths;
}

bool isInformationWindow(Value const& meant) {
    return meant.is(ValueKind::Specifier) && meant.specifier().form == Form::Property &&
           meant.specifier().property->code == codeOf("iwnd");
}

} // namespace

Value open(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    if (isInformationWindow(command.direct)) {
        Value const& item = command.direct.specifier().container;
        return done(showInformation(pathsOf(finder, item, evaluator.context())), item);
    }
    for (std::string const& path : pathsOf(finder, command.direct, evaluator.context()))
        done(openItem(path), command.direct);
    return {};
}

Value reveal(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    return done(revealItems(pathsOf(finder, command.direct, evaluator.context())), command.direct);
}

Value activate(ModelApplication& /*finder*/, Evaluator& /*evaluator*/, ApplicationCommand const& command) {
    bool const isLaunch = command.term.code == eventOf("ascrnoop");
    return done(isLaunch ? launchFileBrowser() : activateFileBrowser(), finderItself());
}

Value quit(ModelApplication& /*finder*/, Evaluator& /*evaluator*/, ApplicationCommand const& /*command*/) {
    if (!isRunning()) return {};
    return done(quitFileBrowser(), finderItself());
}

bool isRunning() { return !fileBrowserProcesses().empty(); }

} // namespace mac::applescript::finder
