#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/SpecialFolders.h"
#include "platform/foundation/files/NSFileManager.h"
#include "scripting/FileReferences.h"

// Paths that are free, and the folders for trash and temporary items.

namespace mac {

namespace {

// What pxVolumeRefNumOfPath answers if the volume is unknown.
constexpr FSVolumeRefNum NoVolume = 0x3F3F;

NSString specialFolder(FSVolumeRefNum volume, OSType type, BOOL isMade) {
    FSRef ref{};
    return FSFindFolder(volume, type, isMade, &ref) == noErr ? KRCPathWithFSRef_(&ref) : NSString(nil);
}

FSVolumeRefNum homeVolume() { return pxVolumeRefNumOfPath(NSHomeDirectory()); }

} // namespace

NSString pxUniquePathOfPath(NSString receiver) {
    NSString const path = receiver.stringByStandardizingPath();
    bool isFolder = false;
    if (!KRCPathExistsIsDirectory_traverseLink_(path, &isFolder, NO)) return path;
    NSString const parent = path.stringByDeletingLastPathComponent();
    NSString const leaf = path.lastPathComponent();
    NSString const base = isFolder ? leaf : leaf.stringByDeletingPathExtension();
    NSString const extension = isFolder ? NSString() : leaf.pathExtension();
    for (std::int32_t number = 1;; ++number) {
        NSString name = NSString::stringWithFormat_("%@-%d", base, number);
        if (extension.length() > 0) name = name.stringByAppendingPathExtension_(extension);
        NSString const candidate = parent.stringByAppendingPathComponent_(name);
        if (!KRCPathExistsTraverseLink_(candidate, NO)) return candidate;
    }
}

NSString pxTrashFolderPathOfPath(NSString receiver) {
    FSVolumeRefNum const volume = pxVolumeRefNumOfPath(receiver.stringByStandardizingPath());
    if (volume == NoVolume) return nil;
    return specialFolder(volume == homeVolume() ? kUserDomain : volume, kTrashFolderType, NO);
}

NSString pxTemporaryItemsFolderPathOfPath(NSString receiver) {
    FSVolumeRefNum const volume = pxVolumeRefNumOfPath(receiver.stringByStandardizingPath());
    if (volume == NoVolume) return nil;
    return volume == homeVolume() ? NSTemporaryDirectory() : specialFolder(volume, kTemporaryFolderType, YES);
}

NSString pxTemporaryItemsFolderPath() { return specialFolder(kUserDomain, kTemporaryFolderType, YES); }

} // namespace mac
