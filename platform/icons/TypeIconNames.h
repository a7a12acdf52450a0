#pragma once

#include "platform/foundation/MacErrors.h"
#include "platform/icons/IconSource.h"

namespace mac {

// Which pictures of an icon theme stand for types. For implementations; any thread.

// Of files of a MIME type; never empty.
std::vector<std::string> iconNamesOfContents(std::string const& mimeType);
// Of an extension, as the tree of types and the shared MIME information know it; nothing where neither does.
std::optional<IconSource> iconSourceOfExtension(std::string const& extension);
// Of a type code; nothing where no type has it.
std::optional<IconSource> iconSourceOfTypeCode(OSType type);
// One of the system's own icons, such as 'trsh'; nothing for another code.
std::optional<IconSource> iconSourceOfSystemIcon(OSType icon);

} // namespace mac
