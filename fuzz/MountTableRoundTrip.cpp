#include "fuzz/Trials.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/system/BytePath.h"
#include "platform/system/items/MountTable.h"
#include <algorithm>
#include <set>

namespace mac::fuzz {

namespace {

// The text with the escapes of /proc/self/mountinfo.
std::string escaped(std::string_view text) {
    std::string result;
    for (char const byte : text) {
        if (std::string_view(" \t\n\\").find(byte) == std::string_view::npos) {
            result += byte;
            continue;
        }
        auto const number = static_cast<unsigned char>(byte);
        result += '\\';
        for (unsigned const shift : {6U, 3U, 0U})
            result += static_cast<char>('0' + (number >> shift & 7U));
    }
    return result;
}

std::string lineOf(Mount const& mount) {
    std::string const options = mount.isReadOnly ? "ro" : "rw";
    return std::to_string(mount.id) + " " + std::to_string(mount.parent) + " " + mount.device + " " +
           escaped(mount.subtree) + " " + escaped(mount.mountPoint) + " " + options + " - " + mount.type + " " +
           escaped(mount.source) + " " + options + "\n";
}

bool isSame(Mount const& one, Mount const& other) {
    return one.id == other.id && one.parent == other.parent && one.device == other.device &&
           one.subtree == other.subtree && one.mountPoint == other.mountPoint && one.type == other.type &&
           one.source == other.source && one.isReadOnly == other.isReadOnly && one.hangsOnListed == other.hangsOnListed;
}

std::string complaintAboutVolumes(std::vector<MountedVolume> const& volumes) {
    if (volumes.empty() || !volumes.front().isStartup()) return "the startup volume is not the first";
    std::set<std::u16string> names;
    for (MountedVolume const& volume : volumes) {
        if (!names.insert(volume.name).second) return "two volumes have one name";
        MountedVolume const* const found = volumeOfPath(volumes, volume.mountPoint);
        if (!found || found->mountPoint != volume.mountPoint) return "a mount point lies on another volume";
    }
    return "";
}

} // namespace

std::string complaintAboutMounts(std::string_view text) {
    // Each pair of mounts is compared, which takes long for more mounts than a system has.
    constexpr std::size_t mostMounts = 64;
    MountTable const table = MountTable::parse(text);
    if (table.mounts().size() > mostMounts) return "";
    std::string written;
    for (Mount const& mount : table.mounts()) {
        if (!mount.mountPoint.starts_with('/') || mount.type.empty()) return "what is no mount is in the table";
        if (!table.withId(mount.id)) return "a mount is not found by its number";
        Mount const* const reached = table.reachedBy(mount.mountPoint);
        if (reached && !BytePath(mount.mountPoint).isAtOrBelow(reached->mountPoint))
            return "a path leads to a mount elsewhere";
        written += lineOf(mount);
    }
    std::vector<Mount> const again = MountTable::parse(written).mounts();
    if (!std::equal(again.begin(), again.end(), table.mounts().begin(), table.mounts().end(), isSame))
        return "the mounts change when they are written";
    return complaintAboutVolumes(volumesOf(table));
}

} // namespace mac::fuzz
