#include "platform/launchservices/DisplayNames.h"
#include "platform/Registration.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/files/references/FSRef.h"
#include "platform/foundation/files/DisplayNameSource.h"
#include "platform/launchservices/BundleFiles.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/system/BytePath.h"
#include "platform/system/UserLanguages.h"
#include <algorithm>

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

// Whether the item is a desktop entry that the desktop would start, so that its name may be believed: it may be
// executed, or lies in a folder of applications.
bool isTrustedDesktopEntry(DiskItem const& item) {
    if (item.kind != DiskItem::Kind::File || item.extension() != "desktop") return false;
    return item.mayRun || std::ranges::any_of(applicationFolders(), [&](std::string const& folder) {
               return BytePath(item.path).isBelow(folder);
           });
}

NSString ownName(DiskItem const& item) {
    if (item.isPackage()) return nameFromBundle(item);
    if (!isTrustedDesktopEntry(item)) return nil;
    std::optional<std::string> const name = DesktopEntry::readFile(item.path).localizedName(userLanguages());
    return name ? textOf(*name) : NSString(nil);
}

bool isToldToHideExtension(DiskItem const& item) {
    return !item.extension().empty() && (item.finder.finderFlags() & kExtensionHidden) != 0;
}

OSStatus deliver(Result<DiskItem> const& item, CFStringRef* displayName) {
    if (!item.hasValue()) return fnfErr;
    *displayName = displayNameOf(item.value());
    return noErr;
}

NSString displayNameAtPath(NSString const& path) {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    if (!bytes) return nil;
    Result<DiskItem> const item = diskItemAtPath(*bytes);
    return item.hasValue() ? displayNameOf(item.value()) : NSString(nil);
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

void registerLaunchServices() { useDisplayNamesInFileManager(); }

} // namespace mac
