#pragma once

#include "platform/foundation/collections/NSDictionary.h"

namespace mac {

// Keys of a file's attributes; NSDictionary has a message for each.

// The kind of item: one of the strings below.
inline constexpr char NSFileType[] = "NSFileType";
inline constexpr char NSFileTypeDirectory[] = "NSFileTypeDirectory";
inline constexpr char NSFileTypeRegular[] = "NSFileTypeRegular";
inline constexpr char NSFileTypeSymbolicLink[] = "NSFileTypeSymbolicLink";
inline constexpr char NSFileTypeSocket[] = "NSFileTypeSocket";
inline constexpr char NSFileTypeCharacterSpecial[] = "NSFileTypeCharacterSpecial";
inline constexpr char NSFileTypeBlockSpecial[] = "NSFileTypeBlockSpecial";
inline constexpr char NSFileTypeUnknown[] = "NSFileTypeUnknown";
// Numbers.
inline constexpr char NSFileSize[] = "NSFileSize";
inline constexpr char NSFileReferenceCount[] = "NSFileReferenceCount";
inline constexpr char NSFilePosixPermissions[] = "NSFilePosixPermissions";
inline constexpr char NSFileOwnerAccountID[] = "NSFileOwnerAccountID";
inline constexpr char NSFileGroupOwnerAccountID[] = "NSFileGroupOwnerAccountID";
// The numbers of the volume, and of the file on it.
inline constexpr char NSFileSystemNumber[] = "NSFileSystemNumber";
inline constexpr char NSFileSystemFileNumber[] = "NSFileSystemFileNumber";
// The number of the device that a special file stands for.
inline constexpr char NSFileDeviceIdentifier[] = "NSFileDeviceIdentifier";
// Truth values. Linux: NSFileExtensionHidden is always NO, and to set it changes nothing; the Finder information has a
// flag for it (kLSItemExtensionIsHidden, FSGetCatalogInfo).
inline constexpr char NSFileImmutable[] = "NSFileImmutable";
inline constexpr char NSFileAppendOnly[] = "NSFileAppendOnly";
inline constexpr char NSFileExtensionHidden[] = "NSFileExtensionHidden";
// Dates. The creation date is missing where the file system does not know it.
inline constexpr char NSFileModificationDate[] = "NSFileModificationDate";
inline constexpr char NSFileCreationDate[] = "NSFileCreationDate";
// Strings; missing where the account has no name.
inline constexpr char NSFileOwnerAccountName[] = "NSFileOwnerAccountName";
inline constexpr char NSFileGroupOwnerAccountName[] = "NSFileGroupOwnerAccountName";

// Keys of a volume's attributes, numbers all.
inline constexpr char NSFileSystemSize[] = "NSFileSystemSize";
inline constexpr char NSFileSystemFreeSize[] = "NSFileSystemFreeSize";
inline constexpr char NSFileSystemNodes[] = "NSFileSystemNodes";
inline constexpr char NSFileSystemFreeNodes[] = "NSFileSystemFreeNodes";

} // namespace mac
