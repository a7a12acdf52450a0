#include "platform/system/FileDescriptor.h"
#include "platform/system/processes/ProcessList.h"
#include "platform/system/processes/ProcessStatus.h"
#include "platform/system/processes/ProgramFile.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <csignal>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace mac {

namespace {

constexpr std::uint64_t NanosecondsPerSecond = 1'000'000'000;

// In nanoseconds. Start times in /proc count clock ticks of CLOCK_BOOTTIME.
std::uint64_t tickLength() {
    static std::uint64_t const length = NanosecondsPerSecond / static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    return length;
}

std::uint64_t currentTick() {
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    std::uint64_t const seconds = static_cast<std::uint64_t>(now.tv_sec);
    return (seconds * NanosecondsPerSecond + static_cast<std::uint64_t>(now.tv_nsec)) / tickLength();
}

// Blocks for one tick at most, which is 10 ms.
void waitUntilOver(std::uint64_t tick) {
    std::uint64_t const end = (tick + 1) * tickLength();
    timespec const moment{static_cast<time_t>(end / NanosecondsPerSecond),
                          static_cast<long>(end % NanosecondsPerSecond)};
    while (currentTick() == tick)
        ::clock_nanosleep(CLOCK_BOOTTIME, TIMER_ABSTIME, &moment, nullptr);
}

// Whether an identity that was read since the given tick is unique: a process that started before that tick had its ID
// all the time, and no other can get the same ID and start any more. A start in the future was counted by another
// clock, so waiting would not help.
bool isSettled(ProcessIdentity const& identity, std::uint64_t readFrom) {
    return identity.startTime < readFrom || identity.startTime > currentTick();
}

// The file of the process in /proc, without an allocation.
class ProcessPath {
public:
    ProcessPath(std::int32_t pid, std::string_view name) {
        char* const end = std::to_chars(m_path.data() + Folder.size(), m_path.data() + m_path.size(), pid).ptr;
        std::ranges::copy(name, end);
    }
    char const* text() const { return m_path.data(); }

private:
    static constexpr std::string_view Folder = "/proc/";
    std::array<char, 32> m_path{"/proc/"};
};

std::optional<std::string> executableOf(std::int32_t pid) { return pathBehind(ProcessPath(pid, "/exe").text()); }

std::optional<std::uint64_t> startOf(std::int32_t pid) {
    FileDescriptor const file(::open(ProcessPath(pid, "/stat").text(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) return std::nullopt;
    std::array<char, 1024> buffer;
    ssize_t const size = ::read(file.number(), buffer.data(), buffer.size());
    if (size <= 0) return std::nullopt;
    return startTimeIn({buffer.data(), static_cast<std::size_t>(size)});
}

std::vector<std::int32_t> processIDs() {
    std::vector<std::int32_t> ids;
    std::unique_ptr<DIR, int (*)(DIR*)> const folder(::opendir("/proc"), &::closedir);
    while (dirent const* const entry = folder ? ::readdir(folder.get()) : nullptr) {
        std::int32_t pid = 0;
        char const* const end = entry->d_name + std::strlen(entry->d_name);
        if (std::from_chars(entry->d_name, end, pid).ptr == end && pid > 0) ids.push_back(pid);
    }
    return ids;
}

std::optional<RunningProcess> readOnce(std::int32_t pid) {
    // A process that has ended has no executable any more, though it has a start until it was waited for.
    std::optional<std::string> executable = pid > 0 ? executableOf(pid) : std::nullopt;
    if (!executable) return std::nullopt;
    std::optional<std::uint64_t> const start = startOf(pid);
    return start ? std::optional(RunningProcess{{*start, pid}, std::move(*executable)}) : std::nullopt;
}

template <class Read>
std::optional<RunningProcess> readSettled(std::int32_t pid, Read const& read) {
    for (;;) {
        std::uint64_t const before = currentTick();
        std::optional<RunningProcess> process = read(pid);
        if (!process || isSettled(process->identity, before)) return process;
        waitUntilOver(process->identity.startTime);
    }
}

// In the order of their start, each as read(pid) answers it.
template <class Read>
std::vector<RunningProcess> readAll(Read const& read) {
    std::uint64_t const before = currentTick();
    std::vector<RunningProcess> found;
    for (std::int32_t const pid : processIDs()) {
        if (std::optional<RunningProcess> process = read(pid)) found.push_back(std::move(*process));
    }
    // Processes that started within the current tick, mostly none, are read again once the tick is over; one wait
    // serves all.
    for (RunningProcess& process : found) {
        if (!isSettled(process.identity, before))
            process = readSettled(process.identity.pid, read).value_or(RunningProcess());
    }
    std::erase_if(found, [](RunningProcess const& process) { return process.identity.pid == 0; });
    std::ranges::sort(found, {}, &RunningProcess::identity);
    return found;
}

} // namespace

std::optional<RunningProcess> runningProcess(std::int32_t pid) { return readSettled(pid, &readOnce); }

std::optional<RunningProcess> runningProcess(ProcessIdentity const& identity) {
    std::optional<RunningProcess> process = readOnce(identity.pid);
    return process && process->identity == identity ? std::move(process) : std::nullopt;
}

std::vector<RunningProcess> runningProcesses() { return readAll(&readOnce); }

std::optional<KnownProcesses::Folder> KnownProcesses::folderOf(std::int32_t pid) {
    struct ::stat status {};
    if (::stat(ProcessPath(pid, "").text(), &status) != 0) return std::nullopt;
    return Folder{status.st_ino, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
}

// Without the executable if the process is known.
std::optional<RunningProcess> KnownProcesses::readUnlessKnown(std::int32_t pid) {
    std::optional<Folder> const folder = folderOf(pid);
    if (!folder) return std::nullopt;
    auto const known = m_known.find(pid);
    if (known != m_known.end() && known->second.folder == *folder) {
        known->second.round = m_round;
        return RunningProcess{{known->second.start, pid}, ""};
    }
    std::optional<RunningProcess> process = readOnce(pid);
    // If the ID has passed to another process meanwhile, the folder's inode is never found again.
    if (process) m_known[pid] = {*folder, process->identity.startTime, m_round};
    return process;
}

std::vector<ProcessIdentity> KnownProcesses::list() {
    ++m_round;
    std::vector<ProcessIdentity> identities;
    for (RunningProcess const& process : readAll([this](std::int32_t pid) { return readUnlessKnown(pid); }))
        identities.push_back(process.identity);
    std::erase_if(m_known, [this](auto const& entry) { return entry.second.round != m_round; });
    return identities;
}

std::optional<RunningProcess> KnownProcesses::read(ProcessIdentity const& identity) const {
    auto const known = m_known.find(identity.pid);
    if (known == m_known.end() || known->second.start != identity.startTime) return runningProcess(identity);
    // The folder is looked at last: if it is the same, the ID was this process's all the time.
    std::optional<std::string> executable = executableOf(identity.pid);
    if (!executable || folderOf(identity.pid) != known->second.folder) return runningProcess(identity);
    return RunningProcess{identity, std::move(*executable)};
}

bool KnownProcesses::isThere(ProcessIdentity const& identity) const {
    auto const known = m_known.find(identity.pid);
    bool const isKnown = known != m_known.end() && known->second.start == identity.startTime;
    return (isKnown && folderOf(identity.pid) == known->second.folder) || runningProcess(identity);
}

bool askToEnd(ProcessIdentity const& identity) {
    FileDescriptor const process(static_cast<int>(::syscall(SYS_pidfd_open, identity.pid, 0)));
    // The descriptor stands for the process that has the ID now; if that is the right one, signals reach no other.
    if (!process.isOpen() || !runningProcess(identity)) return false;
    return ::syscall(SYS_pidfd_send_signal, process.number(), SIGTERM, nullptr, 0) == 0;
}

} // namespace mac
