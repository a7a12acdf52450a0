#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/FolderContents.h"
#include "platform/system/Result.h"
#include <string>
#include <string_view>

namespace mac {

// A file, folder or any other item of the file system, held by descriptors so that no other item can take its place,
// with the folder it was found in. A value; any thread.
struct OpenItem {
    // Opened with O_PATH: they name the item and cannot be read or written through.
    FileDescriptor folder{};
    FileDescriptor item{};
    // The item's name in the folder; empty for the root, which lies in no folder.
    std::string name{};

    // A path that leads to this very item, also if its own is too long for the system.
    std::string systemPath() const;
};

// Opens the item at a path of bytes, of any length. A slash behind the last name follows a symbolic link there and asks
// for a folder (else ENOTDIR).
Result<OpenItem> openItemAtPath(std::string_view path, LinkAtEnd linkAtEnd);

// Opens an item that is open already, together with the folder that holds it now. Fails with ESTALE if another item has
// taken its place meanwhile.
Result<OpenItem> openItemInItsFolder(FileDescriptor const& item);

} // namespace mac
