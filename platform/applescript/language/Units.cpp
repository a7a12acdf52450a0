#include "platform/applescript/language/Units.h"
#include <algorithm>
#include <array>

namespace mac::applescript {

namespace {

using enum UnitCategory;

constexpr double Inch = 0.0254;
constexpr double Foot = 12 * Inch;
constexpr double Yard = 3 * Foot;
constexpr double Mile = 5280 * Foot;
constexpr double Pound = 0.45359237;
constexpr double Gallon = 231 * Inch * Inch * Inch;

// Meters, square meters, cubic meters, kilograms and kelvins come first in their categories.
constexpr auto Units = std::to_array<Unit>({
    {u"meters", u"metres", codeOf("metr"), Length, 1},
    {u"centimeters", u"centimetres", codeOf("cmtr"), Length, 0.01},
    {u"kilometers", u"kilometres", codeOf("kmtr"), Length, 1000},
    {u"inches", u"", codeOf("inch"), Length, Inch},
    {u"feet", u"", codeOf("feet"), Length, Foot},
    {u"yards", u"", codeOf("yard"), Length, Yard},
    {u"miles", u"", codeOf("mile"), Length, Mile},
    {u"square meters", u"square metres", codeOf("sqrm"), Area, 1},
    {u"square kilometers", u"square kilometres", codeOf("sqkm"), Area, 1e6},
    {u"square feet", u"", codeOf("sqft"), Area, Foot* Foot},
    {u"square yards", u"", codeOf("sqyd"), Area, Yard* Yard},
    {u"square miles", u"", codeOf("sqmi"), Area, Mile* Mile},
    {u"cubic meters", u"cubic metres", codeOf("cmet"), CubicVolume, 1},
    {u"cubic centimeters", u"cubic centimetres", codeOf("ccmt"), CubicVolume, 1e-6},
    {u"cubic inches", u"", codeOf("cuin"), CubicVolume, Inch* Inch* Inch},
    {u"cubic feet", u"", codeOf("cfet"), CubicVolume, Foot* Foot* Foot},
    {u"cubic yards", u"", codeOf("cyrd"), CubicVolume, Yard* Yard* Yard},
    {u"liters", u"litres", codeOf("litr"), LiquidVolume, 0.001},
    {u"gallons", u"", codeOf("galn"), LiquidVolume, Gallon},
    {u"quarts", u"", codeOf("qrts"), LiquidVolume, Gallon / 4},
    {u"kilograms", u"", codeOf("kgrm"), Weight, 1},
    {u"grams", u"", codeOf("gram"), Weight, 0.001},
    {u"ounces", u"", codeOf("ozs "), Weight, Pound / 16},
    {u"pounds", u"", codeOf("lbs "), Weight, Pound},
    {u"degrees Kelvin", u"", codeOf("degk"), Temperature, 1},
    {u"degrees Celsius", u"", codeOf("degc"), Temperature, 1, 273.15},
    {u"degrees Fahrenheit", u"", codeOf("degf"), Temperature, 5.0 / 9, 459.67 * 5 / 9},
});

UnitCategory comparable(UnitCategory category) { return category == LiquidVolume ? CubicVolume : category; }

} // namespace

std::span<Unit const> allUnits() { return Units; }

Unit const* unitOf(Code code) {
    auto const* const found = std::ranges::find(Units, code, &Unit::code);
    return found == Units.end() ? nullptr : &*found;
}

std::optional<double> converted(double number, Unit const& from, Unit const& to) {
    if (comparable(from.category) != comparable(to.category)) return {};
    if (from.code == to.code) return number;
    return (number * from.factor + from.offset - to.offset) / to.factor;
}

} // namespace mac::applescript
