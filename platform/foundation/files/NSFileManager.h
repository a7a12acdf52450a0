#pragma once

#include "platform/foundation/files/NSDirectoryEnumerator.h"
#include "platform/foundation/files/NSFileAttributes.h"

namespace mac {

class NSData;

// Files and folders by path. Symbolic links are followed unless said; a
// relative path starts at the current folder, and a path may be of any length.
// A nil path, and one that can name no file, leads nowhere. Any thread.
class NSFileManager : public Handle<NSFileManager, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSFileManager defaultManager();

    // False also for a link that leads nowhere and a path that cannot be reached.
    bool fileExistsAtPath_(NSString const& path) const;
    // isDirectory may be null.
    bool fileExistsAtPath_isDirectory_(NSString const& path, bool* isDirectory) const;
    // Whether the user that the program runs for may do so. An item may be deleted by those who may write to its
    // folder.
    bool isReadableFileAtPath_(NSString const& path) const;
    bool isWritableFileAtPath_(NSString const& path) const;
    bool isExecutableFileAtPath_(NSString const& path) const;
    bool isDeletableFileAtPath_(NSString const& path) const;

    // The attributes under the keys of NSFileAttributes.h; nil if there is no item. With NO a final symbolic link is
    // not followed. A creation date that FSSetCatalogInfo set counts, and not the file system's own.
    NSDictionary fileAttributesAtPath_traverseLink_(NSString const& path, BOOL traverseLink) const;
    // Sets the attributes that can be changed: permissions, both dates, owner, group, immutable and append only; other
    // keys are ignored. False if one of them could not be set; others may have been set then.
    // Linux: no file system lets the creation date be set, so it is kept where FSSetCatalogInfo keeps it.
    bool changeFileAttributes_atPath_(NSDictionary const& attributes, NSString const& path) const;
    // The attributes of the volume that holds the path; sizes in bytes.
    NSDictionary fileSystemAttributesAtPath_(NSString const& path) const;

    // The name as people see it; that of the path when there is nothing.
    // Linux: the last component, "/" for the root; bundles and desktop entries may
    // have a name of their own, and what hides its extension is shown without it.
    NSString displayNameAtPath_(NSString const& path) const;
    // The names in a folder, sorted by their bytes in the file system, without
    // "." and ".."; nil for what is no folder that can be read.
    NSArray directoryContentsAtPath_(NSString const& path) const;
    // Gives the relative paths of everything below a folder; nil if the path names no folder.
    NSDirectoryEnumerator enumeratorAtPath_(NSString const& path) const;
    // The bytes of a file; nil if it cannot be read, is not a regular file or is larger than 1 GiB.
    NSData contentsAtPath_(NSString const& path) const;
    // Whether both are files of the same bytes, links of the same text, or
    // folders with the same names of items that are equal. Links are not
    // followed.
    bool contentsEqualAtPath_andPath_(NSString const& path, NSString const& otherPath) const;

    // The attributes may be nil. False where something is already, or the folder
    // above is not.
    bool createDirectoryAtPath_attributes_(NSString const& path, NSDictionary const& attributes) const;
    // Creates a file or replaces an unlocked one atomically; a replaced file keeps what the attributes do not set. Nil
    // contents make an empty file. False also when an attribute could not be set; the file exists then, with no wider
    // permissions than the attributes allow.
    bool createFileAtPath_contents_attributes_(NSString const& path, NSData const& contents,
                                               NSDictionary const& attributes) const;
    // The three operations below delete, move and copy whole items, folders with all that is in them. Symbolic links
    // are taken themselves, also with a slash behind them; the last component may not be "." or "..". An item's
    // AppleDouble sidecar goes with it. Of the handler, which may be nil, two messages are sent if it responds to them:
    // fileManager:willProcessPath: before an item is deleted, moved or copied, and after a failure
    // fileManager:shouldProceedAfterError: with a dictionary of the strings "Path", "Error" (why, for people) and, for
    // two paths, "ToPath". If that answers NO, or is not there, the operation ends with NO; if it answers YES, the
    // operation leaves that item alone, goes on with the rest and answers YES. Nothing is sent for a path that is nil,
    // empty or can name no file.

    // Deletes permanently, not into a trash. A locked item or a mount point in the folder is a failure before anything
    // is deleted.
    bool removeFileAtPath_handler_(NSString const& path, id const& handler) const;
    // False if something has the new path. To another volume the item is copied completely before the original goes. A
    // failure leaves the item where it was, unless the text says otherwise.
    // Linux: the handler is told of the item alone, and not of what is in it; so in the copy below.
    bool movePath_toPath_handler_(NSString const& path, NSString const& newPath, id const& handler) const;
    // False if something has the new path, which names the copy itself. The copy is complete when it appears.
    bool copyPath_toPath_handler_(NSString const& path, NSString const& newPath, id const& handler) const;

    // The target that a symbolic link holds, unresolved; nil if the item is not a symbolic link.
    NSString pathContentOfSymbolicLinkAtPath_(NSString const& path) const;
    bool createSymbolicLinkAtPath_pathContent_(NSString const& path, NSString const& content) const;
};

// The folder for temporary files: TMPDIR if it is an absolute path, else "/tmp"; without a slash at its end.
NSString NSTemporaryDirectory();

} // namespace mac
