#pragma once

#include "platform/foundation/CFURL.h"
#include <array>

namespace mac {

// A file, folder or link on a mounted volume, wherever it is moved to on it while the program runs. The bytes mean
// nothing to others; two references to one item are equal, and all zero is a reference to nothing.
//
// Linux: an item is known by its volume, its number there and the time it was made. The last 256 items referred to are
// held, and so they are found after any rename or move; one referred to earlier is looked for where it was when it was
// let go, by its number, and otherwise not found. What is found is never another item. A volume whose items are held
// cannot be unmounted, and the bytes lead other programs nowhere.
struct FSRef {
    std::array<std::uint8_t, 80> hidden;

    bool operator==(FSRef const&) const = default;
};

static_assert(sizeof(FSRef) == 80);

// All of these may be called on any thread.

// Makes the reference to what the file URL leads to, links followed. False, and the reference is all zero, where there
// is nothing or the URL is no file's or one of another computer; false also for a null pointer.
bool CFURLGetFSRef(CFURLRef const& url, FSRef* fsRef);
// The URL of where the item is now, with a slash at the end for a folder; nil where it is not found.
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, FSRef const* fsRef);

} // namespace mac
