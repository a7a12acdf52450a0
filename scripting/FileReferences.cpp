#include "scripting/FileReferences.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/files/NSFileManager.h"
#include <algorithm>
#include <span>

namespace mac {

namespace {

std::span<unichar const> unitsOf(HFSUniStr255 const& name) {
    return std::span(name.unicode).first(std::min<std::size_t>(name.length, name.unicode.size()));
}

bool isUsable(NSString const& path) { return path.codeUnits().starts_with(u'/'); }

NSDictionary attributesOfItself(NSString const& path) {
    return NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(path, NO);
}

void clear(FSRef* ref) {
    if (ref) *ref = {};
}

} // namespace

NSString KRCStringBySwappingColonsAndSlashes(NSString receiver) {
    if (receiver == nil) return nil;
    std::u16string units(receiver.codeUnits());
    std::ranges::transform(units, units.begin(), slashAndColonExchanged);
    return NSString::stringWithCodeUnits(units);
}

void KRCHFSUniStr255SwapColonsAndSlashes_(HFSUniStr255* name) {
    if (!name) return;
    std::size_t const length = unitsOf(*name).size();
    for (std::size_t index = 0; index < length; ++index)
        name->unicode[index] = slashAndColonExchanged(name->unicode[index]);
}

void KRCStringGetHFSUniStr255_(NSString receiver, HFSUniStr255* name) {
    if (!name) return;
    name->length = 0;
    std::u16string_view const units = receiver.codeUnits();
    if (units.size() > name->unicode.size()) return;
    name->length = static_cast<std::uint16_t>(units.size());
    std::ranges::copy(units, name->unicode.begin());
}

void KRCPathNameGetHFSUniStr255_(NSString receiver, HFSUniStr255* name) {
    if (!name) return;
    KRCStringGetHFSUniStr255_(receiver, name);
    KRCHFSUniStr255SwapColonsAndSlashes_(name);
}

NSString KRCStringWithHFSUniStr255_(HFSUniStr255 const* name) {
    if (!name) return nil;
    std::span<unichar const> const units = unitsOf(*name);
    return NSString::stringWithCodeUnits({units.data(), units.size()});
}

NSString KRCStringWithHFSUniStr255NoCopy_(HFSUniStr255* name) {
    if (!name) return nil;
    std::span<unichar const> const units = unitsOf(*name);
    if (units.empty()) return NSString::string();
    return NSString::stringWithCharactersNoCopy_length_(units.data(), static_cast<NSUInteger>(units.size()));
}

NSString KRCPathGetFileType(NSString receiver) { return attributesOfItself(receiver).fileType(); }

bool KRCPathIsSymbolicLink(NSString receiver) {
    return KRCPathGetFileType(receiver).isEqualToString_(NSFileTypeSymbolicLink);
}

bool KRCPathExists(NSString receiver) {
    return isUsable(receiver) && NSFileManager::defaultManager().fileExistsAtPath_(receiver);
}

bool KRCPathExistsIsDirectory_(NSString receiver, bool* isDirectory) {
    return isUsable(receiver) && NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(receiver, isDirectory);
}

bool KRCPathExistsTraverseLink_(NSString receiver, BOOL traverseLink) {
    if (traverseLink) return KRCPathExists(receiver);
    return isUsable(receiver) && !(attributesOfItself(receiver) == nil);
}

bool KRCPathExistsIsDirectory_traverseLink_(NSString receiver, bool* isDirectory, BOOL traverseLink) {
    if (isDirectory) *isDirectory = false;
    if (traverseLink) return KRCPathExistsIsDirectory_(receiver, isDirectory);
    if (!isUsable(receiver)) return false;
    NSDictionary const attributes = attributesOfItself(receiver);
    if (isDirectory) *isDirectory = attributes.fileType().isEqualToString_(NSFileTypeDirectory);
    return !(attributes == nil);
}

NSString KRCPathGetFileSystemPath(NSString receiver) {
    std::optional<std::string> const bytes = receiver.fileSystemRepresentation();
    return bytes ? NSString::stringWithFileSystemRepresentation_(*bytes) : NSString(nil);
}

NSString KRCPathWithFSRef_(FSRef const* ref) { return KRCURLWithFSRef_(ref).path(); }

bool KRCPathGetFSRef_(NSString receiver, FSRef* ref) {
    // The URL of such a path has the same path, and making it would ask whether that leads to a folder.
    bool const isPlain = isUsable(receiver) && !receiver.codeUnits().ends_with(u'/');
    if (!isPlain) return KRCPathGetFSRef_getIsDirectory_(receiver, ref, {});
    FSRef scratch{};
    std::optional<std::string> const bytes = receiver.fileSystemRepresentation();
    bool const isMade =
        bytes && FSPathMakeRef(reinterpret_cast<std::uint8_t const*>(bytes->c_str()), &scratch, {}) == noErr;
    if (ref) *ref = isMade ? scratch : FSRef{};
    return isMade;
}

bool KRCPathGetFSRef_isDirectory_(NSString receiver, FSRef* ref, BOOL isDirectory) {
    NSURL url;
    if (isUsable(receiver))
        url = CFURLCreateWithFileSystemPath(kCFAllocatorDefault, KRCPathGetFileSystemPath(receiver),
                                            kCFURLPOSIXPathStyle, isDirectory);
    if (!(url == nil)) return KRCURLGetFSRef_(url, ref);
    clear(ref);
    return false;
}

bool KRCPathGetFSRef_getIsDirectory_(NSString receiver, FSRef* ref, bool* isDirectory) {
    NSURL const url = isUsable(receiver) ? NSURL::fileURLWithPath_(receiver) : NSURL(nil);
    if (url == nil) {
        clear(ref);
        return false;
    }
    if (isDirectory) *isDirectory = CFURLHasDirectoryPath(url);
    return KRCURLGetFSRef_(url, ref);
}

NSMutableArray KRCPathDisplayNames(NSString receiver) {
    if (receiver == nil) return nil;
    NSMutableArray const names = NSMutableArray::array();
    NSString path = NSString::string();
    for (id const& component : receiver.pathComponents()) {
        path = path.stringByAppendingPathComponent_(as<NSString>(component));
        names.addObject_(NSFileManager::defaultManager().displayNameAtPath_(path));
    }
    return names;
}

NSString KRCPathSubPathRelativeToBasePath_(NSString receiver, NSString basePath) {
    if (receiver == nil) return nil;
    NSArray const components = receiver.pathComponents();
    NSUInteger const skipped = basePath.pathComponents().count();
    // If the base has more components, the difference is an invalid length, for which the range raises.
    return NSString::pathWithComponents_(components.subarrayWithRange_({skipped, components.count() - skipped}));
}

bool KRCURLGetFSRef_(NSURL receiver, FSRef* ref) {
    FSRef scratch{};
    FSRef& result = ref ? *ref : scratch;
    bool const isMade = CFURLGetFSRef(receiver, &result);
    if (!isMade) result = {};
    return isMade;
}

NSURL KRCURLWithFSRef_(FSRef const* ref) { return ref ? CFURLCreateFromFSRef(kCFAllocatorDefault, ref) : NSURL(nil); }

NSURL KRCURLRelativeURLWithFSRef_(NSURL receiver, FSRef const* ref) {
    NSURL const url = KRCURLWithFSRef_(ref);
    if (receiver == nil || url == nil) return nil;
    NSString const path = KRCPathSubPathRelativeToBasePath_(url.path(), receiver.path());
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    if (!bytes) return nil;
    return CFURLCreateFromFileSystemRepresentationRelativeToBase(
        kCFAllocatorDefault, reinterpret_cast<std::uint8_t const*>(bytes->data()), static_cast<CFIndex>(bytes->size()),
        BOOL(CFURLHasDirectoryPath(url)), receiver);
}

bool KRCURLIsOnIDisk(NSURL receiver) { return receiver.host().isEqualToString_(KRCIDiskHost); }

} // namespace mac
