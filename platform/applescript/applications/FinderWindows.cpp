#include "platform/applescript/applications/CommonTerms.h"
#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/applications/Program.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/desktop/browser/FileBrowserSession.h"
#include "platform/desktop/entries/DesktopApplication.h"
#include "platform/files/trash/Trash.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/text/Encodings.h"

// What the Finder shows: the windows of the desktop's file browser.

namespace mac::applescript::finder {

namespace {

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
    requireDone(outcome, object);
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
           meant.specifier().property->code == codes::InformationWindow;
}

// Starts a bundle's program, or that of a desktop entry, with the files. False if the item is neither.
bool startWith(FinderItem const& program, std::vector<std::string> const& paths) {
    if (program.path().ends_with(".desktop")) {
        std::optional<DesktopApplication> const application =
            applicationOfEntry(DesktopEntry::readFile(program.path()));
        if (application) return !done(startApplication(*application, paths), program.specifier()).isMissing();
        return false;
    }
    NSString const path = NSString::stringWithCodeUnits(unitsFromFileSystemBytes(program.path()));
    std::optional<std::string> const executable =
        NSBundle::bundleWithPath_(path).executablePath().fileSystemRepresentation();
    if (!executable) return false;
    std::vector<std::string> words{*executable};
    words.insert(words.end(), paths.begin(), paths.end());
    return startProgram(words);
}

} // namespace

void requireDone(DesktopOutcome const& outcome, Value const& object) {
    if (!outcome.isDone()) throw scriptErrorOf(outcome.problem(), object);
}

void openPath(std::string const& path, Value const& object) { done(FileBrowserSession().openItem(path), object); }

Value open(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    if (isInformationWindow(command.direct)) {
        Value const& item = command.direct.specifier().container;
        return done(FileBrowserSession().showInformation(pathsOf(finder, item, evaluator.context())), item);
    }
    std::vector<std::string> const paths = pathsOf(finder, command.direct, evaluator.context());
    if (Value const* const program = command.find(UsingParameter)) {
        FinderItems const programs = itemsOf(finder.objects(*program, evaluator.context()));
        if (programs.size() != 1) throw plainError(errors::NotSingle);
        if (!startWith(*programs.front(), paths)) throw plainError(ApplicationNotFound);
        return {};
    }
    for (std::string const& path : paths)
        openPath(path, command.direct);
    return {};
}

Value reveal(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    return done(FileBrowserSession().revealItems(pathsOf(finder, command.direct, evaluator.context())), command.direct);
}

Value activate(ModelApplication& /*finder*/, Evaluator& /*evaluator*/, ApplicationCommand const& command) {
    bool const isLaunch = command.term.code == common::Launch.code;
    FileBrowserSession const browser;
    return done(isLaunch ? browser.launch() : browser.activate(), finderItself());
}

Value quit(ModelApplication& /*finder*/, Evaluator& /*evaluator*/, ApplicationCommand const& /*command*/) {
    if (!isRunning()) return {};
    return done(FileBrowserSession().quit(), finderItself());
}

bool isRunning() { return !fileBrowserProcesses().empty(); }

} // namespace mac::applescript::finder
