#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/files/HFSPaths.h"
#include "platform/foundation/Encodings.h"
#include <sys/stat.h>

namespace mac::applescript {

namespace {

bool statusOf(std::u16string_view posixPath, struct stat& status) {
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(posixPath);
    return bytes && ::stat(bytes->c_str(), &status) == 0;
}

} // namespace

std::u16string hfsPathOf(std::u16string_view posixPath) { return hfsPathFromPOSIXPath(posixPath, false); }

std::u16string posixPathOf(std::u16string_view hfsPath) { return posixPathFromHFSPath(hfsPath); }

bool existsAt(std::u16string_view posixPath) {
    struct stat status {};
    return statusOf(posixPath, status);
}

bool isFolderAt(std::u16string_view posixPath) {
    struct stat status {};
    return statusOf(posixPath, status) && S_ISDIR(status.st_mode);
}

} // namespace mac::applescript
