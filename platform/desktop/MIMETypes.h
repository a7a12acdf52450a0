#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// The shared MIME information of this computer and user. For implementations; any thread. What holds a NUL is no name.

// The types that files of the name are of, by its form alone; none where no rule fits.
std::vector<std::string> mimeTypesOfName(std::string_view name);
// By name and first bytes together, as the desktop tells them. "application/octet-stream" where nothing fits.
std::string mimeTypeOfNameAndBytes(std::string_view name, std::string_view bytes);
// The types that it is a special case of, the nearest first; none for one that is not known.
std::vector<std::string> parentsOfMIMEType(std::string_view mimeType);
// The name that is used, for one of its other names; the same where it is not known.
std::string canonicalMIMEType(std::string_view mimeType);

} // namespace mac
