#include "app/AppControllerBody.h"
#include "app/MembershipSources.h"
#include "platform/foundation/KeyValueObserving.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSNumber.h"
#include <array>
#include <cstddef>
#include <vector>

namespace framekeeper {

namespace {

template <class Value>
void replaceField(AppController const& controller, Value& field, Value const& value, NSString const& key) {
    KeyChange const change(controller, key);
    if (!isSame(field, value)) field = value;
}

// Replaces a field whole. Observers are told once of every setting, also of the same object.
template <class Value>
void replace(AppController const& controller, Value AppController::Body::*field, Value const& value,
             NSString const& key) {
    if (controller != nil) replaceField(controller, bodyOf(controller)->*field, value, key);
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

// The sources with objects, row by row of their table, indexed once, so that a record costs the same however many paths
// there are.
class SourceIndex {
public:
    explicit SourceIndex(AppController const& controller) {
        for (std::size_t row = 0; row < MembershipSources.size(); ++row)
            m_sources.emplace_back(entriesOf(controller, row));
    }
    EntriesByPath const& operator[](std::size_t row) const { return m_sources[row]; }

private:
    std::vector<EntriesByPath> m_sources;
};

// A path's object in each of the sources, nil where there is none.
using RecordObjects = std::array<id, MembershipSources.size()>;

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
    RecordKeys() {
        for (std::size_t row = 0; row < MembershipSources.size(); ++row) {
            flags[row] = NSString::stringWithUTF8String_(MembershipSources[row].flagKey);
            objects[row] = NSString::stringWithUTF8String_(MembershipSources[row].objectKey);
        }
    }
    static RecordKeys const& shared() {
        static RecordKeys const keys;
        return keys;
    }

    NSString path = "path";
    NSString displayPath = "displayPath";
    NSString exists = "exists";
    std::array<NSString, MembershipSources.size()> flags;
    std::array<NSString, MembershipSources.size()> objects;
    NSString version = "version";
    NSString versionString = "versionString";
};

void addRecord(NSMutableSet const& records, SourceIndex const& sources, NSString const& path,
               RecordObjects const& objects) {
    auto const [version, versionString] = versionsOfPath(path);
    bool const exists = NSFileManager::defaultManager().fileExistsAtPath_(path);

    RecordKeys const& keys = RecordKeys::shared();
    NSMutableDictionary const record = NSMutableDictionary::dictionary();
    record.setValue_forKey_(path, keys.path);
    record.setValue_forKey_(path, keys.displayPath);
    record.setValue_forKey_(NSNumber::numberWithBool_(exists), keys.exists);
    for (std::size_t row = 0; row < MembershipSources.size(); ++row) {
        record.setValue_forKey_(NSNumber::numberWithBool_(sources[row].contains(path)), keys.flags[row]);
        record.setValue_forKey_(objects[row], keys.objects[row]);
    }
    record.setValue_forKey_(version, keys.version);
    record.setValue_forKey_(versionString, keys.versionString);
    records.addObject_(record);
}

void addRecord(NSMutableSet const& records, SourceIndex const& sources, NSString const& path) {
    RecordObjects objects;
    for (std::size_t row = 0; row < MembershipSources.size(); ++row)
        objects[row] = sources[row].objectOf(path, RecordKeys::shared().objects[row]);
    addRecord(records, sources, path, objects);
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

NSSet entriesOf(AppController const& controller, std::size_t row) {
    return controller == nil ? NSSet() : bodyOf(controller)->_entries[row];
}

void setEntries(AppController const& controller, std::size_t row, NSSet const& entries) {
    if (controller == nil) return;
    replaceField(controller, bodyOf(controller)->_entries[row], entries,
                 NSString::stringWithUTF8String_(MembershipSources[row].entriesKey));
}

void syncMembershipSources(AppController const& controller) {
    for (MembershipSource const& source : MembershipSources)
        source.sync(controller);
}

NSArray AppController::allAutolaunchItems() const { return read(*this, &Body::_allAutolaunchItems); }

void AppController::setAllAutolaunchItems_(NSArray const& items) const {
    replace(*this, &Body::_allAutolaunchItems, items, "allAutolaunchItems");
}

NSArray AppController::allToolbarItems() const { return read(*this, &Body::_allToolbarItems); }

void AppController::setAllToolbarItems_(NSArray const& items) const {
    replace(*this, &Body::_allToolbarItems, items, "allToolbarItems");
}

NSSet AppController::isRunningPaths() const { return entriesOf(*this, sourceWithEntries("isRunningPaths")); }

void AppController::setIsRunningPaths_(NSSet const& entries) const {
    setEntries(*this, sourceWithEntries("isRunningPaths"), entries);
}

NSSet AppController::isAutolaunchedPaths() const { return entriesOf(*this, sourceWithEntries("isAutolaunchedPaths")); }

void AppController::setIsAutolaunchedPaths_(NSSet const& entries) const {
    setEntries(*this, sourceWithEntries("isAutolaunchedPaths"), entries);
}

NSSet AppController::isInToolbarPaths() const { return entriesOf(*this, sourceWithEntries("isInToolbarPaths")); }

void AppController::setIsInToolbarPaths_(NSSet const& entries) const {
    setEntries(*this, sourceWithEntries("isInToolbarPaths"), entries);
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
    if (*this == nil) return;
    RecordObjects objects;
    objects[sourceWithEntries("isRunningPaths")] = psn;
    objects[sourceWithEntries("isAutolaunchedPaths")] = autolaunchedItem;
    objects[sourceWithEntries("isInToolbarPaths")] = toolbarItem;
    addRecord(records, SourceIndex(*this), path, objects);
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
    for (std::size_t row = 0; row < MembershipSources.size(); ++row)
        addMissingRecords(records, sources, entriesOf(*this, row));
    setPaths_(records);
}

} // namespace framekeeper
