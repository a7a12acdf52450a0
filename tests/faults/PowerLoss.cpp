#include "tests/faults/PowerLoss.h"
#include "tests/faults/Promises.h"
#include <algorithm>
#include <fcntl.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::faults {

namespace {

using Identity = std::pair<dev_t, ino_t>;

// A file descriptor as the call's argument has it, of which only the lower half counts.
int descriptor(long argument) { return static_cast<int>(argument); }

class Recorder {
public:
    Recorder(Fixture const& fixture, Snapshot const& before, PowerLossRecord& record)
        : m_root(fixture.path("")), m_second(fixture.path("2/")), m_before(before), m_record(record) {}

    void wrote(int file) {
        struct stat status {};
        if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return;
        m_unflushed.insert({status.st_dev, status.st_ino});
        std::string const path = relativePathOf(file);
        ++m_record.prefixes;
        // A record in the trash counts only once its item is there, too.
        if (path.empty() || hasTemporaryName(path) || path.ends_with(".trashinfo")) return;
        find((m_before.contains(path) ? "written in place: " : "written under its final name: ") + path);
    }

    void flushed(int file) {
        struct stat status {};
        if (::fstat(file, &status) != 0) return;
        m_unflushed.erase({status.st_dev, status.st_ino});
        m_unflushedFolders.erase({status.st_dev, status.st_ino});
    }

    void flushedVolume(int file) {
        struct stat status {};
        if (::fstat(file, &status) != 0) return;
        auto const isThere = [&](Identity const& item) { return item.first == status.st_dev; };
        std::erase_if(m_unflushed, isThere);
        std::erase_if(m_unflushedFolders, isThere);
    }

    // An absolute path needs no folder.
    void named(int folder, char const* name) {
        struct stat status {};
        struct stat above {};
        if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0 || ::fstatat(folder, ".", &above, 0) != 0)
            return;
        ++m_record.prefixes;
        m_unflushedFolders.insert({above.st_dev, above.st_ino});
        if (isTemporaryName(name) || hasTemporaryName(relativePathOf(folder))) return;
        bool const isFolderOfNew = S_ISDIR(status.st_mode) && std::ranges::any_of(m_unflushed, [&](Identity const& i) {
                                       return i.first == status.st_dev;
                                   });
        if (isFolderOfNew || m_unflushed.contains({status.st_dev, status.st_ino}))
            find(std::string("named before its data is on the disk: ") + name);
    }

    void removed(int folder, char const* name) {
        struct stat above {};
        if (::fstatat(folder, ".", &above, 0) != 0) return;
        ++m_record.prefixes;
        if (isTemporaryName(name) || !m_before.contains(relativePathOf(folder) + "/" + name)) return;
        auto const isElsewhere = [&](Identity const& item) { return item.first != above.st_dev; };
        if (std::ranges::any_of(m_unflushed, isElsewhere) || std::ranges::any_of(m_unflushedFolders, isElsewhere))
            find(std::string("removed before its copy is on the disk: ") + name);
    }

private:
    // Empty outside of the fixture.
    std::string relativePathOf(int file) const {
        std::array<char, 4096> text{};
        std::string const link = "/proc/self/fd/" + std::to_string(file);
        ssize_t const length = ::readlink(link.c_str(), text.data(), text.size());
        if (length <= 0) return {};
        std::string const path(text.data(), static_cast<std::size_t>(length));
        if (path.starts_with(m_root)) return path.substr(m_root.size());
        return path.starts_with(m_second) ? "2/" + path.substr(m_second.size()) : std::string();
    }

    static bool hasTemporaryName(std::string const& path) {
        for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', end + 1))
            if (isTemporaryName(path.substr(0, end))) return true;
        return isTemporaryName(path);
    }

    void find(std::string const& text) {
        if (m_record.finding.front() != '\0') return;
        text.copy(m_record.finding.data(), m_record.finding.size() - 1);
    }

    std::string m_root;
    std::string m_second;
    Snapshot const& m_before;
    PowerLossRecord& m_record;
    std::set<Identity> m_unflushed{};
    std::set<Identity> m_unflushedFolders{};
};

// The recorder of the process that runs the operation.
Recorder* recorder = nullptr;

char const* text(long argument) { return reinterpret_cast<char const*>(argument); }

} // namespace

void recordPowerLoss(Fixture const& fixture, Snapshot const& before, PowerLossRecord& record) {
    static Recorder one(fixture, before, record);
    recorder = &one;
}

void tellPowerLoss(char const* name, std::array<long, 6> const& arguments) {
    std::string_view const call = name;
    if (!recorder) return;
    if (call == "write" || call == "pwrite" || call == "pwrite64" || call == "writev" || call == "ftruncate")
        return recorder->wrote(descriptor(arguments[0]));
    if (call == "copy_file_range") return recorder->wrote(descriptor(arguments[2]));
    if (call == "sendfile") return recorder->wrote(descriptor(arguments[0]));
    if (call == "fsync" || call == "fdatasync") return recorder->flushed(descriptor(arguments[0]));
    if (call == "syncfs") return recorder->flushedVolume(descriptor(arguments[0]));
    if (call == "renameat" || call == "renameat2" || call == "linkat")
        return recorder->named(descriptor(arguments[2]), text(arguments[3]));
    if (call == "rename" || call == "link") return recorder->named(AT_FDCWD, text(arguments[1]));
    if (call == "unlinkat") return recorder->removed(descriptor(arguments[0]), text(arguments[1]));
    if (call == "unlink" || call == "rmdir") return recorder->removed(AT_FDCWD, text(arguments[0]));
}

} // namespace mac::faults
