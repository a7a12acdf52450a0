#pragma once

#include <atomic>
#include <cstddef>
#include <list>

namespace mac {

struct Volume;

// A thread's stay on a volume, or at the root of a walk, from construction to destruction. The process knows all of
// them: walks that were given up (VolumeWalker::stopWithin) leave threads with open folders where a disk does not
// answer, and a volume must not get more and more of them. Any thread.
class VolumeVisit {
public:
    // So many walks that were given up may wait on a volume. Several, since a thread may merely be slow to end, and a
    // disk that is slow at one place answers at others.
    static constexpr std::size_t MostLeft = 16;

    // `wasLeft` says whether the thread's walk was given up, and is another one for each walk. REQUIRES: it outlives
    // the visit.
    VolumeVisit(Volume const& volume, std::atomic<bool> const& wasLeft);
    ~VolumeVisit();
    VolumeVisit(VolumeVisit const&) = delete;
    VolumeVisit& operator=(VolumeVisit const&) = delete;

    struct Stay;

private:
    std::list<Stay>::iterator m_stay;
};

// Whether no more than MostLeft - 1 walks that were given up still wait on the volume.
bool mayBeVisited(Volume const& volume);

} // namespace mac
