#pragma once

#include "platform/system/walker/VolumeList.h"
#include "platform/system/walker/VolumeVisit.h"
#include "platform/system/walker/VolumeWalker.h"
#include "tests/support/TemporaryFolder.h"
#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

// Walks, and trees to walk through.

namespace mac::test {

struct WalkResult {
    std::vector<std::string> paths; // sorted
    VolumeWalkProgress progress;
};

std::vector<std::string> sorted(std::vector<std::string> paths);

// Walks to the end.
WalkResult walk(VolumeWalkRequest const& request);
std::vector<std::string> pathsOfWalk(VolumeWalkRequest const& request);
// Waits until a walk that was started has found something more.
std::vector<std::string> nextFound(VolumeWalker& walker);

// As many walks as may be that were given up and still wait on a volume. They leave it at the end at the latest.
class WaitingWalks {
public:
    explicit WaitingWalks(Volume const& volume);
    void leave() { m_visits.clear(); }

private:
    std::array<std::atomic<bool>, VolumeVisit::MostLeft> m_left{};
    std::deque<VolumeVisit> m_visits{}; // after what they refer to
};

// The packages that find lists below the folder, sorted: those ending in .app, and none in another.
std::vector<std::string> packagesByFind(std::string const& folder);

// Fills the folder with some hundreds of folders, packages (also within each other and within folders that are packages
// by a hair's breadth), files and links of the same names, and names with line feeds and bytes that are no text. It is
// the same for each seed.
void makeRandomTree(std::string const& folder, std::uint64_t seed);

// A temporary folder in memory, where the system has a place for that: to make very many entries on a disk can take
// minutes.
class FolderForMany {
public:
    FolderForMany();
    TemporaryFolder const* operator->() const { return &*m_folder; }

private:
    std::optional<TemporaryFolder> m_folder;
};

} // namespace mac::test
