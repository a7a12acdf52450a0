#include "platform/spotlight/FolderPackages.h"
#include "platform/spotlight/FolderReader.h"
#include "platform/spotlight/PackageRule.h"

namespace mac {

std::vector<std::string> packagesInFolder(std::string const& folder, VolumeWalkRequest const& request) {
    std::vector<std::string> paths;
    OpenFolder const open = OpenFolder::atPath(folder);
    PackageRule const rule(request.packageSuffix, request.names);
    FolderReader reader;
    while (open.isOpen() && reader.fill(open) == FolderReader::Fill::Some) {
        while (std::optional<std::string_view> const name = reader.nextSubfolder(open)) {
            if (rule.isPackage(*name) && rule.isWanted(*name))
                paths.push_back((folder == "/" ? folder : folder + "/") + std::string(*name));
        }
    }
    return paths;
}

} // namespace mac
