#pragma once

#include "platform/appkit/arrangement/NSArrayController.h"
#include "platform/appkit/interface/NSTableView.h"
#include "platform/appkit/interface/NSWindow.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/spotlight/NSMetadataQuery.h"
#include <optional>

namespace framekeeper {

using namespace mac;

class CopyDetails;
class Panes;
class ScanChanges;

// What makes a bundle a copy of the companion.
inline constexpr char CompanionIdentifier[] = "com.tidelark.mirrorframe";
inline constexpr char CompanionFileName[] = "Mirror Frame.app";

// Gathers the copies of the companion from four sources (the disk, the running processes, the login items, the file
// browser's toolbar), keeps one record for each path, and carries out the window's actions on the selected records. The
// main interface file makes the one instance. Main thread.
//
// Each source and the inventory are replaced whole, and observers of their keys are told.
class AppController : public Handle<AppController, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Registers the value transformers under their names, once, before the first instance.
    static void initialize();
    // Creates the query and observes it; nil when the superclass's init answers nil.
    AppController init() const;
    // Sorts the table, reads the sources and starts the query. Called when the outlets are connected.
    void awakeFromNib() const;
    // Always true: closing the window ends the program.
    bool applicationShouldTerminateAfterLastWindowClosed_(id const& application) const;

    // The whole login-items list as last read, every entry.
    NSArray allAutolaunchItems() const;
    void setAllAutolaunchItems_(NSArray const& items) const;
    // The whole toolbar-items list as last read.
    NSArray allToolbarItems() const;
    void setAllToolbarItems_(NSArray const& items) const;
    // Membership entries: dictionaries of "path" and the source's own object. The table in MembershipSources.h has the
    // keys of the sources.
    NSSet isRunningPaths() const;
    void setIsRunningPaths_(NSSet const& entries) const;
    NSSet isAutolaunchedPaths() const;
    void setIsAutolaunchedPaths_(NSSet const& entries) const;
    NSSet isInToolbarPaths() const;
    void setIsInToolbarPaths_(NSSet const& entries) const;
    // Plain path strings of the copies on the disk.
    NSMutableSet isOnHarddiskPaths() const;
    void setIsOnHarddiskPaths_(NSMutableSet const& paths) const;
    // The inventory: path records, which the table shows by observing this key.
    NSMutableSet paths() const;
    void setPaths_(NSMutableSet const& paths) const;
    NSMetadataQuery query() const;
    void setQuery_(NSMetadataQuery const& query) const;
    // Outlets, connected by the main interface file through key-value coding.
    NSArrayController pathsArrayController() const;
    NSTableView pathsTableView() const;
    NSWindow window() const;

    // Builds the record of one path and adds it to the set. The flags come from the sources, never from the objects
    // given; a nil object leaves its key out of the record. A path that is no copy of the companion gets empty version
    // texts.
    void pathObjects_addPath_psn_autolaunchedItem_toolbarItem_(NSMutableSet const& records, NSString const& path,
                                                               id const& psn, id const& autolaunchedItem,
                                                               id const& toolbarItem) const;
    // Builds and adds the record with the objects that the sources have: of several entries of a path the first counts.
    void pathObjects_addPath_(NSMutableSet const& records, NSString const& path) const;
    // Rebuilds the inventory from all sources: the disk's paths first, then those that only the others know.
    void reSync() const;

    // Read a source anew and replace it; the inventory follows with the next reSync.
    void syncIsRunningPaths() const;
    void syncIsAutolaunched() const;
    void syncIsInToolbar() const;

    // The Finder's toolbar items as they are now; an empty array without any. A failure to synchronise is a beep and a
    // line in the log, and what could be read is answered. Linux: the items are the file browser's places.
    NSArray readAllToolbarItems() const;
    // Replaces them by these; YES if that is on the disk.
    bool writeAllToolbarItems_(NSArray const& items) const;
    // Removes the toolbar item of the one selected record, then quits the Finder and launches it again. A beep and a
    // line in the log if the item is not in the list as last read, or cannot be removed.
    void unToolbarAction_(id const& sender) const;
    // Quits the Finder and launches it again as it was started; a beep and a line in the log when it refuses, does not
    // run or is not launched. Blocks while it quits: until it has replied to the event, then about four seconds.
    void quitFinderAction_(id const& sender) const;

    // Reads the login items anew: dictionaries of "Hide", "Path", "AliasData" and the keys that other programs added;
    // an empty array if there are none. A failed read is a beep and a line in the log.
    NSArray readAllAutolaunchItems() const;
    // Whether all was written.
    bool writeAllAutolaunchItems_(NSArray const& items) const;
    // Why the login items, and the file browser's places, could not be read whole, for people; nil if they could.
    NSString loginItemsProblem() const;
    NSString placesProblem() const;
    // Why the last writing of login items or toolbar items failed, for people; nil if it did not.
    NSString writingProblem() const;
    // The first entry whose path, spelled as in the entry, is that of a copy; nil if there is none.
    NSDictionary autoLaunchedApplicationsAnyMirrorFrameEntry_(NSArray const& entries) const;
    bool hasAutoLaunchedApplicationsEntry_(NSArray const& entries) const;
    // Makes the copy of the one selected record the one that starts at log-in, in place of all others. A beep and a
    // line in the log if it does not exist, or the list cannot be written.
    void addToAutoLaunchAction_(id const& sender) const;
    // Removes the login item of the one selected record; a beep and a line in the log if it is not, or no longer, in
    // the list as last read.
    void unAutoLaunchAction_(id const& sender) const;
    // Shows the settings where the login items are managed by hand, and the desktop's question whether to log out.
    void showAccountsAction_(id const& sender) const;
    void logOutAction_(id const& sender) const;

    // The query's notifications. The inventory follows the query only while it gathers: the last two do nothing.
    void queryDidStart_(NSNotification const& notification) const;
    void queryGatheringProgress_(NSNotification const& notification) const;
    void queryDidFinish_(NSNotification const& notification) const;
    void queryDidUpdate_(NSNotification const& notification) const;
    // Reads the query's results, then rebuilds the inventory. Linux: the notifications do so step by step where there
    // are many results, and the inventory is rebuilt when all are taken in.
    void syncQuery() const;
    // Replaces the disk's paths by those results that exist and are copies of the companion.
    void syncIsOnHarddisk() const;
    // Empties the table and starts all over. The sender of an action is ignored.
    void scanAction_(id const& sender) const;
    // Stops the query; what was found stays.
    void stopAction_(id const& sender) const;

    // Whether a copy runs; with YES every one of them is then sent a quit event, which is logged. Does not wait for
    // them to exit.
    bool isRunningWithQuitting_(BOOL quit) const;
    // Quits the copy of the one selected record and reads the running copies anew; a beep and a line in the log when it
    // refuses or does not run. Blocks while the copy quits: until it has replied to the event, then about four seconds.
    void quitAction_(id const& sender) const;
    // Launches the system's monitor of processes; a beep and a line in the log when there is none.
    void openActivityMonitorAction_(id const& sender) const;

    // Shows all selected copies in the file browser; a beep when none could be shown.
    void revealAction_(id const& sender) const;
    // The next three work on the one selected record; unless there is exactly one they do nothing. Failures are a beep
    // and a line in the log.
    //
    // Moves the copy to the trash, where it stays listed.
    void trashAction_(id const& sender) const;
    // Deletes the copy for good, without asking.
    void deleteAction_(id const& sender) const;
    // Gives the copy the other one of its two icons and shows it in the file browser.
    void swapIconAction_(id const& sender) const;

    // Linux: takes back the last move to the trash, change of the login items, removal from the toolbar or icon swap of
    // this window's life. A beep and a notice where that cannot be done.
    void undoAction_(id const& sender) const;
    // Linux: moves the one selected copy out of the trash to where it came from. A beep and a notice where that cannot
    // be done.
    void putBackAction_(id const& sender) const;
    // Linux: why the desktop's session cannot be left by logOutAction; nil if it can. Found out once, at the first
    // call.
    NSString logOutObstacle() const;
    // Linux: whether there is something to undo. Can be observed.
    bool canUndo() const;
    // Linux: a text about the last change for the window, which is told each time it is set; nil before the first.
    NSString notice() const;
    // Linux: what the window shows beside the table; each is made when it is first asked for.
    Panes panes() const;
    CopyDetails details() const;
    ScanChanges scanChanges() const;
    // Linux: whether the notice is about a change that undoAction takes back.
    bool noticeOffersUndo() const;

private:
    // The path of the one selected record, nil if it has none; nullopt unless there is exactly one.
    std::optional<NSString> onlySelectedPath() const;
    // Starts the query; a refusal is a beep and a line in the log.
    void startQuery() const;
};

}
