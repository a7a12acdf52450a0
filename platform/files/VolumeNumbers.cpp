#include "platform/files/VolumeNumbers.h"
#include "platform/files/Volumes.h"
#include <cerrno>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <tuple>

namespace mac {

namespace {

// As the first volume has it on Mac OS X; the others follow downwards.
constexpr FSVolumeRefNum FirstNumber = -100;

// A mount of another file system, or at another place, is another volume though the system numbers it alike.
using VolumeKey = std::tuple<std::uint64_t, std::string, std::string>;

struct Table {
    std::mutex lock;
    std::map<VolumeKey, FSVolumeRefNum> numbers;
    FSVolumeRefNum next{FirstNumber};
};

// Never destroyed: volumes may be asked for until the program's last instruction.
Table& table() {
    static Table& shared = *std::make_unique<Table>().release();
    return shared;
}

} // namespace

FSVolumeRefNum numberOfVolume(MountedVolume const& volume) {
    std::scoped_lock const lock(table().lock);
    auto const [place, isNew] =
        table().numbers.try_emplace({volume.mount, volume.device, volume.mountPoint}, table().next);
    // Thirty thousand mounts later the last number is everybody's.
    if (isNew && table().next > std::numeric_limits<FSVolumeRefNum>::min()) --table().next;
    return place->second;
}

std::optional<FSVolumeRefNum> numberOfVolumeOf(FileDescriptor const& item) {
    std::optional<MountedVolume> const volume = volumeOfItem(item);
    if (volume) return numberOfVolume(*volume);
    errno = ENXIO;
    return std::nullopt;
}

} // namespace mac
