#include "fuzz/Trials.h"
#include "platform/files/aliases/AliasRecord.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/items/MountTable.h"
#include <algorithm>

namespace mac::fuzz {

namespace {

std::string complaintAboutReading(std::span<std::byte const> bytes) {
    std::optional<AliasRecord> const record = AliasRecord::read(bytes);
    if (!record) return "";
    if (!std::ranges::equal(record->bytes(), bytes)) return "the record changes when it is written";
    if (!record->path.starts_with('/')) return "the path is not absolute";
    for (std::string const& text : {record->path, record->pathOnVolume, record->pathBelowHome.value_or("")}) {
        if (text.find('\0') != std::string::npos) return "a path has a NUL";
    }
    return "";
}

} // namespace

std::string complaintAboutAlias(std::span<std::byte const> bytes) {
    std::string complaint = complaintAboutReading(bytes);
    if (!complaint.empty()) return complaint;
    std::vector<std::byte> sealed(bytes.begin(), bytes.end());
    AliasRecord::seal(sealed);
    return complaintAboutReading(sealed);
}

namespace {

std::vector<MountedVolume> const& volumes() {
    static std::vector<MountedVolume> const all =
        volumesOf(MountTable::parse("1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
                                    "2 1 8:2 / /home rw - ext4 /dev/sda2 rw\n"
                                    "3 1 8:17 / /m/a rw - vfat /dev/sdb1 rw\n"
                                    "4 3 8:33 / /m/a/i:n rw - ext4 /dev/sdc1 rw\n"
                                    "5 1 8:49 / /m/\xFF\xC3\x89 rw - ext4 /dev/sdd1 rw\n"
                                    "6 1 8:50 / /n/A rw - ext4 /dev/sde1 rw\n"));
    return all;
}

bool isMountPoint(std::u16string_view path) {
    return std::ranges::any_of(
        volumes(), [path](MountedVolume const& volume) { return unitsFromFileSystemBytes(volume.mountPoint) == path; });
}

std::string complaintAboutPOSIXPath(std::u16string const& path) {
    std::u16string const hfs = hfsPathFromPOSIXPath(path, false, volumes());
    std::u16string const back = posixPathFromHFSPath(hfs, volumes());
    // A volume itself ends with a colon.
    bool const isSame = back == path || (isMountPoint(path) && back == path + u"/");
    if (!isSame) return "a path changes on the way there and back";
    if (path.starts_with(u'/') == hfs.starts_with(u':'))
        return "what is absolute becomes relative, or the other way round";
    std::u16string const folder = hfsPathFromPOSIXPath(path, true, volumes());
    if (folder != hfs && folder != hfs + u":") return "a folder is another item";
    if (!folder.ends_with(u':')) return "a folder does not end with a colon";
    return "";
}

} // namespace

std::string complaintAboutPaths(std::string_view bytes) {
    std::u16string const path = unitsFromFileSystemBytes(bytes);
    std::string const complaint = complaintAboutPOSIXPath(path);
    if (!complaint.empty()) return complaint;
    return complaintAboutPOSIXPath(posixPathFromHFSPath(path, volumes()));
}

} // namespace mac::fuzz
