#pragma once

#include "platform/desktop/autostart/Autostart.h"
#include "platform/desktop/autostart/AutostartText.h"
#include "platform/system/items/ItemAccess.h"
#include <cstddef>

namespace mac {

// Changes of the user's folder of autostart entries. Files that were not read are never touched, those of other
// programs never rewritten; each file is there whole or not at all. For implementations; main thread.

// What it takes to put an item back.
struct RemovedAutostart {
    std::string fileName{};
    // The user's file that was removed, by its bytes; nullopt for a symbolic link or an entry of the system.
    std::optional<std::vector<std::byte>> bytes{};
    // The removed file's owner, group, permissions and access list.
    ItemAccess access{};
    // The text of the user's symbolic link that was removed.
    std::optional<std::string> linkText{};
    // The file that hides the system's entry of that name; nullopt if none was needed.
    std::optional<FileStatus> mask{};
};

// Adds an entry under a name that no item has in any of the folders. Answers the name. Fails with ENOENT if the entry
// needs the launcher and there is none.
Result<std::string> addAutostart(NewAutostartEntry const& entry);

// Whether the item's removal leaves a file that hides the system's entry of its name. Fails as isStartedBySystem does.
Result<bool> needsMask(AutostartItem const& item);

// Removes the user's file and hides the system's entry of its name, if one would start a program then. Fails with
// ESTALE or EAGAIN if the item is no longer as it was read, and if the system's entry cannot be read; then nothing is
// changed.
Result<RemovedAutostart> removeAutostart(AutostartItem const& item);

// Puts the very file back and removes what hides the system's entry. Where another item took the file's name, it gets a
// new one. Nobody gets to read more than before. Answers the name. Fails with ESTALE if what hides the system's entry
// was changed; if it is gone, that is no failure.
Result<std::string> restoreAutostart(RemovedAutostart const& removed);

} // namespace mac
