#include "platform/system/SystemError.h"
#include <cerrno>
#include <system_error>

namespace mac {

SystemError lastSystemError(char const* operation, std::string item) {
    return {.code = errno, .operation = operation, .item = std::move(item)};
}

std::string textOfSystemError(int code) { return std::generic_category().message(code); }

std::string SystemError::text() const {
    std::string text = operation;
    if (!item.empty()) text += " of \"" + item + "\"";
    return text + ": " + textOfSystemError(code);
}

} // namespace mac
