#include "app/AppControllerBody.h"
#include "platform/foundation/KeyValueObserving.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSNumber.h"

namespace framekeeper {

namespace {

// Replaces a field whole. Observers are told once of every setting, also of the same object.
template <class Value>
void replace(AppController const& controller, Value AppController::Body::*field, Value const& value,
             NSString const& key) {
    if (controller == nil) return;
    KeyChange const change(controller, key);
    if (!isSame(bodyOf(controller)->*field, value)) bodyOf(controller)->*field = value;
}

template <class Value>
Value read(AppController const& controller, Value AppController::Body::*field) {
    return controller == nil ? Value() : bodyOf(controller)->*field;
}

// One source by path: of several entries with the same path the first in the set's order counts.
class EntriesByPath {
public:
    explicit EntriesByPath(NSSet const& entries) {
        for (id const& entry : entries.allObjects()) {
            id const path = entry.valueForKey_("path");
            if (path == nil && m_entryWithoutPath == nil)
                m_entryWithoutPath = entry;
            else if (path != nil && m_entries.objectForKey_(path) == nil)
                m_entries.setObject_forKey_(entry, path);
        }
    }

    bool contains(NSString const& path) const { return path != nil && m_entries.objectForKey_(path) != nil; }
    id objectOf(NSString const& path, NSString const& key) const {
        id const entry = path == nil ? m_entryWithoutPath : m_entries.objectForKey_(path);
        return entry.valueForKey_(key);
    }

private:
    NSMutableDictionary m_entries = NSMutableDictionary::dictionary();
    id m_entryWithoutPath;
};

// The three sources with objects, indexed once, so that a record costs the same however many paths there are.
struct SourceIndex {
    explicit SourceIndex(AppController const& controller)
        : running(controller.isRunningPaths()), autolaunched(controller.isAutolaunchedPaths()),
          inToolbar(controller.isInToolbarPaths()) {}

    EntriesByPath running;
    EntriesByPath autolaunched;
    EntriesByPath inToolbar;
};

struct Versions {
    // Nil for a copy that tells none.
    NSString version = "";
    NSString versionString = "";
};

// Linux: information files written by hand hold versions as numbers too; the table compares text.
NSString textOfInformation(NSBundle const& bundle, NSString const& key) {
    id const value = bundle.objectForInfoDictionaryKey_(key);
    NSNumber const number = as<NSNumber>(value);
    return number == nil ? as<NSString>(value) : number.stringValue();
}

Versions versionsOfPath(NSString const& path) {
    NSBundle const bundle = NSBundle::bundleWithPath_(path);
    if (!bundle.bundleIdentifier().isEqualToString_(CompanionIdentifier)) return {};
    NSString const version = textOfInformation(bundle, "CFBundleVersion");
    NSString const shortVersion = textOfInformation(bundle, "CFBundleShortVersionString");
    return {version, NSString::stringWithFormat_("%@ (%@)", shortVersion, version)};
}

// All records share their keys: finding one by the very same string is quick, and a key of its own for each record
// would take more memory than the rest of it.
struct RecordKeys {
    NSString path = "path";
    NSString displayPath = "displayPath";
    NSString exists = "exists";
    NSString isRunning = "isRunning";
    NSString psn = "psn";
    NSString isAutolaunched = "isAutolaunched";
    NSString autolaunchItem = "autolaunchItem";
    NSString isInToolbar = "isInToolbar";
    NSString toolbarItem = "toolbarItem";
    NSString version = "version";
    NSString versionString = "versionString";
};

void addRecord(NSMutableSet const& records, SourceIndex const& sources, NSString const& path, id const& psn,
               id const& autolaunchedItem, id const& toolbarItem) {
    auto const [version, versionString] = versionsOfPath(path);
    bool const exists = NSFileManager::defaultManager().fileExistsAtPath_(path);

    static RecordKeys const keys;
    NSMutableDictionary const record = NSMutableDictionary::dictionary();
    record.setValue_forKey_(path, keys.path);
    record.setValue_forKey_(path, keys.displayPath);
    record.setValue_forKey_(NSNumber::numberWithBool_(exists), keys.exists);
    record.setValue_forKey_(NSNumber::numberWithBool_(sources.running.contains(path)), keys.isRunning);
    record.setValue_forKey_(psn, keys.psn);
    record.setValue_forKey_(NSNumber::numberWithBool_(sources.autolaunched.contains(path)), keys.isAutolaunched);
    record.setValue_forKey_(autolaunchedItem, keys.autolaunchItem);
    record.setValue_forKey_(NSNumber::numberWithBool_(sources.inToolbar.contains(path)), keys.isInToolbar);
    record.setValue_forKey_(toolbarItem, keys.toolbarItem);
    record.setValue_forKey_(version, keys.version);
    record.setValue_forKey_(versionString, keys.versionString);
    records.addObject_(record);
}

void addRecord(NSMutableSet const& records, SourceIndex const& sources, NSString const& path) {
    addRecord(records, sources, path, sources.running.objectOf(path, "psn"),
              sources.autolaunched.objectOf(path, "autolaunchItem"), sources.inToolbar.objectOf(path, "toolbarItem"));
}

// The paths that are not in the records when the source is begun. Two entries of one path make two equal records, which
// the set holds once.
void addMissingRecords(NSMutableSet const& records, SourceIndex const& sources, NSSet const& entries) {
    NSSet const known = as<NSSet>(records.valueForKey_("path"));
    for (id const& entry : entries.allObjects()) {
        NSString const path = as<NSString>(entry.valueForKey_("path"));
        if (!known.containsObject_(path)) addRecord(records, sources, path);
    }
}

} // namespace

NSArray AppController::allAutolaunchItems() const { return read(*this, &Body::_allAutolaunchItems); }

void AppController::setAllAutolaunchItems_(NSArray const& items) const {
    replace(*this, &Body::_allAutolaunchItems, items, "allAutolaunchItems");
}

NSArray AppController::allToolbarItems() const { return read(*this, &Body::_allToolbarItems); }

void AppController::setAllToolbarItems_(NSArray const& items) const {
    replace(*this, &Body::_allToolbarItems, items, "allToolbarItems");
}

NSSet AppController::isRunningPaths() const { return read(*this, &Body::_isRunningPaths); }

void AppController::setIsRunningPaths_(NSSet const& entries) const {
    replace(*this, &Body::_isRunningPaths, entries, "isRunningPaths");
}

NSSet AppController::isAutolaunchedPaths() const { return read(*this, &Body::_isAutolaunchedPaths); }

void AppController::setIsAutolaunchedPaths_(NSSet const& entries) const {
    replace(*this, &Body::_isAutolaunchedPaths, entries, "isAutolaunchedPaths");
}

NSSet AppController::isInToolbarPaths() const { return read(*this, &Body::_isInToolbarPaths); }

void AppController::setIsInToolbarPaths_(NSSet const& entries) const {
    replace(*this, &Body::_isInToolbarPaths, entries, "isInToolbarPaths");
}

NSMutableSet AppController::isOnHarddiskPaths() const { return read(*this, &Body::_isOnHarddiskPaths); }

void AppController::setIsOnHarddiskPaths_(NSMutableSet const& paths) const {
    replace(*this, &Body::_isOnHarddiskPaths, paths, "isOnHarddiskPaths");
}

NSMutableSet AppController::paths() const { return read(*this, &Body::_paths); }

void AppController::setPaths_(NSMutableSet const& paths) const { replace(*this, &Body::_paths, paths, "paths"); }

NSMetadataQuery AppController::query() const { return read(*this, &Body::_query); }

void AppController::setQuery_(NSMetadataQuery const& query) const { replace(*this, &Body::_query, query, "query"); }

NSArrayController AppController::pathsArrayController() const { return read(*this, &Body::_pathsArrayController); }

NSTableView AppController::pathsTableView() const { return read(*this, &Body::_pathsTableView); }

NSWindow AppController::window() const { return read(*this, &Body::_window); }

void AppController::pathObjects_addPath_psn_autolaunchedItem_toolbarItem_(NSMutableSet const& records,
                                                                          NSString const& path, id const& psn,
                                                                          id const& autolaunchedItem,
                                                                          id const& toolbarItem) const {
    if (*this != nil) addRecord(records, SourceIndex(*this), path, psn, autolaunchedItem, toolbarItem);
}

void AppController::pathObjects_addPath_(NSMutableSet const& records, NSString const& path) const {
    if (*this != nil) addRecord(records, SourceIndex(*this), path);
}

void AppController::reSync() const {
    if (*this == nil) return;
    NSMutableSet const records = NSMutableSet::set();
    SourceIndex const sources(*this);
    for (id const& path : isOnHarddiskPaths().allObjects())
        addRecord(records, sources, as<NSString>(path));
    addMissingRecords(records, sources, isRunningPaths());
    addMissingRecords(records, sources, isAutolaunchedPaths());
    addMissingRecords(records, sources, isInToolbarPaths());
    setPaths_(records);
}

} // namespace framekeeper
