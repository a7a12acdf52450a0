#pragma once

#include "platform/applescript/language/ScriptSymbol.h"
#include <optional>
#include <span>
#include <string_view>

namespace mac::applescript {

// The language's units of measurement. A value with a unit is raw data of the unit's code: a double in the order of the
// machine. Any thread.

enum class UnitCategory { Length, Area, CubicVolume, LiquidVolume, Weight, Temperature };

struct Unit {
    std::u16string_view name;
    // Another spelling; empty without one.
    std::u16string_view otherName;
    Code code;
    UnitCategory category;
    // How many of the category's first unit one of it is, and what is added then.
    double factor;
    double offset{0};
};

std::span<Unit const> allUnits();
// nullptr for a code of another class.
Unit const* unitOf(Code code);

// The number in the other unit; nullopt between categories, but cubic and liquid volumes are one.
std::optional<double> converted(double number, Unit const& from, Unit const& to);

} // namespace mac::applescript
