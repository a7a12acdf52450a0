#include "pathutils/FinderMetadata.h"
#include "coreutils/IconsAndImages.h"
#include "pathutils/PathRelations.h"
#include "platform/files/volumes/VolumeInformation.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/system/items/OpenItem.h"
#include "scripting/AppleEventDescriptors.h"
#include "scripting/FileReferences.h"
#include "scripting/URLUtilities.h"

namespace mac {

namespace {

constexpr FSVolumeRefNum UnknownVolume = 0x3F3F;
constexpr std::uint16_t UnknownFileSystem = 0xFFFF;
constexpr std::uint16_t HFSFileSystem = 0x0000;
constexpr std::uint16_t NetworkFileSystem = 0x6173;
constexpr std::uint16_t FATFileSystem = 0x4953;
constexpr std::uint16_t LocalFileSystem = 0xFFFE;

constexpr TextEncoding UnknownEncoding = 0xFFFF;
constexpr AEEventID UpdateEvent{"fupd"};
constexpr DescType FileReferenceType{"fsrf"};
constexpr AEKeyword DirectObject{"----"};

bool getReferenceToItself(NSString const& path, FSRef& ref, bool& isDirectory) {
    NSString const type = KRCPathGetFileType(path);
    if (type == nil) return false;
    // The root lies in no folder, and is no link.
    if (path.lastPathComponent().isEqualToString_("/"))
        return KRCPathGetFSRef_getIsDirectory_(path, &ref, &isDirectory);
    FSRef parent{};
    if (!KRCPathGetFSRef_isDirectory_(path.stringByDeletingLastPathComponent(), &parent, YES)) return false;
    HFSUniStr255 name{};
    KRCPathNameGetHFSUniStr255_(path.lastPathComponent(), &name);
    if (FSMakeFSRefUnicode(&parent, name.length, name.unicode.data(), UnknownEncoding, &ref) != noErr) return false;
    isDirectory = type.isEqualToString_(NSFileTypeDirectory);
    return true;
}

// Opens the item that KRPathGetFSRef_traverseLink_ would refer to without following a link. No reference is made for a
// mere read: it would keep the item open, and its volume mounted.
std::optional<OpenItem> openItself(NSString const& path) {
    NSString const folder = path.stringByDeletingLastPathComponent();
    NSString const name = path.lastPathComponent();
    bool const isAbsolute = path.codeUnits().starts_with(u'/');
    if (!isAbsolute || name.isEqualToString_(".") || name.isEqualToString_("..")) return std::nullopt;
    std::optional<std::string> const bytes = folder.stringByAppendingPathComponent_(name).fileSystemRepresentation();
    if (!bytes) return std::nullopt;
    Result<OpenItem> item = openItemAtPath(*bytes, LinkAtEnd::IsNotFollowed);
    return item.hasValue() ? std::optional(item.takeValue()) : std::nullopt;
}

std::optional<FSCatalogInfo> catalogInformation(NSString const& path, FSCatalogInfoBitmap which) {
    std::optional<OpenItem> const item = openItself(path);
    FSCatalogInfo information;
    if (!item || getCatalogInfo(*item, which, information) != noErr) return std::nullopt;
    return information;
}

struct IconAndLabel {
    // Null unless it is wanted.
    IconRef icon{};
    std::int16_t label{0};
};

std::optional<IconAndLabel> lookUp(OpenItem const& item, bool wantsIcon) {
    FSCatalogInfo information;
    if (getCatalogInfo(item, kIconServicesCatalogInfoMask, information) != noErr) return std::nullopt;
    IconAndLabel found{.label = finderInformationOf(information).labelIndex()};
    if (wantsIcon) found.icon = iconOfItem(item, information);
    return found;
}

} // namespace

bool KRPathGetFSRef_getIsDirectory_traverseLink_(NSString receiver, FSRef* ref, bool* isDirectory, BOOL traverseLink) {
    if (traverseLink) return KRCPathGetFSRef_getIsDirectory_(receiver, ref, isDirectory);
    bool isFolder = false;
    FSRef unwanted{};
    FSRef& result = ref ? *ref : unwanted;
    bool const isMade = getReferenceToItself(receiver, result, isFolder);
    if (!isMade) result = {};
    if (isDirectory) *isDirectory = isMade && isFolder;
    return isMade;
}

bool KRPathGetFSRef_traverseLink_(NSString receiver, FSRef* ref, BOOL traverseLink) {
    return KRPathGetFSRef_getIsDirectory_traverseLink_(receiver, ref, {}, traverseLink);
}

bool KRPathGetParentFSRef_name_(NSString receiver, FSRef* parentRef, HFSUniStr255* name) {
    FSRef ref{};
    return KRCPathGetFSRef_(receiver, &ref) && FSGetCatalogInfo(&ref, kFSCatInfoNone, {}, name, {}, parentRef) == noErr;
}

FSVolumeRefNum pxVolumeRefNumOfPath(NSString receiver) {
    std::optional<FSCatalogInfo> const information = catalogInformation(receiver, kFSCatInfoVolume);
    return information ? information->volume : UnknownVolume;
}

std::uint16_t pxFilesystemIDForPath(NSString receiver) {
    FSVolumeInfo information;
    OSErr const status = FSGetVolumeInfo(pxVolumeRefNumOfPath(receiver), 0, {}, kFSVolInfoFSInfo, &information, {}, {});
    return status == noErr ? information.filesystemID : UnknownFileSystem;
}

bool KRPathSupportsCustomIcons(NSString receiver) {
    std::uint16_t const identifier = pxFilesystemIDForPath(receiver);
    return identifier == HFSFileSystem || identifier == NetworkFileSystem || identifier == FATFileSystem ||
           identifier == LocalFileSystem;
}

bool KRPathHasInexactTime(NSString receiver) {
    if (receiver == nil) return false;
    std::uint16_t const identifier = pxFilesystemIDForPath(receiver);
    return identifier != HFSFileSystem && identifier != NetworkFileSystem && identifier != LocalFileSystem;
}

bool pxPathIsOnDOSVolume(NSString receiver) { return pxFilesystemIDForPath(receiver) == FATFileSystem; }

bool pxPathIsOnIDisk(NSString receiver) {
    return pxURLForVolume_(pxVolumeRefNumOfPath(receiver)).host().isEqualToString_(KRCIDiskHost);
}

bool pxValenceOfPath_(NSString receiver, std::uint32_t* valence) {
    std::optional<FSCatalogInfo> const information = catalogInformation(receiver, kFSCatInfoValence);
    if (information && valence) *valence = information->valence;
    return information.has_value();
}

bool pxFinderFlagsOfPath_(NSString receiver, std::uint16_t* flags) {
    std::optional<FSCatalogInfo> const information = catalogInformation(receiver, kFSCatInfoFinderInfo);
    if (information && flags) *flags = finderInformationOf(*information).finderFlags();
    return information.has_value();
}

bool pxSetFinderFlagsOfPath_mask_(NSString receiver, std::uint16_t flags, std::uint16_t mask) {
    std::optional<OpenItem> const item = openItself(receiver);
    FSCatalogInfo information;
    if (!item || getCatalogInfo(*item, kFSCatInfoFinderInfo, information) != noErr) return false;
    FinderInformation finder = finderInformationOf(information);
    unsigned const kept = finder.finderFlags() & ~(unsigned{mask} | kIsOnDesk);
    unsigned const set = unsigned{flags} & mask & ~unsigned{kIsOnDesk};
    finder.setFinderFlags(static_cast<std::uint16_t>(kept | set));
    setFinderInformation(information, finder);
    return setCatalogInfo(*item, kFSCatInfoFinderInfo, information) == noErr;
}

bool pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(NSString receiver, std::uint16_t* flags, bool* isFolder,
                                                            IconRef* customIconRef, std::int16_t* labelIndex) {
    std::optional<OpenItem> const item = openItself(receiver);
    FSCatalogInfo information;
    FSCatalogInfoBitmap const which = kFSCatInfoFinderInfo | (isFolder ? kFSCatInfoNodeFlags : kFSCatInfoNone);
    if (!item || getCatalogInfo(*item, which, information) != noErr) return false;
    std::uint16_t const found = finderInformationOf(information).finderFlags();
    bool const hasWantedIcon = customIconRef && (found & kHasCustomIcon) != 0;
    std::optional<IconAndLabel> iconAndLabel = IconAndLabel();
    if (hasWantedIcon || labelIndex) iconAndLabel = lookUp(*item, customIconRef);
    if (!iconAndLabel) return false;
    if (flags) *flags = found;
    if (isFolder) *isFolder = (information.nodeFlags & kFSNodeIsDirectoryMask) != 0;
    if (customIconRef) *customIconRef = iconAndLabel->icon;
    if (labelIndex) *labelIndex = iconAndLabel->label;
    return true;
}

bool pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_(NSString receiver, std::uint16_t* flags, bool* isFolder,
                                                             NSDictionary* customIconData, std::int16_t* labelIndex) {
    if (customIconData) *customIconData = nil;
    IconRef icon{};
    IconRef* wantedIcon{};
    if (customIconData) wantedIcon = &icon;
    if (!pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(receiver, flags, isFolder, wantedIcon, labelIndex))
        return false;
    if (!icon) return true;
    *customIconData = pxDictionaryWithIconRef_(icon);
    return ReleaseIconRef(icon) == noErr;
}

bool pxLSFlagsOfPath_(NSString receiver, std::uint32_t* flags) {
    return pxLSFlagsOfPath_displayName_(receiver, flags, {});
}

bool pxLSFlagsOfPath_displayName_(NSString receiver, std::uint32_t* flags, NSString* displayName) {
    return pxLSFlags_displayName_(pxURLOfPath(receiver), flags, displayName);
}

bool pxLSFlagsOfPath_displayName_isDirectory_(NSString receiver, std::uint32_t* flags, NSString* displayName,
                                              BOOL isDirectory) {
    return pxLSFlags_displayName_(pxURLOfPath_(receiver, isDirectory), flags, displayName);
}

bool pxUpdatePathInFinder(NSString receiver) {
    FSRef ref{};
    return KRPathGetFSRef_traverseLink_(receiver, &ref, NO) && pxUpdatePathInFinder_(&ref);
}

bool pxUpdatePathInFinder_(FSRef const* ref) {
    if (!ref) return false;
    NSAppleEventDescriptor const event = pxFinderAppleEventWithEventID_(UpdateEvent);
    NSAppleEventDescriptor const item = NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
        FileReferenceType, ref->hidden.data(), static_cast<NSUInteger>(ref->hidden.size()));
    event.setParamDescriptor_forKeyword_(item, DirectObject);
    return pxSend(event);
}

} // namespace mac
