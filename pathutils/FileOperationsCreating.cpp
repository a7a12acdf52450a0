#include "coreutils/Collections.h"
#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/FileOperations.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/system/items/AttributesOnItem.h"
#include "scripting/FileReferences.h"
#include <algorithm>
#include <functional>
#include <vector>

// Making files and folders.

namespace mac {

namespace {

bool makeFolder(NSString const& path, NSDictionary const& attributes) {
    return NSFileManager::defaultManager().createDirectoryAtPath_attributes_(path, attributes);
}

// A folder to be made, and the folder that it is to be like; the model may be nil.
struct FolderToMake {
    NSString path;
    NSString model;
};

// Makes the folder, after each missing folder above it with the corresponding folder above the model; YES if an item is
// there already. NO if no folder above exists at all, as with a relative path.
bool makeWithFoldersAbove(NSString const& path, NSString const& model,
                          std::function<bool(FolderToMake const&)> const& make) {
    std::vector<FolderToMake> missing;
    FolderToMake folder{path, model};
    while (!KRCPathExists(folder.path)) {
        NSString const parent = folder.path.stringByDeletingLastPathComponent();
        // Above the root, which cannot be looked at then, is the root.
        if (folder.path.length() == 0 || parent.isEqualToString_(folder.path)) return false;
        missing.push_back(folder);
        folder = {parent, folder.model.stringByDeletingLastPathComponent()};
    }
    return std::all_of(missing.rbegin(), missing.rend(), make);
}

// Links are not followed; the path may be relative.
bool isThere(NSString const& path) { return KRCPathGetFileType(path) != nil; }

bool makeLikeModel(FolderToMake const& folder) {
    FSRef model{};
    FSRef parent{};
    NSString const parentPath = folder.path.stringByDeletingLastPathComponent();
    if (!KRPathGetFSRef_traverseLink_(folder.model, &model, NO)) return false;
    if (!KRPathGetFSRef_traverseLink_(parentPath, &parent, NO)) return false;
    FSCatalogInfo information;
    HFSUniStr255 name{};
    if (FSGetCatalogInfo(&model, kFSCatInfoSettableInfo, &information, &name, {}, {}) != noErr) return false;
    information.nodeFlags &= static_cast<std::uint16_t>(~kFSNodeLockedMask);
    // The model's name, though the receiver has one: the two hierarchies are expected to have equal names.
    return FSCreateDirectoryUnicode(&parent, name.length, name.unicode.data(), kFSCatInfoSettableInfo, &information, {},
                                    {}, {}) == noErr;
}

} // namespace

bool pxCreateAliasFileWithContent_(NSString receiver, NSData content) {
    return NSFileManager::defaultManager().createFileAtPath_contents_attributes_(receiver, nil, nil) &&
           pxSetExtendedAttributeData_forKey_(receiver, content, XATTR_RESOURCEFORK_NAME) &&
           pxSetFinderFlagsOfPath_mask_(receiver, kIsAlias, kIsAlias);
}

bool pxCreateFolder(NSString receiver) {
    if (receiver == nil) return false;
    return makeWithFoldersAbove(receiver.stringByStandardizingPath(), nil,
                                [](FolderToMake const& folder) { return makeFolder(folder.path, nil); });
}

NSString pxCreateUniqueFolder(NSString receiver) {
    if (receiver == nil) return nil;
    NSString const path = receiver.stringByStandardizingPath();
    NSString const parent = path.stringByDeletingLastPathComponent();
    if (!NSFileManager::defaultManager().isWritableFileAtPath_(parent)) return nil;
    NSString candidate = path;
    for (std::int32_t number = 1;; ++number) {
        if (makeFolder(candidate, nil)) return candidate;
        // Linux: only a name that is taken lets another one be tried, so that the search ends where no folder can be
        // made. The item that has taken it may have gone meanwhile.
        bool const isTaken = isThere(candidate);
        if (!isTaken && makeFolder(candidate, nil)) return candidate;
        if (!isTaken && !isThere(candidate)) return nil;
        candidate = parent.stringByAppendingPathComponent_(
            NSString::stringWithFormat_("%@-%d", path.lastPathComponent(), number));
    }
}

bool pxCreateFolderWithAttributesFrom_(NSString receiver, NSString model) {
    return !(receiver == nil) && makeWithFoldersAbove(receiver, model, makeLikeModel);
}

bool pxCreateFolderWithAttributes_from_(NSString receiver, NSArray keys, NSString model) {
    if (receiver == nil) return false;
    return makeWithFoldersAbove(receiver, model, [&keys](FolderToMake const& folder) {
        NSDictionary const attributes =
            NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(folder.model, NO);
        if (attributes.count() == 0) return false;
        NSMutableDictionary const wanted = NSMutableDictionary::dictionaryWithCapacity_(keys.count());
        pxSetValuesFrom_forKeys_(wanted, attributes, keys);
        return makeFolder(folder.path, wanted);
    });
}

} // namespace mac
