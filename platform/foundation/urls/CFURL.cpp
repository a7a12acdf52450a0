#include "platform/foundation/urls/CFURL.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/foundation/urls/URLParts.h"
#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace mac {

namespace {

CFRange asBytes(URLRange range) {
    return {static_cast<CFIndex>(range.start), static_cast<CFIndex>(range.end - range.start)};
}

// The places in the order of the text; each begins where an absent component would be put.
struct Places {
    explicit Places(URLParts const& parts) {
        std::size_t const authority = parts.path.start;
        std::size_t const host = parts.host ? parts.host->start : authority;
        parameters = parts.path.end;
        query = parts.parameters ? parts.parameters->end : parameters;
        fragment = parts.query ? parts.query->end : query;
        user = parts.user ? parts.user->start : host;
        password = parts.user ? parts.user->end : host;
        port = parts.host ? parts.host->end : authority;
    }

    std::size_t user;
    std::size_t password;
    std::size_t port;
    std::size_t parameters;
    std::size_t query;
    std::size_t fragment;
};

struct Component {
    std::optional<URLRange> range;
    std::size_t place;
};

Component componentOf(URLParts const& parts, CFURLComponentType component) {
    Places const places(parts);
    switch (component) {
    case kCFURLComponentScheme:
        return {parts.scheme, 0};
    case kCFURLComponentNetLocation:
        return {parts.authority(), places.user};
    case kCFURLComponentPath:
        return {parts.path.start < parts.path.end || parts.host ? std::optional(parts.path) : std::nullopt,
                parts.path.start};
    case kCFURLComponentResourceSpecifier:
        return {parts.behindPath(), places.parameters};
    case kCFURLComponentUser:
        return {parts.user, places.user};
    case kCFURLComponentPassword:
        return {parts.password, places.password};
    case kCFURLComponentUserInfo:
        return {parts.userInformation(), places.user};
    case kCFURLComponentHost:
        return {parts.host, places.user};
    case kCFURLComponentPort:
        return {parts.port, places.port};
    case kCFURLComponentParameterString:
        return {parts.parameters, places.parameters};
    case kCFURLComponentQuery:
        return {parts.query, places.query};
    case kCFURLComponentFragment:
        return {parts.fragment, places.fragment};
    }
    return {std::nullopt, 0};
}

// From the end of the part before, or the beginning, to the start of the part behind.
URLRange withSeparators(URLParts const& parts, CFURLComponentType component, URLRange range) {
    std::array const all{parts.scheme,     parts.user,  parts.password,
                         parts.host,       parts.port,  std::optional(parts.path),
                         parts.parameters, parts.query, parts.fragment};
    URLRange result{0, range.end};
    for (std::optional<URLRange> const& part : all) {
        bool const isBefore = part && part->end <= range.start && part->start < range.start;
        if (isBefore) result.start = part->end;
    }
    // The separator of an empty port is not the path's.
    if (component == kCFURLComponentPath && parts.port) result.start = std::max(result.start, parts.port->end);
    for (std::optional<URLRange> const& part : all) {
        bool const isBehind = part && part->start >= range.end && part->end > range.end;
        if (isBehind) return {result.start, part->start};
    }
    return result;
}

bool isComponent(CFURLComponentType component) {
    return component >= kCFURLComponentScheme && component <= kCFURLComponentFragment;
}

CFURLRef currentFolderURL() {
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    std::unique_ptr<char, Free> const folder(::getcwd(nullptr, 0));
    if (!folder) return nil;
    return CFURLCreateWithFileSystemPath(
        kCFAllocatorDefault, NSString::stringWithFileSystemRepresentation_(folder.get()), kCFURLPOSIXPathStyle, YES);
}

} // namespace

CFIndex CFURLGetBytes(CFURLRef const& url, std::uint8_t* buffer, CFIndex bufferLength) {
    std::u16string_view const text = url.relativeString().codeUnits();
    auto const length = static_cast<CFIndex>(text.size());
    if (!buffer) return length;
    if (length > bufferLength) return -1;
    std::ranges::transform(text, buffer, [](char16_t unit) { return static_cast<std::uint8_t>(unit); });
    return length;
}

CFRange CFURLGetByteRangeForComponent(CFURLRef const& url, CFURLComponentType component,
                                      CFRange* rangeIncludingSeparators) {
    CFRange separated{kCFNotFound, 0};
    if (rangeIncludingSeparators) *rangeIncludingSeparators = separated;
    if (url == nil || !isComponent(component)) return separated;
    URLParts const& parts = url.parts();
    if (!parts.isDecomposable && component == kCFURLComponentResourceSpecifier) {
        separated = asBytes({parts.scheme->end, parts.path.end});
        if (rangeIncludingSeparators) *rangeIncludingSeparators = separated;
        return asBytes(parts.path);
    }
    if (!parts.isDecomposable && component != kCFURLComponentScheme) return separated;
    Component const found = componentOf(parts, component);
    if (rangeIncludingSeparators)
        *rangeIncludingSeparators =
            asBytes(found.range ? withSeparators(parts, component, *found.range) : URLRange{found.place, found.place});
    return found.range ? asBytes(*found.range) : CFRange{kCFNotFound, 0};
}

bool CFURLHasDirectoryPath(CFURLRef const& url) {
    NSURL const absolute = url.absoluteURL();
    if (absolute == nil || !absolute.parts().isDecomposable) return false;
    std::u16string_view const path = absolute.parts().path.of(absolute.relativeString().codeUnits());
    if (path.empty()) return false;
    std::u16string_view const last = path.substr(path.rfind(u'/') + 1);
    return last.empty() || last == u"." || last == u"..";
}

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef const& filePath, CFURLPathStyle pathStyle,
                                       BOOL isDirectory) {
    return CFURLCreateWithFileSystemPathRelativeToBase(allocator, filePath, pathStyle, isDirectory, nil);
}

CFURLRef CFURLCreateWithFileSystemPathRelativeToBase(CFAllocatorRef, CFStringRef const& filePath,
                                                     CFURLPathStyle pathStyle, BOOL isDirectory,
                                                     CFURLRef const& baseURL) {
    std::u16string_view const path = filePath.codeUnits();
    if (path.empty() || pathStyle != kCFURLPOSIXPathStyle) return nil;
    std::optional<std::u16string> text = escapedPath(path);
    if (!text) return nil;
    if (isDirectory && !text->ends_with(u'/')) text->push_back(u'/');
    if (!isDirectory && text->size() > 1 && text->ends_with(u'/')) text->pop_back();
    if (path.starts_with(u'/')) {
        text->insert(0, u"file://localhost");
        return NSURL::URLWithString_(makeString(std::move(*text)));
    }
    // A colon in the first name does not end a scheme.
    if (text->find(u':') < text->find(u'/')) text->insert(0, u"./");
    return NSURL::URLWithString_relativeToURL_(makeString(std::move(*text)),
                                               baseURL == nil ? currentFolderURL() : baseURL);
}

CFURLRef CFURLCreateFromFileSystemRepresentationRelativeToBase(CFAllocatorRef allocator, std::uint8_t const* buffer,
                                                               CFIndex bufferLength, BOOL isDirectory,
                                                               CFURLRef const& baseURL) {
    if (!buffer || bufferLength < 0) return nil;
    std::string_view const bytes(reinterpret_cast<char const*>(buffer), static_cast<std::size_t>(bufferLength));
    return CFURLCreateWithFileSystemPathRelativeToBase(allocator, NSString::stringWithFileSystemRepresentation_(bytes),
                                                       kCFURLPOSIXPathStyle, isDirectory, baseURL);
}

} // namespace mac
