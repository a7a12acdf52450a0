#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/system/items/TreeSize.h"
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace framekeeper {

using namespace mac;

// What the disk tells of a copy. Each value is nil or nullopt if it is not known.
struct DiskFacts {
    NSDate created{};
    NSDate modified{};
    NSString volumeName{};
    // The volume's mount point.
    NSString volumePath{};
};

// Any thread; may wait for the disk.
DiskFacts diskFactsOf(std::string const& path);

// What the user's session tells of the copy of a record. Each value is nil or nullopt if there is none.
struct SessionFacts {
    std::optional<std::int32_t> process{};
    // The program that the process runs.
    NSString program{};
    // The file of the login item: an autostart entry.
    NSString loginItemFile{};
    // The file that holds the place.
    NSString placeFile{};
};

// Main thread.
SessionFacts sessionFactsOf(NSDictionary const& record);

// How far the copies that are equal byte for byte were looked for.
struct Comparison {
    enum class Stage { NotAsked, UnderWay, Stopped, Done };

    Stage stage{Stage::NotAsked};
    // How many of the other copies were compared, and how many there are.
    NSUInteger compared{0};
    NSUInteger others{0};
    // How many of those that were compared could not be read; the paths of those that are equal.
    NSUInteger unreadable{0};
    std::vector<NSString> equal{};
};

// All that is shown of a copy.
struct DetailFacts {
    // nil: there is not exactly one copy selected.
    NSDictionary record{};
    SessionFacts session{};
    // Why the login items and the places could not be read whole; nil if they could.
    NSString loginItemsProblem{};
    NSString placesProblem{};
    // nullopt while they are read.
    std::optional<DiskFacts> disk{};
    std::optional<Result<TreeSize>> size{};
    Comparison comparison{};
};

// The facts as texts and truth values for the window, by the keys that app/MainMenu.ui shows: texts "path", "version",
// "size", "created", "modified", "volume", "process", "loginItem", "place", "equalCopies"; "–" for what is not known.
// Truth values "hasCopy", "hasVolume", "hasProcess", "hasLoginItem", "hasPlace", "canCompare", "isComparing".
NSDictionary detailValues(DetailFacts const& facts);

} // namespace framekeeper
