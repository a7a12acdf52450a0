#include "app/IconSwap.h"
#include "platform/desktop/autostart/Autostart.h"
#include "platform/desktop/autostart/AutostartChanges.h"
#include "platform/desktop/autostart/AutostartText.h"
#include "platform/desktop/places/Places.h"
#include "platform/foundation/text/NSString.h"
#include "platform/preferences/CFPreferences.h"
#include "tests/faults/Operations.h"
#include <memory>

namespace mac::faults {

namespace {

constexpr char Domain[] = "org.example.faults";
constexpr char Preferences[] = "config/framekeeper/Preferences";

NewAutostartEntry entryOf(Fixture const& fixture) {
    return {.program = fixture.path("w/x"), .item = fixture.path("w/x"), .order = 1, .note = "note"};
}

void makeProgram(Fixture const& fixture) { fixture.makeFile("w/x", {}, 0755); }

void makeAutostartFolder(Fixture const& fixture) {
    makeProgram(fixture);
    fixture.makeFolder("config/autostart");
}

void makeEntryFile(Fixture const& fixture) {
    fixture.makeText("config/autostart/framekeeper-x.desktop", textOfAutostartEntry(entryOf(fixture)), 0600);
}

void makeEntry(Fixture const& fixture) {
    makeAutostartFolder(fixture);
    makeEntryFile(fixture);
}

bool addEntry(Fixture const& fixture) { return addAutostart(entryOf(fixture)).hasValue(); }

bool removeEntry(Fixture const&) {
    AutostartItems const items = autostartItems();
    return items.items.size() == 1 && removeAutostart(items.items.front()).hasValue();
}

// Puts back an entry that was removed before.
Operation restoringEntry(Operation operation) {
    std::shared_ptr<RemovedAutostart> const removed = std::make_shared<RemovedAutostart>();
    operation.warmUp = [removed](Fixture const& fixture) {
        makeEntryFile(fixture);
        AutostartItems const items = autostartItems();
        if (items.items.size() != 1) return;
        Result<RemovedAutostart> entry = removeAutostart(items.items.front());
        if (entry.hasValue()) *removed = entry.takeValue();
    };
    operation.run = [removed](Fixture const&) { return restoreAutostart(*removed).hasValue(); };
    return operation;
}

constexpr char Bookmarks[] = "config/gtk-3.0/bookmarks";

void makePlaces(Fixture const& fixture) {
    fixture.makeFolder("config/gtk-3.0", 0700);
    fixture.makeText(Bookmarks, "file:///first First\nfile:///second\n", 0600);
}

bool addPlace(Fixture const&) {
    return changePlaces({.added = {{.list = PlacesList::GTK, .uri = "file:///third", .label = "Third"}}})
        .problems.empty();
}

bool hasAddedPlace(Fixture const&) {
    KnownPlaces const known = readPlaces();
    return known.problems.empty() && !known.places.empty() && known.places.back().label == "Third";
}

bool removePlace(Fixture const&) {
    KnownPlaces const known = readPlaces();
    return known.problems.empty() && known.places.size() == 2 &&
           changePlaces({.removed = {known.places.front()}}).problems.empty();
}

void makeBundle(Fixture const& fixture) {
    for (char const* const folder : {"w/x.app", "w/x.app/Contents"})
        fixture.makeFolder(folder);
    fixture.makeText("w/x.app/Contents/Info.plist",
                     "<plist><dict><key>CFBundleIconFile</key><string>mirrorframe1</string></dict></plist>", 0640);
}

bool changeIcon(Fixture const& fixture) {
    return framekeeper::swapIcon(NSString::stringWithUTF8String_(fixture.path("w/x.app").c_str())).isWritten();
}

void makePreferences(Fixture const& fixture) {
    fixture.makeFolder("config/framekeeper", 0700);
    fixture.makeFolder(Preferences, 0700);
    fixture.makeText(Preferences + ("/" + std::string(Domain)) + ".plist",
                     "<plist><dict><key>kept</key><string>as it was</string></dict></plist>", 0600);
}

bool setPreference(Fixture const&) {
    CFPreferencesSetValue("key", NSString("value"), Domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
    return CFPreferencesSynchronize(Domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
}

} // namespace

std::vector<Operation> listOperations() {
    Item const kept{"w/x", "w/x"};
    return {
        {.name = "add a login item",
         .prepare = makeProgram,
         .run = addEntry,
         .items = {kept},
         .exchangedWays = {"config"}},
        {.name = "remove a login item",
         .prepare = makeEntry,
         .run = removeEntry,
         .items = {kept},
         .exchanged = {"config/autostart/framekeeper-x.desktop"},
         .exchangedWays = {"config", "config/autostart"}},
        restoringEntry({.name = "put back a login item",
                        .prepare = makeAutostartFolder,
                        .items = {kept},
                        .exchangedWays = {"config", "config/autostart"}}),
        {.name = "add a place", .prepare = makePlaces, .run = addPlace, .exchangedWays = {"config", "config/gtk-3.0"}},
        {.name = "add the first place",
         .prepare = [](Fixture const&) {},
         .run = addPlace,
         .isReached = hasAddedPlace,
         .exchangedWays = {"config"}},
        {.name = "remove a place",
         .prepare = makePlaces,
         .run = removePlace,
         .exchangedWays = {"config", "config/gtk-3.0"}},
        {.name = "change an icon",
         .prepare = makeBundle,
         .run = changeIcon,
         .exchanged = {"w/x.app/Contents/Info.plist"},
         .exchangedWays = {"w", "w/x.app"}},
        {.name = "write the first preference",
         .prepare = [](Fixture const&) {},
         .run = setPreference,
         .exchangedWays = {"config"}},
        {.name = "change preferences",
         .prepare = makePreferences,
         .run = setPreference,
         .exchangedWays = {"config", "config/framekeeper", Preferences}},
    };
}

} // namespace mac::faults
