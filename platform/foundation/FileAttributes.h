#pragma once

#include "platform/foundation/NSFileAttributes.h"
#include <string>

namespace mac {

class FileDescriptor;

// Attributes of an open item as the file manager tells and changes them. For
// implementations; any thread.

NSDictionary fileAttributesOf(FileDescriptor const& item);
bool changeFileAttributes(FileDescriptor const& item, NSDictionary const& attributes);
// Immutable and append only alone; what the dictionary does not say stays.
bool changeLocks(FileDescriptor const& item, NSDictionary const& attributes);
NSDictionary volumeAttributesOf(FileDescriptor const& item);

} // namespace mac
