#pragma once

#include "platform/files/FSRef.h"
#include "platform/system/items/OpenItem.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// References by paths, which are bytes of any length. For implementations; any thread.

// To the item at the path; errno says why not. Of a link at the end to what it leads to, or to the link itself.
std::optional<FSRef> referenceToPath(std::string_view path, bool followsLinks);

// To what has the name in the folder, wherever that is now; a link is meant itself. ESTALE: the folder is not found.
std::optional<FSRef> referenceInFolder(FSRef const& folder, std::string const& name);
// To the folder that the item was found in, wherever that is now; all zero for the root's.
std::optional<FSRef> referenceToFolderOf(OpenItem const& item);

struct ReferencedItem {
    std::string path;
    bool isFolder{false};
};

// Where the item is now; nothing when it is not found.
std::optional<ReferencedItem> itemOfReference(FSRef const& reference);

// The item itself, held open where it is now; nothing when it is not found.
std::optional<OpenItem> openItemOfReference(FSRef const& reference);

// What was removed is no longer held, so that the volume can use its space again. It happens with every new reference;
// who removes large items calls this when it has done so.
void releaseRemovedItems();

} // namespace mac
