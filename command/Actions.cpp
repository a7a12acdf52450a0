#include "command/Actions.h"
#include "app/IconSwap.h"
#include "platform/files/trash/Trash.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/text/SystemErrorTexts.h"
#include "platform/system/BytePath.h"
#include "platform/system/StandardStreams.h"
#include "platform/system/items/ItemRemoval.h"
#include "scripting/ProcessesAndFinder.h"
#include <algorithm>

namespace framekeeper {

namespace {

using Action = void (AppController::*)(id const& sender) const;

NSArray onlyPath(NSString const& path) { return NSArray::arrayWithObject_(path); }

// Sends the action for the selected record and counts the beeps by which the controller reports a failure.
int beepsOf(Copies const& copies, Action action) {
    return beepsDuring([&] { (copies.controller().*action)(nil); });
}

Outcome noSuchCopy(NSString const& path, char const* reason = localizable("no copy of Mirror Frame is there")) {
    return {.path = path, .status = Status::NoSuchCopy, .reason = NSString::stringWithUTF8String_(reason)};
}

// The reason may tell a file's name, which need not be UTF-8.
Outcome failed(NSString const& path, std::string const& reason) {
    return {.path = path, .status = Status::Failed, .reason = NSString::stringWithFileSystemRepresentation_(reason)};
}

Outcome failed(NSString const& path, SystemError const& error) {
    return {.path = path, .status = Status::Failed, .reason = localizedSystemError(error)};
}

Outcome failed(NSString const& path, TrashProblem const& problem) { return failed(path, problem.localizedText()); }

// An action on a selection that is not the record of the path would be one on another copy, or none.
Outcome notSelected(NSString const& path) { return failed(path, localizable("it has left the list meanwhile")); }

// Opens the copy at the path if it is that very item; the outcome says why it is not. What is done to the open item is
// done to no other one, whatever takes its place.
Result<OpenItem, Outcome> openCopy(NSString const& path, std::optional<ItemIdentity> const& wanted) {
    Result<OpenItem> item = openCopyAt(path);
    if (!wanted || !item.hasValue()) return noSuchCopy(path);
    Result<IdentifiedItem> const identified = identify(item.value().item);
    if (!identified.hasValue()) return failed(path, identified.problem());
    if (identified.value().identity != *wanted) return failed(path, localizable("another copy has taken its place"));
    return item.takeValue();
}

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
    if (beepsOf(copies, &AppController::revealAction_) == 0) return {.path = target.path};
    return failed(target.path, localizable("the file browser could not show it"));
}

// A copy may run several times, and its record holds one of its processes: each of them is quit.
Outcome quit(Copies const& copies, Target const& target) {
    NSString const path = target.path;
    auto const runs = [&] { return copies.recordOf(path).objectForKey_("psn") != nil; };
    copies.controller().syncIsRunningPaths();
    copies.look(NSArray::array());
    if (!runs()) return noSuchCopy(path, localizable("no copy of Mirror Frame runs there"));
    NSUInteger const most = copies.controller().isRunningPaths().count();
    for (NSUInteger ended = 0; ended < most && runs(); ++ended) {
        if (!copies.select(onlyPath(path))) return notSelected(path);
        if (beepsOf(copies, &AppController::quitAction_) > 0) return {.path = path, .status = Status::Failed};
    }
    return runs() ? failed(path, localizable("it has been started again")) : Outcome{.path = path};
}

// By the open item and not by the controller, whose action takes what is at the path by then.
Outcome trash(Copies const& copies, Target const& target) {
    Result<OpenItem, Outcome> const item = openCopy(target.path, target.item);
    if (!item.hasValue()) return item.problem();
    if (!lookAndSelect(copies, target.path)) return notSelected(target.path);
    Result<TrashedItem, TrashProblem> const trashed = moveToTrash(item.value());
    if (!trashed.hasValue()) return failed(target.path, trashed.problem());
    return {.path = target.path, .newPath = NSString::stringWithFileSystemRepresentation_(trashed.value().path)};
}

// The item in the trash that the path stands for: the one at the path, or the copy that was trashed from there last;
// nullopt if there is none.
std::optional<TrashedItem> trashedItemOf(Target const& target, bool isInTrash) {
    std::string const bytes = bytesOfPath(target.path);
    if (isInTrash && target.item) return TrashedItem{.path = bytes, .identity = *target.item};
    if (isInTrash) return {};
    for (TrashedItem& item : trashedItemsFrom(bytes)) {
        if (isCopyAt(NSString::stringWithFileSystemRepresentation_(item.path))) return std::move(item);
    }
    return {};
}

Outcome restore(Copies const&, Target const& target) {
    NSString const path = target.path;
    auto const place = placeInTrash(bytesOfPath(path));
    bool const isKnown = place.hasValue() || place.problem().kind == TrashProblem::NotThere;
    if (!isKnown) return failed(path, place.problem());
    bool const isInTrash = place.hasValue() && place.value().has_value();
    std::optional<TrashedItem> const trashed = trashedItemOf(target, isInTrash);
    constexpr char const* missing = localizable("no copy of Mirror Frame is in the trash");
    if (!trashed) return noSuchCopy(path, missing);
    auto const item = openCopy(NSString::stringWithFileSystemRepresentation_(trashed->path), trashed->identity);
    if (!item.hasValue() && item.problem().status == Status::NoSuchCopy) return noSuchCopy(path, missing);
    if (!item.hasValue()) return {.path = path, .status = Status::Failed, .reason = item.problem().reason};
    // Looks at the identity again, right before the item moves.
    Result<std::string, TrashProblem> const back = putBack(*trashed);
    if (!back.hasValue()) return failed(path, back.problem());
    return {.path = path, .newPath = NSString::stringWithFileSystemRepresentation_(back.value())};
}

// Without the controller, too: the very item that was confirmed is deleted.
Outcome erase(Copies const&, Target const& target) {
    Result<OpenItem, Outcome> const item = openCopy(target.path, target.item);
    if (!item.hasValue()) return item.problem();
    Result<void> const removed = removeItem(item.value());
    return removed.isDone() ? Outcome{.path = target.path} : failed(target.path, removed.problem());
}

Outcome changeIcon(Copies const& copies, Target const& target) {
    Result<OpenItem, Outcome> const item = openCopy(target.path, target.item);
    if (!item.hasValue()) return item.problem();
    if (!lookAndSelect(copies, target.path)) return notSelected(target.path);
    IconSwap const swap = swapIcon(item.value());
    if (!swap.isWritten()) return {.path = target.path, .status = Status::Failed, .reason = swap.failure};
    if (swap.failure != nil) return {.path = target.path, .status = Status::NotShown, .reason = swap.failure};
    if (KRAPathRevealInFinder(target.path)) return {.path = target.path};
    constexpr char const* notShown = localizable("its icon is swapped, but the file browser could not show it");
    return {.path = target.path, .status = Status::NotShown, .reason = NSString::stringWithUTF8String_(notShown)};
}

// A list of the session from which entries are removed.
struct MembershipList {
    void (AppController::*sync)() const;
    NSArray (AppController::*items)() const;
    // Why it could not be read whole.
    NSString (AppController::*problem)() const;
    // A record's key of its entry.
    char const* entryKey;
    Action removal;
    char const* isNotListed;
};

constexpr MembershipList LoginItems{&AppController::syncIsAutolaunched,  &AppController::allAutolaunchItems,
                                    &AppController::loginItemsProblem,   "autolaunchItem",
                                    &AppController::unAutoLaunchAction_, localizable("it does not start at login")};
constexpr MembershipList Places{&AppController::syncIsInToolbar,  &AppController::allToolbarItems,
                                &AppController::placesProblem,    "toolbarItem",
                                &AppController::unToolbarAction_, localizable("it is not in the places")};

// Makes records of the paths in the list; false if it could not be read, or not entirely.
bool readList(MembershipList const& list, Copies const& copies) {
    int const beeps = beepsDuring([&] { (copies.controller().*list.sync)(); });
    copies.look(NSArray::array());
    return beeps == 0;
}

// A list that could not be read whole is not changed.
Outcome notRead(NSString const& path, NSString const& problem) {
    Outcome outcome = failed(path, localizable("the list could not be read"));
    if (problem != nil)
        outcome.reason = NSString::stringWithFormat_("%@: %@", NSLocalizedString(outcome.reason, nil), problem);
    return outcome;
}

bool isListed(MembershipList const& list, Copies const& copies, NSString const& path) {
    return copies.recordOf(path).objectForKey_(NSString::stringWithUTF8String_(list.entryKey)) != nil;
}

// A path may have several entries, and its record holds one of them: each is removed.
Outcome removeFrom(MembershipList const& list, Copies const& copies, NSString const& path) {
    if (!readList(list, copies)) return notRead(path, (copies.controller().*list.problem)());
    if (!isListed(list, copies, path)) return noSuchCopy(path, list.isNotListed);
    NSUInteger const most = (copies.controller().*list.items)().count();
    Status status = Status::Done;
    Copies present = copies;
    for (NSUInteger removed = 0; removed < most; ++removed) {
        if (!present.select(onlyPath(path))) return notSelected(path);
        status = worse(status, statusOf(present, beepsOf(present, list.removal)));
        if (status == Status::Failed)
            return {.path = path, .status = status, .reason = present.controller().writingProblem()};
        // Each removal begins with a controller that has nothing to take back yet.
        present = Copies();
        bool const isRead = readList(list, present);
        if (isListed(list, present, path)) continue;
        // The copy was removed from what could be read of the list.
        return {.path = path, .status = isRead ? status : Status::NotShown};
    }
    return failed(path, localizable("it is in the list again"));
}

Outcome addToLogin(Copies const& copies, Target const& target) {
    NSString const path = target.path;
    if (!isCopyAt(path)) return noSuchCopy(path);
    auto const place = placeInTrash(bytesOfPath(path));
    bool const isInTrash = place.hasValue() && place.value().has_value();
    if (isInTrash) return failed(path, localizable("it is in the trash, and can be restored"));
    // The list is written whole: what could not be read of it would be missing then.
    int const unread = beepsDuring([&] { copies.controller().syncIsAutolaunched(); });
    if (unread > 0) return notRead(path, copies.controller().loginItemsProblem());
    if (!lookAndSelect(copies, path)) return notSelected(path);
    int const beeps = beepsOf(copies, &AppController::addToAutoLaunchAction_);
    return {.path = path, .status = statusOf(copies, beeps), .reason = copies.controller().writingProblem()};
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
    ActionRow{Verb::SwapIcon, ListEdit::Show, changeIcon},
    ActionRow{Verb::Login, ListEdit::Add, addToLogin},
    ActionRow{Verb::Login, ListEdit::Remove, removeFromLogin},
    ActionRow{Verb::Places, ListEdit::Remove, removeFromPlaces},
};

PathAction actionOf(CommandLine const& line) {
    auto const* const row = std::ranges::find_if(
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
