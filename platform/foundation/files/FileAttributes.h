#pragma once

#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/system/Result.h"
#include <optional>
#include <string>

namespace mac {

class FileDescriptor;

// Attributes of an open item as the file manager tells and changes them. For
// implementations; any thread.

// The part of an item's mode that NSFilePosixPermissions tells and changes.
inline constexpr unsigned PermissionBits = 07777;

NSDictionary fileAttributesOf(FileDescriptor const& item);

// nullopt if the item's status cannot be read.
std::optional<bool> isAppendOnly(FileDescriptor const& item);
// The creation date that a program has set for the file or folder, else the time of its birth; nil if that is not
// known. A date that was set and cannot be read counts as not set.
NSDate creationDateOf(FileDescriptor const& item);
// Fails if a date may have been set that cannot be read.
Result<NSDate> certainCreationDateOf(FileDescriptor const& item);

bool changeFileAttributes(FileDescriptor const& item, NSDictionary const& attributes);
// The creation date, immutable and append only alone; what the dictionary does not say stays.
bool changeCreationDateAndLocks(FileDescriptor const& item, NSDictionary const& attributes);

NSDictionary volumeAttributesOf(FileDescriptor const& item);

} // namespace mac
