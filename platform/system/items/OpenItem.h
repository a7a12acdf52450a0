#pragma once

#include "platform/system/FileDescriptor.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// A file, folder or anything else on the disk, held so that nothing else can take its place, and the folder it was
// found in. For implementations.
struct OpenItem {
    // Neither can be read or written through; they name, and give the system a place to start from.
    FileDescriptor folder{};
    FileDescriptor item{};
    // In the folder; empty for the root, which lies in none.
    std::string name{};

    // A path that leads to this very item, also where its own is too long for the system.
    std::string systemPath() const;
};

// The path is bytes, of any length. None when it leads nowhere; errno says why.
std::optional<OpenItem> openItemAtPath(std::string_view path, bool followsLinks);

} // namespace mac
