#include "platform/applescript/applications/SpecifierResolution.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/applescript/runtime/ScriptError.h"
#include <algorithm>

namespace mac::applescript {

namespace {

Meant listOf(std::vector<ModelPointer> const& objects) {
    std::vector<Meant> list;
    list.reserve(objects.size());
    for (ModelPointer const& object : objects)
        list.push_back({.object = object});
    return {.list = std::move(list)};
}

// The code of the examined object's property that the operand is or lies in; nullopt if it is about no property of it.
std::optional<Code> examinedProperty(Value const& operand) {
    if (!operand.is(ValueKind::Specifier) || !rootOf(operand).isNothing()) return {};
    SpecifierObject const* part = &operand.specifier();
    while (part->container.is(ValueKind::Specifier))
        part = &part->container.specifier();
    return part->form == Form::Property ? std::optional(part->property->code) : std::nullopt;
}

// The list is a script's, whose handlers may change it while an application is asked about the items.
std::vector<Value> itemsNow(Value const& list) { return {list.items().begin(), list.items().end()}; }

} // namespace

Meant SpecifierResolution::follow(Value const& meant) {
    requireStackRoom();
    if (!meant.is(ValueKind::Specifier)) return origin(meant);
    SpecifierObject const& specifier = meant.specifier();
    Meant const container = follow(specifier.container);
    return specifier.form == Form::Filter ? filtered(container, meant) : partOf(container, meant);
}

Meant SpecifierResolution::origin(Value const& meant) {
    if (meant.is(ValueKind::Application)) return {.object = m_root};
    if (meant.isNothing()) return {.object = m_examined ? m_examined : m_root};
    if (meant.is(ValueKind::File)) {
        if (ModelPointer const object = m_fileObject(meant.file())) return {.object = object};
        throw fileNotFound(meant);
    }
    if (!meant.is(ValueKind::List)) return {.value = meant};
    std::vector<Meant> list;
    for (Value const& item : itemsNow(meant))
        list.push_back(follow(item));
    return {.list = std::move(list)};
}

Meant SpecifierResolution::partOf(Meant const& container, Value const& part) {
    if (container.list) {
        std::vector<Meant> parts;
        for (Meant const& one : *container.list)
            parts.push_back(partOf(one, part));
        return {.list = std::move(parts)};
    }
    // A property's value may be the specifier of an object.
    if (!container.object && isInApplication(container.value)) return partOf(follow(container.value), part);
    return part.specifier().form == Form::Property ? propertyOf(container, part) : elementOf(container, part);
}

Meant SpecifierResolution::propertyOf(Meant const& container, Value const& part) {
    Symbol const name = part.specifier().property;
    if (name->code == codes::It) return container;
    std::optional<Value> value;
    if (!container.object) {
        value = applescript::propertyOf(container.value, name, m_context);
    } else if (name->code == codes::Properties) {
        value = container.object->properties();
    } else {
        PropertyAnswer answer = container.object->answer(name->code);
        if (answer.object) return {.object = answer.object};
        value = std::move(answer.value);
    }
    // The property of each of several objects.
    bool const isOfEach = !value && !container.object && container.value.is(ValueKind::List);
    if (isOfEach) return partOf(origin(container.value), part);
    if (!value) throw cannotGet(part);
    return {.value = *value};
}

Meant SpecifierResolution::elementOf(Meant const& container, Value const& part) {
    SpecifierObject const& specifier = part.specifier();
    bool const isOfList = !container.object && container.value.is(ValueKind::List) && specifier.form != Form::Name &&
                          specifier.form != Form::Identifier;
    if (isOfList) {
        std::vector<ModelPointer> const elements = elementsIn(container.value, specifier.want);
        if (!elements.empty()) return chosen(elements, part, part);
    }
    if (!container.object) {
        std::optional<Value> const found = applescript::elementOf(
            container.value,
            {.form = specifier.form, .want = specifier.want, .from = specifier.from, .to = specifier.to}, m_context);
        if (!found) throw cannotGet(part);
        return {.value = *found};
    }
    ModelObject& object = *container.object;
    ModelPointer found;
    switch (specifier.form) {
    case Form::Name:
        if (specifier.from.is(ValueKind::File))
            found = m_fileObject(specifier.from.file());
        else
            found = object.elementNamed(specifier.want, requireText(specifier.from, m_context));
        break;
    case Form::Identifier:
        found = object.elementIdentified(specifier.want, specifier.from);
        break;
    case Form::Beginning:
    case Form::End:
        return container;
    default:
        if (specifier.from.is(ValueKind::File) && specifier.form == Form::Index) {
            found = m_fileObject(specifier.from.file());
            break;
        }
        return elementByPlace(object, part);
    }
    if (found) return {.object = found};
    // A file that is not there is what is complained of, not a place in the application.
    if (specifier.from.is(ValueKind::File)) throw fileNotFound(specifier.from);
    throw cannotGet(part);
}

Meant SpecifierResolution::elementByPlace(ModelObject& container, Value const& part) {
    std::optional<std::vector<ModelPointer>> const all = container.elements(part.specifier().want);
    if (!all) throw cannotGet(part);
    return chosen(*all, part, part);
}

std::size_t SpecifierResolution::placeOfEnd(std::vector<ModelPointer> const& all, Value const& end,
                                            Value const& complaint) {
    if (!end.is(ValueKind::Specifier)) {
        std::int32_t const number = requireInteger(end, m_context);
        auto const size = static_cast<std::int64_t>(all.size());
        std::int64_t const place = number < 0 ? size + number : std::int64_t{number} - 1;
        if (place < 0 || place >= size) throw invalidIndex(complaint);
        return static_cast<std::size_t>(place);
    }
    SpecifierObject const& specifier = end.specifier();
    if (specifier.form != Form::Name) return placeOfEnd(all, specifier.from, complaint);
    std::u16string const name = requireText(specifier.from, m_context);
    for (std::size_t place = 0; place < all.size(); ++place) {
        std::optional<Value> const found = all[place]->property(codes::Name);
        if (found && found->is(ValueKind::Text) && foldedName(found->units()) == foldedName(name)) return place;
    }
    throw cannotGet(complaint);
}

Meant SpecifierResolution::chosen(std::vector<ModelPointer> const& all, Value const& part, Value const& complaint) {
    SpecifierObject const& specifier = part.specifier();
    switch (specifier.form) {
    case Form::Every:
        return listOf(all);
    case Form::Range: {
        std::size_t const from = placeOfEnd(all, specifier.from, complaint);
        std::size_t const to = placeOfEnd(all, specifier.to, complaint);
        auto const first = all.begin() + static_cast<std::ptrdiff_t>(std::min(from, to));
        return listOf({first, all.begin() + static_cast<std::ptrdiff_t>(std::max(from, to)) + 1});
    }
    case Form::Index:
        return {.object = all[placeOfEnd(all, specifier.from, complaint)]};
    case Form::Last:
        return {.object = all[placeOfEnd(all, Value::integer(-1), complaint)]};
    case Form::Middle:
    case Form::Some: {
        std::vector<Value> places;
        for (std::size_t place = 1; place <= all.size(); ++place)
            places.push_back(Value::number(static_cast<double>(place)));
        std::optional<Value> const place = applescript::elementOf(
            Value::list(std::move(places)), {.form = specifier.form, .want = codes::Item}, m_context);
        if (!place) throw invalidIndex(complaint);
        return {.object = all[placeOfEnd(all, *place, complaint)]};
    }
    default:
        throw cannotGet(complaint);
    }
}

// The elements that the condition holds for, and of those the ones that are chosen: first file whose …
Meant SpecifierResolution::filtered(Meant const& container, Value const& filter) {
    if (container.list) {
        std::vector<Meant> parts;
        for (Meant const& one : *container.list)
            parts.push_back(filtered(one, filter));
        return {.list = std::move(parts)};
    }
    if (!container.object && isInApplication(container.value)) return filtered(follow(container.value), filter);
    Value const& base = filter.specifier().from;
    std::vector<ModelPointer> all;
    bool const isProperty = base.specifier().form == Form::Property;
    Code const elementType = isProperty ? codes::Item : base.specifier().want;
    if (!isAnswerable(filter.specifier().to, elementType)) throw cannotGet(filter);
    if (isProperty) {
        Meant const listed = follow(valueOf(partOf(container, base)));
        if (!listed.list) throw cannotGet(filter);
        for (Meant const& one : *listed.list)
            if (one.object) all.push_back(one.object);
    } else {
        std::optional<std::vector<ModelPointer>> elements;
        if (container.object) elements = container.object->elements(base.specifier().want);
        if (container.value.is(ValueKind::List)) elements = elementsIn(container.value, base.specifier().want);
        if (!elements) throw cannotGet(base);
        all = *std::move(elements);
    }
    std::erase_if(all, [&](ModelPointer const& object) { return !holds(filter.specifier().to, object); });
    return isProperty ? listOf(all) : chosen(all, base, filter);
}

std::vector<ModelPointer> SpecifierResolution::elementsIn(Value const& list, Code elementType) {
    std::vector<ModelPointer> elements;
    for (Value const& item : itemsNow(list)) {
        Meant const meant = isInApplication(item) ? follow(item) : Meant();
        if (meant.object && meant.object->isOfType(elementType)) elements.push_back(meant.object);
    }
    return elements;
}

Value SpecifierResolution::operand(Value const& written, ModelPointer const& examined) {
    if (!written.is(ValueKind::Specifier)) return written;
    ModelPointer const outer = std::exchange(m_examined, examined);
    struct Restore {
        ModelPointer& current;
        ModelPointer const& outer;
        ~Restore() { current = outer; }
    } const restore{m_examined, outer};
    return valueOf(follow(written));
}

// What is compared with: `home` is no property of an item, but of the application.
Value SpecifierResolution::comparand(Value const& written, ModelPointer const& examined) {
    try {
        return operand(written, examined);
    } catch (ScriptError const& error) {
        bool const isElsewhere = error.number == errors::CannotGet && rootOf(written).isNothing();
        if (!isElsewhere) throw;
        return operand(written, m_root);
    }
}

bool SpecifierResolution::isAnswerable(Value const& test, Code elementType) const {
    requireStackRoom();
    TestObject const& condition = test.test();
    if (condition.operation == Operation::Not) return isAnswerable(condition.left, elementType);
    bool const isOfBoth = condition.operation == Operation::And || condition.operation == Operation::Or;
    if (isOfBoth) return isAnswerable(condition.left, elementType) && isAnswerable(condition.right, elementType);
    return isProperty(condition.left, elementType) &&
           (isProperty(condition.right, elementType) || isPropertyOfApplication(condition.right));
}

bool SpecifierResolution::isProperty(Value const& operand, Code elementType) const {
    std::optional<Code> const property = examinedProperty(operand);
    return !property || m_dictionary.mayHave(elementType, *property);
}

bool SpecifierResolution::isPropertyOfApplication(Value const& operand) const {
    std::optional<Code> const property = examinedProperty(operand);
    return property && m_root->row().property(*property) != nullptr;
}

bool SpecifierResolution::holds(Value const& test, ModelPointer const& examined) {
    return truthOf(test, examined) == true;
}

// nullopt if the object has no such property: then neither the condition nor its opposite holds.
std::optional<bool> SpecifierResolution::truthOf(Value const& test, ModelPointer const& examined) {
    requireStackRoom();
    TestObject const& condition = test.test();
    bool const isAnd = condition.operation == Operation::And;
    if (condition.operation == Operation::Not) {
        std::optional<bool> const truth = truthOf(condition.left, examined);
        return truth ? std::optional(!*truth) : std::nullopt;
    }
    if (isAnd || condition.operation == Operation::Or) {
        std::optional<bool> const left = truthOf(condition.left, examined);
        if (left == !isAnd) return left;
        std::optional<bool> const right = truthOf(condition.right, examined);
        return right == !isAnd || left ? right : left;
    }
    Value left;
    Value right;
    try {
        left = operand(condition.left, examined);
        right = comparand(condition.right, examined);
    } catch (ScriptError const& error) {
        if (error.number == errors::CannotGet || error.number == errors::InvalidIndex) return std::nullopt;
        throw;
    }
    switch (condition.operation) {
    case Operation::Equal:
        return isEqualValue(left, right, m_context);
    case Operation::NotEqual:
        return !isEqualValue(left, right, m_context);
    case Operation::Less:
    case Operation::Greater:
    case Operation::AtMost:
    case Operation::AtLeast:
        return !left.isMissing() && isOrdered(condition.operation, left, right, m_context);
    default:
        return !left.isMissing() && isContained(condition.operation, left, right, m_context);
    }
}

Value SpecifierResolution::valueOf(Meant const& meant) {
    if (meant.object) return meant.object->specifier();
    if (!meant.list) return meant.value;
    std::vector<Value> values;
    values.reserve(meant.list->size());
    for (Meant const& one : *meant.list)
        values.push_back(valueOf(one));
    return Value::list(std::move(values));
}

} // namespace mac::applescript
