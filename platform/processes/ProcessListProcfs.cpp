#include "platform/foundation/FileDescriptor.h"
#include "platform/processes/ProcessList.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

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

FileDescriptor openFolder(int at, char const* name) {
    return FileDescriptor(::openat(at, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

std::optional<std::int32_t> processID(std::string_view name) {
    std::int32_t pid = 0;
    auto const [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    return error == std::errc() && end == name.data() + name.size() && pid > 0 ? std::optional(pid) : std::nullopt;
}

std::vector<std::int32_t> processIDs(int processes) {
    std::vector<std::int32_t> ids;
    alignas(EntryHead) std::array<char, 65536> buffer{};
    for (;;) {
        long const size = ::syscall(SYS_getdents64, processes, buffer.data(), buffer.size());
        if (size <= 0) return ids;
        for (long offset = 0; offset < size;) {
            EntryHead head{};
            std::memcpy(&head, buffer.data() + offset, NameOffset);
            if (std::optional<std::int32_t> const pid = processID(buffer.data() + offset + NameOffset))
                ids.push_back(*pid);
            offset += head.length;
        }
    }
}

// The fields behind the name, which may hold anything, also parentheses: state, then numbers. The start is the
// twentieth of them.
std::optional<std::uint64_t> startTimeIn(std::string_view status) {
    std::size_t const name = status.rfind(") ");
    if (name == std::string_view::npos || name + 2 >= status.size()) return std::nullopt;
    std::string_view fields = status.substr(name + 2);
    if (fields.front() == 'Z' || fields.front() == 'X') return std::nullopt;
    constexpr int fieldsBefore = 19;
    for (int field = 0; field < fieldsBefore; ++field) {
        std::size_t const blank = fields.find(' ');
        if (blank == std::string_view::npos) return std::nullopt;
        fields.remove_prefix(blank + 1);
    }
    std::uint64_t start = 0;
    auto const [end, error] = std::from_chars(fields.data(), fields.data() + fields.size(), start);
    return error == std::errc() ? std::optional(start) : std::nullopt;
}

std::optional<std::uint64_t> startTime(int process) {
    FileDescriptor const file(::openat(process, "stat", O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) return std::nullopt;
    std::array<char, 1024> buffer{};
    ssize_t const size = ::read(file.number(), buffer.data(), buffer.size());
    if (size <= 0) return std::nullopt;
    return startTimeIn({buffer.data(), static_cast<std::size_t>(size)});
}

std::optional<std::string> executable(int process) {
    std::array<char, 4096> buffer{};
    ssize_t const size = ::readlinkat(process, "exe", buffer.data(), buffer.size());
    if (size <= 0 || static_cast<std::size_t>(size) == buffer.size()) return std::nullopt;
    std::string path(buffer.data(), static_cast<std::size_t>(size));
    // A file may be called so itself.
    if (path.ends_with(DeletedMark) && ::faccessat(AT_FDCWD, path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0)
        path.resize(path.size() - DeletedMark.size());
    return path;
}

// The folder stays that of the one process: once that has ended everything in it fails, whoever gets the ID.
std::optional<RunningProcess> readProcess(int processes, std::int32_t pid) {
    FileDescriptor const folder(::openat(processes, std::to_string(pid).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) return std::nullopt;
    std::optional<std::string> path = executable(folder.number());
    if (!path) return std::nullopt;
    std::optional<std::uint64_t> const start = startTime(folder.number());
    if (!start) return std::nullopt;
    return RunningProcess{{*start, pid}, std::move(*path)};
}

constexpr int ProcessIDBits = 22;
constexpr std::uint64_t ProcessIDMask = (std::uint64_t{1} << ProcessIDBits) - 1;

} // namespace

std::vector<RunningProcess> runningProcesses() {
    std::vector<RunningProcess> found;
    FileDescriptor const processes = openFolder(AT_FDCWD, "/proc");
    if (!processes.isOpen()) return found;
    for (std::int32_t const pid : processIDs(processes.number())) {
        if (std::optional<RunningProcess> process = readProcess(processes.number(), pid))
            found.push_back(std::move(*process));
    }
    std::ranges::sort(found, &ProcessIdentity::isBefore, &RunningProcess::identity);
    return found;
}

std::optional<RunningProcess> runningProcess(std::int32_t pid) {
    FileDescriptor const processes = openFolder(AT_FDCWD, "/proc");
    return processes.isOpen() && pid > 0 ? readProcess(processes.number(), pid) : std::nullopt;
}

std::optional<RunningProcess> runningProcess(ProcessIdentity const& identity) {
    std::optional<RunningProcess> process = runningProcess(identity.pid);
    return process && process->identity == identity ? std::move(process) : std::nullopt;
}

// The ID in the lower bits and the start above them. The start counts from 1, which keeps clear of the numbers with a
// meaning of their own.
std::optional<ProcessIdentity> identityOf(ProcessSerialNumber const& psn) {
    std::uint64_t const number = std::uint64_t{psn.highLongOfPSN} << 32 | psn.lowLongOfPSN;
    if (psn == ProcessSerialNumber{0, kCurrentProcess}) {
        std::optional<RunningProcess> const self = runningProcess(::getpid());
        return self ? std::optional(self->identity) : std::nullopt;
    }
    if (number >> ProcessIDBits == 0) return std::nullopt;
    return ProcessIdentity{(number >> ProcessIDBits) - 1, static_cast<std::int32_t>(number & ProcessIDMask)};
}

ProcessSerialNumber serialNumberOf(ProcessIdentity const& identity) {
    std::uint64_t const number =
        (identity.startTime + 1) << ProcessIDBits | (static_cast<std::uint64_t>(identity.pid) & ProcessIDMask);
    return {static_cast<std::uint32_t>(number >> 32), static_cast<std::uint32_t>(number)};
}

bool askToEnd(ProcessIdentity const& identity) {
    FileDescriptor const process(static_cast<int>(::syscall(SYS_pidfd_open, identity.pid, 0)));
    // The descriptor is of the process that has the ID now: when that is the one, it stays the one.
    if (!process.isOpen() || !runningProcess(identity)) return false;
    return ::syscall(SYS_pidfd_send_signal, process.number(), SIGTERM, nullptr, 0) == 0;
}

} // namespace mac
