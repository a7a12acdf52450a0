#pragma once

#include "tests/support/TemporaryFolder.h"
#include <optional>

namespace mac::test {

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
