#pragma once

#include "app/AppController.h"
#include "app/SessionLists.h"
#include "platform/files/trash/Trash.h"
#include <variant>
#include <vector>

namespace framekeeper {

// The changes that can be taken back while the window lives, the last one first. A permanent deletion cannot.

// A copy that was moved to the trash.
struct TrashedCopy {
    NSString path{};
    NSString pathInTrash{};
    // The item that goes back and no other; its path is empty if it could not be found in the trash.
    TrashedItem item{};
    bool wasOnHarddisk{false};
};

// A change of the login items or of the toolbar items.
struct ListChange {
    struct Removed {
        id item{};
        // The item's index in the list before the change, and how many items equal to it the list had.
        NSUInteger index{0};
        NSUInteger equalItems{1};
    };

    SessionList list{SessionList::LoginItems};
    // In ascending order.
    std::vector<Removed> removed{};
    std::vector<id> added{};
};

struct SwappedIcon {
    NSString path{};
    NSString formerName{};
    NSString newName{};
};

using UndoStep = std::variant<TrashedCopy, ListChange, SwappedIcon>;

// Puts the step on top of the controller's stack, whose oldest step goes when there are very many.
void remember(AppController const& controller, UndoStep step);
enum class WasOnHarddisk { No, Yes };
// Remembers that the item at the path was moved to the trash just now, and tells so.
void rememberTrashing(AppController const& controller, NSString const& path, NSString const& pathInTrash,
                      WasOnHarddisk wasOnHarddisk);
// The item at the index as one that is going to be removed from the list.
ListChange::Removed removedItem(NSArray const& list, NSUInteger index);
// Drops the steps about a copy that has left the trash by other means.
void forgetTrashing(AppController const& controller, NSString const& pathInTrash);

// Selects the record of the path unless the user has selected another one: the copy that an action brought back. Among
// so many that the window arranges them in steps, when its row is there.
void selectIfNothingIs(AppController const& controller, NSString const& path);

enum class Offer { Nothing, Undo };
// Shows a text in the window, never in the log; with a button that undoes where that is offered.
void tell(AppController const& controller, NSString const& notice, Offer offer);

} // namespace framekeeper
