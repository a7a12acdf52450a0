#include "app/AppControllerBody.h"
#include "app/Undo.h"
#include "platform/desktop/autostart/AutostartChanges.h"
#include "platform/desktop/autostart/AutostartText.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/text/NSString.h"
#include "tests/faults/Operations.h"
#include <cstdio>
#include <memory>
#include <stdexcept>

// What the program's undo takes back.

namespace mac::faults {

namespace {

using framekeeper::AppController;
using framekeeper::ListChange;
using framekeeper::SessionList;
using framekeeper::SwappedIcon;
using framekeeper::TrashedCopy;
using framekeeper::UndoStep;

constexpr char InTrash[] = "data/Trash/files/x";
constexpr char EntryFile[] = "config/autostart/framekeeper-x.desktop";

NSString appPath(Fixture const& fixture, std::string_view relative) {
    return NSString::stringWithUTF8String_(fixture.path(relative).c_str());
}

// The step that is taken back; nullopt if what it takes cannot be read.
using MakeStep = std::function<std::optional<UndoStep>(Fixture const& fixture, AppController const& controller)>;

// No file browser runs: the processes of the computer differ from one run to the next.
AppController controllerWithoutFinder() {
    return adopt<AppController>(Pause(), framekeeper::SyncStep(), [] { return NSNumber(); }).init();
}

// Takes back a step with a controller that was made before.
Operation undoing(MakeStep step, char const* notice, Operation operation) {
    std::shared_ptr<AppController> const controller = std::make_shared<AppController>();
    std::function<void(Fixture const&)> const before = operation.warmUp;
    operation.warmUp = [controller, before](Fixture const& fixture) {
        *controller = controllerWithoutFinder();
        if (before) before(fixture);
    };
    operation.run = [controller, step, notice](Fixture const& fixture) {
        std::optional<UndoStep> made = step(fixture, *controller);
        if (!made) return false;
        remember(*controller, std::move(*made));
        controller->undoAction_(nil);
        return !controller->canUndo() && controller->notice().isEqual_(NSString::stringWithUTF8String_(notice));
    };
    return operation;
}

void makeTrashedCopy(Fixture const& fixture) {
    fixture.makeTrash();
    fixture.makeFolder(InTrash);
    fixture.makeFile(std::string(InTrash) + "/a", {}, 0640);
    fixture.recordTrashed("x");
}

std::optional<UndoStep> trashing(Fixture const& fixture, AppController const&) {
    Result<std::optional<PlaceInTrash>, TrashProblem> const place = placeInTrash(fixture.path(InTrash));
    if (!place.hasValue() || !place.value()) return std::nullopt;
    return TrashedCopy{appPath(fixture, "w/x"), appPath(fixture, InTrash), place.value()->trashed, true};
}

void makeLoginItemFile(Fixture const& fixture) {
    NewAutostartEntry const entry{
        .program = fixture.path("w/x"), .item = fixture.path("w/x"), .order = 1, .note = "note"};
    fixture.makeText(EntryFile, textOfAutostartEntry(entry), 0600);
}

void makeProgramOfUser(Fixture const& fixture) {
    fixture.makeFile("w/x", {}, 0755);
    fixture.makeFolder("config/autostart");
}

void makeLoginItem(Fixture const& fixture) {
    makeProgramOfUser(fixture);
    makeLoginItemFile(fixture);
}

std::optional<UndoStep> addingOfLoginItem(Fixture const&, AppController const& controller) {
    NSArray const items = controller.readAllAutolaunchItems();
    if (items == nil || items.count() != 1) return std::nullopt;
    return ListChange{SessionList::LoginItems, {}, {items.objectAtIndex_(0)}};
}

// Brings back an entry that was removed before.
Operation undoingRemoval(Operation operation) {
    std::shared_ptr<ListChange::Removed> const removed = std::make_shared<ListChange::Removed>();
    operation.warmUp = [removed](Fixture const& fixture) {
        makeLoginItemFile(fixture);
        AppController const controller = AppController::alloc().init();
        NSArray const items = controller.readAllAutolaunchItems();
        if (items.count() != 1) return;
        *removed = framekeeper::removedItem(items, 0);
        if (std::remove(fixture.path(EntryFile).c_str()) != 0) throw std::runtime_error("the entry cannot be removed");
    };
    MakeStep const step = [removed](Fixture const&, AppController const&) {
        return std::optional<UndoStep>(ListChange{SessionList::LoginItems, {*removed}, {}});
    };
    return undoing(step, "The login items are as before.", std::move(operation));
}

constexpr char Bookmarks[] = "config/gtk-3.0/bookmarks";
constexpr char OtherPlaces[] = "file:///first First\nfile:///third\n";

void makeOtherPlaces(Fixture const& fixture) {
    fixture.makeFolder("config/gtk-3.0", 0700);
    fixture.makeText(Bookmarks, OtherPlaces, 0600);
}

// Brings back a place that was removed before, between the two others.
Operation undoingRemovalOfPlace(Operation operation) {
    std::shared_ptr<ListChange::Removed> const removed = std::make_shared<ListChange::Removed>();
    operation.warmUp = [removed](Fixture const& fixture) {
        fixture.reset();
        fixture.makeFolder("config/gtk-3.0", 0700);
        fixture.makeText(Bookmarks, "file:///first First\nfile:///second Second\nfile:///third\n", 0600);
        AppController const controller = controllerWithoutFinder();
        NSMutableArray const items = NSMutableArray::arrayWithArray_(controller.readAllToolbarItems());
        if (items.count() != 3) throw std::runtime_error("the places cannot be read");
        *removed = framekeeper::removedItem(items, 1);
        items.removeObjectAtIndex_(1);
        if (!controller.writeAllToolbarItems_(items)) throw std::runtime_error("the place cannot be removed");
        fixture.reset();
        makeOtherPlaces(fixture);
    };
    MakeStep const step = [removed](Fixture const&, AppController const&) {
        return std::optional<UndoStep>(ListChange{SessionList::ToolbarItems, {*removed}, {}});
    };
    return undoing(step, "Back in the places.", std::move(operation));
}

void makeCopyWithIcon(Fixture const& fixture) {
    for (char const* const folder : {"w/x.app", "w/x.app/Contents"})
        fixture.makeFolder(folder);
    fixture.makeText("w/x.app/Contents/Info.plist",
                     "<plist><dict><key>CFBundleIconFile</key><string>mirrorframe1</string></dict></plist>", 0640);
}

std::optional<UndoStep> swapping(Fixture const& fixture, AppController const&) {
    return SwappedIcon{appPath(fixture, "w/x.app"), "mirrorframe2", "mirrorframe1"};
}

} // namespace

std::vector<Operation> undoOperations() {
    Item const kept{"w/x", "w/x"};
    std::vector<std::string> const settings{"config", "config/autostart"};
    return {
        undoing(trashing, "Put back.",
                {.name = "undo: put back a trashed copy",
                 .prepare = makeTrashedCopy,
                 .items = {{InTrash, "w/x"}},
                 .exchanged = {InTrash, "data/Trash/files", "data/Trash/info"},
                 .exchangedWays = {"w", "data", "data/Trash"}}),
        undoing(addingOfLoginItem, "The login items are as before.",
                {.name = "undo: remove an added login item",
                 .prepare = makeLoginItem,
                 .items = {kept},
                 .exchanged = {EntryFile},
                 .exchangedWays = settings}),
        undoingRemoval({.name = "undo: bring back a login item",
                        .prepare = makeProgramOfUser,
                        .items = {kept},
                        .exchangedWays = settings}),
        undoingRemovalOfPlace({.name = "undo: bring back a place",
                               .prepare = makeOtherPlaces,
                               .exchangedWays = {"config", "config/gtk-3.0"}}),
        undoing(swapping, "The former icon is back.",
                {.name = "undo: swap an icon back",
                 .prepare = makeCopyWithIcon,
                 .exchanged = {"w/x.app/Contents/Info.plist"},
                 .exchangedWays = {"w", "w/x.app"}}),
    };
}

} // namespace mac::faults
