#pragma once

#include "platform/system/walker/RememberedFolders.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace mac {

// The parameters of a walk. What a walk leaves serves only later walks with equal parameters.
struct WalkQuestion {
    std::vector<std::string> roots{};
    std::string packageSuffix{};
    std::vector<std::string> names{};
    bool operator==(WalkQuestion const&) const = default;
};

// What a complete walk leaves for the next one: the packages that it found and the index of the folders that it read.
// The next walk checks all of it against the disk.
struct RememberedWalk {
    WalkQuestion question{};
    std::int64_t start = 0; // of the walk, by folderClock()
    std::vector<std::string> packages{};
    std::shared_ptr<RememberedFolders const> folders{};
};

// The bytes of the file that keeps it. nullopt for bytes of another version or byte order, and for damaged ones.
std::vector<std::byte> bytesOfWalk(RememberedWalk const& walk);
std::optional<RememberedWalk> walkOfBytes(std::vector<std::byte> bytes);
// Reads bytes whose checksum is known to be right, without comparing it.
std::optional<RememberedWalk> walkOfCheckedBytes(std::vector<std::byte> bytes);

// A mutex that a thread waits for so long as it likes, for what may be held while a disk does not answer. It does the
// work of std::timed_mutex, whose locking GCC's thread sanitizer does not see: it then reports each unlocking. Any
// thread; fits std::unique_lock and std::lock_guard, which lay down the names.
class PatientMutex {
public:
    void lock();
    bool try_lock_for(std::chrono::milliseconds patience);
    void unlock();

private:
    std::mutex m_mutex; // guards m_isLocked, and is never held while the disk is asked
    std::condition_variable m_released;
    bool m_isLocked = false;
};

// Keeps one walk in memory and in a file, in a folder that is made for this user alone. The folder may be removed at
// any time. A file is not read unless it and its folder belong to this user and can be written by no other. Any thread.
class WalkMemory {
public:
    static constexpr char const* fileName = "scanned-folders";

    // The disk that the file lies on may not answer. So long a thread waits for another that reads it, and so many may
    // be writing it.
    static constexpr std::chrono::milliseconds UsualPatience{5'000};
    static constexpr unsigned MostWriters = 3;

    // The folder's absolute path; `clock` as folderClock().
    WalkMemory(std::string folder, std::function<std::int64_t()> clock,
               std::chrono::milliseconds patience = UsualPatience);

    std::string const& folder() const { return m_folder; }
    std::int64_t now() const { return m_clock(); }

    // The last walk with equal parameters; nullptr if there is none, if the clock has been set back behind its start,
    // and while another thread waits for the file.
    std::shared_ptr<RememberedWalk const> recall(WalkQuestion const& question);
    // Replaces what was kept. It is in memory even if it could not be written, or if shouldStop, which is asked while
    // it is written, ended that (ECANCELED), or while MostWriters others write (EBUSY). A walk that began later than
    // this one stays, also if it is kept while this one is written (ESTALE). ETIMEDOUT while another thread reads the
    // file.
    Result<void> keep(
        RememberedWalk walk, std::function<bool()> const& shouldStop = [] { return false; });

private:
    Result<void> write(std::shared_ptr<RememberedWalk const> const& walk, std::function<bool()> const& shouldStop);
    bool hasLaterThan(RememberedWalk const& walk) const; // m_mutex is held

    std::string const m_folder;
    std::function<std::int64_t()> const m_clock;
    std::chrono::milliseconds const m_patience;
    PatientMutex m_mutex; // guards what follows, and is held while the file is read
    unsigned m_writers = 0;
    std::shared_ptr<RememberedWalk const> m_walk;
};

} // namespace mac
