#include "platform/applescript/applications/Dictionary.h"
#include "platform/applescript/language/Codes.h"
#include <algorithm>

namespace mac::applescript {

bool ClassRow::isKindOf(Code sought) const {
    if (sought == codes::Item) return true;
    for (ClassRow const* row = this; row; row = row->parent)
        if (row->code == sought) return true;
    return false;
}

PropertyRow const* ClassRow::property(Code sought) const {
    for (ClassRow const* row = this; row; row = row->parent) {
        auto const found = std::ranges::find(row->properties, sought, &PropertyRow::code);
        if (found != row->properties.end()) return &*found;
    }
    return nullptr;
}

ElementRow const* ClassRow::element(Code sought) const {
    for (ClassRow const* row = this; row; row = row->parent) {
        auto const found = std::ranges::find(row->elements, sought, &ElementRow::type);
        if (found != row->elements.end()) return &*found;
    }
    return nullptr;
}

bool Dictionary::mayHave(Code classCode, Code property) const {
    bool const isOfAll = property == codes::Class || property == codes::Properties || property == codes::It;
    if (isOfAll) return true;
    return std::ranges::any_of(
        classes, [&](ClassRow const* row) { return row->isKindOf(classCode) && row->property(property) != nullptr; });
}

CommandRow const* Dictionary::command(EventCode code) const {
    auto const found = std::ranges::find_if(commands, [&](CommandRow const& row) { return row.term.code == code; });
    return found == commands.end() ? nullptr : &*found;
}

Terminology Dictionary::terminology() const {
    Terminology terms;
    terms.addProperty(u"properties", codes::Properties);
    for (NameRow const& type : types)
        terms.addClass(type.name, u"", type.code);
    for (NameRow const& constant : constants)
        terms.addConstant(constant.name, constant.code);
    for (ClassRow const* const row : classes) {
        if (!row->name.empty()) terms.addClass(row->name, row->plural, row->code);
        for (PropertyRow const& property : row->properties)
            if (!property.name.empty()) terms.addProperty(property.name, property.code);
    }
    for (CommandRow const& command : commands)
        if (!command.term.name.empty()) terms.addCommand(command.term);
    return terms;
}

} // namespace mac::applescript
