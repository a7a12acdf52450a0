#pragma once

#include "app/MembershipSources.h"
#include "platform/foundation/bundles/NSBundle.h"
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace framekeeper {

// The entries of one source by their paths: of several with the same path the first in the set's order counts.
class EntriesByPath {
public:
    explicit EntriesByPath(NSSet const& entries);

    bool contains(NSString const& path) const;
    // The value under the key of the path's entry; nil if there is none.
    id objectOf(NSString const& path, NSString const& key) const;

private:
    NSMutableDictionary m_entries = NSMutableDictionary::dictionary();
    id m_entryWithoutPath;
};

// A path's object in each of the sources, row by row of their table, nil where there is none.
using RecordObjects = std::array<id, MembershipSources.size()>;

// Records of copies that are in no source, in the order in which they were added. When the inventory is made anew, a
// copy that has not changed keeps its record, unless the record was changed. Main thread.
class KeptRecords {
public:
    struct Kept {
        NSString path;
        id version;
        id shortVersion;
        NSMutableDictionary record;
        // Of the record's contents: another one tells that somebody changed them.
        std::uint64_t hash{0};
    };

    // Takes out the path's record if it still says what the look told; nil if there is none. Quick if the paths come in
    // the order of the records; a path that comes elsewhere is not found.
    Kept take(NSString const& path, BundleLook const& look);
    void add(Kept kept) { m_records.push_back(std::move(kept)); }
    void forget(id const& record);
    void reserve(std::size_t records) { m_records.reserve(records); }
    std::size_t count() const { return m_records.size(); }

private:
    std::vector<Kept> m_records;
    std::size_t m_next{0};
};

// Takes out the controller's, without the record that is selected alone: another one tells whoever shows more of its
// copy to look again.
KeptRecords takeKeptRecords(AppController const& controller);

// Makes records from the controller's sources as they are when it is made. The sources are indexed once, so that a
// record costs the same however many paths there are. Main thread.
class RecordBuilder {
public:
    explicit RecordBuilder(AppController const& controller, KeptRecords former = {});

    // Adds the record of a path that the disk's paths have: the former one if nothing has changed.
    void addFromDisk(NSMutableSet const& records, NSString const& path, BundleLook const& look);
    // Those that addFromDisk added and that are in no source.
    KeptRecords takeKept() { return std::move(m_kept); }
    // Adds the path's record, with what the look at the path told.
    void add(NSMutableSet const& records, NSString const& path, BundleLook const& look);
    void add(NSMutableSet const& records, NSString const& path, BundleLook const& look, RecordObjects const& objects);
    // Adds records of the paths of all sources, in the order of their table, that are not among those of the disk,
    // whose records are there. Linux: such a path may lie on a volume that does not answer: then its record says that
    // it does not exist, and the controller makes its inventory anew once the volume answers.
    void addMissing(AppController const& controller, NSMutableSet const& records, NSSet const& diskPaths);

private:
    struct Versions {
        // Nil for a copy that tells none.
        NSString version;
        NSString versionString;
        bool hasRecord{false};
        // A record of a copy of these versions that exists and is in no source; nil until there is a second one.
        NSMutableDictionary sample{};
    };

    // Null if the bundle lacks a version.
    Versions* sharedVersionsOf(NSString const& shortVersion, NSString const& version);
    NSMutableDictionary recordWith(NSString const& path, bool exists, Versions const& versions,
                                   RecordObjects const& objects) const;
    // A record of a copy that exists and is in no source.
    NSMutableDictionary recordLikeSample(NSString const& path, Versions& versions);
    NSMutableDictionary recordOf(NSString const& path, BundleLook const& look, RecordObjects const& objects);
    bool isInSource(NSString const& path) const;

    std::vector<EntriesByPath> m_sources;
    KeptRecords m_former;
    KeptRecords m_kept;
    // A record of some copy that exists and is in no source. Copying it is quicker than setting each key.
    NSMutableDictionary m_sample;
    struct VersionPair {
        std::u16string_view shortVersion;
        std::u16string_view version;
        std::uint64_t hash;
        bool operator==(VersionPair const&) const = default;
    };
    struct HashOfPair {
        std::size_t operator()(VersionPair const& pair) const { return pair.hash; }
    };
    // Most copies share a few.
    std::unordered_map<VersionPair, Versions, HashOfPair> m_versions;
    // Owns the texts that the keys of m_versions view.
    std::vector<NSString> m_keptTexts;
};

// Has the run loop make the controller's inventory anew in a later turn, once for all calls until then: the items of a
// volume that answers late do so one after another. Does nothing for nil. Main thread.
void reSyncSoon(AppController const& controller);

// Whether the look found a copy of the companion.
bool isCompanion(BundleLook const& look);

} // namespace framekeeper
