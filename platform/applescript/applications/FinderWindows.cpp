#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/desktop/FileBrowserSession.h"
#include "platform/files/Trash.h"
#include "platform/foundation/Encodings.h"

// What the Finder shows: the windows of the desktop's file browser.

namespace mac::applescript::finder {

namespace {

constexpr std::int32_t ApplicationNotFound = -10814;
constexpr std::int32_t EventFailed = -10000;

// The script's error for why the object was not shown.
ScriptError scriptErrorOf(DesktopProblem const& problem, Value const& object) {
    switch (problem.kind) {
    case DesktopProblem::Kind::NotThere:
        return cannotGet(object);
    case DesktopProblem::Kind::NoApplication:
        return plainError(ApplicationNotFound);
    case DesktopProblem::Kind::NoBus:
    case DesktopProblem::Kind::NoDisplay:
        return plainError(errors::NoUserInteraction);
    case DesktopProblem::Kind::NoAnswer:
        return plainError(errors::TimedOut);
    case DesktopProblem::Kind::Refused:
        break;
    }
    return {.number = EventFailed, .message = unitsFromFileSystemBytes(problem.text), .from = object};
}

// An empty value if it was done, else raises the problem as the script's error.
Value done(DesktopOutcome const& outcome, Value const& object) {
    if (!outcome.isDone()) throw scriptErrorOf(outcome.problem(), object);
    return {};
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
        return done(FileBrowserSession().showInformation(pathsOf(finder, item, evaluator.context())), item);
    }
    for (std::string const& path : pathsOf(finder, command.direct, evaluator.context()))
        done(FileBrowserSession().openItem(path), command.direct);
    return {};
}

Value reveal(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    return done(FileBrowserSession().revealItems(pathsOf(finder, command.direct, evaluator.context())), command.direct);
}

Value activate(ModelApplication& /*finder*/, Evaluator& /*evaluator*/, ApplicationCommand const& command) {
    bool const isLaunch = command.term.code == eventOf("ascrnoop");
    FileBrowserSession const browser;
    return done(isLaunch ? browser.launch() : browser.activate(), finderItself());
}

Value quit(ModelApplication& /*finder*/, Evaluator& /*evaluator*/, ApplicationCommand const& /*command*/) {
    if (!isRunning()) return {};
    return done(FileBrowserSession().quit(), finderItself());
}

bool isRunning() { return !fileBrowserProcesses().empty(); }

} // namespace mac::applescript::finder
