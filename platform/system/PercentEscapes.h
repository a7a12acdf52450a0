#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mac {

// Converts bytes to text in which all but ASCII letters, digits and "/-._~" are percent escapes, as in URIs and in the
// desktop's files, and back; nullopt for text with a percent sign that no two hexadecimal digits follow. For
// implementations; any thread.
std::string percentEscaped(std::string_view bytes);
std::optional<std::string> percentUnescaped(std::string_view text);

} // namespace mac
