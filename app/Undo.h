#pragma once

#include "app/AppController.h"
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
    enum class List { LoginItems, ToolbarItems };
    struct Removed {
        id item{};
        // The item's index in the list before the change, and how many items equal to it the list had.
        NSUInteger index{0};
        NSUInteger equalItems{1};
    };

    List list{List::LoginItems};
    // In ascending order.
    std::vector<Removed> removed{};
    std::vector<id> added{};
};

// The values of a list, read anew.
struct ListRead {
    NSArray items{};
    // Why something that may hold items could not be read, for people; nil if all could.
    NSString problem{};
};
// Reads the list that the domain has under the key, as it is on the disk now.
ListRead listReadAnew(NSString const& domain, NSString const& key);
ListRead loginItemsReadAnew();
ListRead toolbarItemsReadAnew();

// Keeps why the list could not be read, nil if it could, and shows in the window the reasons of both lists.
void keepReadingProblem(AppController const& controller, ListChange::List list, NSString const& problem);
// Writes what was set in the domain, and keeps why that failed as the controller's writing problem.
bool writeList(AppController const& controller, NSString const& domain);
// Shows in the window why the list could not be written.
void tellWritingProblem(AppController const& controller, ListChange::List list);

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
