#include "platform/system/walker/FolderPackages.h"
#include "platform/system/items/MountTable.h"
#include "platform/system/walker/FolderReader.h"
#include "platform/system/walker/FolderStack.h"
#include "platform/system/walker/PackageRule.h"
#include <algorithm>

namespace mac {

namespace {

// A walk from a root names everything by that root.
bool isReached(std::string const& path, VolumeWalkRequest const& request) {
    if (request.roots.empty()) return true;
    return std::ranges::any_of(request.roots, [&path](std::string_view root) {
        while (root.size() > 1 && root.ends_with('/'))
            root.remove_suffix(1);
        return isAtOrBelow(path, root);
    });
}

} // namespace

std::vector<std::string> packagesInFolder(std::string const& folder, VolumeWalkRequest const& request) {
    std::vector<std::string> paths;
    OpenFolder const open = OpenFolder::atPath(folder);
    PackageRule const rule(request.packageSuffix, request.names);
    FolderReader reader;
    while (open.isOpen() && reader.fill(open) == FolderReader::Fill::Some) {
        while (std::optional<std::string_view> const name = reader.nextSubfolder(open)) {
            if (!rule.isPackage(*name) || !rule.isWanted(*name)) continue;
            std::string path = folder;
            appendComponent(path, *name);
            if (isReached(path, request)) paths.push_back(std::move(path));
        }
    }
    return paths;
}

} // namespace mac
