#include "platform/files/FSRef.h"
#include "platform/files/ItemReferences.h"

namespace mac {

namespace {

bool isThisComputer(NSString const& host) {
    return host.length() == 0 || host.caseInsensitiveCompare_("localhost") == NSOrderedSame;
}

} // namespace

bool CFURLGetFSRef(CFURLRef const& url, FSRef* fsRef) {
    if (!fsRef) return false;
    *fsRef = {};
    bool const isHere = url.isFileURL() && isThisComputer(url.host());
    std::optional<std::string> const path = isHere ? url.path().fileSystemRepresentation() : std::nullopt;
    std::optional<FSRef> const reference = path ? referenceToPath(*path, true) : std::nullopt;
    if (reference) *fsRef = *reference;
    return reference.has_value();
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef /*allocator*/, FSRef const* fsRef) {
    std::optional<ReferencedItem> const item = fsRef ? itemOfReference(*fsRef) : std::nullopt;
    if (!item) return nil;
    NSString const path = NSString::stringWithFileSystemRepresentation_(item->path);
    return NSURL::fileURLWithPath_isDirectory_(path, BOOL(item->isFolder));
}

} // namespace mac
