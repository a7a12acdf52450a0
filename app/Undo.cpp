#include "app/Undo.h"
#include "app/AppControllerBody.h"
#include "app/IconSwap.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <algorithm>

namespace framekeeper {

namespace {

constexpr std::size_t MostSteps = 100;

NSString couldNotBeUndone(NSString const& reason) {
    return NSString::stringWithFormat_(NSLocalizedString("That could not be undone: %@", nil), reason);
}

// The outcome of taking a step back.
struct Undone {
    NSString notice{};
    // A step that failed may stay on top, so that it can be tried again.
    enum class Step { IsDone, IsGone, Stays } step{Step::IsDone};
};

Undone takeBack(AppController const& controller, TrashedCopy const& copy) {
    Result<std::string, TrashProblem> const back = putBack(copy.item);
    if (!back.hasValue()) {
        TrashProblem const& problem = back.problem();
        bool const canBeTriedAgain = problem.kind != TrashProblem::NotInTrash && problem.kind != TrashProblem::Changed;
        return {NSString::stringWithUTF8String_(problem.localizedText().c_str()),
                canBeTriedAgain ? Undone::Step::Stays : Undone::Step::IsGone};
    }
    NSMutableSet const known = controller.isOnHarddiskPaths();
    known.removeObject_(copy.pathInTrash);
    if (copy.wasOnHarddisk) known.addObject_(copy.path);
    controller.reSync();
    selectIfNothingIs(controller, copy.path);
    return {.notice = NSLocalizedString("Put back.", nil)};
}

NSUInteger countOfEqual(NSArray const& list, id const& item) {
    NSUInteger count = 0;
    for (id const& other : list) {
        if (other.isEqual_(item)) ++count;
    }
    return count;
}

// The list without what was added and with what was removed, where it stood. What others did to it meanwhile stays.
NSArray listBefore(NSArray const& present, ListChange const& change) {
    NSMutableArray const items = NSMutableArray::arrayWithArray_(present);
    for (id const& added : change.added) {
        NSUInteger const index = items.indexOfObject_(added);
        if (index != NSNotFound) items.removeObjectAtIndex_(index);
    }
    for (ListChange::Removed const& removed : change.removed) {
        if (countOfEqual(items, removed.item) < removed.equalItems)
            items.insertObject_atIndex_(removed.item, std::min(removed.index, items.count()));
    }
    return NSArray::arrayWithArray_(items);
}

Undone takeBack(AppController const& controller, ListChange const& change) {
    ListAccess const list = accessTo(change.list);
    ListRead const present = list.read();
    // The added entry may be in the part that could not be read, and would stay in the list.
    if (present.problem != nil) return {couldNotBeUndone(present.problem), Undone::Step::Stays};
    bool const isWritten = (controller.*list.write)(listBefore(present.items, change));
    (controller.*list.sync)();
    controller.reSync();
    if (!isWritten) return {couldNotBeUndone(controller.writingProblem()), Undone::Step::Stays};
    if (change.list == SessionList::LoginItems)
        return {.notice = NSLocalizedString("The login items are as before.", nil)};
    // The file browser takes up the list when it starts; one that does not run will.
    if (bodyOf(controller)->_lookUpFinder() != nil) controller.quitFinderAction_(nil);
    return {.notice = NSLocalizedString("Back in the places.", nil)};
}

Undone takeBack(AppController const&, SwappedIcon const& icon) {
    IconSwap const swap = swapIcon(icon.path, icon.newName);
    if (swap.isWritten()) return {.notice = NSLocalizedString("The former icon is back.", nil)};
    return {swap.failure, Undone::Step::IsGone};
}

void changeSteps(AppController const& controller, std::function<void(std::vector<UndoStep>&)> const& change) {
    KeyChange const announced(controller, "canUndo");
    change(bodyOf(controller)->_undoSteps);
}

} // namespace

void remember(AppController const& controller, UndoStep step) {
    changeSteps(controller, [&](std::vector<UndoStep>& steps) {
        if (steps.size() >= MostSteps) steps.erase(steps.begin());
        steps.push_back(std::move(step));
    });
}

void rememberTrashing(AppController const& controller, NSString const& path, NSString const& pathInTrash,
                      WasOnHarddisk wasOnHarddisk) {
    TrashedCopy copy{path, pathInTrash, {}, wasOnHarddisk == WasOnHarddisk::Yes};
    auto place = placeInTrash(pathInTrash.fileSystemRepresentation().value_or(""));
    bool const isFound = place.hasValue() && place.value().has_value();
    if (isFound) {
        copy.item = place.value()->trashed;
        remember(controller, std::move(copy));
    }
    tell(controller, NSLocalizedString("Moved to the trash.", nil), isFound ? Offer::Undo : Offer::Nothing);
}

ListChange::Removed removedItem(NSArray const& list, NSUInteger index) {
    id const item = list.objectAtIndex_(index);
    return {item, index, countOfEqual(list, item)};
}

void forgetTrashing(AppController const& controller, NSString const& pathInTrash) {
    changeSteps(controller, [&](std::vector<UndoStep>& steps) {
        std::erase_if(steps, [&](UndoStep const& step) {
            TrashedCopy const* const copy = std::get_if<TrashedCopy>(&step);
            return copy && copy->pathInTrash.isEqual_(pathInTrash);
        });
    });
}

void selectIfNothingIs(AppController const& controller, NSString const& path) {
    NSArrayController const shown = controller.pathsArrayController();
    if (shown.selectedObjects().count() > 0) return;
    for (id const& record : controller.paths().allObjects()) {
        if (!record.valueForKey_("path").isEqual_(path)) continue;
        shown.setSelectedObjects_(NSArray::arrayWithObject_(record));
        return;
    }
}

void tell(AppController const& controller, NSString const& notice, Offer offer) {
    KeyChange const change(controller, "notice");
    bodyOf(controller)->_notice = notice;
    bodyOf(controller)->_noticeOffersUndo = offer == Offer::Undo;
}

NSString AppController::notice() const { return *this == nil ? NSString() : bodyOf(*this)->_notice; }

bool AppController::noticeOffersUndo() const { return *this != nil && bodyOf(*this)->_noticeOffersUndo; }

bool AppController::canUndo() const { return *this != nil && !bodyOf(*this)->_undoSteps.empty(); }

void AppController::undoAction_(id const&) const {
    if (*this == nil) return;
    if (!canUndo()) return NSBeep();
    UndoStep const step = bodyOf(*this)->_undoSteps.back();
    Undone const undone = std::visit([&](auto const& change) { return takeBack(*this, change); }, step);
    if (undone.step != Undone::Step::Stays) changeSteps(*this, [](std::vector<UndoStep>& steps) { steps.pop_back(); });
    if (undone.step != Undone::Step::IsDone) NSBeep();
    tell(*this, undone.notice, Offer::Nothing);
}

} // namespace framekeeper
