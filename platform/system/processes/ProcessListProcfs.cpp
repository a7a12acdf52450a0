#include "platform/system/FileDescriptor.h"
#include "platform/system/processes/ProcessList.h"
#include "platform/system/processes/ProcessStatus.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <condition_variable>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace mac {

namespace {

// What stands before the directory entry's name; its length is to be found in front of it.
struct EntryHead {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
};
constexpr std::size_t NameOffset = 19;

constexpr std::string_view DeletedMark = " (deleted)";

std::optional<std::int32_t> processID(std::string_view name) {
    std::int32_t pid = 0;
    auto const [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    return error == std::errc() && end == name.data() + name.size() && pid > 0 ? std::optional(pid) : std::nullopt;
}

// What a process's folder was made with in memory. A process that gets the ID of another gets a new one; so does the
// same process when the system needed the memory meanwhile.
struct FolderIdentity {
    std::uint64_t inode{0};
    std::int64_t seconds{0};
    std::int64_t nanoseconds{0};

    bool operator==(FolderIdentity const&) const = default;
};

// When the processes that were looked at before have started. The system counts a process's whole work together to tell
// its start, which takes longer than all the rest.
class KnownStarts {
public:
    static KnownStarts& shared() {
        static KnownStarts starts;
        return starts;
    }

    std::optional<std::uint64_t> find(std::int32_t pid, FolderIdentity const& folder) {
        std::lock_guard const guard(m_lock);
        auto const found = m_starts.find(pid);
        if (found == m_starts.end() || found->second.first != folder) return std::nullopt;
        return found->second.second;
    }

    void add(std::int32_t pid, FolderIdentity const& folder, std::uint64_t start) {
        constexpr std::size_t mostKept = 65536;
        std::lock_guard const guard(m_lock);
        if (m_starts.size() >= mostKept) m_starts.clear();
        m_starts[pid] = {folder, start};
    }

private:
    std::mutex m_lock;
    std::unordered_map<std::int32_t, std::pair<FolderIdentity, std::uint64_t>> m_starts;
};

std::optional<std::uint64_t> readStartTime(int process) {
    FileDescriptor const file(::openat(process, "stat", O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) return std::nullopt;
    std::array<char, 1024> buffer{};
    ssize_t const size = ::read(file.number(), buffer.data(), buffer.size());
    if (size <= 0) return std::nullopt;
    return startTimeIn({buffer.data(), static_cast<std::size_t>(size)});
}

std::optional<std::uint64_t> startTime(int process, std::int32_t pid) {
    struct ::stat status {};
    if (::fstat(process, &status) != 0) return std::nullopt;
    FolderIdentity const folder{status.st_ino, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
    if (std::optional<std::uint64_t> const known = KnownStarts::shared().find(pid, folder)) return known;
    std::optional<std::uint64_t> const start = readStartTime(process);
    if (start) KnownStarts::shared().add(pid, folder, *start);
    return start;
}

std::optional<std::string> executable(int process) {
    std::array<char, 4096> buffer;
    ssize_t const size = ::readlinkat(process, "exe", buffer.data(), buffer.size());
    if (size <= 0 || static_cast<std::size_t>(size) == buffer.size()) return std::nullopt;
    std::string path(buffer.data(), static_cast<std::size_t>(size));
    // A file may be called so itself.
    if (path.ends_with(DeletedMark) && ::faccessat(AT_FDCWD, path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0)
        path.resize(path.size() - DeletedMark.size());
    return path;
}

// The folder stays that of the one process: once that has ended everything in it fails, whoever gets the ID.
FileDescriptor openProcess(std::int32_t pid) {
    std::array<char, 32> path{"/proc/"};
    std::to_chars(path.data() + std::strlen(path.data()), path.data() + path.size() - 1, pid);
    return FileDescriptor(::openat(AT_FDCWD, path.data(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

using IDs = std::vector<std::int32_t>;

// Calls it with the IDs of all processes, some at a time, as the system lists them.
template <class Function>
void listProcesses(Function const& add) {
    FileDescriptor const processes(::openat(AT_FDCWD, "/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!processes.isOpen()) return;
    alignas(EntryHead) std::array<char, 4096> buffer;
    for (;;) {
        long const size = ::syscall(SYS_getdents64, processes.number(), buffer.data(), buffer.size());
        if (size <= 0) break;
        IDs ids;
        for (long offset = 0; offset < size;) {
            EntryHead head{};
            std::memcpy(&head, buffer.data() + offset, NameOffset);
            if (std::optional<std::int32_t> const pid = processID(buffer.data() + offset + NameOffset))
                ids.push_back(*pid);
            offset += head.length;
        }
        add(std::move(ids));
    }
}

// What one thread lists and several read.
class ListedProcesses {
public:
    void add(IDs ids) {
        std::lock_guard const guard(m_lock);
        m_ids.push_back(std::move(ids));
        m_changed.notify_one();
    }
    void end() {
        std::lock_guard const guard(m_lock);
        m_hasEnded = true;
        m_changed.notify_all();
    }
    // Waits for more of them. Nothing once all are taken.
    std::optional<IDs> take() {
        std::unique_lock guard(m_lock);
        m_changed.wait(guard, [this] { return !m_ids.empty() || m_hasEnded; });
        if (m_ids.empty()) return std::nullopt;
        IDs ids = std::move(m_ids.back());
        m_ids.pop_back();
        return ids;
    }

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<IDs> m_ids;
    bool m_hasEnded{false};
};

void readListed(ListedProcesses& listed, std::vector<RunningProcess>& found) {
    while (std::optional<IDs> const ids = listed.take()) {
        for (std::int32_t const pid : *ids) {
            if (std::optional<RunningProcess> process = runningProcess(pid)) found.push_back(std::move(*process));
        }
    }
}

} // namespace

std::optional<RunningProcess> runningProcess(std::int32_t pid) {
    if (pid <= 0) return std::nullopt;
    FileDescriptor const folder = openProcess(pid);
    if (!folder.isOpen()) return std::nullopt;
    // One that has ended has no program any more, though it has a start until it was waited for.
    std::optional<std::string> path = executable(folder.number());
    if (!path) return std::nullopt;
    std::optional<std::uint64_t> const start = startTime(folder.number(), pid);
    if (!start) return std::nullopt;
    return RunningProcess{{*start, pid}, std::move(*path)};
}

std::optional<RunningProcess> runningProcess(ProcessIdentity const& identity) {
    std::optional<RunningProcess> process = runningProcess(identity.pid);
    return process && process->identity == identity ? std::move(process) : std::nullopt;
}

std::vector<RunningProcess> runningProcesses() {
    std::size_t const cores = std::max(std::thread::hardware_concurrency(), 1U);
    std::vector<std::vector<RunningProcess>> parts(cores);
    ListedProcesses listed;
    {
        std::vector<std::jthread> readers;
        // The readers end, however the listing does.
        std::unique_ptr<ListedProcesses, void (*)(ListedProcesses*)> const ending(
            &listed, [](ListedProcesses* list) { list->end(); });
        bool isFirst = true;
        listProcesses([&](IDs ids) {
            listed.add(std::move(ids));
            // The first are as quickly read as a thread is started.
            if (std::exchange(isFirst, false) || readers.size() + 1 >= cores) return;
            try {
                readers.emplace_back(readListed, std::ref(listed), std::ref(parts[readers.size() + 1]));
            } catch (std::system_error const&) {
                // The system has no more threads for us: they are read here.
            }
        });
        listed.end();
        readListed(listed, parts[0]);
    }
    std::vector<RunningProcess> found;
    for (std::vector<RunningProcess>& part : parts)
        std::ranges::move(part, std::back_inserter(found));
    std::ranges::sort(found, {}, &RunningProcess::identity);
    return found;
}

bool isIDInUse(std::int32_t pid) { return ::kill(pid, 0) == 0 || errno == EPERM; }

bool askToEnd(ProcessIdentity const& identity) {
    FileDescriptor const process(static_cast<int>(::syscall(SYS_pidfd_open, identity.pid, 0)));
    // The descriptor is of the process that has the ID now: when that is the one, it stays the one.
    if (!process.isOpen() || !runningProcess(identity)) return false;
    return ::syscall(SYS_pidfd_send_signal, process.number(), SIGTERM, nullptr, 0) == 0;
}

} // namespace mac
