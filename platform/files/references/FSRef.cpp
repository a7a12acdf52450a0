#include "platform/files/references/FSRef.h"
#include "platform/files/ItemExchange.h"
#include "platform/files/references/FileStatuses.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/files/references/ItemReferences.h"
#include <cerrno>
#include <cstring>

namespace mac {

namespace {

OSErr takeReference(Result<FSRef> const& made, FSRef& ref) {
    ref = made.hasValue() ? made.value() : FSRef{};
    return made.hasValue() ? noErr : statusOf(made.problem(), FileOperation::Finding);
}

OSErr statusOfExchange(SystemError const& error) {
    if (error.is(EXDEV)) return diffVolErr;
    if (error.is(EISDIR) || error.is(EMLINK)) return notAFileErr;
    if (error.is(EINVAL) || error.is(ENOSYS) || error.is(EOPNOTSUPP)) return errFSOperationNotSupported;
    return statusOf(error, FileOperation::UsingCatalog);
}

// Opens the items and holds them, so that their references follow when they change names.
Result<OpenItem> openAndHold(FSRef const& ref) {
    Result<OpenItem> item = openItemOfReference(ref);
    if (!item.hasValue()) return item;
    Result<ReferencedItem> const place = itemOfReference(ref);
    if (!place.hasValue()) return place.problem();
    Result<FSRef> const held = referenceToPath(place.value().path, LinkAtEnd::IsNotFollowed);
    if (!held.hasValue()) return held.problem();
    return item;
}

bool isThisComputer(NSString const& host) {
    return host.length() == 0 || host.caseInsensitiveCompare_("localhost") == NSOrderedSame;
}

} // namespace

bool CFURLGetFSRef(CFURLRef const& url, FSRef* fsRef) {
    if (!fsRef) return false;
    *fsRef = {};
    bool const isHere = url.isFileURL() && isThisComputer(url.host());
    std::optional<std::string> const path = isHere ? url.path().fileSystemRepresentation() : std::nullopt;
    return path && takeReference(referenceToPath(*path, LinkAtEnd::IsFollowed), *fsRef) == noErr;
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef /*allocator*/, FSRef const* fsRef) {
    if (!fsRef) return nil;
    Result<ReferencedItem> const item = itemOfReference(*fsRef);
    if (!item.hasValue()) return nil;
    NSString const path = NSString::stringWithFileSystemRepresentation_(item.value().path);
    return NSURL::fileURLWithPath_isDirectory_(path, BOOL(item.value().isFolder));
}

OSStatus FSPathMakeRef(std::uint8_t const* path, FSRef* ref, bool* isDirectory) {
    return FSPathMakeRefWithOptions(path, kFSPathMakeRefDefaultOptions, ref, isDirectory);
}

OSStatus FSPathMakeRefWithOptions(std::uint8_t const* path, OptionBits options, FSRef* ref, bool* isDirectory) {
    if (isDirectory) *isDirectory = false;
    if (!ref) return paramErr;
    *ref = {};
    if (!path || (options & ~kFSPathMakeRefDoNotFollowLeafSymlink) != 0) return paramErr;
    bool const followsLinks = (options & kFSPathMakeRefDoNotFollowLeafSymlink) == 0;
    LinkAtEnd const linkAtEnd = followsLinks ? LinkAtEnd::IsFollowed : LinkAtEnd::IsNotFollowed;
    OSErr const error = takeReference(referenceToPath(reinterpret_cast<char const*>(path), linkAtEnd), *ref);
    if (error != noErr || !isDirectory) return error;
    Result<ReferencedItem> const item = itemOfReference(*ref);
    *isDirectory = item.hasValue() && item.value().isFolder;
    return noErr;
}

OSStatus FSRefMakePath(FSRef const* ref, std::uint8_t* path, std::uint32_t pathBufferSize) {
    if (!ref || !path) return paramErr;
    Result<ReferencedItem> const item = itemOfReference(*ref);
    if (!item.hasValue()) return fnfErr;
    std::string const& bytes = item.value().path;
    if (bytes.size() >= pathBufferSize) return pathTooLongErr;
    std::memcpy(path, bytes.c_str(), bytes.size() + 1);
    return noErr;
}

OSErr FSMakeFSRefUnicode(FSRef const* parentRef, std::uint32_t nameLength, unichar const* name,
                         TextEncoding /*textEncodingHint*/, FSRef* newRef) {
    if (newRef) *newRef = {};
    if (!parentRef || !newRef || !name || nameLength == 0) return paramErr;
    if (nameLength > HFSUniStr255().unicode.size()) return errFSNameTooLong;
    std::optional<std::string> const shown = fileNameOfHFSName({name, nameLength});
    if (!shown) return bdNamErr;
    Result<FSRef> const made = referenceInFolder(*parentRef, *shown);
    if (!made.hasValue() && made.problem().is(ENOTDIR)) return errFSNotAFolder;
    return takeReference(made, *newRef);
}

OSErr FSCompareFSRefs(FSRef const* ref1, FSRef const* ref2) {
    if (!ref1 || !ref2) return paramErr;
    if (!itemOfReference(*ref1).hasValue() || !itemOfReference(*ref2).hasValue()) return errFSBadFSRef;
    return *ref1 == *ref2 ? noErr : errFSRefsDifferent;
}

OSErr FSExchangeObjects(FSRef const* ref, FSRef const* destRef) {
    if (!ref || !destRef) return paramErr;
    Result<OpenItem> const item = openAndHold(*ref);
    if (!item.hasValue()) return errFSBadFSRef;
    Result<OpenItem> const destination = openAndHold(*destRef);
    if (!destination.hasValue()) return errFSBadFSRef;
    if (*ref == *destRef) return sameFileErr;
    Result<void> const exchanged = exchangeItems(item.value(), destination.value());
    if (!exchanged.isDone()) return statusOfExchange(exchanged.problem());
    Result<void> const led = exchangeReferences(*ref, *destRef);
    return led.isDone() ? noErr : statusOf(led.problem(), FileOperation::UsingCatalog);
}

} // namespace mac
