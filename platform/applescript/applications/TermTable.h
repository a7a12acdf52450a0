#pragma once

#include "platform/applescript/language/Terminology.h"

namespace mac::applescript {

struct ClassTerm {
    std::u16string_view name;
    std::u16string_view plural;
    Code code;
};

struct PropertyTerm {
    std::u16string_view name;
    Code code;
};

// The terms of one application, as they stand in its tables.
struct TermTable {
    std::span<ClassTerm const> classes{};
    std::span<PropertyTerm const> properties{};
    std::span<PropertyTerm const> constants{};
    std::span<CommandTerm const> commands{};
};

// With those that every application has: name, id, version, make, delete, move …
Terminology terminologyOf(TermTable const& table);

} // namespace mac::applescript
