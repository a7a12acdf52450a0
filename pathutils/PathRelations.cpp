#include "pathutils/PathRelations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/foundation/urls/CFURL.h"
#include "platform/launchservices/DisplayNames.h"
#include "platform/launchservices/ItemInformation.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "scripting/FileReferences.h"
#include "scripting/URLUtilities.h"
#include <array>
#include <utility>

namespace mac {

namespace {

constexpr std::array<std::pair<char const*, char const*>, 3> PantherExtensions{{
    {"public.tiff", "tiff"},
    {"public.jpeg", "jpeg"},
    {"public.png", "png"},
}};

// Whether the path, which begins with the folder's path, goes on with another component.
bool continuesInside(std::u16string_view path, std::u16string_view folder) {
    if (folder.ends_with(u'/')) return true;
    return path.size() >= folder.size() + 2 && path[folder.size()] == u'/';
}

bool isLonger(std::u16string_view path, std::u16string_view folder) {
    return !folder.empty() && path.size() > folder.size();
}

id propertyListInFile(NSString const& path) {
    NSData const data = NSData::dataWithContentsOfFile_(path);
    return NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        data, NSPropertyListImmutable, {}, {});
}

bool isPackage(FSRef const& ref, bool& isKnown) {
    LSItemInfoRecord record;
    isKnown = LSCopyItemInfoForRef(&ref, kLSRequestBasicFlagsOnly, &record) == noErr;
    return isKnown && (record.flags & kLSItemInfoIsPackage) != 0;
}

bool moveToParent(FSRef& ref) {
    FSRef parent{};
    if (FSGetCatalogInfo(&ref, kFSCatInfoNone, {}, {}, {}, &parent) != noErr) return false;
    ref = parent;
    return true;
}

} // namespace

bool pxIsEqualToPath_(NSString receiver, id path) {
    NSString const other = as<NSString>(path);
    if (receiver == nil || other == nil) return false;
    return receiver.stringByStandardizingPath().caseInsensitiveCompare_(other.stringByStandardizingPath()) ==
           NSOrderedSame;
}

bool pxIsChildOf_(NSString receiver, id path) {
    NSString const other = as<NSString>(path);
    if (receiver == nil || other == nil) return false;
    NSString const child = receiver.stringByStandardizingPath();
    NSString const folder = other.stringByStandardizingPath();
    return isLonger(child.codeUnits(), folder.codeUnits()) &&
           child.lowercaseString().codeUnits().starts_with(folder.lowercaseString().codeUnits()) &&
           continuesInside(child.codeUnits(), folder.codeUnits());
}

bool pxFastIsChildOf_(NSString receiver, NSString path) {
    std::u16string_view const child = receiver.codeUnits();
    std::u16string_view const folder = path.codeUnits();
    return isLonger(child, folder) && child.starts_with(folder) && continuesInside(child, folder);
}

bool pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(NSString receiver, NSUInteger levels) {
    constexpr NSUInteger fewest = 2;
    NSUInteger components = receiver.pathComponents().count();
    FSRef ref{};
    if (components < fewest || levels == 0 || !KRPathGetFSRef_traverseLink_(receiver, &ref, NO)) return false;
    for (NSUInteger step = 0;; ++step) {
        bool isKnown = false;
        if (isPackage(ref, isKnown)) return true;
        --components;
        if (!isKnown || components < fewest || step == levels - 1 || !moveToParent(ref)) return false;
    }
}

bool pxIsPathPartOfPackageCheckingMaxLevels_(NSString receiver, NSUInteger levels) {
    return pxIsPathPackageOrPartOfPackageCheckingMaxLevels_(pxParentPathOfPath(receiver), levels);
}

NSString pxDisplayNameOfPath(NSString receiver) {
    return receiver == nil ? NSString(nil) : NSFileManager::defaultManager().displayNameAtPath_(receiver);
}

NSString pxParentPathOfPath(NSString receiver) {
    NSString const path = receiver.stringByStandardizingPath();
    if (path.pathComponents().count() < 2) return nil;
    NSString const parent = path.stringByDeletingLastPathComponent();
    return parent.length() > 0 ? parent : NSString(nil);
}

NSDictionary pxInfoDictionaryForPath(NSString receiver) { return NSBundle::bundleWithPath_(receiver).infoDictionary(); }

NSDictionary pxInfoDictionaryForPathUncached(NSString receiver) {
    std::uint32_t flags = 0;
    if (!pxLSFlagsOfPath_(receiver, &flags)) return nil;
    bool const isPackage = (flags & kLSItemInfoIsPackage) != 0;
    bool const isFramework = receiver.pathExtension().isEqualToString_("framework");
    if (!isPackage && !isFramework) return nil;
    NSString const folder = receiver.stringByAppendingPathComponent_(isPackage ? NSString("Contents") : "Resources");
    NSString const file = folder.stringByAppendingPathComponent_("Info.plist").stringByStandardizingPath();
    return KRCPathExists(file) ? as<NSDictionary>(propertyListInFile(file)) : NSDictionary(nil);
}

NSArray pxVisibleDirectoryContentsAtPath_(NSString receiver, BOOL /*unused*/) {
    NSArray const names = NSFileManager::defaultManager().directoryContentsAtPath_(receiver);
    if (names.count() == 0) return names;
    NSMutableArray const visible = NSMutableArray::array();
    for (id const& name : names) {
        std::uint32_t flags = 0;
        bool const isKnown = pxLSFlagsOfPath_(receiver.stringByAppendingPathComponent_(as<NSString>(name)), &flags);
        if (isKnown && (flags & kLSItemInfoIsInvisible) == 0) visible.addObject_(name);
    }
    return visible;
}

NSString pxFilenameExtensionOfUTI(NSString receiver) {
    if (receiver.length() == 0) return nil;
    NSDictionary const declaration = UTTypeCopyDeclaration(receiver);
    NSDictionary const tags = as<NSDictionary>(declaration.objectForKey_(kUTTypeTagSpecificationKey));
    id const extensions = tags.objectForKey_(kUTTagClassFilenameExtension);
    NSArray const several = as<NSArray>(extensions);
    return as<NSString>(several.count() > 0 ? several.objectAtIndex_(0) : extensions);
}

NSString pxFilenameExtensionOfUTIPanther(NSString receiver) {
    for (auto const& [identifier, extension] : PantherExtensions) {
        if (receiver.isEqualToString_(NSString::stringWithUTF8String_(identifier)))
            return NSString::stringWithUTF8String_(extension);
    }
    return nil;
}

bool pxIsImageFile(NSString receiver) { return pxIsImageFile(pxURLOfPath(receiver)); }
bool pxIsAudioFile(NSString receiver) { return pxIsAudioFile(pxURLOfPath(receiver)); }

bool pxIsWritableFileAtPath(NSString receiver) {
    return NSFileManager::defaultManager().isWritableFileAtPath_(receiver);
}

bool pxIsDeletableFileAtPath(NSString receiver) {
    return NSFileManager::defaultManager().isDeletableFileAtPath_(receiver);
}

NSURL pxURLOfPath(NSString receiver) { return receiver == nil ? NSURL(nil) : NSURL::fileURLWithPath_(receiver); }

NSURL pxURLOfPath_(NSString receiver, BOOL isDirectory) {
    return CFURLCreateWithFileSystemPath(kCFAllocatorDefault, receiver, kCFURLPOSIXPathStyle, isDirectory);
}

} // namespace mac
