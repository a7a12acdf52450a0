#pragma once

#include "app/AppController.h"

namespace framekeeper {

// The lists of the user's session in which copies may stand. They are kept as preferences; a change of one is written
// whole, and why it could not be read or written is told in the window.
enum class SessionList { LoginItems, ToolbarItems };

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

// How one of the lists is read and written.
struct ListAccess {
    ListRead (*read)();
    bool (AppController::*write)(NSArray const&) const;
    void (AppController::*sync)() const;
};
ListAccess accessTo(SessionList list);

// Keeps why the list could not be read, nil if it could, and shows in the window the reasons of both lists.
void keepReadingProblem(AppController const& controller, SessionList list, NSString const& problem);
// Writes what was set in the domain, and keeps why that failed as the controller's writing problem.
bool writeList(AppController const& controller, NSString const& domain);
// Shows in the window why the list could not be written.
void tellWritingProblem(AppController const& controller, SessionList list);

} // namespace framekeeper
