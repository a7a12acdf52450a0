#pragma once

#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/WalkMemory.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/TemporaryFolder.h"
#include <memory>
#include <string>

namespace mac::test {

// Walks with a memory in a folder of its own.
class Rescan {
public:
    // The clock says when a walk begins.
    explicit Rescan(std::function<std::int64_t()> clock = &folderClock);

    // Walks to the end, with what the last walk left, until the next can begin with what this one leaves. Before, it
    // waits until folders that have changed by now are old enough to be relied on.
    WalkResult walk(VolumeWalkRequest request);
    // The next walk begins with what is in the file, not with what is in memory.
    void restart();
    std::string file() const { return m_folder.path("memory/" + std::string(WalkMemory::fileName)); }
    std::string folder() const { return m_folder.path("memory"); }

private:
    TemporaryFolder const m_folder{};
    std::function<std::int64_t()> const m_clock;
    std::shared_ptr<WalkMemory> m_memory;
};

} // namespace mac::test
