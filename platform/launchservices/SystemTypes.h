#pragma once

#include <span>
#include <string_view>

namespace mac {

// A row of the system's own types; words are parted by blanks.
struct SystemType {
    std::string_view identifier;
    std::string_view conformsTo;
    std::string_view extensions;
    std::string_view mimeTypes;
    std::string_view typeCodes;
    std::string_view description;
};

std::span<SystemType const> systemTypes();

} // namespace mac
