#include "fuzz/Trials.h"
#include "platform/foundation/urls/CFURL.h"
#include "platform/foundation/urls/URLParts.h"
#include <algorithm>

namespace mac::fuzz {

namespace {

// The text put together again from its parts.
std::u16string rejoined(std::u16string_view text, URLParts const& parts) {
    std::u16string result;
    auto const append = [&](std::u16string_view before, std::optional<URLRange> const& part,
                            std::u16string_view after = {}) {
        if (part) result.append(before).append(part->of(text)).append(after);
    };
    append(u"", parts.scheme, u":");
    bool const hasSlashes = parts.isDecomposable && text.substr(result.size()).starts_with(u"//");
    if (parts.isDecomposable && hasSlashes) result.append(u"//");
    append(u"", parts.user, parts.password ? u"" : u"@");
    append(u":", parts.password, u"@");
    append(u"", parts.host);
    append(u":", parts.port);
    append(u"", parts.path);
    append(u";", parts.parameters);
    append(u"?", parts.query);
    append(u"#", parts.fragment);
    return result;
}

std::string complaintAboutRanges(NSURL const& url) {
    CFIndex const length = CFURLGetBytes(url, nullptr, 0);
    for (int number = kCFURLComponentScheme; number <= kCFURLComponentFragment; ++number) {
        CFRange outer;
        CFRange const inner = CFURLGetByteRangeForComponent(url, static_cast<CFURLComponentType>(number), &outer);
        if (outer.location == kCFNotFound) {
            if (inner.location != kCFNotFound || url.parts().isDecomposable) return "a component lies nowhere";
            continue;
        }
        if (outer.location + outer.length > length) return "a range leaves the text";
        bool const holds =
            inner.location >= outer.location && inner.location + inner.length <= outer.location + outer.length;
        if (inner.location == kCFNotFound ? outer.length != 0 : !holds) return "the separators cut a component";
    }
    return {};
}

std::string complaintAboutOne(NSURL const& url) {
    if (url == nil) return {};
    std::u16string_view const text = url.relativeString().codeUnits();
    if (rejoined(text, url.parts()) != text) return "the parts do not make the text";
    NSURL const absolute = url.absoluteURL();
    if (!isURLText(absolute.relativeString().codeUnits())) return "the absolute text is no URL";
    NSURL const standardized = absolute.standardizedURL();
    if (!standardized.standardizedURL().isEqual_(standardized)) return "standardizing twice differs";
    NSString const path = absolute.path();
    if ((path != nil) != absolute.parts().isDecomposable)
        return "path() is nil for a URL with a path, or not nil for one without";
    NSURL const file = path == nil ? NSURL(nil) : NSURL::fileURLWithPath_isDirectory_(path, YES);
    bool const endsWithSlash = path.length() > 1 && path.codeUnits().ends_with(u'/');
    bool const isKept = file == nil || !path.isAbsolutePath() || endsWithSlash || file.path().isEqualToString_(path);
    if (!isKept && path.codeUnits().starts_with(u'/')) return "a path changes on its way through a URL";
    url.description();
    url.resourceSpecifier();
    url.port();
    return complaintAboutRanges(url);
}

} // namespace

std::string complaintAboutURL(std::string_view bytes) {
    std::size_t const end = std::min(bytes.find('\n'), bytes.size());
    NSString const first = NSString::stringWithFileSystemRepresentation_(bytes.substr(0, end));
    NSString const second =
        NSString::stringWithFileSystemRepresentation_(bytes.substr(std::min(end + 1, bytes.size())));
    NSURL const base = NSURL::URLWithString_(first);
    for (NSURL const& url :
         {base, NSURL::URLWithString_relativeToURL_(second, base), NSURL::fileURLWithPath_isDirectory_(second, NO)}) {
        std::string const complaint = complaintAboutOne(url);
        if (!complaint.empty()) return complaint + ": " + url.description().UTF8String();
    }
    return {};
}

} // namespace mac::fuzz
