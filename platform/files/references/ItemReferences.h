#pragma once

#include "platform/files/references/FSRef.h"
#include "platform/system/items/OpenItem.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// How references are made and found; paths and names are bytes, paths of any length. If the process can open no more
// files, items held for earlier references are released. Any thread.

Result<FSRef> referenceToPath(std::string_view path, LinkAtEnd linkAtEnd);

// A reference to the item of a name in the folder, wherever the folder is now; a symbolic link is not followed. ESTALE:
// the folder is not found.
Result<FSRef> referenceInFolder(FSRef const& folder, std::string const& name);
// A reference to the folder that the item was found in, wherever that is now; all zero for the root.
Result<FSRef> referenceToFolderOf(OpenItem const& item);

// Opens the item of a name in the folder, wherever the folder is now, without making a reference; a symbolic link is
// not followed.
Result<OpenItem> openItemInFolder(FSRef const& folder, std::string const& name);

struct ReferencedItem {
    // Where the item is now.
    std::string path;
    bool isFolder{false};
};
// ESTALE: the bytes are no reference, or another item has taken the item's place.
Result<ReferencedItem> itemOfReference(FSRef const& reference);

// Opens the item where it is now. ESTALE as for itemOfReference.
Result<OpenItem> openItemOfReference(FSRef const& reference);

// From now on each of the references leads to the other one's item, and is what new references to that are equal to.
Result<void> exchangeReferences(FSRef const& first, FSRef const& second);

// After an item got another name in the open folder: references to it that were made before lead there, also if the
// name is gone by which the item was opened. Makes no reference.
void followMovedItem(FileDescriptor const& folder, std::string const& name);

// Closes held items that have been removed, so that their volume can use the space again. Each new reference looks at
// one held item, too; call this after removing large items.
void releaseRemovedItems();

// For reading something of an item by way of references: those that this thread makes while the object exists are gone
// when it goes, unless there were references to their items before or other threads have made them meanwhile. So the
// volume can be unmounted afterwards. The object stays on its thread; such objects may be nested.
class PassingReferences {
public:
    PassingReferences();
    ~PassingReferences();
    PassingReferences(PassingReferences const&) = delete;
    PassingReferences& operator=(PassingReferences const&) = delete;

private:
    std::size_t m_alreadyPassing;
};

} // namespace mac
