#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/icons/IconSource.h"

namespace mac {

// Which pictures of an icon theme stand for types. For implementations; any thread.

// The names for files of a MIME type; never empty.
std::vector<std::string> iconNamesOfContents(std::string const& mimeType);
// The icon of files with an extension, as the tree of types and the shared MIME information know it; nullopt where
// neither does.
std::optional<IconSource> iconSourceOfExtension(std::string const& extension);
// The icon of files with a type code; nullopt where no type has it.
std::optional<IconSource> iconSourceOfTypeCode(OSType type);
// An icon of the system's own, such as 'trsh'; nullopt for another code.
std::optional<IconSource> iconSourceOfSystemIcon(OSType icon);

} // namespace mac
