#pragma once

#include "platform/system/FolderContents.h"
#include <string>
#include <string_view>
#include <vector>

// The shared MIME information of this computer and user. A name that holds a NUL has no rule. For implementations; any
// thread.

namespace mac {

// The types of files of that name, by its form alone; empty if no rule fits.
std::vector<std::string> mimeTypesOfName(std::string_view name);

// The type by name and first bytes together, as the desktop determines it; "application/octet-stream" if no rule fits.
std::string mimeTypeOfNameAndBytes(std::string_view name, std::string_view bytes);

// The type that the first bytes alone prove, whatever the name of their file; empty if they prove none: no rule fits,
// or one that a few letters at the beginning of any text would fit, too.
std::string mimeTypeProvedByBytes(std::string_view bytes);

// The type of the item at the path, by its name and, of a regular file that can be read, its first 16 KiB. Other items
// are never opened: opening one may block or have side effects.
std::string mimeTypeOfItem(std::string const& path, LinkAtEnd linkAtEnd);
// mimeTypeProvedByBytes of the item; empty for other items than regular files.
std::string mimeTypeProvedByItem(std::string const& path, LinkAtEnd linkAtEnd);

// The types that it is a special case of, the nearest first; empty for an unknown type.
std::vector<std::string> parentsOfMIMEType(std::string_view mimeType);

// The type, its parents, their parents and so on, each once and the nearest first.
std::vector<std::string> mimeTypeAndAncestors(std::string mimeType);

// The canonical name of a type given by an alias; other names are answered unchanged.
std::string canonicalMIMEType(std::string_view mimeType);

// The names under which icon themes have pictures for the type, the most particular first: its own, then the one of its
// kind, and so on for the types that it is a special case of. Empty for an unknown type.
std::vector<std::string> iconNamesOfMIMEType(std::string_view mimeType);

} // namespace mac
