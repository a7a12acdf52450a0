#include "platform/system/walker/FolderPackages.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/walker/FolderReader.h"
#include "platform/system/walker/PackageRule.h"
#include <algorithm>
#include <fcntl.h>

namespace mac {

namespace {

// A walk from a root names everything by that root.
bool isReached(std::string const& path, VolumeWalkRequest const& request) {
    if (request.roots.empty()) return true;
    return std::ranges::any_of(request.roots,
                               [&path](std::string_view root) { return BytePath(path).isAtOrBelow(root); });
}

bool hasMore(FolderReader& reader, FileDescriptor const& folder) {
    Result<FolderReader::Fill> const fill = reader.fill(folder);
    return fill.hasValue() && fill.value() == FolderReader::Fill::Some;
}

} // namespace

std::vector<std::string> packagesInFolder(std::string const& folder, VolumeWalkRequest const& request) {
    std::vector<std::string> paths;
    Result<FileDescriptor> const open = openPath(folder, O_RDONLY | O_DIRECTORY);
    if (!open.hasValue()) return paths;
    PackageRule const rule(request.packageSuffix, request.names);
    FolderReader reader;
    while (hasMore(reader, open.value())) {
        while (std::optional<std::string_view> const name = reader.nextSubfolder(open.value())) {
            if (!rule.isPackage(*name) || !rule.isWanted(*name)) continue;
            std::string path = BytePath(folder).joined(*name);
            if (isReached(path, request)) paths.push_back(std::move(path));
        }
    }
    return paths;
}

} // namespace mac
