#include "platform/launchservices/DisplayNames.h"
#include "platform/desktop/DesktopEntries.h"
#include "platform/files/FSPaths.h"
#include "platform/foundation/DisplayNameSource.h"
#include "platform/launchservices/BundleFiles.h"
#include "platform/launchservices/DiskItem.h"

namespace mac {

namespace {

constexpr char DisplayNameKey[] = "CFBundleDisplayName";

NSString textOf(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

NSString nameIn(NSDictionary const& information) {
    NSString const name = as<NSString>(information.objectForKey_(DisplayNameKey));
    return name.length() > 0 ? name : NSString(nil);
}

// Nil for a bundle that gives itself no name, and for one whose file was given another.
NSString nameFromBundle(DiskItem const& item) {
    NSString const name = nameIn(bundleInformation(item.path));
    bool const isAsNamed = name.isEqualToString_(textOf(item.stem())) || name.isEqualToString_(textOf(item.name));
    if (!isAsNamed) return nil;
    NSString const localized = nameIn(localizedBundleInformation(item.path, userLanguages()));
    return localized == nil ? name : localized;
}

NSString ownName(DiskItem const& item) {
    if (item.isPackage()) return nameFromBundle(item);
    return isTrustedDesktopEntry(item) ? nameOfDesktopEntry(item.path, userLanguages()) : NSString(nil);
}

bool isToldToHideExtension(DiskItem const& item) {
    return !item.extension().empty() && (item.finder.finderFlags() & kExtensionHidden) != 0;
}

OSStatus deliver(std::optional<DiskItem> const& item, CFStringRef* displayName) {
    if (!item) return fnfErr;
    *displayName = displayNameOf(*item);
    return noErr;
}

NSString displayNameAtPath(NSString const& path) {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    std::optional<DiskItem> const item = bytes ? diskItemAtPath(*bytes) : std::nullopt;
    return item ? displayNameOf(*item) : NSString(nil);
}

} // namespace

NSString displayNameOf(DiskItem const& item) {
    if (item.name.empty()) return "/";
    NSString const name = ownName(item);
    if (name != nil) return name;
    return textOf(isToldToHideExtension(item) ? item.stem() : std::string_view(item.name));
}

bool hidesExtension(DiskItem const& item) {
    return isToldToHideExtension(item) || (!item.extension().empty() && ownName(item) != nil);
}

OSStatus LSCopyDisplayNameForURL(CFURLRef const& url, CFStringRef* displayName) {
    return !displayName || !url.isFileURL() ? paramErr : deliver(diskItemOf(url), displayName);
}

OSStatus LSCopyDisplayNameForRef(FSRef const* itemRef, CFStringRef* displayName) {
    return !displayName || !itemRef ? paramErr : deliver(diskItemOf(*itemRef), displayName);
}

void useDisplayNamesInFileManager() { setDisplayNameSource(&displayNameAtPath); }

} // namespace mac
