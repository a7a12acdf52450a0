#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/urls/CFURL.h"
#include "scripting/URLUtilities.h"
#include <string>

namespace mac {

namespace {

struct ComponentRanges {
    CFRange inner;
    CFRange withSeparators;
};

ComponentRanges rangesOf(NSURL const& url, std::int32_t component) {
    ComponentRanges ranges;
    ranges.inner =
        CFURLGetByteRangeForComponent(url, static_cast<CFURLComponentType>(component), &ranges.withSeparators);
    return ranges;
}

NSString textAt(NSURL const& url, CFRange range) {
    std::string bytes(static_cast<std::size_t>(CFURLGetBytes(url, {}, 0)), '\0');
    CFURLGetBytes(url, reinterpret_cast<std::uint8_t*>(bytes.data()), static_cast<CFIndex>(bytes.size()));
    return NSString::stringWithUTF8String_(std::string_view(bytes).substr(static_cast<std::size_t>(range.location),
                                                                          static_cast<std::size_t>(range.length)));
}

NSString nameOf(std::int32_t component) {
    NSArray const names =
        NSArray::arrayWithObjects_({"", "Scheme", "NetLocation", "Path", "ResourceSpecifier", "User", "Password",
                                    "UserInfo", "Host", "Port", "ParameterString", "Query", "Fragment"});
    // Below 0 as well as behind the end.
    return as<NSString>(names.objectAtIndex_(static_cast<NSUInteger>(component)));
}

} // namespace

NSString pxComponent_(NSURL receiver, std::int32_t component) {
    ComponentRanges const ranges = rangesOf(receiver, component);
    if (ranges.inner.location != kCFNotFound) return textAt(receiver, ranges.inner);
    // A URL that could have a path has one, which may be empty.
    bool const isEmptyPath = component == kCFURLComponentPath && ranges.withSeparators.location != kCFNotFound;
    return isEmptyPath ? NSString::string() : NSString(nil);
}

NSString pxDisplayComponent_(NSURL receiver, std::int32_t component) {
    if (receiver == nil) return nil;
    NSString const name = nameOf(component);
    ComponentRanges const ranges = rangesOf(receiver, component);
    if (ranges.inner.location == kCFNotFound || ranges.inner.length == 0) {
        NSLog("%@: Not found", name);
        return nil;
    }
    NSString const text = textAt(receiver, ranges.inner);
    NSLog(R"(%@: "%@" including separators: "%@")", name, text, textAt(receiver, ranges.withSeparators));
    return text;
}

void pxDisplayComponents(NSURL receiver) {
    if (receiver == nil) return;
    NSLog(R"(Components for url "%@":)", receiver);
    NSLog("absoluteString: %@", receiver.absoluteString());
    NSLog("relativeString: %@", receiver.relativeString());
    NSLog("baseURL: %@", receiver.baseURL());
    NSLog("absoluteURL: %@", receiver.absoluteURL());
    NSLog("scheme: %@", receiver.scheme());
    NSLog("resourceSpecifier: %@", receiver.resourceSpecifier());
    NSLog("host: %@", receiver.host());
    NSLog("port: %@", receiver.port());
    NSLog("user: %@", receiver.user());
    NSLog("password: %@", receiver.password());
    NSLog("path: %@", receiver.path());
    NSLog("fragment: %@", receiver.fragment());
    NSLog("parameterString: %@", receiver.parameterString());
    NSLog("query: %@", receiver.query());
    NSLog("relativePath: %@", receiver.relativePath());
    NSLog("isFileURL: %d", receiver.isFileURL() ? 1 : 0);
    NSLog("standardizedURL: %@", receiver.standardizedURL());
}

} // namespace mac
