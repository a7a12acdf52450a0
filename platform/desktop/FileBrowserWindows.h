#pragma once

#include <string>
#include <vector>

// What the Finder does with items: the desktop's file browser does it here, the default application for folders. For
// implementations; main thread. Paths are bytes and absolute. Each call waits for the browser, some 10 seconds at most,
// and when it has to start it first, some 15 more; meanwhile nothing else happens on the thread.
//
// A browser that runs, or can be started, as the service org.freedesktop.FileManager1 is asked through the session's
// bus. The default one is started by its own command, because the bus might start another. One that is no such service
// is started anew with the folder.
//
// Nothing is there to refresh what a browser shows (the event 'fupd'): browsers watch the folders that they show.

namespace mac {

enum class FinderProblem {
    None,
    // Nothing is at one of the paths, or there is no path at all.
    NotThere,
    // No application is known for the item.
    NoApplication,
    // No session's bus to reach the browser by.
    NoBus,
    // No display to start the browser on.
    NoDisplay,
    // It could not be started, ended at once, or did not answer in time.
    NoAnswer,
    // It answered that it cannot.
    Refused,
};

struct FinderOutcome {
    FinderProblem problem{FinderProblem::None};
    // For people, in UTF-8; empty where there is no problem.
    std::string reason{};

    bool isDone() const { return problem == FinderProblem::None; }
};

// Shows the items selected in windows of their folders; of a browser that is no service, the folders alone.
FinderOutcome revealItems(std::vector<std::string> const& paths);

// Shows the folders in windows of their own.
FinderOutcome openFolders(std::vector<std::string> const& paths);

// Shows windows with what is known of the items. A browser that is no service refuses.
FinderOutcome showInformation(std::vector<std::string> const& paths);

// Opens a folder in the browser, anything else with the desktop's default application for it, which is started; what
// becomes of that is not waited for.
FinderOutcome openItem(std::string const& path);

} // namespace mac
