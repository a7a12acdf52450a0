#pragma once

#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

struct URLParts;

// A URL as it was written, relative ones with the URL that they are relative to. Nothing is normalised or capitalised
// on the way, and only the path, the user and the host are unescaped, where a byte that is not UTF-8 is held as it is
// in the names of files. A question for a part is answered for the absolute URL, and by nil where it has no such part.
// Immutable; any thread.
class NSURL : public Handle<NSURL, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Nil for a text with a character that no URL may have, with a % that is no escape, or with two #; the empty text
    // is one. A nil text raises NSInvalidArgumentException.
    static NSURL URLWithString_(NSString const& text);
    // An absolute text has no use for the base, which may be nil.
    static NSURL URLWithString_relativeToURL_(NSString const& text, NSURL const& base);
    // file://localhost/..., with a slash at the end where the path names a folder that exists or ends with one. A
    // relative path is relative to the current folder. Nil for the empty path and for one that can name no file; a nil
    // path raises NSInvalidArgumentException.
    static NSURL fileURLWithPath_(NSString const& path);
    // Does not look at the disk.
    static NSURL fileURLWithPath_isDirectory_(NSString const& path, BOOL isDirectory);

    NSString absoluteString() const;
    // The text as it was written, without the base.
    NSString relativeString() const;
    // The absolute URL that this one is relative to; nil for an absolute one.
    NSURL baseURL() const;
    // This one, where it has no base.
    NSURL absoluteURL() const;

    NSString scheme() const;
    // Everything behind the scheme.
    NSString resourceSpecifier() const;
    // Unescaped, without the brackets of an IPv6 address.
    NSString host() const;
    // The port of the authority; nil if it is missing or not a number.
    NSNumber port() const;
    // Unescaped.
    NSString user() const;
    NSString password() const;
    // Unescaped, without a slash at its end; empty where there is none. Nil where what follows the scheme does not
    // begin with a slash.
    NSString path() const;
    // The path of the text as it was written.
    NSString relativePath() const;
    // Behind the first ; of the path.
    NSString parameterString() const;
    NSString query() const;
    NSString fragment() const;

    bool isFileURL() const;
    // The URL without "." and ".." segments in its path, resolved by name alone.
    NSURL standardizedURL() const;

    // For implementations: where the parts lie in the text as it was written. Not for nil.
    URLParts const& parts() const;
};

} // namespace mac
