#pragma once

#include "platform/system/walker/OpenFolder.h"

#include <cstdint>
#include <optional>

namespace mac {

// The leaf rule: where every subfolder's ".." counts as a link to its parent, a folder's link count tells how many
// folders lie in it. A folder with none need not be opened at all, and reading another can end with its last folder.
// More than half of all folders hold no folder, so no other single measure saves a walk as much.

// Whether the file system that holds `folder` counts so. True only for those where this was measured; btrfs, overlay
// and most others do not.
bool linkCountTellsSubfolders(OpenFolder const& folder);

// Nothing when the count does not tell, as in a folder that has more subfolders than the file system can count links.
std::optional<std::uint32_t> subfoldersByLinkCount(std::uint32_t linkCount);

} // namespace mac
