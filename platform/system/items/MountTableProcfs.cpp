#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/items/MountTable.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <unordered_set>
#include <utility>

namespace mac {

namespace {

constexpr std::size_t LargestTable = std::size_t{64} << 20;

std::string_view takeField(std::string_view& line) {
    std::size_t const space = std::min(line.find(' '), line.size());
    std::string_view const field = line.substr(0, space);
    line.remove_prefix(std::min(space + 1, line.size()));
    return field;
}

bool isOctal(char c) { return c >= '0' && c <= '7'; }

// Space, tab, line feed and backslash are written as a backslash and three octal digits.
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string_view const digits = text.substr(i + 1, 3);
        if (text[i] == '\\' && digits.size() == 3 && std::all_of(digits.begin(), digits.end(), isOctal)) {
            result += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0'));
            i += digits.size();
        } else {
            result += text[i];
        }
    }
    return result;
}

bool readNumber(std::string_view text, std::uint64_t& number) {
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

// Whether "ro" is among the options, which commas separate.
bool isReadOnly(std::string_view options) {
    while (!options.empty()) {
        std::size_t const end = std::min(options.find(','), options.size());
        if (options.substr(0, end) == "ro") return true;
        options.remove_prefix(std::min(end + 1, options.size()));
    }
    return false;
}

// "36 35 98:0 /subtree /mount/point rw,noatime master:1 - ext3 /dev/root rw,errors=continue", where any number of
// fields may stand before the dash.
std::optional<Mount> parseLine(std::string_view line) {
    Mount mount;
    if (!readNumber(takeField(line), mount.id) || !readNumber(takeField(line), mount.parent)) return std::nullopt;
    mount.device = takeField(line);
    mount.subtree = unescaped(takeField(line));
    mount.mountPoint = unescaped(takeField(line));
    bool const isMountReadOnly = isReadOnly(takeField(line));
    while (!line.empty() && takeField(line) != "-")
        ;
    mount.type = takeField(line);
    mount.source = unescaped(takeField(line));
    mount.isReadOnly = isMountReadOnly || isReadOnly(takeField(line));
    if (!mount.mountPoint.starts_with('/') || mount.type.empty()) return std::nullopt;
    return mount;
}

} // namespace

Result<MountTable> MountTable::current() {
    Result<FileContents> const table = readFileAtPath(source, LargestTable);
    if (!table.hasValue()) return table.problem();
    std::vector<std::byte> const& bytes = table.value().bytes;
    return parse({reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

MountTable MountTable::parse(std::string_view text) {
    MountTable table;
    while (!text.empty()) {
        std::size_t const end = std::min(text.find('\n'), text.size());
        if (std::optional<Mount> mount = parseLine(text.substr(0, end))) table.m_mounts.push_back(std::move(*mount));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    std::unordered_set<std::uint64_t> ids;
    for (Mount const& mount : table.m_mounts)
        ids.insert(mount.id);
    for (Mount& mount : table.m_mounts)
        mount.hangsOnListed = mount.parent != mount.id && ids.contains(mount.parent);
    return table;
}

Mount const* MountTable::withId(std::uint64_t id) const {
    auto const found =
        std::find_if(m_mounts.begin(), m_mounts.end(), [id](Mount const& mount) { return mount.id == id; });
    return found == m_mounts.end() ? nullptr : &*found;
}

// Goes down as the system does: of the mounts that hang on the one reached so far, the next is that with the shortest
// mount point on the way; those with longer ones are hidden beneath it.
Mount const* MountTable::reachedBy(std::string_view path) const {
    Mount const* reached = nullptr;
    for (std::size_t steps = 0; steps < m_mounts.size(); ++steps) {
        Mount const* next = nullptr;
        for (Mount const& mount : m_mounts) {
            bool const hangsHere =
                reached == nullptr ? !mount.hangsOnListed : mount.hangsOnListed && mount.parent == reached->id;
            if (!hangsHere || !BytePath(path).isAtOrBelow(mount.mountPoint)) continue;
            if (next == nullptr || mount.mountPoint.size() < next->mountPoint.size()) next = &mount;
        }
        if (next == nullptr) break;
        reached = next;
    }
    return reached;
}

bool isLocal(Mount const& mount) {
    // A file system on a block device has its number: disks, sticks, loop-mounted images. All others have major 0,
    // network and pseudo file systems among them, so those that are local are named here. Memory counts (tmpfs): what
    // lies in /tmp is as real as elsewhere until the machine stops. So does overlay: on a live medium or in a container
    // it is the only way to the files; where its layers can be reached as well, both paths are true.
    static constexpr std::array localTypes = {
        "aufs",
        "bcachefs",
        "btrfs",
        "ecryptfs",
        "fuse.cryfs",
        "fuse.encfs",
        "fuse.fuse-overlayfs",
        "fuse.fuseiso",
        "fuse.gocryptfs",
        "fuse.squashfuse",
        "overlay",
        "ramfs",
        "rootfs",
        "tmpfs",
        "ubifs",
        "zfs",
    };
    if (!mount.device.starts_with("0:")) return true;
    return std::find(localTypes.begin(), localTypes.end(), mount.type) != localTypes.end();
}

} // namespace mac
