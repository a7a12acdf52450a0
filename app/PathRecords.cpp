#include "app/AppController.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSNumber.h"

namespace framekeeper {

namespace {

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

void addRecord(NSMutableSet const& records, SourceIndex const& sources, NSString const& path, id const& psn,
               id const& autolaunchedItem, id const& toolbarItem) {
    auto const [version, versionString] = versionsOfPath(path);
    bool const exists = NSFileManager::defaultManager().fileExistsAtPath_(path);

    NSMutableDictionary const record = NSMutableDictionary::dictionary();
    record.setValue_forKey_(path, "path");
    record.setValue_forKey_(path, "displayPath");
    record.setValue_forKey_(NSNumber::numberWithBool_(exists), "exists");
    record.setValue_forKey_(NSNumber::numberWithBool_(sources.running.contains(path)), "isRunning");
    record.setValue_forKey_(psn, "psn");
    record.setValue_forKey_(NSNumber::numberWithBool_(sources.autolaunched.contains(path)), "isAutolaunched");
    record.setValue_forKey_(autolaunchedItem, "autolaunchItem");
    record.setValue_forKey_(NSNumber::numberWithBool_(sources.inToolbar.contains(path)), "isInToolbar");
    record.setValue_forKey_(toolbarItem, "toolbarItem");
    record.setValue_forKey_(version, "version");
    record.setValue_forKey_(versionString, "versionString");
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
