#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/collections/NSEnumerator.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// Operations on the file or folder at a path, which is the receiver. They block until they are done, and what was done
// before a failing step stays done. Messages are for people. Locked items are not removed, moved or trashed. Nothing is
// raised. Main thread, since two of them run scripts. A nil receiver answers nil and NO; where nil means success, the
// caller makes sure that there is one. A nil path as an argument names no item.

// Deletes the item for good, a folder with all that is in it; a symbolic link itself. Nil on success, else the file
// manager's message or "Could not delete file item.".
NSString pxRemoveFile2(NSString receiver);
// Deletes the item for good, a folder with all that is in it; a symbolic link itself. NO if that fails.
bool pxRemoveFile(NSString receiver);
// Deletes the item for good, a folder with all that is in it; YES also if there is no item, as at any relative path. A
// dangling symbolic link is an item.
bool pxRemoveFileIfExists(NSString receiver);
// Deletes the items at all paths for good, NSNull objects left out; NO if one could not be deleted, after the rest.
bool pxRemoveFiles(NSEnumerator receiver);

// Asks the Finder to move the item to the trash; its path there. Nil if there is no item, which a symbolic link that
// leads nowhere is not, and if it stays where it is.
// Linux: a folder's path ends with a slash.
NSString pxMoveToTrash(NSString receiver);
// Asks the Finder to move the item into the folder; its new path, which ends with a slash for a folder. Nil if either
// does not exist or the folder holds an item of the name.
NSString pxMoveToFolder_(NSString receiver, NSString folder);
// Moves the item into the folder without the Finder; NO if that fails.
bool pxMoveToFolder2_(NSString receiver, NSString folder);

// Copies the item to the path, which names the copy itself and must be free. Nil on success, else the file manager's
// message, which is logged with the rest of the error, or "Could not copy file item.".
NSString pxCopyToPath_(NSString receiver, NSString newPath);
// Copies the item into the folder, where it replaces one of the same name once the copy is complete. Nil on success,
// else "Copy: Error-code = %d" with a status of FSPathCopyObjectSync.
NSString pxCopyToFolder_(NSString receiver, NSString folder);

// Gives the item the name that another one has; links are not followed.
bool pxRenameToNameOf_(NSString receiver, NSString path);
// Gives the item the name, with its own extension behind if YES. The new path, with the home folder abbreviated to
// "~"; nil if the name is taken. A change of case alone goes by way of a name that is free.
NSString pxRenameTo_keepExtension_(NSString receiver, NSString name, BOOL keepsExtension);

// Makes an alias file, or one of the file that is there, with the bytes of an alias record in its resource fork.
bool pxCreateAliasFileWithContent_(NSString receiver, NSData content);
// Makes the folder and those above it; YES if something is there.
bool pxCreateFolder(NSString receiver);
// Makes the folder, or one beside it with "-1", "-2" and so on behind its name; its path. Nil if the folder above
// cannot be written to, or no folder can be made there for another reason than the name.
NSString pxCreateUniqueFolder(NSString receiver);
// Makes the folder, and those above it, each with the settable catalog information of the model or the one above that,
// and unlocked. The folder gets the model's name, whatever the receiver's is. YES if something is there.
bool pxCreateFolderWithAttributesFrom_(NSString receiver, NSString model);
// Makes the folder under its own name, and those above it, each with those file attributes of the model, or of the one
// above that, that have one of the keys. YES if something is there.
bool pxCreateFolderWithAttributes_from_(NSString receiver, NSArray keys, NSString model);

// Takes the owner's permission to write, and locks the item, each if YES; NO leaves it as it is. Links are not
// followed.
bool pxPathSetNotWritable_locked_(NSString receiver, BOOL notWritable, BOOL locked);
// Sets both dates of the item itself. With one date alone the field of the other one is written, as it was.
bool pxSetFileModificationDate_creationDate_(NSString receiver, NSDate modificationDate, NSDate creationDate);

// Gives the item itself the settable catalog information of the model, and unlocks it.
bool pxSetFileAttributesFrom_(NSString receiver, NSString model);
// Gives the item the model's extended attributes but those with a key in the collection, which may be nil; NO if one
// could not be read or set, after the rest.
bool pxSetExtendedFileAttributesFrom_skipKeys_(NSString receiver, NSString model, id skipKeys);
// Gives the item those of the model's file attributes that have one of the keys.
bool pxSetFileAttributes_from_(NSString receiver, NSArray keys, NSString model);
// Gives the item those of the model's file attributes that have one of the keys and, each from the folder above the
// model, to the folders above it, up to but without the stop path, which is compared as text. NO at the first failure,
// and if the root is reached.
bool pxSetFileAttributes_from_recurseUntilBeforeDstPath_(NSString receiver, NSArray keys, NSString model,
                                                         NSString stopPath);

// The standardized path if no item is there, else the first free path with "-1", "-2" and so on added to the name,
// before the extension unless the item is a folder.
NSString pxUniquePathOfPath(NSString receiver);
// The user's trash on the volume that holds the item; nil if there is none.
NSString pxTrashFolderPathOfPath(NSString receiver);
// The user's folder for temporary items on the volume that holds the item: on the home folder's volume
// NSTemporaryDirectory(), elsewhere one that is made if it is missing.
NSString pxTemporaryItemsFolderPathOfPath(NSString receiver);
// The user's own folder for temporary items, made if it is missing; nil if that is not possible.
NSString pxTemporaryItemsFolderPath();

} // namespace mac
