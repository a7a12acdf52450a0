#include "platform/system/walker/WalkMemory.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileWriting.h"
#include "platform/system/LongPath.h"
#include "platform/system/NewFile.h"
#include "platform/system/walker/FolderIndexFormat.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::size_t MostWalkBytes = MostIndexBytes * 2; // the index and the list of packages
constexpr std::size_t BytesAtOnce = std::size_t{1} << 20;
constexpr mode_t OwnersAlone = 0600;
constexpr mode_t OthersMayWrite = S_IWGRP | S_IWOTH;

bool isThisUsersAlone(FileDescriptor const& item) {
    struct stat status;
    if (::fstat(item.number(), &status) != 0) return false;
    return status.st_uid == ::geteuid() && (status.st_mode & OthersMayWrite) == 0;
}

// The folder, open, if it is one that only this user can have written to.
std::optional<FileDescriptor> trustedFolder(std::string const& path) {
    Result<FileDescriptor> folder = openPath(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (!folder.hasValue() || !isThisUsersAlone(folder.value())) return std::nullopt;
    return folder.takeValue();
}

// The folder that holds the one of all programs' caches, which is the user's home as a rule. A home that is missing may
// be one that is not mounted yet: nothing is made in its place.
std::string homeOfCaches(std::string const& folder) {
    std::string const caches(BytePath(folder).parent());
    return std::string(BytePath(caches).parent());
}

std::shared_ptr<RememberedWalk const> readFrom(std::string const& folderPath) {
    std::optional<FileDescriptor> const folder = trustedFolder(folderPath);
    if (!folder) return nullptr;
    FileDescriptor const file(
        ::openat(folder->number(), WalkMemory::fileName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen() || !isThisUsersAlone(file)) return nullptr;
    Result<FileContents> contents = readOpenFile(file, MostWalkBytes);
    if (!contents.hasValue()) return nullptr;
    std::optional<RememberedWalk> walk = walkOfBytes(std::move(contents.value().bytes));
    return walk ? std::make_shared<RememberedWalk const>(std::move(*walk)) : nullptr;
}

Result<void> writeInBlocks(NewFile const& file, std::span<std::byte const> bytes,
                           std::function<bool()> const& shouldStop) {
    while (!bytes.empty()) {
        if (shouldStop()) return SystemError{.code = ECANCELED, .operation = "write", .item = WalkMemory::fileName};
        std::span<std::byte const> const block = bytes.first(std::min(bytes.size(), BytesAtOnce));
        if (Result<void> const written = file.write(block); !written.isDone()) return written;
        bytes = bytes.subspan(block.size());
    }
    return {};
}

SystemError replacedError() { return {.code = ESTALE, .operation = "rename", .item = WalkMemory::fileName}; }

} // namespace

void PatientMutex::lock() {
    std::unique_lock own(m_mutex);
    m_released.wait(own, [this] { return !m_isLocked; });
    m_isLocked = true;
}

bool PatientMutex::try_lock_for(std::chrono::milliseconds patience) {
    std::unique_lock own(m_mutex);
    if (!m_released.wait_for(own, patience, [this] { return !m_isLocked; })) return false;
    m_isLocked = true;
    return true;
}

void PatientMutex::unlock() {
    std::lock_guard const own(m_mutex);
    m_isLocked = false;
    m_released.notify_one();
}

WalkMemory::WalkMemory(std::string folder, std::function<std::int64_t()> clock, std::chrono::milliseconds patience)
    : m_folder(std::move(folder)), m_clock(std::move(clock)), m_patience(patience) {}

std::shared_ptr<RememberedWalk const> WalkMemory::recall(WalkQuestion const& question) {
    std::unique_lock const lock(m_mutex, m_patience);
    if (!lock) return nullptr;
    if (!m_walk) m_walk = readFrom(m_folder);
    bool const serves = m_walk && m_walk->question == question && m_walk->start <= now();
    return serves ? m_walk : nullptr;
}

// A walk that was given up may come here after one that began later. A start that the clock has not come to yet is from
// before the clock was set back.
bool WalkMemory::hasLaterThan(RememberedWalk const& walk) const {
    return m_walk && m_walk->start > walk.start && m_walk->start <= now();
}

Result<void> WalkMemory::keep(RememberedWalk walk, std::function<bool()> const& shouldStop) {
    auto const kept = std::make_shared<RememberedWalk const>(std::move(walk));
    {
        std::unique_lock const lock(m_mutex, m_patience);
        if (!lock) return SystemError{.code = ETIMEDOUT, .operation = "read", .item = fileName};
        if (hasLaterThan(*kept)) return replacedError();
        m_walk = kept;
        if (m_writers == MostWriters) return SystemError{.code = EBUSY, .operation = "write", .item = fileName};
        ++m_writers;
    }
    Result<void> const written = write(kept, shouldStop);
    std::lock_guard const lock(m_mutex);
    --m_writers;
    return written;
}

Result<void> WalkMemory::write(std::shared_ptr<RememberedWalk const> const& walk,
                               std::function<bool()> const& shouldStop) {
    Result<FileDescriptor> const home = openPath(homeOfCaches(m_folder), O_PATH | O_DIRECTORY);
    if (!home.hasValue()) return home.problem();
    Result<void> const made = makeFolderAtPath(m_folder);
    if (!made.isDone()) return made;
    std::optional<FileDescriptor> const folder = trustedFolder(m_folder);
    if (!folder) return SystemError{.code = EACCES, .operation = "open", .item = m_folder};
    Result<NewFile> file = NewFile::make(*folder, OwnersAlone);
    if (!file.hasValue()) return file.problem();
    Result<void> const written = writeInBlocks(file.value(), bytesOfWalk(*walk), shouldStop);
    if (!written.isDone()) return written;
    std::lock_guard const lock(m_mutex);
    return m_walk == walk ? file.value().giveNameUnflushed(fileName) : replacedError();
}

} // namespace mac
