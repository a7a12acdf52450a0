#include "command/Copies.h"
#include "app/MembershipSources.h"
#include "app/Outlets.h"
#include "app/RecordBuilding.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/ItemIdentity.h"
#include <cerrno>
#include <chrono>

namespace framekeeper {

namespace {

// How often the search is looked at, in seconds.
constexpr NSTimeInterval Glance = 0.1;
// What was found is printed by then; writing what is remembered of a large disk takes seconds on a busy computer.
constexpr NSTimeInterval LongestRemembering = 60;

} // namespace

Copies::Copies() {
    m_arrangement.setSortDescriptors_(inventoryOrder());
    m_controller.setValue_forKey_(m_arrangement, "pathsArrayController");
    m_controller.setIsOnHarddiskPaths_(NSMutableSet::set());
    m_arrangement.bind_toObject_withKeyPath_options_("contentSet", m_controller, "paths", nil);
}

bool Copies::search(std::function<void(std::size_t found)> const& progress) const {
    // The results are taken in once, at the end, and not with each of the query's notifications.
    NSNotificationCenter::defaultCenter().removeObserver_(m_controller);
    NSMetadataQuery const query = m_controller.query();
    query.setNotificationBatchingInterval_(Glance);
    query.setEndsWithGathering_(true);
    readSources();
    if (!query.startQuery()) return false;
    while (query.isGathering()) {
        NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode,
                                                        NSDate::dateWithTimeIntervalSinceNow_(Glance));
        progress(query.resultCount());
    }
    m_controller.syncQuery();
    return true;
}

void Copies::finishSearch() const {
    NSMetadataQuery const query = m_controller.query();
    query.waitUntilRemembered(LongestRemembering);
    query.stopQuery();
}

void Copies::readSources() const { syncMembershipSources(m_controller); }

void Copies::look(NSArray const& paths) const {
    m_controller.setIsOnHarddiskPaths_(NSMutableSet::setWithArray_(paths));
    m_controller.reSync();
}

NSArray Copies::records() const { return m_arrangement.arrangedObjects(); }

NSDictionary Copies::recordOf(NSString const& path) const {
    NSDictionary standardized;
    for (id const& element : records()) {
        NSDictionary const record = as<NSDictionary>(element);
        NSString const known = as<NSString>(record.objectForKey_("path"));
        if (known.isEqualToString_(path)) return record;
        bool const isAlike = standardized == nil && known.stringByStandardizingPath().isEqualToString_(path);
        if (isAlike) standardized = record;
    }
    return standardized;
}

bool Copies::select(NSArray const& paths) const {
    NSMutableArray const found = NSMutableArray::array();
    for (id const& path : paths) {
        NSDictionary const record = recordOf(as<NSString>(path));
        if (record == nil) return false;
        found.addObject_(record);
    }
    return m_arrangement.setSelectedObjects_(found);
}

Result<OpenItem> openCopyAt(NSString const& path) {
    Result<OpenItem> item = openItemAtPath(bytesOfPath(path), LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return item;
    Result<IdentifiedItem> const identified = identify(item.value().item);
    if (!identified.hasValue()) return identified.problem();
    // By the descriptor, which no exchanged name leads elsewhere.
    NSString const held = NSString::stringWithFileSystemRepresentation_(item.value().systemPath());
    if (identified.value().isFolder && isCompanion(lookAtBundle(held))) return item;
    return SystemError{.code = ENOENT, .operation = "open", .item = bytesOfPath(path)};
}

bool isCopyAt(NSString const& path) { return openCopyAt(path).hasValue(); }

int beepsDuring(std::function<void()> const& work) {
    int beeps = 0;
    BeepListener const listener([&beeps] { ++beeps; });
    work();
    return beeps;
}

NSString absolutePath(std::string const& bytes) {
    return NSString::stringWithFileSystemRepresentation_(physicalPath(bytes));
}

std::string bytesOfPath(NSString const& path) { return path.fileSystemRepresentation().value_or(""); }

} // namespace framekeeper
