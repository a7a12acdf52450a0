#include "app/DetailFacts.h"
#include "platform/desktop/autostart/Autostart.h"
#include "platform/desktop/places/Places.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/files/FileAttributes.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/urls/NSURL.h"
#include "platform/processes/Processes.h"
#include "platform/system/items/ItemStatus.h"
#include "platform/system/items/OpenItem.h"
#include "platform/system/processes/ProcessList.h"
#include <bit>

namespace framekeeper {

namespace {

NSString pathFromBytes(std::string const& bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

NSDate dateOf(timespec const& time) {
    return NSDate::dateWithTimeIntervalSince1970_(static_cast<double>(time.tv_sec) +
                                                  static_cast<double>(time.tv_nsec) / 1e9);
}

bool recordFlag(NSDictionary const& record, NSString const& key) {
    return as<NSNumber>(record.objectForKey_(key)).boolValue();
}

// Nil for the startup volume without a label: the name that it has in HFS paths means nothing to this desktop's user.
NSString labelOf(MountedVolume const& volume) {
    bool const isNameless = volume.isStartup() && volume.name == UnlabeledStartupVolumeName;
    return isNameless ? NSString() : NSString::stringWithCodeUnits(volume.name);
}

std::optional<std::int32_t> processOfRecord(NSDictionary const& record) {
    NSNumber const number = as<NSNumber>(record.objectForKey_("psn"));
    if (number == nil) return std::nullopt;
    auto const psn = std::bit_cast<ProcessSerialNumber>(static_cast<std::uint64_t>(number.longLongValue()));
    std::int32_t process = 0;
    return GetProcessPID(&psn, &process) == noErr ? std::optional(process) : std::nullopt;
}

NSString loginItemFileOf(NSString const& path) {
    for (AutostartItem const& item : autostartItems().items) {
        if (item.entry.standing != AutostartEntry::Standing::Starts) continue;
        if (pathFromBytes(item.started).stringByStandardizingPath().isEqualToString_(path))
            return pathFromBytes(item.folder + "/" + item.fileName);
    }
    return nil;
}

NSString placeFileOf(NSString const& path) {
    for (Place const& place : readPlaces().places) {
        NSString const target = NSURL::URLWithString_(NSString::stringWithUTF8String_(place.uri)).path();
        if (target != nil && target.stringByStandardizingPath().isEqualToString_(path))
            return pathFromBytes(place.file);
    }
    return nil;
}

} // namespace

DiskFacts diskFactsOf(std::string const& path) {
    Result<OpenItem> const opened = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!opened.hasValue()) return {};
    DiskFacts facts;
    FileDescriptor const& item = opened.value().item;
    facts.created = creationDateOf(item);
    if (Result<ItemStatus> const status = statusOf(item); status.hasValue())
        facts.modified = dateOf(status.value().modificationTime);
    Result<MountedVolume> const volume = volumeOfItem(item);
    if (!volume.hasValue()) return facts;
    facts.volumePath = pathFromBytes(volume.value().mountPoint);
    // Names need the list of all volumes, which makes them unique.
    for (MountedVolume const& named : mountedVolumes())
        if (named.mount == volume.value().mount) facts.volumeName = labelOf(named);
    return facts;
}

SessionFacts sessionFactsOf(NSDictionary const& record) {
    NSString const path = as<NSString>(record.objectForKey_("path"));
    if (path == nil) return {};
    SessionFacts facts;
    facts.process = processOfRecord(record);
    std::optional<RunningProcess> const running = facts.process ? runningProcess(*facts.process) : std::nullopt;
    if (running) facts.program = pathFromBytes(programOf(*running));
    if (recordFlag(record, "isAutolaunched")) facts.loginItemFile = loginItemFileOf(path);
    if (recordFlag(record, "isInToolbar")) facts.placeFile = placeFileOf(path);
    return facts;
}

} // namespace framekeeper
