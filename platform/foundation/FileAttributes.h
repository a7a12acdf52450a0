#pragma once

#include "platform/foundation/NSFileAttributes.h"
#include <optional>
#include <string>

namespace mac {

class FileDescriptor;

// Attributes of an open item as the file manager tells and changes them. For
// implementations; any thread.

// The part of an item's mode that NSFilePosixPermissions tells and changes.
inline constexpr unsigned PermissionBits = 07777;

NSDictionary fileAttributesOf(FileDescriptor const& item);

// What forbids changes of it.
struct FileLocks {
    bool isImmutable{false};
    bool isAppendOnly{false};
};
std::optional<FileLocks> locksOf(FileDescriptor const& item);
// nil where it is not known.
NSDate creationDateOf(FileDescriptor const& item);

bool changeFileAttributes(FileDescriptor const& item, NSDictionary const& attributes);
// Immutable and append only alone; what the dictionary does not say stays.
bool changeLocks(FileDescriptor const& item, NSDictionary const& attributes);
// File systems have no place for a creation date that is set. The room that keeps such dates elsewhere says, before
// main begins, how that of an open file or folder is read: in seconds since the beginning of 2001.
using CreationDateReader = std::optional<double> (*)(FileDescriptor const& item);
void readCreationDatesBy(CreationDateReader reader);

NSDictionary volumeAttributesOf(FileDescriptor const& item);

} // namespace mac
