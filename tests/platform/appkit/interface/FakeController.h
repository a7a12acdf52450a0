#pragma once

#include "platform/appkit/arrangement/NSArrayController.h"
#include "platform/appkit/interface/NSTableView.h"
#include "platform/appkit/interface/NSWindow.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include <functional>
#include <string>
#include <vector>

namespace mac::test {

// What the window asks of a query.
class FakeQuery : public Handle<FakeQuery, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    bool isGathering() const;
    void setIsGathering_(BOOL gathering) const;
    NSUInteger unreadableFolderCount() const;
    NSArray unreadableFolders() const { return nil; }
    void setUnreadableFolderCount_(NSUInteger count) const;
};

class FakeQuery::Body : public ObjectBody {
public:
    bool m_isGathering{false};
    NSUInteger m_unreadableFolderCount{0};
};

// Stands in the main interface file's controller's place, by the class name that the file gives.
class FakeController : public Handle<FakeController, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();
    static void initialize();

    FakeController init() const;
    void awakeFromNib() const;
    bool applicationShouldTerminateAfterLastWindowClosed_(id const& application) const;

    NSSet paths() const;
    void setPaths_(NSSet const& paths) const;
    FakeQuery query() const;
    NSArrayController pathsArrayController() const;
    void setPathsArrayController_(NSArrayController const& arrayController) const;
    NSTableView pathsTableView() const;
    void setPathsTableView_(NSTableView const& tableView) const;
    NSWindow window() const;
    void setWindow_(NSWindow const& window) const;

    void scanAction_(id const& sender) const;
    void stopAction_(id const& sender) const;
    // Works on one item, and raises an exception.
    void trashAction_(id const& sender) const;
    // Takes as long as the function that was set for it.
    void quitAction_(id const& sender) const;
    void revealAction_(id const& sender) const;
    void undoAction_(id const& sender) const;

    // The pane beside the table is never shown.
    id pane() const { return nil; }
    NSString notice() const;
    bool noticeOffersUndo() const;
    bool canUndo() const;
    // Shows a notice, which offers an undo if there is something to undo.
    void tell(NSString const& notice, bool canUndo) const;
    void setWhileQuitting(std::function<void()> function) const;

    // What was sent, in order.
    std::vector<std::string>& messages() const;
};

class FakeController::Body : public ObjectBody {
public:
    NSSet m_paths;
    FakeQuery m_query{adopt<FakeQuery>()};
    NSArrayController m_pathsArrayController;
    NSTableView m_pathsTableView;
    NSWindow m_window;
    std::vector<std::string> m_messages;
    NSString m_notice;
    bool m_canUndo{false};
    std::function<void()> m_whileQuitting;
};

// Whether the next controller's init answers nil.
extern bool nextInitAnswersNil;

// A record as the program makes them, and a set of such.
NSMutableDictionary makeRecord(NSString const& path, NSString const& version = "210",
                               NSString const& versionString = "2.1 (210)");
NSSet makeRecords(std::initializer_list<char const*> paths);

} // namespace mac::test
