#pragma once

#include "app/AppController.h"
#include <array>
#include <cstddef>
#include <string_view>

namespace framekeeper {

// A source of paths beside the disk. It is a set of entries: dictionaries of "path" and the source's own object.
struct MembershipSource {
    // The controller's key of the set, for observers.
    char const* entriesKey;
    // A record's key of whether the source has its path.
    char const* flagKey;
    // The key of the source's object, both in an entry and in a record.
    char const* objectKey;
    // Reads the source anew and replaces the set.
    void (*sync)(AppController const& controller);
};

// A member function of the controller in the form of a row's sync.
template <void (AppController::*member)() const>
void ofController(AppController const& controller) {
    (controller.*member)();
}

// In the order in which they are read and contribute paths. Another source is another row, its sync declared above the
// table and defined in a file of its own, where it ends in setEntries.
inline constexpr std::array MembershipSources{
    MembershipSource{"isRunningPaths", "isRunning", "psn", ofController<&AppController::syncIsRunningPaths>},
    MembershipSource{"isAutolaunchedPaths", "isAutolaunched", "autolaunchItem",
                     ofController<&AppController::syncIsAutolaunched>},
    MembershipSource{"isInToolbarPaths", "isInToolbar", "toolbarItem", ofController<&AppController::syncIsInToolbar>},
};

// The row with the key; what is in no row does not compile.
consteval std::size_t sourceWithEntries(std::string_view entriesKey) {
    std::size_t row = 0;
    while (MembershipSources.at(row).entriesKey != entriesKey)
        ++row;
    return row;
}

// The set of the source in the row; nil for a nil controller.
NSSet entriesOf(AppController const& controller, std::size_t row);
// Replaces the set of the source in the row. Observers are told once of every setting, also of the same object.
void setEntries(AppController const& controller, std::size_t row, NSSet const& entries);
// Reads all sources of the table anew, in its order.
void syncMembershipSources(AppController const& controller);

} // namespace framekeeper
