#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mac::applescript {

// The URL of a path's bytes; a relative path is taken from the process's folder.
std::string fileURL(std::string_view path);
// The bytes of a file URL's path; nothing for another kind of URL, another computer's, and for escapes that are none or
// stand for a NUL character.
std::optional<std::string> pathOfFileURL(std::string_view url);

// An application's name as a URL, and back.
std::string applicationURL(std::u16string_view name);
std::optional<std::u16string> nameOfApplicationURL(std::string_view url);

} // namespace mac::applescript
