#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/LongPath.h"
#include "platform/foundation/Method.h"
#include <memory>

namespace mac {

class NSFileManager::Body : public ObjectBody {};

ClassDescription NSFileManager::describeClass() {
    return {
        .name = "NSFileManager",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSFileManager::fileExistsAtPath_>("fileExistsAtPath:")},
        .classMethods = {method<&NSFileManager::defaultManager>("defaultManager")},
    };
}

NSFileManager NSFileManager::defaultManager() {
    // Never destroyed: other objects may ask for it until the program's last instruction.
    static NSFileManager const& shared = *std::make_unique<NSFileManager>(adopt<NSFileManager>()).release();
    return shared;
}

bool NSFileManager::fileExistsAtPath_(NSString const& path) const {
    return fileExistsAtPath_isDirectory_(path, nullptr);
}

bool NSFileManager::fileExistsAtPath_isDirectory_(NSString const& path, bool* isDirectory) const {
    if (isDirectory) *isDirectory = false;
    if (*this == nil) return false;
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    std::optional<FileStatus> const status = bytes ? fileStatusAtPath(*bytes) : std::nullopt;
    if (!status) return false;
    if (isDirectory) *isDirectory = status->kind == FileStatus::Kind::Folder;
    return true;
}

} // namespace mac
