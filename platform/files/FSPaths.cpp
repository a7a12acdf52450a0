#include "platform/files/FSPaths.h"
#include "platform/files/ItemReferences.h"
#include <cerrno>
#include <cstring>

namespace mac {

namespace {

OSErr errorOf(int errorNumber) { return errorNumber == ENAMETOOLONG ? errFSNameTooLong : fnfErr; }

OSErr makeReference(std::string_view path, bool followsLinks, FSRef& ref) {
    errno = 0;
    std::optional<FSRef> const made = referenceToPath(path, followsLinks);
    ref = made.value_or(FSRef{});
    return made ? noErr : errorOf(errno);
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
    OSErr const error = makeReference(reinterpret_cast<char const*>(path), followsLinks, *ref);
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
    std::optional<ReferencedItem> const parent = itemOfReference(*parentRef);
    if (!parent) return errFSBadFSRef;
    if (!parent->isFolder) return errFSNotAFolder;
    return makeReference(parent->path + "/" + *shown, false, *newRef);
}

OSErr FSCompareFSRefs(FSRef const* ref1, FSRef const* ref2) {
    if (!ref1 || !ref2) return paramErr;
    if (!itemOfReference(*ref1) || !itemOfReference(*ref2)) return errFSBadFSRef;
    return *ref1 == *ref2 ? noErr : errFSRefsDifferent;
}

} // namespace mac
