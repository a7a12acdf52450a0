#include "app/RecordBuilding.h"
#include "app/AppControllerBody.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <algorithm>
#include <utility>

namespace framekeeper {

namespace {

// Texts that are needed for each record. All records share their keys: finding one by the very same string is quick,
// and a key of its own for each record would take more memory than the rest of it.
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

    NSString companionIdentifier = CompanionIdentifier;
    NSString path = "path";
    NSString displayPath = "displayPath";
    NSString exists = "exists";
    std::array<NSString, MembershipSources.size()> flags;
    std::array<NSString, MembershipSources.size()> objects;
    NSString version = "version";
    NSString versionString = "versionString";
};

// Linux: information files written by hand hold versions as numbers too; the table compares text.
NSString textOfVersion(id const& value) {
    NSNumber const number = as<NSNumber>(value);
    return number == nil ? as<NSString>(value) : number.stringValue();
}

// Empty for what names no file.
std::string bytesOf(id const& path) {
    NSString const text = as<NSString>(path);
    return text == nil ? std::string() : text.fileSystemRepresentation().value_or("");
}

} // namespace

EntriesByPath::EntriesByPath(NSSet const& entries) {
    for (id const& entry : entries.allObjects()) {
        id const path = entry.valueForKey_("path");
        if (path == nil && m_entryWithoutPath == nil)
            m_entryWithoutPath = entry;
        else if (path != nil && m_entries.objectForKey_(path) == nil)
            m_entries.setObject_forKey_(entry, path);
    }
}

bool EntriesByPath::contains(NSString const& path) const { return path != nil && m_entries.objectForKey_(path) != nil; }

id EntriesByPath::objectOf(NSString const& path, NSString const& key) const {
    id const entry = path == nil ? m_entryWithoutPath : m_entries.objectForKey_(path);
    return entry.valueForKey_(key);
}

KeptRecords::Kept KeptRecords::take(NSString const& path, BundleLook const& look) {
    // Some paths before this one may have gone.
    constexpr std::size_t mostLeftOut = 8;
    std::size_t const end = std::min(m_records.size(), m_next + mostLeftOut);
    std::size_t index = m_next;
    while (index < end && !isSame(m_records[index].path, path))
        ++index;
    if (index == end) return {};
    m_next = index + 1;
    Kept& kept = m_records[index];
    bool const isSameLook =
        isSame(kept.version, look.summary.version) && isSame(kept.shortVersion, look.summary.shortVersion);
    return isSameLook && kept.record.hash() == kept.hash ? std::move(kept) : Kept();
}

void KeptRecords::forget(id const& record) {
    for (Kept& kept : m_records) {
        if (isSame(kept.record, record)) kept = {};
    }
}

KeptRecords takeKeptRecords(AppController const& controller) {
    KeptRecords kept = std::exchange(bodyOf(controller)->_keptRecords, {});
    NSArray const selected = controller.pathsArrayController().selectedObjects();
    if (selected.count() == 1) kept.forget(selected.objectAtIndex_(0));
    return kept;
}

RecordBuilder::RecordBuilder(AppController const& controller, KeptRecords former) : m_former(std::move(former)) {
    m_kept.reserve(m_former.count());
    for (std::size_t row = 0; row < MembershipSources.size(); ++row)
        m_sources.emplace_back(entriesOf(controller, row));
}

RecordBuilder::Versions* RecordBuilder::sharedVersionsOf(NSString const& shortVersion, NSString const& version) {
    // A missing version is not an empty one.
    if (version == nil || shortVersion == nil) return {};
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15U;
    VersionPair const pair{shortVersion.codeUnits(), version.codeUnits(), shortVersion.hash() * odd + version.hash()};
    auto const known = m_versions.find(pair);
    if (known != m_versions.end()) return &known->second;
    m_keptTexts.insert(m_keptTexts.end(), {shortVersion, version});
    std::u16string both(shortVersion.codeUnits());
    ((both += u" (") += version.codeUnits()) += u')';
    return &m_versions.emplace(pair, Versions{version, NSString::stringWithCodeUnits(both)}).first->second;
}

bool RecordBuilder::isInSource(NSString const& path) const {
    return std::ranges::any_of(m_sources, [&path](EntriesByPath const& source) { return source.contains(path); });
}

NSMutableDictionary RecordBuilder::recordWith(NSString const& path, bool exists, Versions const& versions,
                                              RecordObjects const& objects) const {
    RecordKeys const& keys = RecordKeys::shared();
    NSMutableDictionary const record = NSMutableDictionary::dictionary();
    record.setValue_forKey_(path, keys.path);
    record.setValue_forKey_(path, keys.displayPath);
    record.setValue_forKey_(NSNumber::numberWithBool_(BOOL(exists)), keys.exists);
    for (std::size_t row = 0; row < MembershipSources.size(); ++row) {
        record.setValue_forKey_(NSNumber::numberWithBool_(BOOL(m_sources[row].contains(path))), keys.flags[row]);
        record.setValue_forKey_(objects[row], keys.objects[row]);
    }
    record.setValue_forKey_(versions.version, keys.version);
    record.setValue_forKey_(versions.versionString, keys.versionString);
    return record;
}

void RecordBuilder::addFromDisk(NSMutableSet const& records, NSString const& path, BundleLook const& look) {
    bool const isPlain = path != nil && isCompanion(look) && !isInSource(path);
    if (!isPlain) return add(records, path, look);
    KeptRecords::Kept kept = m_former.take(path, look);
    if (kept.record == nil) {
        NSMutableDictionary const record = recordOf(path, look, {});
        kept = {path, look.summary.version, look.summary.shortVersion, record, record.hash()};
    }
    records.addObject_(kept.record);
    m_kept.add(std::move(kept));
}

void RecordBuilder::add(NSMutableSet const& records, NSString const& path, BundleLook const& look,
                        RecordObjects const& objects) {
    records.addObject_(recordOf(path, look, objects));
}

NSMutableDictionary RecordBuilder::recordOf(NSString const& path, BundleLook const& look,
                                            RecordObjects const& objects) {
    if (!isCompanion(look)) return recordWith(path, look.exists, {"", ""}, objects);
    NSString const version = textOfVersion(look.summary.version);
    NSString const shortVersion = textOfVersion(look.summary.shortVersion);
    Versions* const shared = sharedVersionsOf(shortVersion, version);
    if (!shared) {
        Versions const versions{version, NSString::stringWithFormat_("%@ (%@)", shortVersion, version)};
        return recordWith(path, look.exists, versions, objects);
    }
    bool const hasObject = std::ranges::any_of(objects, [](id const& object) { return object != nil; });
    if (path == nil || hasObject || isInSource(path)) return recordWith(path, look.exists, *shared, objects);
    return recordLikeSample(path, *shared);
}

NSMutableDictionary RecordBuilder::recordLikeSample(NSString const& path, Versions& versions) {
    if (m_sample == nil) m_sample = recordWith(path, true, versions, {});
    RecordKeys const& keys = RecordKeys::shared();
    auto const copyWithVersions = [&] {
        NSMutableDictionary const copy = uncheckedCast<NSMutableDictionary>(m_sample.mutableCopy());
        copy.setObject_forKey_(versions.version, keys.version);
        copy.setObject_forKey_(versions.versionString, keys.versionString);
        return copy;
    };
    bool const comesAgain = std::exchange(versions.hasRecord, true);
    if (comesAgain && versions.sample == nil) versions.sample = copyWithVersions();
    NSMutableDictionary const record =
        comesAgain ? uncheckedCast<NSMutableDictionary>(versions.sample.mutableCopy()) : copyWithVersions();
    record.setObject_forKey_(path, keys.path);
    record.setObject_forKey_(path, keys.displayPath);
    return record;
}

void RecordBuilder::add(NSMutableSet const& records, NSString const& path, BundleLook const& look) {
    RecordObjects objects;
    for (std::size_t row = 0; row < MembershipSources.size(); ++row)
        objects[row] = m_sources[row].objectOf(path, RecordKeys::shared().objects[row]);
    add(records, path, look, objects);
}

void RecordBuilder::addMissing(AppController const& controller, NSMutableSet const& records, NSSet const& diskPaths) {
    // Two entries of one path would make two equal records, which the set holds once.
    NSMutableSet const added = NSMutableSet::set();
    std::vector<id> missing;
    std::vector<std::string> files;
    for (std::size_t row = 0; row < MembershipSources.size(); ++row) {
        for (id const& entry : entriesOf(controller, row).allObjects()) {
            id const path = entry.valueForKey_("path");
            if (diskPaths.containsObject_(path) || added.containsObject_(path)) continue;
            missing.push_back(path);
            if (path != nil) added.addObject_(path);
            files.push_back(bytesOf(path));
        }
    }
    if (missing.empty()) return;
    AnsweringItems& items = *bodyOf(controller)->_answeringItems;
    items.ask(files, [later = Weak<AppController>(controller)] { reSyncSoon(later.load()); });
    for (std::size_t index = 0; index < missing.size(); ++index) {
        NSString const path = as<NSString>(missing[index]);
        add(records, path, items.isSilent(files[index]) ? BundleLook() : lookAtBundle(path));
    }
}

void reSyncSoon(AppController const& controller) {
    if (controller == nil || std::exchange(bodyOf(controller)->_reSyncsSoon, true)) return;
    performOnMainRunLoop([later = Weak<AppController>(controller)] {
        AppController const present = later.load();
        if (present == nil) return;
        bodyOf(present)->_reSyncsSoon = false;
        present.reSync();
    });
}

bool isCompanion(BundleLook const& look) {
    return look.exists && look.summary.identifier.isEqual_(RecordKeys::shared().companionIdentifier);
}

} // namespace framekeeper
