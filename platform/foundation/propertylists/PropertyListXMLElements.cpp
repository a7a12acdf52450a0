#include "platform/foundation/propertylists/PropertyListXMLElements.h"
#include "platform/foundation/propertylists/PropertyListXMLValues.h"
#include "platform/foundation/text/Encodings.h"
#include <algorithm>
#include <array>

namespace mac {

namespace {

struct NamedElement {
    std::u16string_view name;
    PropertyListElement element;
};
constexpr std::array<NamedElement, 11> Elements{{
    {u"key", PropertyListElement::Key},
    {u"string", PropertyListElement::String},
    {u"dict", PropertyListElement::Dictionary},
    {u"array", PropertyListElement::Array},
    {u"true", PropertyListElement::True},
    {u"false", PropertyListElement::False},
    {u"integer", PropertyListElement::Integer},
    {u"real", PropertyListElement::Real},
    {u"date", PropertyListElement::Date},
    {u"data", PropertyListElement::Data},
    {u"plist", PropertyListElement::Plist},
}};

std::string_view addOrSay(PropertyListBuilder& builder, id const& value, std::string_view complaint) {
    return value == nil ? complaint : builder.addValue(value);
}

} // namespace

PropertyListElement propertyListElementOfName(std::u16string_view name) {
    auto const* const found = std::ranges::find(Elements, name, &NamedElement::name);
    return found == Elements.end() ? PropertyListElement::Unknown : found->element;
}

std::string nameOfPropertyListElement(PropertyListElement element) {
    return utf8FromUnits(std::ranges::find(Elements, element, &NamedElement::element)->name);
}

std::string_view addLeafElement(PropertyListBuilder& builder, PropertyListElement element, std::u16string_view text) {
    switch (element) {
    case PropertyListElement::Key:
        return builder.addKey(text);
    case PropertyListElement::String:
        return builder.addString(text);
    case PropertyListElement::Integer:
        return addOrSay(builder, integerOfText(utf8FromUnits(text)), "There is an <integer> that is no 64-bit integer");
    case PropertyListElement::Real:
        return addOrSay(builder, realOfText(utf8FromUnits(text)), "There is a <real> that is no number");
    case PropertyListElement::Date:
        return addOrSay(builder, dateOfText(utf8FromUnits(text)), "There is a <date> that is no date");
    case PropertyListElement::Data: {
        std::optional<std::vector<std::byte>> const data = dataOfText(utf8FromUnits(text));
        return data ? builder.addData(*data) : "There is <data> that is not in base 64";
    }
    default:
        if (!text.empty()) return "There is text in a <true> or <false>";
        return builder.addValue(NSNumber::numberWithBool_(element == PropertyListElement::True));
    }
}

} // namespace mac
