#include "command/Actions.h"
#include "platform/files/Trash.h"
#include "platform/foundation/NSNumber.h"
#include "platform/system/BytePath.h"
#include "platform/system/StandardStreams.h"
#include "platform/system/items/ItemRemoval.h"
#include <algorithm>

namespace framekeeper {

namespace {

using Action = void (AppController::*)(id const& sender) const;

NSArray onlyPath(NSString const& path) { return NSArray::arrayWithObject_(path); }

// Sends the action for the selected record and counts the beeps by which the controller reports a failure.
int beepsOf(Copies const& copies, Action action) {
    return beepsDuring([&] { (copies.controller().*action)(nil); });
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

Outcome failed(NSString const& path, std::string const& reason) {
    return {.path = path, .status = Status::Failed, .reason = NSString::stringWithUTF8String_(reason.c_str())};
}

// An action on a selection that is not the record of the path would be one on another copy, or none.
Outcome notSelected(NSString const& path) { return failed(path, "it has left the list meanwhile"); }

bool lookAndSelect(Copies const& copies, NSString const& path) {
    copies.look(onlyPath(path));
    return copies.select(onlyPath(path));
}

// An action whose change can be taken back has been done, even if it beeped because of what follows the change.
Status statusOf(Copies const& copies, int beeps) {
    if (beeps == 0) return Status::Done;
    return copies.controller().canUndo() ? Status::NotShown : Status::Failed;
}

Outcome reveal(Copies const& copies, Target const& target) {
    if (!isCopyAt(target.path)) return noSuchCopy(target.path);
    if (!lookAndSelect(copies, target.path)) return notSelected(target.path);
    return {.path = target.path,
            .status = beepsOf(copies, &AppController::revealAction_) == 0 ? Status::Done : Status::Failed};
}

// A copy may run several times, and its record holds one of its processes: each of them is quit.
Outcome quit(Copies const& copies, Target const& target) {
    NSString const path = target.path;
    auto const runs = [&] { return copies.recordOf(path).objectForKey_("psn") != nil; };
    copies.controller().syncIsRunningPaths();
    copies.look(NSArray::array());
    if (!runs()) return noSuchCopy(path, "no copy of Mirror Frame runs there");
    NSUInteger const most = copies.controller().isRunningPaths().count();
    for (NSUInteger ended = 0; ended < most && runs(); ++ended) {
        if (!copies.select(onlyPath(path))) return notSelected(path);
        if (beepsOf(copies, &AppController::quitAction_) > 0) return {.path = path, .status = Status::Failed};
    }
    return runs() ? failed(path, "it has been started again") : Outcome{.path = path};
}

Outcome trash(Copies const& copies, Target const& target) {
    if (!isCopyAt(target.path)) return noSuchCopy(target.path);
    if (!lookAndSelect(copies, target.path)) return notSelected(target.path);
    if (beepsOf(copies, &AppController::trashAction_) > 0) return {.path = target.path, .status = Status::Failed};
    return {.path = target.path, .newPath = pathOnDisk(copies)};
}

// The copy in the trash that came from the path, the last deleted first; nil if there is none.
NSString copyInTrashFrom(NSString const& path) {
    std::string const bytes = bytesOfPath(path);
    for (TrashedItem const& item : trashedItems()) {
        if (item.originalPath != bytes) continue;
        NSString const trashed = NSString::stringWithFileSystemRepresentation_(item.path);
        if (isCopyAt(trashed)) return trashed;
    }
    return nil;
}

Outcome restore(Copies const& copies, Target const& target) {
    NSString const path = target.path;
    auto const place = placeInTrash(bytesOfPath(path));
    bool const isKnown = place.hasValue() || place.problem().kind == TrashProblem::NotThere;
    if (!isKnown) return failed(path, place.problem().text);
    bool const isInTrash = place.hasValue() && place.value().has_value();
    NSString const trashed = isInTrash ? path : copyInTrashFrom(path);
    if (!isCopyAt(trashed)) return noSuchCopy(path, "no copy of Mirror Frame is in the trash");
    if (!lookAndSelect(copies, trashed)) return notSelected(path);
    if (beepsOf(copies, &AppController::putBackAction_) > 0)
        return {.path = path, .status = Status::Failed, .reason = copies.controller().notice()};
    return {.path = path, .newPath = pathOnDisk(copies)};
}

// Without the controller, whose action takes what is at the path when it comes to delete: here the very item that was
// confirmed is looked at and deleted.
Outcome erase(Copies const&, Target const& target) {
    Result<OpenItem> const item = openCopyAt(target.path);
    if (!target.item || !item.hasValue()) return noSuchCopy(target.path);
    Result<IdentifiedItem> const identified = identify(item.value().item);
    if (!identified.hasValue()) return failed(target.path, identified.problem().text());
    if (identified.value().identity != *target.item) return failed(target.path, "another copy has taken its place");
    Result<void> const removed = removeItem(item.value());
    return removed.isDone() ? Outcome{.path = target.path} : failed(target.path, removed.problem().text());
}

Outcome swapIcon(Copies const& copies, Target const& target) {
    if (!isCopyAt(target.path)) return noSuchCopy(target.path);
    if (!lookAndSelect(copies, target.path)) return notSelected(target.path);
    int const beeps = beepsOf(copies, &AppController::swapIconAction_);
    return {.path = target.path, .status = statusOf(copies, beeps)};
}

// A list of the session from which entries are removed.
struct MembershipList {
    void (AppController::*sync)() const;
    NSArray (AppController::*items)() const;
    // A record's key of its entry.
    char const* entryKey;
    Action removal;
    char const* isNotListed;
};

constexpr MembershipList LoginItems{&AppController::syncIsAutolaunched, &AppController::allAutolaunchItems,
                                    "autolaunchItem", &AppController::unAutoLaunchAction_,
                                    "it does not start at login"};
constexpr MembershipList Places{&AppController::syncIsInToolbar, &AppController::allToolbarItems, "toolbarItem",
                                &AppController::unToolbarAction_, "it is not in the places"};

// Makes records of the paths in the list; false if it could not be read, or not entirely.
bool readList(MembershipList const& list, Copies const& copies) {
    int const beeps = beepsDuring([&] { (copies.controller().*list.sync)(); });
    copies.look(NSArray::array());
    return beeps == 0;
}

bool isListed(MembershipList const& list, Copies const& copies, NSString const& path) {
    return copies.recordOf(path).objectForKey_(NSString::stringWithUTF8String_(list.entryKey)) != nil;
}

// A path may have several entries, and its record holds one of them: each is removed.
Outcome removeFrom(MembershipList const& list, Copies const& copies, NSString const& path) {
    if (!readList(list, copies)) return failed(path, "the list could not be read");
    if (!isListed(list, copies, path)) return noSuchCopy(path, list.isNotListed);
    NSUInteger const most = (copies.controller().*list.items)().count();
    Status status = Status::Done;
    Copies present = copies;
    for (NSUInteger removed = 0; removed < most; ++removed) {
        if (!present.select(onlyPath(path))) return notSelected(path);
        status = worse(status, statusOf(present, beepsOf(present, list.removal)));
        if (status == Status::Failed) return {.path = path, .status = status};
        // Each removal begins with a controller that has nothing to take back yet.
        present = Copies();
        bool const isRead = readList(list, present);
        if (isListed(list, present, path)) continue;
        // What was seen of the list has been removed.
        return {.path = path, .status = isRead ? status : Status::NotShown};
    }
    return failed(path, "it is in the list again");
}

Outcome addToLogin(Copies const& copies, Target const& target) {
    NSString const path = target.path;
    if (!isCopyAt(path)) return noSuchCopy(path);
    // The list is written whole: what could not be read of it would be missing then.
    int const unread = beepsDuring([&] { copies.controller().syncIsAutolaunched(); });
    if (unread > 0) return failed(path, "the list could not be read");
    if (!lookAndSelect(copies, path)) return notSelected(path);
    int const beeps = beepsOf(copies, &AppController::addToAutoLaunchAction_);
    return {.path = path, .status = statusOf(copies, beeps)};
}

Outcome removeFromLogin(Copies const& copies, Target const& target) {
    return removeFrom(LoginItems, copies, target.path);
}

Outcome removeFromPlaces(Copies const& copies, Target const& target) { return removeFrom(Places, copies, target.path); }

using PathAction = Outcome (*)(Copies const& copies, Target const& target);

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

std::vector<Target> targetsOf(CommandLine const& line) {
    std::vector<Target> targets;
    for (std::string const& given : line.paths) {
        NSString const path = absolutePath(given);
        Result<IdentifiedItem> const item = identifyAtPath(bytesOfPath(path), LinkAtEnd::IsNotFollowed);
        targets.push_back({path, item.hasValue() ? std::optional(item.value().identity) : std::nullopt});
    }
    return targets;
}

std::vector<Outcome> act(CommandLine const& line, std::vector<Target> const& targets, Copies const& copies) {
    PathAction const action = actionOf(line);
    std::vector<Outcome> outcomes;
    for (Target const& target : targets) {
        if (heldInterruption() != 0)
            outcomes.push_back({.path = target.path, .status = Status::Interrupted});
        else
            // Each path begins with a controller that has nothing to take back yet.
            outcomes.push_back(action(targets.size() == 1 ? copies : Copies(), target));
    }
    return outcomes;
}

} // namespace framekeeper
