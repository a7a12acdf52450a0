#include "platform/foundation/urls/NSURL.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/foundation/urls/CFURL.h"
#include "platform/foundation/urls/URLParts.h"
#include <algorithm>
#include <limits>

namespace mac {

class NSURL::Body : public ObjectBody {
public:
    Body(NSString text, NSURL base)
        : m_text(std::move(text)), m_base(std::move(base)), m_parts(partsOfURL(m_text.codeUnits())) {}

    // Equal are URLs of the same text relative to equal bases.
    bool isEqual(id const& other) const override {
        NSURL const url = as<NSURL>(other);
        if (url == nil || !m_text.isEqualToString_(url.relativeString())) return false;
        NSURL const base = url.baseURL();
        return m_base == nil ? base == nil : m_base.isEqual_(base);
    }
    std::uint64_t hash() const override { return m_text.hash(); }
    NSString description() const override {
        return m_base == nil ? m_text : NSString::stringWithFormat_("%@ -- %@", m_text, m_base);
    }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    NSString m_text;
    NSURL m_base;
    URLParts m_parts;
};

namespace {

NSString partOf(NSURL const& url, std::optional<URLRange> const& part) {
    if (!part) return nil;
    return NSString::stringWithCodeUnits(part->of(url.relativeString().codeUnits()));
}

// The part of the absolute URL.
template <class Part>
NSString absolutePart(NSURL const& url, Part part) {
    if (url == nil) return nil;
    NSURL const absolute = url.absoluteURL();
    return partOf(absolute, absolute.parts().*part);
}

NSString unescaped(NSString const& part) {
    return part == nil ? NSString(nil) : makeString(unescapedPath(part.codeUnits()));
}

NSString unescapedPathOf(NSURL const& url) {
    if (!url.parts().isDecomposable) return nil;
    std::u16string_view path = url.parts().path.of(url.relativeString().codeUnits());
    if (path.size() > 1 && path.ends_with(u'/')) path.remove_suffix(1);
    return makeString(unescapedPath(path));
}

} // namespace

ClassDescription NSURL::describeClass() {
    return {
        .name = "NSURL",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSURL::absoluteString>("absoluteString"), method<&NSURL::relativeString>("relativeString"),
                    method<&NSURL::baseURL>("baseURL"), method<&NSURL::absoluteURL>("absoluteURL"),
                    method<&NSURL::scheme>("scheme"), method<&NSURL::resourceSpecifier>("resourceSpecifier"),
                    method<&NSURL::host>("host"), method<&NSURL::port>("port"), method<&NSURL::user>("user"),
                    method<&NSURL::password>("password"), method<&NSURL::path>("path"),
                    method<&NSURL::relativePath>("relativePath"), method<&NSURL::parameterString>("parameterString"),
                    method<&NSURL::query>("query"), method<&NSURL::fragment>("fragment"),
                    method<&NSURL::isFileURL>("isFileURL"), method<&NSURL::standardizedURL>("standardizedURL")},
    };
}

NSURL NSURL::URLWithString_(NSString const& text) { return URLWithString_relativeToURL_(text, nil); }

NSURL NSURL::URLWithString_relativeToURL_(NSString const& text, NSURL const& base) {
    if (text == nil) throw NSInvalidArgumentException("URLWithString:relativeToURL: nil string parameter");
    if (!isURLText(text.codeUnits())) return nil;
    NSString const kept = uncheckedCast<NSString>(text.copy());
    bool const isAbsolute = partsOfURL(kept.codeUnits()).scheme.has_value();
    return adopt<NSURL>(kept, isAbsolute ? NSURL(nil) : base.absoluteURL());
}

NSURL NSURL::fileURLWithPath_(NSString const& path) {
    if (path == nil) throw NSInvalidArgumentException("fileURLWithPath: nil string parameter");
    bool isDirectory = path.codeUnits().ends_with(u'/');
    if (!isDirectory) NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(path, &isDirectory);
    return fileURLWithPath_isDirectory_(path, BOOL(isDirectory));
}

NSURL NSURL::fileURLWithPath_isDirectory_(NSString const& path, BOOL isDirectory) {
    if (path == nil) throw NSInvalidArgumentException("fileURLWithPath:isDirectory: nil string parameter");
    return CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, isDirectory);
}

NSString NSURL::absoluteString() const { return absoluteURL().relativeString(); }

NSString NSURL::relativeString() const { return *this == nil ? NSString(nil) : bodyOf(*this)->m_text; }

NSURL NSURL::baseURL() const { return *this == nil ? NSURL(nil) : bodyOf(*this)->m_base; }

NSURL NSURL::absoluteURL() const {
    NSURL const base = baseURL();
    if (base == nil) return *this;
    std::u16string text = resolvedURL(relativeString().codeUnits(), base.relativeString().codeUnits());
    return adopt<NSURL>(makeString(std::move(text)), NSURL(nil));
}

NSString NSURL::scheme() const { return absolutePart(*this, &URLParts::scheme); }

NSString NSURL::resourceSpecifier() const {
    if (*this == nil) return nil;
    std::u16string_view text = relativeString().codeUnits();
    URLParts const& known = parts();
    if (known.scheme) text.remove_prefix(known.scheme->end + 1);
    // An authority that is empty says nothing.
    bool const isEmptyAuthority = known.isDecomposable && !known.host && text.starts_with(u"//");
    if (known.scheme && isEmptyAuthority) text.remove_prefix(2);
    return NSString::stringWithCodeUnits(text);
}

NSString NSURL::host() const {
    NSString const host = absolutePart(*this, &URLParts::host);
    std::u16string_view const text = host.codeUnits();
    bool const isBracketed = text.size() > 1 && text.starts_with(u'[') && text.ends_with(u']');
    return unescaped(isBracketed ? NSString::stringWithCodeUnits(text.substr(1, text.size() - 2)) : host);
}

NSNumber NSURL::port() const {
    NSString const text = absolutePart(*this, &URLParts::port);
    std::u16string_view const units = text.codeUnits();
    if (units.empty() || !std::ranges::all_of(units, [](char16_t unit) { return unit >= u'0' && unit <= u'9'; }))
        return nil;
    return NSNumber::numberWithInt_(text.intValue());
}

NSString NSURL::user() const { return unescaped(absolutePart(*this, &URLParts::user)); }

NSString NSURL::password() const { return absolutePart(*this, &URLParts::password); }

NSString NSURL::path() const { return *this == nil ? NSString(nil) : unescapedPathOf(absoluteURL()); }

NSString NSURL::relativePath() const { return *this == nil ? NSString(nil) : unescapedPathOf(*this); }

NSString NSURL::parameterString() const { return absolutePart(*this, &URLParts::parameters); }

NSString NSURL::query() const { return absolutePart(*this, &URLParts::query); }

NSString NSURL::fragment() const { return absolutePart(*this, &URLParts::fragment); }

bool NSURL::isFileURL() const {
    NSString const name = scheme();
    return name != nil && name.caseInsensitiveCompare_("file") == NSOrderedSame;
}

NSURL NSURL::standardizedURL() const {
    if (*this == nil || !parts().isDecomposable) return *this;
    return adopt<NSURL>(makeString(mac::standardizedURL(relativeString().codeUnits())), baseURL());
}

URLParts const& NSURL::parts() const { return bodyOf(*this)->m_parts; }

} // namespace mac
