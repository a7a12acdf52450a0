#include "platform/foundation/urls/URLParts.h"
#include <vector>

namespace mac {

namespace {

// The relative path in the place of the base's last segment.
std::u16string mergedPath(std::u16string_view relative, std::u16string_view base, bool hasAuthority) {
    if (relative.starts_with(u'/')) return std::u16string(relative);
    std::size_t const slash = base.rfind(u'/');
    std::u16string merged(base.substr(0, slash == std::u16string_view::npos ? 0 : slash + 1));
    if (merged.empty() && hasAuthority) merged = u"/";
    return withoutDotSegments(merged.append(relative), LeadingDots::Stay);
}

// A path behind no authority begins with one slash at most: two would begin one.
std::u16string behindNoAuthority(std::u16string path) {
    if (path.starts_with(u"//")) path.insert(0, u"/.");
    return path;
}

void appendPart(std::u16string& url, char16_t separator, std::optional<URLRange> const& part,
                std::u16string_view text) {
    if (part) url.append(1, separator).append(part->of(text));
}

} // namespace

std::u16string withoutDotSegments(std::u16string_view path, LeadingDots leadingDots) {
    bool const isAbsolute = path.starts_with(u'/');
    if (isAbsolute) path.remove_prefix(1);
    std::vector<std::u16string_view> segments;
    for (bool isLast = false; !isLast;) {
        std::size_t const slash = path.find(u'/');
        isLast = slash == std::u16string_view::npos;
        std::u16string_view const segment = path.substr(0, slash);
        path.remove_prefix(isLast ? path.size() : slash + 1);
        bool const goesUp = segment == u".." && !segments.empty() && segments.back() != u"..";
        bool const isDropped = segment == u"." || goesUp ||
                               (segment == u".." && segments.empty() && isAbsolute && leadingDots == LeadingDots::Go);
        if (goesUp) segments.pop_back();
        if (!isDropped) segments.push_back(segment);
        // A path to a folder goes on being one.
        else if (isLast)
            segments.emplace_back();
    }
    std::u16string result;
    for (std::size_t index = 0; index < segments.size(); ++index) {
        if (isAbsolute || index > 0) result.push_back(u'/');
        result.append(segments[index]);
    }
    return result;
}

std::u16string resolvedURL(std::u16string_view relative, std::u16string_view base) {
    URLParts const parts = partsOfURL(relative);
    URLParts const baseParts = partsOfURL(base);
    if (relative.empty()) return std::u16string(base);
    if (parts.scheme || !baseParts.scheme || !baseParts.isDecomposable) return std::u16string(relative);
    std::u16string url(baseParts.scheme->of(base));
    url.push_back(u':');
    // The text itself begins with the two slashes.
    if (parts.host || relative.starts_with(u"//")) return url.append(relative);
    // An authority may be there and empty.
    bool const hasAuthority = base.substr(url.size()).starts_with(u"//");
    if (hasAuthority) url.append(u"//");
    if (baseParts.authority()) url.append(baseParts.authority()->of(base));
    bool const keepsPath = parts.path.start == parts.path.end;
    bool const keepsParameters = keepsPath && !parts.parameters;
    bool const keepsQuery = keepsParameters && !parts.query;
    std::u16string_view const basePath = baseParts.path.of(base);
    std::u16string path =
        keepsPath ? std::u16string(basePath) : mergedPath(parts.path.of(relative), basePath, hasAuthority);
    url.append(hasAuthority ? path : behindNoAuthority(std::move(path)));
    appendPart(url, u';', keepsParameters ? baseParts.parameters : parts.parameters, keepsParameters ? base : relative);
    appendPart(url, u'?', keepsQuery ? baseParts.query : parts.query, keepsQuery ? base : relative);
    appendPart(url, u'#', parts.fragment, relative);
    return url;
}

std::u16string standardizedURL(std::u16string_view url) {
    URLParts const parts = partsOfURL(url);
    std::u16string_view const path = parts.path.of(url);
    std::u16string plain = withoutDotSegments(path, LeadingDots::Go);
    bool const isRelative = !path.starts_with(u'/');
    bool const readsAsOther = plain.starts_with(u'/') || (!parts.scheme && plain.find(u':') < plain.find(u'/'));
    if (isRelative && readsAsOther) plain.insert(0, u"./");
    std::u16string_view const beforePath = url.substr(0, parts.path.start);
    std::u16string result(beforePath);
    result.append(beforePath.ends_with(u'/') || parts.host ? plain : behindNoAuthority(std::move(plain)));
    return result.append(url.substr(parts.path.end));
}

} // namespace mac
