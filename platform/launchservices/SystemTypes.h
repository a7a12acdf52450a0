#pragma once

#include <span>
#include <string_view>

namespace mac {

// A row of the system's own types, as types.tsv has it; words are parted by blanks. A tag of several types belongs to
// the first of them.
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
