#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/PathSlashes.h"
#include "platform/foundation/text/StringBody.h"
#include <algorithm>

namespace mac {

namespace {

// Every run of slashes becomes one, and none is left at the end.
std::u16string withSingleSlashes(std::u16string_view path) {
    std::u16string result;
    result.reserve(path.size());
    for (char16_t const unit : path) {
        if (unit != u'/' || !result.ends_with(u'/')) result.push_back(unit);
    }
    result.resize(withoutTrailingSlashes(result).size());
    return result;
}

// Where the last component of a path without trailing slashes starts.
std::size_t startOfLastComponent(std::u16string_view path) {
    if (path == u"/") return 0;
    std::size_t const slash = path.rfind(u'/');
    return slash == std::u16string_view::npos ? 0 : slash + 1;
}

// The place of the dot before the extension; a dot at the start of the last component makes a hidden file instead.
std::optional<std::size_t> extensionDot(std::u16string_view path) {
    std::size_t const dot = path.rfind(u'.');
    if (dot == std::u16string_view::npos || dot <= startOfLastComponent(path)) return std::nullopt;
    return dot;
}

NSString lastComponentOf(std::u16string_view path) {
    path = withoutTrailingSlashes(path);
    return NSString::stringWithCodeUnits(path.substr(startOfLastComponent(path)));
}

std::u16string parentOf(std::u16string path) {
    std::size_t const slash = path.rfind(u'/');
    if (slash == std::u16string::npos) return {};
    path.resize(std::max<std::size_t>(slash, 1));
    return path;
}

} // namespace

bool NSString::isAbsolutePath() const { return codeUnits().starts_with(u'/') || codeUnits().starts_with(u'~'); }

NSArray NSString::pathComponents() const {
    if (*this == nil) return nil;
    std::u16string_view const path = codeUnits();
    std::vector<id> components;
    if (path.starts_with(u'/')) components.emplace_back("/");
    std::size_t start = path.find_first_not_of(u'/');
    while (start != std::u16string_view::npos) {
        std::size_t const end = std::min(path.find(u'/', start), path.size());
        components.push_back(stringWithCodeUnits(path.substr(start, end - start)));
        start = path.find_first_not_of(u'/', end);
    }
    // A slash at the end is a component of its own.
    if (path.ends_with(u'/') && path.find_first_not_of(u'/') != std::u16string_view::npos) components.emplace_back("/");
    return NSArray::arrayWithVector(std::move(components));
}

NSString NSString::pathWithComponents_(NSArray const& components) {
    if (components == nil) return nil;
    NSString path = NSString::string();
    for (id const& component : components)
        path = path.stringByAppendingPathComponent_(as<NSString>(component));
    return path;
}

NSString NSString::lastPathComponent() const { return *this == nil ? NSString(nil) : lastComponentOf(codeUnits()); }

NSString NSString::pathExtension() const {
    if (*this == nil) return nil;
    std::u16string_view const path = withoutTrailingSlashes(codeUnits());
    std::optional<std::size_t> const dot = extensionDot(path);
    return dot ? stringWithCodeUnits(path.substr(*dot + 1)) : string();
}

NSString NSString::stringByAppendingPathComponent_(NSString const& component) const {
    if (*this == nil) return nil;
    std::u16string_view const path = codeUnits();
    std::u16string_view const addition = component.codeUnits();
    std::u16string joined;
    joined.reserve(path.size() + 1 + addition.size());
    joined.append(path);
    if (!path.empty() && !addition.empty()) joined.push_back(u'/');
    joined.append(addition);
    return makeString(withSingleSlashes(joined));
}

NSString NSString::stringByAppendingPathExtension_(NSString const& extension) const {
    if (*this == nil) return nil;
    std::u16string path = withSingleSlashes(codeUnits());
    std::u16string_view const addition = extension.codeUnits();
    if (path.empty() || path == u"/" || addition.starts_with(u'/')) return nil;
    path.push_back(u'.');
    path.append(addition);
    return makeString(std::move(path));
}

NSString NSString::stringByDeletingLastPathComponent() const {
    return *this == nil ? NSString(nil) : makeString(parentOf(withSingleSlashes(codeUnits())));
}

NSString NSString::stringByDeletingPathExtension() const {
    if (*this == nil) return nil;
    std::u16string path = withSingleSlashes(codeUnits());
    if (std::optional<std::size_t> const dot = extensionDot(path)) path.resize(*dot);
    return makeString(std::move(path));
}

} // namespace mac
