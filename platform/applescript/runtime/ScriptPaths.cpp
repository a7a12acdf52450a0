#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/foundation/text/Encodings.h"
#include <sys/stat.h>
#include <vector>

namespace mac::applescript {

namespace {

// Each colon past the first leads one folder up: "Disk:a:b::c" is "Disk:a:c". No path leads above its volume.
std::u16string withoutSteppingUp(std::u16string_view hfsPath) {
    std::vector<std::u16string_view> names;
    std::size_t start = 0;
    for (std::size_t end = hfsPath.find(u':'); end != std::u16string_view::npos; end = hfsPath.find(u':', start)) {
        std::u16string_view const name = hfsPath.substr(start, end - start);
        start = end + 1;
        if (!name.empty() || names.empty())
            names.push_back(name);
        else if (names.size() > 1)
            names.pop_back();
    }
    std::u16string path;
    for (std::u16string_view const name : names)
        path.append(name) += u':';
    return path.append(hfsPath.substr(start));
}

bool statusOf(std::u16string_view posixPath, struct stat& status) {
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(posixPath);
    return bytes && ::stat(bytes->c_str(), &status) == 0;
}

} // namespace

std::u16string hfsPathOf(std::u16string_view posixPath) { return hfsPathFromPOSIXPath(posixPath, false); }

std::u16string posixPathOf(std::u16string_view hfsPath) {
    bool const stepsUp = !hfsPath.starts_with(u'/') && hfsPath.find(u"::") != std::u16string_view::npos;
    return stepsUp ? posixPathFromHFSPath(withoutSteppingUp(hfsPath)) : posixPathFromHFSPath(hfsPath);
}

bool existsAt(std::u16string_view posixPath) {
    struct stat status {};
    return statusOf(posixPath, status);
}

bool isFolderAt(std::u16string_view posixPath) {
    struct stat status {};
    return statusOf(posixPath, status) && S_ISDIR(status.st_mode);
}

} // namespace mac::applescript
