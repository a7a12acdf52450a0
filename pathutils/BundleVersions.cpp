#include "pathutils/BundleVersions.h"
#include "pathutils/PathRelations.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/text/NSCharacterSet.h"
#include <algorithm>
#include <array>

namespace mac {

namespace {

using Version = std::array<std::int32_t, 3>;

// From its first digit on.
std::int32_t numberIn(NSString const& part) {
    NSRange const digit = part.rangeOfCharacterFromSet_(NSCharacterSet::decimalDigitCharacterSet());
    return digit.location == NSNotFound ? 0 : part.substringFromIndex_(digit.location).intValue();
}

Version versionIn(NSString const& text) {
    Version version{};
    NSArray const parts = text.componentsSeparatedByString_(".");
    for (NSUInteger index = 0; index < std::min<NSUInteger>(parts.count(), version.size()); ++index)
        version[index] = numberIn(as<NSString>(parts.objectAtIndex_(index)));
    return version;
}

// An information file may hold a number where a string is meant; anything else is no version.
NSString textOfVersion(id const& value) {
    return as<NSNumber>(value) == nil ? as<NSString>(value) : as<NSNumber>(value).stringValue();
}

} // namespace

NSString pxVersionOfPath(NSString receiver) {
    NSDictionary const information = pxInfoDictionaryForPath(receiver);
    id const version = information.objectForKey_("CFBundleVersion");
    if (version != nil) return pxTrimmedVersion(textOfVersion(version));
    id const major = information.objectForKey_("IFMajorVersion");
    id const minor = information.objectForKey_("IFMinorVersion");
    if (major == nil || minor == nil) return nil;
    return pxTrimmedVersion(NSString::stringWithFormat_("%@.%@", major, minor));
}

void pxParseVersionToMajor_minor_subminor_(NSString receiver, std::int32_t* major, std::int32_t* minor,
                                           std::int32_t* subminor) {
    if (receiver == nil) return;
    Version const version = versionIn(receiver);
    *major = version[0];
    *minor = version[1];
    *subminor = version[2];
}

NSString pxTrimmedVersion_(NSString receiver, std::int32_t maxNumbers) {
    if (receiver == nil) return nil;
    if (maxNumbers != 2 && maxNumbers != 3) {
        NSLog("%s: ERROR: Not implemented for maxNumbers = %d", "-[NSString(PXUtils) pxTrimmedVersion:]", maxNumbers);
        return nil;
    }
    auto const [major, minor, subminor] = versionIn(receiver);
    if (subminor != 0 && maxNumbers == 3) return NSString::stringWithFormat_("%d.%d.%d", major, minor, subminor);
    return NSString::stringWithFormat_("%d.%d", major, minor);
}

NSString pxTrimmedVersion(NSString receiver) { return pxTrimmedVersion_(receiver, 3); }

std::int32_t pxVersionCompare_(NSString receiver, NSString version) {
    if (receiver == nil) return 0;
    Version const one = versionIn(receiver);
    Version const other = versionIn(version);
    if (one == other) return 0;
    return one < other ? -1 : 1;
}

} // namespace mac
