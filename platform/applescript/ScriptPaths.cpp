#include "platform/applescript/ScriptPaths.h"
#include "platform/applescript/ScriptSymbol.h"
#include "platform/foundation/Encodings.h"
#include <algorithm>
#include <sys/stat.h>

namespace mac::applescript {

namespace {

std::u16string exchanged(std::u16string_view component) {
    std::u16string text(component);
    for (char16_t& unit : text) {
        if (unit == u'/')
            unit = u':';
        else if (unit == u':')
            unit = u'/';
    }
    return text;
}

bool statusOf(std::u16string_view posixPath, struct stat& status) {
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(posixPath);
    return bytes && ::stat(bytes->c_str(), &status) == 0;
}

} // namespace

std::u16string hfsPathOf(std::u16string_view posixPath) {
    // Relative paths keep being relative: a colon first.
    std::u16string path = posixPath.starts_with(u'/') ? std::u16string(VolumeName) : std::u16string(u":");
    std::u16string const rest = exchanged(posixPath);
    return posixPath.starts_with(u'/') ? path + rest : path + rest;
}

std::u16string posixPathOf(std::u16string_view hfsPath) {
    if (hfsPath.starts_with(u'/')) return std::u16string(hfsPath);
    if (hfsPath.starts_with(u':')) return exchanged(hfsPath.substr(1));
    std::size_t const colon = std::min(hfsPath.find(u':'), hfsPath.size());
    std::u16string_view const volume = hfsPath.substr(0, colon);
    std::u16string_view const rest = hfsPath.substr(colon);
    if (foldedName(volume) != foldedName(VolumeName)) {
        if (rest.empty()) return u"/" + exchanged(volume);
        return u"/Volumes/" + exchanged(volume) + exchanged(rest);
    }
    return rest.empty() ? std::u16string(u"/") : exchanged(rest);
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
