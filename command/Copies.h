#pragma once

#include "app/AppController.h"
#include "platform/system/items/OpenItem.h"
#include <cstddef>
#include <functional>
#include <string>

namespace framekeeper {

// The program's controller without a window: its records, sorted as the window sorts them, and its actions on those
// that are selected. Main thread.
class Copies {
public:
    Copies();

    AppController const& controller() const { return m_controller; }

    // Reads all sources and searches the computer; blocks until the records are complete. False if the search could not
    // be started. Progress is called now and then with the number of items found so far.
    bool search(std::function<void(std::size_t found)> const& progress) const;
    // Keeps what the search read for the next one, unless that takes too long, and ends it.
    void finishSearch() const;
    // Reads the running copies, the login items and the places. What cannot be read of them is a beep.
    void readSources() const;
    // Makes records of these paths and of those that the sources know, without a search.
    void look(NSArray const& paths) const;

    // All records, in the order of the window's first showing.
    NSArray records() const;
    // The record of exactly this path, else of a path that standardizes to it; nil if there is none.
    NSDictionary recordOf(NSString const& path) const;
    // Selects the records with these paths for the controller's actions; false if one of them has none.
    bool select(NSArray const& paths) const;

private:
    AppController m_controller = AppController::alloc().init();
    NSArrayController m_arrangement = NSArrayController::alloc().init();
};

// Opens the copy of the companion at the path; ENOENT if none is there. A symbolic link is no copy.
Result<OpenItem> openCopyAt(NSString const& path);
bool isCopyAt(NSString const& path);

// Calls the function and answers how often it beeped, which is how the controller reports a failure.
int beepsDuring(std::function<void()> const& work);

// The path by which the search would find what was given on the command line. A final symbolic link is not followed.
NSString absolutePath(std::string const& bytes);

// The path's bytes; empty for a text that is no path.
std::string bytesOfPath(NSString const& path);

} // namespace framekeeper
