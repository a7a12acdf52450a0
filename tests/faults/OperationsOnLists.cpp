#include "platform/desktop/Autostart.h"
#include "platform/desktop/AutostartChanges.h"
#include "platform/desktop/AutostartText.h"
#include "platform/foundation/NSString.h"
#include "platform/preferences/CFPreferences.h"
#include "tests/faults/Operations.h"

namespace mac::faults {

namespace {

constexpr char Domain[] = "org.example.faults";
constexpr char Preferences[] = "config/framekeeper/Preferences";

NewAutostartEntry entryOf(Fixture const& fixture) {
    return {.program = fixture.path("w/x"), .item = fixture.path("w/x"), .order = 1, .note = "note"};
}

void makeProgram(Fixture const& fixture) { fixture.makeFile("w/x", {}, 0755); }

void makeEntry(Fixture const& fixture) {
    makeProgram(fixture);
    fixture.makeFolder("config/autostart");
    fixture.makeText("config/autostart/framekeeper-x.desktop", textOfAutostartEntry(entryOf(fixture)), 0600);
}

bool addEntry(Fixture const& fixture) { return addAutostart(entryOf(fixture)).hasValue(); }

bool removeEntry(Fixture const&) {
    AutostartItems const items = autostartItems();
    return items.items.size() == 1 && removeAutostart(items.items.front()).hasValue();
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
