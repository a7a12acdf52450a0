#include "platform/system/walker/VolumeVisit.h"

#include "platform/system/walker/VolumeList.h"

#include <memory>
#include <mutex>
#include <unordered_set>

namespace mac {

struct VolumeVisit::Stay {
    Volume volume;
    std::atomic<bool> const& wasLeft;
};

namespace {

struct AllStays {
    std::mutex mutex; // guards the list
    std::list<VolumeVisit::Stay> stays;

    static AllStays& shared() {
        // Never destroyed: threads that were left behind may outlast the main one.
        static AllStays& all = *std::make_unique<AllStays>().release();
        return all;
    }
};

// A root whose mount is not known yet is told by its path.
bool isSameVolume(Volume const& left, Volume const& right) {
    return left.mount != 0 && right.mount != 0 ? left.mount == right.mount : left.path == right.path;
}

} // namespace

VolumeVisit::VolumeVisit(Volume const& volume, std::atomic<bool> const& wasLeft) {
    AllStays& all = AllStays::shared();
    std::lock_guard const lock(all.mutex);
    m_stay = all.stays.insert(all.stays.end(), Stay{.volume = volume, .wasLeft = wasLeft});
}

VolumeVisit::~VolumeVisit() {
    AllStays& all = AllStays::shared();
    std::lock_guard const lock(all.mutex);
    all.stays.erase(m_stay);
}

bool mayBeVisited(Volume const& volume) {
    AllStays& all = AllStays::shared();
    std::lock_guard const lock(all.mutex);
    std::unordered_set<std::atomic<bool> const*> walks;
    for (VolumeVisit::Stay const& stay : all.stays) {
        if (stay.wasLeft && isSameVolume(stay.volume, volume)) walks.insert(&stay.wasLeft);
    }
    return walks.size() < VolumeVisit::MostLeft;
}

} // namespace mac
