#include "platform/files/FSPaths.h"
#include "platform/files/ItemReferences.h"
#include <cerrno>
#include <cstring>

namespace mac {

namespace {

OSErr errorOf(int errorNumber) {
    switch (errorNumber) {
    case EACCES:
    case EPERM:
        return afpAccessDenied;
    case EMFILE:
    case ENFILE:
        return tmfoErr;
    case EIO:
        return ioErr;
    case ENAMETOOLONG:
        return errFSNameTooLong;
    case ENODEV:
    case ENXIO:
        return nsvErr;
    case ENOMEM:
        return memFullErr;
    case ESTALE:
        return errFSBadFSRef;
    default:
        return fnfErr;
    }
}

OSErr takeReference(std::optional<FSRef> const& made, FSRef& ref) {
    OSErr const error = made ? OSErr{noErr} : errorOf(errno);
    ref = made.value_or(FSRef{});
    return error;
}

// As paths show it; nothing for a name that none can have there.
std::optional<std::string> shownName(std::u16string_view name) {
    std::u16string shown(name);
    for (char16_t& unit : shown) {
        if (unit == u':') return std::nullopt;
        if (unit == u'/') unit = u':';
    }
    return NSString::stringWithCodeUnits(shown).fileSystemRepresentation();
}

} // namespace

OSStatus FSPathMakeRef(std::uint8_t const* path, FSRef* ref, bool* isDirectory) {
    return FSPathMakeRefWithOptions(path, kFSPathMakeRefDefaultOptions, ref, isDirectory);
}

OSStatus FSPathMakeRefWithOptions(std::uint8_t const* path, OptionBits options, FSRef* ref, bool* isDirectory) {
    if (isDirectory) *isDirectory = false;
    if (!ref) return paramErr;
    *ref = {};
    if (!path || (options & ~kFSPathMakeRefDoNotFollowLeafSymlink) != 0) return paramErr;
    bool const followsLinks = (options & kFSPathMakeRefDoNotFollowLeafSymlink) == 0;
    OSErr const error = takeReference(referenceToPath(reinterpret_cast<char const*>(path), followsLinks), *ref);
    if (error != noErr || !isDirectory) return error;
    std::optional<ReferencedItem> const item = itemOfReference(*ref);
    *isDirectory = item && item->isFolder;
    return noErr;
}

OSStatus FSRefMakePath(FSRef const* ref, std::uint8_t* path, std::uint32_t pathBufferSize) {
    if (!ref || !path) return paramErr;
    std::optional<ReferencedItem> const item = itemOfReference(*ref);
    if (!item) return fnfErr;
    if (item->path.size() >= pathBufferSize) return pathTooLongErr;
    std::memcpy(path, item->path.c_str(), item->path.size() + 1);
    return noErr;
}

OSErr FSMakeFSRefUnicode(FSRef const* parentRef, std::uint32_t nameLength, unichar const* name,
                         TextEncoding /*textEncodingHint*/, FSRef* newRef) {
    if (newRef) *newRef = {};
    if (!parentRef || !newRef || !name || nameLength == 0) return paramErr;
    if (nameLength > HFSUniStr255().unicode.size()) return errFSNameTooLong;
    std::optional<std::string> const shown = shownName({name, nameLength});
    if (!shown || *shown == "." || *shown == "..") return bdNamErr;
    OSErr const error = takeReference(referenceInFolder(*parentRef, *shown), *newRef);
    return error == fnfErr && errno == ENOTDIR ? errFSNotAFolder : error;
}

OSErr FSCompareFSRefs(FSRef const* ref1, FSRef const* ref2) {
    if (!ref1 || !ref2) return paramErr;
    if (!itemOfReference(*ref1) || !itemOfReference(*ref2)) return errFSBadFSRef;
    return *ref1 == *ref2 ? noErr : errFSRefsDifferent;
}

} // namespace mac
