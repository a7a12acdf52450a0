#pragma once

#include "platform/files/FSRef.h"
#include "platform/files/FinderInformation.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// An item as it was when it was looked at, a link meant itself; what the services of this room answer from. A value;
// for implementations, any thread.
struct DiskItem {
    enum class Kind { File, Folder, Link, Other };

    // The file system's bytes. The name is empty for the root.
    std::string path{};
    std::string name{};
    Kind kind{Kind::Other};
    bool isVolume{false};
    bool mayRun{false};
    FinderInformation finder{};

    // A folder whose name or Finder flags make it one.
    bool isPackage() const;
    bool isInvisible() const;
    bool isApplicationBundle() const;
    // Behind the last dot, as it is written; empty where there is none, as in a name that begins with its only dot.
    std::string_view extension() const;
    // The name without dot and extension.
    std::string_view stem() const;
};

// Nothing where there is none; errno says why.
std::optional<DiskItem> diskItemAtPath(std::string const& path);
std::optional<DiskItem> diskItemOf(FSRef const& reference);
// Nothing, with errno 0, for a URL that is no file's.
std::optional<DiskItem> diskItemOf(NSURL const& url);

// Whether a folder of that extension, in any case of letters, is a package.
bool isPackageExtension(std::string_view extension);

} // namespace mac
