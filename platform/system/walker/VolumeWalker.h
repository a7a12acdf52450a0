#pragma once

#include "platform/system/SystemError.h"
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace mac {

class FileDescriptor;
class WalkMemory;

// One item of any kind that is looked for in place of packages, by its inode number.
struct SoughtItem {
    std::uint64_t inode = 0;
    bool isFolder = false;
    // Whether the item of that number, by its name in the open folder, is the one. Called in the walk's threads.
    std::function<bool(FileDescriptor const& folder, std::string const& name)> accepts{};
};

// What a walk looks for, and where. Paths and names are bytes, in no particular encoding.
struct VolumeWalkRequest {
    // Absolute paths of the folders to search, with what is mounted below them. Empty: every local volume.
    std::vector<std::string> roots{};
    // A folder with this ending (and something before it) is a package: a single item that is never entered. A link
    // to a folder is no package, whatever its name: what it leads to is found where it lies, and is listed once.
    std::string packageSuffix = ".app";
    // The exact file names of the packages wanted. Empty: all packages.
    std::vector<std::string> names{};
    // If set, the folder of this name in a package counts as unreadable if it is there and may not be searched: then
    // whoever takes the package cannot tell what it is.
    std::string folderInPackages{};
    // If set, this item is looked for: on the roots' own volumes alone, whatever is mounted below them, and in
    // packages, too, as long as the suffix is empty.
    std::optional<SoughtItem> item{};
    // Whether folders are left out that hold no folder, where the file system tells that (FolderFacts.h). A sought item
    // that is no folder is looked for in all of them anyway.
    bool usesLinkCounts = true;
    // If set, the walk begins with what the last one left there, and leaves what it found: see VolumeWalker. Not used
    // for a sought item.
    std::shared_ptr<WalkMemory> memory{};
    // Whether the packages that the last walk found are looked for before the walk comes to them. Where nobody reads
    // them that early, that is in vain.
    bool tellsRemembered = true;
    // How long the walk waits for what must not hold it up: for its memory to be read, and for a volume on which
    // earlier walks still wait for an answer (VolumeVisit.h).
    std::chrono::milliseconds patience{5'000};
};

struct VolumeWalkProgress {
    bool isFinished = false; // never after a stop
    std::uint64_t foldersVisited = 0;
    std::uint64_t listsRead = 0; // of them, whose list of entries was read: at least begun
    std::uint64_t packagesFound = 0;
    std::uint64_t packagesToTake = 0; // of them, found since the last take
    bool isRemembered = false;        // those to take are there, but the walk has not come to them yet
    std::uint64_t unreadableFolders = 0;
    std::vector<SystemError> firstUnreadable; // each names its folder; at most maximumUnreadableKept
};

// Finds packages on disk, in threads of its own. One object stands for one walk; its owner starts it, takes what was
// found whenever it likes, and may stop it. All operations but start and those that stop may be called from any thread.
//
// Every wanted package that is there during the whole walk is found exactly once. Links are never followed. A folder
// mounted at several places is visited at the first of them. A folder that cannot be read is counted and the walk goes
// on; one that vanishes meanwhile is not counted, and neither is one that is known to hold no folder, as it need not be
// opened. A root that is itself a package is reported, not entered.
//
// With a memory, the packages that the last walk found come first, as far as they are still there, and a folder whose
// status is what it was then is not read again, as long as the file system's times can be relied on (FolderFacts.h).
// Its subfolders are looked at one by one all the same, since a folder's times tell nothing of what lies deeper. A walk
// that comes to its end is remembered after it has said finished.
//
// A volume, or a root, that does not answer keeps the walk from its end, and all others are walked meanwhile. If
// earlier walks that were given up still wait for it, it is told as unreadable (ETIMEDOUT), unless one of them leaves
// it within the request's patience. A root that is a package is told once all folders among the roots have answered,
// since one of them may hold it. Of roots that answer late, no remembered package comes before the walk finds it.
class VolumeWalker {
public:
    // How many folders that could not be read `progress` names, and how many `unreadable` lists.
    static constexpr std::size_t maximumUnreadableKept = 16;
    static constexpr std::size_t maximumUnreadableListed = 1000;

    // `onNews` is called in one of the walk's threads at the first find after the start or after a take, and once when
    // the walk has finished; it must not throw, nor stop the walk. It is not called once the walk was stopped.
    VolumeWalker(VolumeWalkRequest request, std::function<void()> onNews);
    ~VolumeWalker(); // stops
    VolumeWalker(VolumeWalker const&) = delete;
    VolumeWalker& operator=(VolumeWalker const&) = delete;

    // False when the system gives no thread. A walk starts only once.
    bool start();
    // Returns when all threads have ended: within a few reads of the disk. What was found can still be taken.
    void stop();
    // Stops, and waits for the threads no longer than the patience: a disk may not answer. What has not ended by then
    // goes on until its read returns, or its memory is written, tells of nothing, and frees what it uses. REQUIRES: a
    // sought item's question owns what it uses.
    void stopWithin(std::chrono::milliseconds patience);

    // Returns when the packages that the last walk found have been looked for, so that `takeRemembered` has those that
    // are still there; false if that takes longer than the patience. Without a memory there are none, and it returns
    // once the volumes are listed. REQUIRES: the walk was started.
    bool waitUntilRecalled(std::chrono::milliseconds patience) const;
    // Returns when the walk has come to its end and is remembered, or was stopped; false if that takes longer than the
    // patience.
    bool waitUntilRemembered(std::chrono::milliseconds patience) const;

    // The paths found since the last take, in no order. Empty once `progress` has said finished and they were taken.
    std::vector<std::string> takeFound();
    // Takes the paths found that an earlier walk remembered, unless there are more than `most`: then it takes none.
    std::vector<std::string> takeRemembered(std::size_t most);
    VolumeWalkProgress progress() const;
    // The folders that could not be read, each with the reason, in the order in which the walk came to them; at most
    // maximumUnreadableListed.
    std::vector<SystemError> unreadable() const;
    // Once the walk has finished: those of the paths taken that were remembered and that the walk did not come to.
    std::vector<std::string> vanished() const;

private:
    class Walk;
    std::shared_ptr<Walk> m_walk; // also of its leading thread, which may outlast this object
};

} // namespace mac
