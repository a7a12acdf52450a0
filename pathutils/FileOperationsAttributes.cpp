#include "coreutils/Collections.h"
#include "coreutils/IconsAndImages.h"
#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/foundation/files/NSFileManager.h"
#include <cerrno>

// Protecting and dating items, and giving them another one's attributes.

namespace mac {

namespace {

// The bit of the mode that lets the owner write.
constexpr unsigned OwnerWriteBit = 0200;

bool skips(id const& keys, id const& key) {
    NSArray const array = as<NSArray>(keys);
    return array == nil ? as<NSSet>(keys).containsObject_(key) : array.containsObject_(key);
}

// Asked where there is no data for a key: false for an attribute that is empty or not there, as the file system itself
// says so. Linux: an attribute that is there and cannot be read is not passed over as if it were missing.
bool hasUnreadableData(NSString const& path, NSString const& key) {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    std::optional<std::string> const name = key.fileSystemRepresentation();
    if (!bytes || !name) return false;
    std::ptrdiff_t const length = getxattr(bytes->c_str(), name->c_str(), {}, 0, 0, 0);
    return length > 0 || (length < 0 && errno != ENODATA);
}

} // namespace

bool pxPathSetNotWritable_locked_(NSString receiver, BOOL notWritable, BOOL locked) {
    FSRef ref{};
    if (!KRPathGetFSRef_traverseLink_(receiver, &ref, NO)) return false;
    FSCatalogInfoBitmap which = kFSCatInfoNone;
    if (notWritable) which |= kFSCatInfoPermissions;
    if (locked) which |= kFSCatInfoNodeFlags;
    FSCatalogInfo information;
    if (FSGetCatalogInfo(&ref, which, &information, {}, {}, {}) != noErr) return false;
    if (notWritable) information.permissions.mode &= static_cast<std::uint16_t>(~OwnerWriteBit);
    if (locked) information.nodeFlags |= kFSNodeLockedMask;
    return FSSetCatalogInfo(&ref, which, &information) == noErr;
}

bool pxSetFileModificationDate_creationDate_(NSString receiver, NSDate modificationDate, NSDate creationDate) {
    FSRef ref{};
    if (!KRPathGetFSRef_traverseLink_(receiver, &ref, NO)) return false;
    FSCatalogInfoBitmap which = kFSCatInfoNone;
    // The two flags are crossed. So with one date alone the other date's field is written, to what it was.
    if (!(modificationDate == nil)) which |= kFSCatInfoCreateDate;
    if (!(creationDate == nil)) which |= kFSCatInfoContentMod;
    FSCatalogInfo information;
    if (FSGetCatalogInfo(&ref, which, &information, {}, {}, {}) != noErr) return false;
    if (!(modificationDate == nil) && !pxUTCDateTime_(modificationDate, &information.contentModDate)) return false;
    if (!(creationDate == nil) && !pxUTCDateTime_(creationDate, &information.createDate)) return false;
    return which == kFSCatInfoNone || FSSetCatalogInfo(&ref, which, &information) == noErr;
}

bool pxSetFileAttributesFrom_(NSString receiver, NSString model) {
    FSRef from{};
    FSRef to{};
    if (!KRPathGetFSRef_traverseLink_(model, &from, NO) || !KRPathGetFSRef_traverseLink_(receiver, &to, NO))
        return false;
    FSCatalogInfo information;
    if (FSGetCatalogInfo(&from, kFSCatInfoSettableInfo, &information, {}, {}, {}) != noErr) return false;
    information.nodeFlags &= static_cast<std::uint16_t>(~kFSNodeLockedMask);
    return FSSetCatalogInfo(&to, kFSCatInfoSettableInfo, &information) == noErr;
}

bool pxSetExtendedFileAttributesFrom_skipKeys_(NSString receiver, NSString model, id skipKeys) {
    if (receiver == nil) return false;
    bool isDone = true;
    for (id const& object : pxExtendedAttributesKeys(model)) {
        NSString const key = as<NSString>(object);
        if (skips(skipKeys, key)) continue;
        NSData const data = pxExtendedAttributeDataForKey_(model, key);
        if (!(data == nil))
            isDone = pxSetExtendedAttributeData_forKey_(receiver, data, key) && isDone;
        else if (hasUnreadableData(model, key))
            isDone = false;
    }
    return isDone;
}

bool pxSetFileAttributes_from_(NSString receiver, NSArray keys, NSString model) {
    NSDictionary const attributes = NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(model, NO);
    if (receiver == nil || attributes.count() == 0) return false;
    NSMutableDictionary const wanted = NSMutableDictionary::dictionaryWithCapacity_(keys.count());
    pxSetValuesFrom_forKeys_(wanted, attributes, keys);
    return NSFileManager::defaultManager().changeFileAttributes_atPath_(wanted, receiver);
}

bool pxSetFileAttributes_from_recurseUntilBeforeDstPath_(NSString receiver, NSArray keys, NSString model,
                                                         NSString stopPath) {
    if (receiver == nil) return false;
    NSString path = receiver;
    NSString modelPath = model;
    while (!path.isEqualToString_(stopPath)) {
        if (!pxSetFileAttributes_from_(path, keys, modelPath)) return false;
        NSString const parent = path.stringByDeletingLastPathComponent();
        // Linux: the walk ends at the root, too, which has no folder above it.
        if (parent.isEqualToString_(path)) return false;
        path = parent;
        modelPath = modelPath.stringByDeletingLastPathComponent();
    }
    return true;
}

} // namespace mac
