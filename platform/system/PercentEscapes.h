#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mac {

// Bytes as text in which all but letters, digits and "/-._~" of ASCII are percent escapes, as in URIs and in what the
// desktop writes down; and back, where a percent sign that no two digits follow makes it nothing. For implementations;
// any thread.
std::string percentEscaped(std::string_view bytes);
std::optional<std::string> percentUnescaped(std::string_view text);

} // namespace mac
