#pragma once

#include "platform/foundation/objects/Types.h"
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// Four-character codes as texts: each of their bytes is a character of Mac OS Roman. For implementations; any thread.

std::u16string textOfCode(FourCharCode code);
// Nothing for what is not four characters of that encoding.
std::optional<FourCharCode> codeOfText(std::u16string_view text);

} // namespace mac
