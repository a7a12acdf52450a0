#pragma once

#include "platform/files/FinderInformation.h"
#include "platform/files/references/FSRef.h"
#include "platform/system/Result.h"
#include <string>
#include <string_view>

namespace mac {

// An item's state when it was looked at, from which this room's services answer. A value; any thread.
struct DiskItem {
    enum class Kind { File, Folder, Link, Other };

    // The file system's bytes. The name is empty for the root.
    std::string path{};
    std::string name{};
    Kind kind{Kind::Other};
    bool isVolume{false};
    bool mayRun{false};
    FinderInformation finder{};

    // Whether it is a folder that its name or its Finder flags make a package.
    bool isPackage() const;
    bool isInvisible() const;
    bool isApplicationBundle() const;
    // The text behind the last dot, as it is written; empty for a name without dot or with its only dot in front.
    std::string_view extension() const;
    // The name without dot and extension.
    std::string_view stem() const;
};

// The item at a path of bytes; a symbolic link is not followed.
Result<DiskItem> diskItemAtPath(std::string const& path);
Result<DiskItem> diskItemOf(FSRef const& reference);
// Fails with EINVAL for a URL that is not a file's.
Result<DiskItem> diskItemOf(NSURL const& url);

// Whether a folder of that extension, in any case of letters, is a package.
bool isPackageExtension(std::string_view extension);

struct DiskItem;

// The type identifier of what the item holds: of a folder by what it is, of a file by its extension, as
// bundles declare it or else the system, unless its first bytes prove another type than the system's; where no type has
// the extension, by its name, its old type code, and its first bytes last. For implementations; any
// thread.
std::string contentTypeOf(DiskItem const& item);

} // namespace mac
