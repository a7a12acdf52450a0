#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace mac::applescript {

// Scripts in files as `store script` leaves them: a line "%Framekeeper script 1, N bytes", a line feed, and the N bytes
// of the script's source text in UTF-8. The number before the comma is the form's version; files of version 1 are read
// for ever. No source text begins with a percent sign. Main thread.

// More than any script has; what claims to be a larger one is not read. In bytes, without the line.
inline constexpr std::size_t MostScriptBytes = std::size_t{4} << 20;

// The bytes of a file with that source. Throws -2708 for too much of it, -1700 for text that UTF-8 cannot hold (a lone
// surrogate).
std::string storedScript(std::u16string const& source);

// The source in such a file, whose bytes are not trusted; nullopt for bytes of another kind. Throws -39 for bytes that
// end too early, -1702 for ones that are no script of a version known here, -2708 for too many of them.
std::optional<std::u16string> sourceInStoredScript(std::string_view bytes);

} // namespace mac::applescript
