#pragma once

#include "platform/system/items/OpenItem.h"
#include <functional>

namespace mac {

// Copies and moves of whole items, folders with all that is in them, to any depth. Links are copied themselves, what is
// mounted in a folder is not entered (EBUSY), and several names of one file become files of their own. A copy has the
// contents, permissions, dates and attributes of the original, and its owner where that is allowed; whoever may read it
// is never more than before. The AppleDouble file beside an item goes with it or neither goes: EEXIST where a stray one
// has its name. Where they fail errno says why, and what was there is there. For implementations; any thread.

enum class NameClash {
    // EEXIST where something has the name already.
    IsRefused,
    // What has the name goes to the trash once the new item is ready for its place. Linux: it is not deleted, so that
    // a replacement can be taken back; EPERM where it cannot be trashed, EINVAL where it holds the item itself. When
    // the new item cannot take the place after all, it is put back; where somebody else was quicker it stays in the
    // trash.
    IsReplaced,
};

// Asked now and then; ECANCELED once it answers false.
using TransferGoesOn = std::function<bool()>;

// The copy gets the name in the open folder when it is whole and on the disk. EINVAL: the folder lies in the item.
bool copyItem(OpenItem const& item, FileDescriptor const& folder, std::string const& name, NameClash clash,
              TransferGoesOn const& goesOn);

enum class ItemMove {
    Done,
    // It is where it was. ESTALE: another item took its place; where that was moved in its stead and cannot go back, it
    // has the new name. So has the item itself where the AppleDouble file could not follow and the old name was taken
    // meanwhile.
    NotDone,
    // To another volume, where the copy is whole and in its place. What of the original could not be removed is where
    // it was; what changed meanwhile stays, and is ESTALE.
    OriginalStays,
};

// On another volume it is copied, and goes when the copy is whole.
ItemMove moveItem(OpenItem const& item, FileDescriptor const& folder, std::string const& name, NameClash clash,
                  TransferGoesOn const& goesOn);

} // namespace mac
