#include "command/Actions.h"
#include "platform/files/Trash.h"
#include "platform/foundation/Beep.h"
#include "platform/foundation/NSNumber.h"
#include "platform/system/BytePath.h"
#include "platform/system/StandardStreams.h"
#include <algorithm>

namespace framekeeper {

namespace {

using Action = void (AppController::*)(id const& sender) const;

NSArray onlyPath(NSString const& path) { return NSArray::arrayWithObject_(path); }

// Sends the action for the selected record and counts the beeps by which the controller reports a failure.
int beepsOf(Copies const& copies, Action action) {
    int beeps = 0;
    BeepListener const listener([&beeps] { ++beeps; });
    (copies.controller().*action)(nil);
    return beeps;
}

// The path at which the controller knows the one copy on the disk after an action, without the slash that the path of a
// trashed folder ends with.
NSString pathOnDisk(Copies const& copies) {
    NSArray const paths = copies.controller().isOnHarddiskPaths().allObjects();
    if (paths.count() != 1) return nil;
    std::string const bytes = bytesOfPath(as<NSString>(paths.objectAtIndex_(0)));
    return NSString::stringWithFileSystemRepresentation_(BytePath(bytes).bytes());
}

Outcome noSuchCopy(NSString const& path, char const* reason = "no copy of Mirror Frame is there") {
    return {.path = path, .status = Status::NoSuchCopy, .reason = NSString::stringWithUTF8String_(reason)};
}

// An action whose change can be taken back has been done, even if it beeped because of what follows the change.
Status statusOf(Copies const& copies, int beeps) {
    if (beeps == 0) return Status::Done;
    return copies.controller().canUndo() ? Status::NotShown : Status::Failed;
}

Outcome reveal(Copies const& copies, NSString const& path) {
    if (!isCopyAt(path)) return noSuchCopy(path);
    copies.look(onlyPath(path));
    copies.select(onlyPath(path));
    return {.path = path,
            .status = beepsOf(copies, &AppController::revealAction_) == 0 ? Status::Done : Status::Failed};
}

Outcome quit(Copies const& copies, NSString const& path) {
    copies.controller().syncIsRunningPaths();
    copies.look(NSArray::array());
    NSDictionary const record = copies.recordOf(path);
    if (record.objectForKey_("psn") == nil) return noSuchCopy(path, "no copy of Mirror Frame runs there");
    copies.select(onlyPath(path));
    return {.path = path, .status = beepsOf(copies, &AppController::quitAction_) == 0 ? Status::Done : Status::Failed};
}

Outcome trash(Copies const& copies, NSString const& path) {
    if (!isCopyAt(path)) return noSuchCopy(path);
    copies.look(onlyPath(path));
    copies.select(onlyPath(path));
    if (beepsOf(copies, &AppController::trashAction_) > 0) return {.path = path, .status = Status::Failed};
    return {.path = path, .newPath = pathOnDisk(copies)};
}

// The item in the trash that came from the path, the last deleted first; the path itself if there is none.
NSString pathInTrash(NSString const& path) {
    std::string const bytes = bytesOfPath(path);
    for (TrashedItem const& item : trashedItems())
        if (item.originalPath == bytes) return NSString::stringWithFileSystemRepresentation_(item.path);
    return path;
}

bool isInTrash(NSString const& path) {
    auto const place = placeInTrash(bytesOfPath(path));
    return place.hasValue() && place.value().has_value();
}

Outcome restore(Copies const& copies, NSString const& path) {
    NSString const trashed = isInTrash(path) ? path : pathInTrash(path);
    if (!isInTrash(trashed) || !isCopyAt(trashed)) return noSuchCopy(path, "no copy of Mirror Frame is in the trash");
    copies.look(onlyPath(trashed));
    copies.select(onlyPath(trashed));
    if (beepsOf(copies, &AppController::putBackAction_) > 0)
        return {.path = path, .status = Status::Failed, .reason = copies.controller().notice()};
    return {.path = path, .newPath = pathOnDisk(copies)};
}

Outcome erase(Copies const& copies, NSString const& path) {
    if (!isCopyAt(path)) return noSuchCopy(path);
    copies.look(onlyPath(path));
    copies.select(onlyPath(path));
    return {.path = path,
            .status = beepsOf(copies, &AppController::deleteAction_) == 0 ? Status::Done : Status::Failed};
}

Outcome swapIcon(Copies const& copies, NSString const& path) {
    if (!isCopyAt(path)) return noSuchCopy(path);
    copies.look(onlyPath(path));
    copies.select(onlyPath(path));
    int const beeps = beepsOf(copies, &AppController::swapIconAction_);
    return {.path = path, .status = statusOf(copies, beeps)};
}

Outcome addToLogin(Copies const& copies, NSString const& path) {
    if (!isCopyAt(path)) return noSuchCopy(path);
    copies.controller().syncIsAutolaunched();
    copies.look(onlyPath(path));
    copies.select(onlyPath(path));
    int const beeps = beepsOf(copies, &AppController::addToAutoLaunchAction_);
    return {.path = path, .status = beeps == 0 ? Status::Done : Status::Failed};
}

Outcome removeFromLogin(Copies const& copies, NSString const& path) {
    copies.controller().syncIsAutolaunched();
    copies.look(NSArray::array());
    if (copies.recordOf(path).objectForKey_("autolaunchItem") == nil)
        return noSuchCopy(path, "it does not start at login");
    copies.select(onlyPath(path));
    int const beeps = beepsOf(copies, &AppController::unAutoLaunchAction_);
    return {.path = path, .status = beeps == 0 ? Status::Done : Status::Failed};
}

Outcome removeFromPlaces(Copies const& copies, NSString const& path) {
    copies.controller().syncIsInToolbar();
    copies.look(NSArray::array());
    if (copies.recordOf(path).objectForKey_("toolbarItem") == nil) return noSuchCopy(path, "it is not in the places");
    copies.select(onlyPath(path));
    int const beeps = beepsOf(copies, &AppController::unToolbarAction_);
    return {.path = path, .status = statusOf(copies, beeps)};
}

using PathAction = Outcome (*)(Copies const& copies, NSString const& path);

struct ActionRow {
    Verb verb;
    ListEdit edit;
    PathAction action;
};

constexpr std::array PathActions{
    ActionRow{Verb::Reveal, ListEdit::Show, reveal},
    ActionRow{Verb::Quit, ListEdit::Show, quit},
    ActionRow{Verb::Trash, ListEdit::Show, trash},
    ActionRow{Verb::Restore, ListEdit::Show, restore},
    ActionRow{Verb::Delete, ListEdit::Show, erase},
    ActionRow{Verb::SwapIcon, ListEdit::Show, swapIcon},
    ActionRow{Verb::Login, ListEdit::Add, addToLogin},
    ActionRow{Verb::Login, ListEdit::Remove, removeFromLogin},
    ActionRow{Verb::Places, ListEdit::Remove, removeFromPlaces},
};

PathAction actionOf(CommandLine const& line) {
    auto const row = std::ranges::find_if(
        PathActions, [&](ActionRow const& each) { return each.verb == line.verb && each.edit == line.edit; });
    return row == PathActions.end() ? PathAction{} : row->action;
}

} // namespace

bool isAction(CommandLine const& line) { return actionOf(line) != PathAction{}; }

std::vector<Outcome> act(CommandLine const& line, Copies const& copies) {
    PathAction const action = actionOf(line);
    std::vector<Outcome> outcomes;
    for (std::string const& given : line.paths) {
        NSString const path = absolutePath(given);
        if (heldInterruption() != 0)
            outcomes.push_back({.path = path, .status = Status::Interrupted});
        else
            // Each path begins with a controller that has nothing to take back yet.
            outcomes.push_back(action(line.paths.size() == 1 ? copies : Copies(), path));
    }
    return outcomes;
}

} // namespace framekeeper
