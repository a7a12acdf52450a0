#pragma once

#include "platform/foundation/NSString.h"
#include <optional>
#include <string>
#include <vector>

namespace mac {

class KeyFile;
struct DiskItem;

// The desktop's own descriptions of applications: files NAME.desktop. Paths are the file system's bytes. For
// implementations; any thread.

// A desktop entry that the desktop would start, so that its name may be believed: it may be run, or lies in a folder of
// applications.
bool isTrustedDesktopEntry(DiskItem const& item);
// In the first of the languages that it has one in; nil for what is no entry, or one without a name.
NSString nameOfDesktopEntry(std::string const& path, std::vector<std::string> const& languages);
NSString nameInDesktopEntry(KeyFile const& entry, std::vector<std::string> const& languages);

} // namespace mac
