#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/PathSlashes.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/system/LongPath.h"
#include "platform/system/Users.h"
#include <algorithm>
#include <vector>

namespace mac {

namespace {

constexpr std::u16string_view PrivateFolder = u"/private";

bool isWithin(std::u16string_view path, std::u16string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == u'/');
}

std::optional<std::u16string> homeOfUser(std::u16string_view name) {
    if (name.empty()) return std::u16string(NSHomeDirectory().codeUnits());
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(name);
    if (!bytes) return std::nullopt;
    std::optional<std::string> const home = homeFolderOfUser(*bytes);
    if (!home) return std::nullopt;
    return unitsFromFileSystemBytes(*home);
}

// A user that is not known stays as it is.
std::u16string expanded(std::u16string_view path) {
    if (!path.starts_with(u'~')) return std::u16string(path);
    std::size_t const end = std::min(path.find(u'/'), path.size());
    std::optional<std::u16string> const home = homeOfUser(path.substr(1, end - 1));
    if (!home) return std::u16string(path);
    std::u16string_view const rest = path.substr(end);
    if (*home == u"/" && !rest.empty()) return std::u16string(withoutTrailingSlashes(rest));
    return std::u16string(withoutTrailingSlashes(*home + std::u16string(rest)));
}

// Without empty and "." components; ".." is resolved by name in absolute paths.
std::u16string standardized(std::u16string_view path) {
    bool const isAbsolute = path.starts_with(u'/');
    std::vector<std::u16string_view> components;
    for (std::size_t start = path.find_first_not_of(u'/'); start != std::u16string_view::npos;) {
        std::size_t const end = std::min(path.find(u'/', start), path.size());
        std::u16string_view const component = path.substr(start, end - start);
        if (isAbsolute && component == u".." && !components.empty())
            components.pop_back();
        else if (component != u"." && !(isAbsolute && component == u".."))
            components.push_back(component);
        start = path.find_first_not_of(u'/', end);
    }
    std::u16string result;
    for (std::u16string_view const component : components) {
        if (isAbsolute || !result.empty()) result.push_back(u'/');
        result.append(component);
    }
    if (result.empty() && !path.empty()) return isAbsolute ? u"/" : u".";
    return result;
}

// On Mac OS X some folders of the root are links into /private, and the short names are the known ones.
std::u16string withoutPrivate(std::u16string path) {
    if (!isWithin(path, PrivateFolder) || path.size() == PrivateFolder.size()) return path;
    std::u16string rest = path.substr(PrivateFolder.size());
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(rest);
    return bytes && pathExists(*bytes) ? rest : path;
}

} // namespace

NSString NSHomeDirectory() { return NSString::stringWithFileSystemRepresentation_(ownHomeFolder()); }

NSString NSUserName() { return NSString::stringWithFileSystemRepresentation_(ownUserName()); }

NSString NSString::stringByExpandingTildeInPath() const {
    return *this == nil ? NSString(nil) : makeString(expanded(codeUnits()));
}

NSString NSString::stringByAbbreviatingWithTildeInPath() const {
    if (*this == nil) return nil;
    std::u16string_view const path = codeUnits();
    NSString const home = NSHomeDirectory();
    if (home.length() <= 1 || !isWithin(path, home.codeUnits())) return uncheckedCast<NSString>(copy());
    std::u16string abbreviated(1, u'~');
    abbreviated.append(path.substr(home.length()));
    abbreviated.resize(withoutTrailingSlashes(abbreviated).size());
    return makeString(std::move(abbreviated));
}

NSString NSString::stringByStandardizingPath() const {
    return *this == nil ? NSString(nil) : makeString(withoutPrivate(standardized(expanded(codeUnits()))));
}

NSString NSString::stringByResolvingSymlinksInPath() const {
    if (*this == nil) return nil;
    std::u16string const path = expanded(codeUnits());
    std::optional<std::string> const bytes =
        path.starts_with(u'/') ? fileSystemBytesFromUnits(path) : std::optional<std::string>();
    if (!bytes) return makeString(standardized(path));
    return makeString(withoutPrivate(standardized(unitsFromFileSystemBytes(resolvedPath(*bytes)))));
}

} // namespace mac
