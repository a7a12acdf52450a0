#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/language/LanguageCodes.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptObject.h"
#include "platform/applescript/runtime/TextElements.h"
#include <cstdlib>
#include <random>

namespace mac::applescript {

namespace {

std::size_t randomIndex(std::size_t count) {
    static std::mt19937_64 generator{std::random_device{}()};
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(generator);
}

// From 0; negative numbers count from the end. Nothing outside.
std::optional<std::size_t> placeOf(std::int64_t index, std::size_t count) {
    auto const size = static_cast<std::int64_t>(count);
    std::int64_t const place = index < 0 ? size + index : index - 1;
    if (place < 0 || place >= size) return {};
    return static_cast<std::size_t>(place);
}

std::optional<std::size_t> placeOf(Value const& index, std::size_t count, TextContext const& context) {
    std::optional<Value> const number = coerced(index, codes::IntegerType, context);
    // No list is as long as a number past the integers.
    bool const isBeyond = !number && coerced(index, codes::NumberType, context).has_value();
    if (isBeyond) return {};
    if (!number) throw cannotMake(index, codes::IntegerType);
    return placeOf(static_cast<std::int64_t>(number->asInteger()), count);
}

// An index that is still to be looked up is looked up before the elements are: it may refer into the same text, which
// keeps the elements alone that were looked for last.
Value settledIndex(Value const& index, Form form, TextContext const& context) {
    bool const isReference = index.is(ValueKind::Specifier) && form == Form::Index;
    if (!isReference && !index.is(ValueKind::List)) return index;
    return coerced(index, codes::IntegerType, context).value_or(index);
}

ElementSelector settled(ElementSelector selector, TextContext const& context) {
    selector.from = settledIndex(selector.from, selector.form, context);
    selector.to = settledIndex(selector.to, selector.form, context);
    return selector;
}

// The place that index, some, middle and last choose among so many.
std::optional<std::size_t> chosenPlace(ElementSelector const& selector, std::size_t count, TextContext const& context) {
    switch (selector.form) {
    case Form::Index:
        return placeOf(selector.from, count, context);
    case Form::Last:
        return count == 0 ? std::optional<std::size_t>() : count - 1;
    case Form::Middle:
        return count == 0 ? std::optional<std::size_t>() : (count - 1) / 2;
    case Form::Some:
        return count == 0 ? std::optional<std::size_t>() : randomIndex(count);
    default:
        return {};
    }
}

struct Places {
    std::size_t first{0};
    std::size_t last{0};
};

// A range may be given backwards.
std::optional<Places> chosenRange(ElementSelector const& selector, std::size_t count, TextContext const& context) {
    std::optional<std::size_t> const from = placeOf(selector.from, count, context);
    std::optional<std::size_t> const to = placeOf(selector.to, count, context);
    if (!from || !to) return {};
    return Places{.first = std::min(*from, *to), .last = std::max(*from, *to)};
}

Value textIn(std::u16string const& units, SourceRange range) {
    return Value::text(units.substr(range.start, range.end - range.start));
}

// Item and text count as character.
bool isCharacterClass(Code want) {
    return want != codes::WordType && want != codes::ParagraphType && want != codes::TextItemType;
}

// The span of the text that an end of `text from word 1 to word 2` means.
std::optional<SourceRange> spanOf(TextObject const& text, Value const& end, TextContext const& context) {
    if (!end.is(ValueKind::Specifier) || !isTextElementClass(end.specifier().want)) return {};
    SpecifierObject const& specifier = end.specifier();
    ElementSelector const selector =
        settled({.form = specifier.form, .want = specifier.want, .from = specifier.from, .to = specifier.to}, context);
    std::vector<SourceRange> const& ranges = textElements(text, specifier.want, context);
    std::optional<std::size_t> const place = chosenPlace(selector, ranges.size(), context);
    return place ? std::optional(ranges[*place]) : std::nullopt;
}

// Ranges of characters in text whose code units are all characters.
std::optional<Value> rangeOfSimpleText(std::u16string const& units, ElementSelector const& selector,
                                       TextContext const& context) {
    std::optional<Places> const places = chosenRange(selector, units.size(), context);
    if (!places) return {};
    if (isTextClass(selector.want)) return Value::text(units.substr(places->first, places->last - places->first + 1));
    std::vector<Value> items;
    for (std::size_t place = places->first; place <= places->last; ++place)
        items.push_back(Value::text(units.substr(place, 1)));
    return Value::list(std::move(items));
}

std::optional<Value> rangeOfText(TextObject const& text, ElementSelector const& selector, TextContext const& context) {
    std::u16string const& units = text.units;
    bool const isOfPlaces = !selector.from.is(ValueKind::Specifier);
    if (isOfPlaces && isCharacterClass(selector.want) && text.isSimple())
        return rangeOfSimpleText(units, selector, context);
    SourceRange whole;
    if (!isOfPlaces) {
        std::optional<SourceRange> const from = spanOf(text, selector.from, context);
        std::optional<SourceRange> const to = spanOf(text, selector.to, context);
        if (!from || !to) return {};
        whole = {.start = std::min(from->start, to->start), .end = std::max(from->end, to->end)};
    }
    // The text keeps the elements of one class alone: those of the ends are looked for before these.
    std::vector<SourceRange> const& ranges = textElements(text, selector.want, context);
    if (isOfPlaces) {
        std::optional<Places> const places = chosenRange(selector, ranges.size(), context);
        if (!places) return {};
        whole = {.start = ranges[places->first].start, .end = ranges[places->last].end};
    }
    if (isTextClass(selector.want)) return textIn(units, whole);
    std::vector<Value> items;
    for (SourceRange const& range : ranges)
        if (range.start >= whole.start && range.end <= whole.end) items.push_back(textIn(units, range));
    return Value::list(std::move(items));
}

std::optional<Value> elementOfText(Value const& text, ElementSelector const& selector, TextContext const& context) {
    if (!isTextElementClass(selector.want)) return {};
    std::u16string const& units = text.units();
    if (selector.form == Form::Range) return rangeOfText(text.textObject(), selector, context);
    bool const isCharacter = isCharacterClass(selector.want);
    if (isTextClass(selector.want) && selector.form == Form::Every) return Value::list({text});
    // Characters of plain text are found without counting them.
    if (isCharacter && selector.form != Form::Every && text.textObject().isSimple()) {
        std::optional<std::size_t> const place = chosenPlace(selector, units.size(), context);
        return place ? std::optional(Value::text(units.substr(*place, 1))) : std::nullopt;
    }
    std::vector<SourceRange> const& ranges = textElements(text.textObject(), selector.want, context);
    if (selector.form == Form::Every) {
        std::vector<Value> items;
        items.reserve(ranges.size());
        for (SourceRange const& range : ranges)
            items.push_back(textIn(units, range));
        return Value::list(std::move(items));
    }
    std::optional<std::size_t> const place = chosenPlace(selector, ranges.size(), context);
    return place ? std::optional(textIn(units, ranges[*place])) : std::nullopt;
}

// A specifier of the same form as `part`, in another container.
Value withContainer(Value const& part, Value const& container) {
    SpecifierObject const& specifier = part.specifier();
    Value const made = elementSpecifier(specifier.form, specifier.want, container, specifier.from, specifier.to);
    made.specifier().property = specifier.property;
    return made;
}

ValueList itemsOfClass(ValueList const& items, Code type) {
    if (type == codes::Item) return items;
    ValueList found;
    for (Value const& item : items)
        if (isOfClass(item, type)) found.push_back(item);
    return found;
}

std::optional<Value> elementOfList(ValueList const& all, ElementSelector const& selector, TextContext const& context) {
    if (selector.want != codes::Item) {
        bool const isElement = selector.want == codes::CharacterType || selector.want == codes::WordType ||
                               selector.want == codes::ParagraphType || selector.want == codes::TextItemType;
        if (isElement) return {};
        ElementSelector narrowed = selector;
        narrowed.want = codes::Item;
        return elementOfList(itemsOfClass(all, selector.want), narrowed, context);
    }
    if (selector.form == Form::Every) return Value::listOf(all);
    if (selector.form == Form::Range) {
        std::optional<Places> const places = chosenRange(selector, all.size(), context);
        if (!places) return {};
        auto const first = all.begin() + static_cast<std::ptrdiff_t>(places->first);
        return Value::list(std::vector<Value>(first, all.begin() + static_cast<std::ptrdiff_t>(places->last) + 1));
    }
    std::optional<std::size_t> const place = chosenPlace(selector, all.size(), context);
    return place ? std::optional(all[*place]) : std::nullopt;
}

} // namespace

std::optional<Value> elementOf(Value const& container, ElementSelector const& selector, TextContext const& context) {
    bool const isOwn = selector.form == Form::Index || selector.form == Form::Every || selector.form == Form::Some ||
                       selector.form == Form::Middle || selector.form == Form::Last || selector.form == Form::Range;
    if (!isOwn) return {};
    if (container.is(ValueKind::List)) return elementOfList(container.items(), selector, context);
    if (container.is(ValueKind::Text)) return elementOfText(container, settled(selector, context), context);
    return {};
}

bool setElementOf(Value const& container, ElementSelector const& selector, Value const& value,
                  TextContext const& context) {
    if (!container.is(ValueKind::List)) return false;
    ValueList& items = container.items();
    if (selector.form == Form::Beginning || selector.form == Form::End) {
        if (items.size() >= context.mostItems) throw plainError(errors::ValueTooLarge);
        if (selector.form == Form::End)
            items.push_back(value);
        else
            items.push_front(value);
        return true;
    }
    if (selector.want != codes::Item) {
        std::size_t place = 0;
        std::vector<std::size_t> places;
        for (Value const& item : items) {
            if (isOfClass(item, selector.want)) places.push_back(place);
            ++place;
        }
        std::optional<std::size_t> const chosen = chosenPlace(selector, places.size(), context);
        if (chosen) items[places[*chosen]] = value;
        return chosen.has_value();
    }
    std::optional<std::size_t> const place = chosenPlace(selector, items.size(), context);
    if (place) items[*place] = value;
    return place.has_value();
}

std::optional<std::size_t> countOf(Value const& container, Code elementClass, TextContext const& context) {
    bool const isAny = elementClass == 0 || elementClass == codes::Item;
    switch (container.kind()) {
    case ValueKind::List:
        return isAny ? container.items().size() : itemsOfClass(container.items(), elementClass).size();
    case ValueKind::Record:
        if (!isAny) return {};
        return container.fields().size();
    case ValueKind::Text:
        if (!isAny && !isTextElementClass(elementClass)) return {};
        if (!isAny && isTextClass(elementClass)) return 1;
        if (isAny && container.textObject().isSimple()) return container.units().size();
        return textElements(container.textObject(), isAny ? codes::CharacterType : elementClass, context).size();
    default:
        return {};
    }
}

Value objectOf(SpecifierObject const& specifier, Value const& asValue, TextContext const& context) {
    requireStackRoom();
    Value const container = resolved(specifier.container, context);
    if (isToldTo(container)) return getInApplication(withContainer(asValue, container), 0, context);
    std::optional<Value> found;
    if (specifier.form == Form::Property) {
        found = propertyOf(container, specifier.property, context);
    } else {
        found = elementOf(container,
                          {.form = specifier.form, .want = specifier.want, .from = specifier.from, .to = specifier.to},
                          context);
    }
    if (!found) throw cannotGet(asValue);
    return *std::move(found);
}

Value resolved(Value const& value, TextContext const& context) {
    if (!value.is(ValueKind::Specifier)) return value;
    if (isInApplication(value)) return getInApplication(value, 0, context);
    return resolved(objectOf(value.specifier(), value, context), context);
}

void setObject(Value const& target, Value const& value, TextContext& context) {
    SpecifierObject const& specifier = target.specifier();
    Value const container =
        isInApplication(specifier.container) ? specifier.container : resolved(specifier.container, context);
    if (isToldTo(container)) {
        setInApplication(withContainer(target, container), value, context);
        return;
    }
    bool const isSet =
        specifier.form == Form::Property
            ? setPropertyOf(container, specifier.property, value, context)
            : setElementOf(container,
                           {.form = specifier.form, .want = specifier.want, .from = specifier.from, .to = specifier.to},
                           value, context);
    if (!isSet) throw cannotSet(target, value);
}

} // namespace mac::applescript
