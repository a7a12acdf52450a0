#include "platform/system/SystemError.h"
#include <cerrno>
#include <cstring>
#include <system_error>

namespace mac {

SystemError lastSystemError(char const* operation, std::string_view item) {
    int const code = errno; // before the item's text is allocated, which may change it
    return {.code = code, .operation = operation, .item = std::string(item)};
}

std::string textOfSystemError(int code) {
    if (code == ItemIsLocked) return "The item is locked";
    // Whatever the locale: the toolkit sets it when it likes.
    char const* const text = ::strerrordesc_np(code);
    return text ? text : std::generic_category().message(code);
}

std::string SystemError::text() const {
    std::string text = operation;
    if (!item.empty()) text += " of \"" + item + "\"";
    return text + ": " + textOfSystemError(code);
}

} // namespace mac
