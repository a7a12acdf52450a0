#include "platform/applescript/applications/ApplicationModel.h"
#include "platform/applescript/applications/SpecifierResolution.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/Evaluator.h"
#include <algorithm>

namespace mac::applescript {

namespace {

// An object as one of the class; anything as a list of itself.
Value objectAs(ModelObject& object, Code type) {
    Value const specifier = object.specifier();
    if (type == 0 || type == codes::ReferenceType || type == codes::AnyType) return specifier;
    if (type == codes::ListType) return Value::list({specifier});
    if (std::optional<Value> const made = object.coerced(type)) return *made;
    throw cannotMake(specifier, type);
}

Value meantAs(ModelApplication& application, Meant const& meant, Code type, TextContext const& context) {
    if (meant.object) return objectAs(*meant.object, type);
    if (!meant.list) {
        if (type == 0) return meant.value;
        if (!isInApplication(meant.value)) return requireType(meant.value, type, context);
        return meantAs(application, application.follow(meant.value, context), type, context);
    }
    bool const isAliasList = type == codes::AliasListType;
    bool const isWhole = type == 0 || type == codes::ListType || isAliasList;
    std::vector<Value> values;
    for (Meant const& one : *meant.list)
        values.push_back(meantAs(application, one, isAliasList ? codes::AliasType : 0, context));
    Value const list = Value::list(std::move(values));
    return isWhole ? list : requireType(list, type, context);
}

void setProperty(Meant const& container, Value const& part, Value const& value, ModelApplication& application,
                 TextContext const& context) {
    if (container.list) {
        for (Meant const& one : *container.list)
            setProperty(one, part, value, application, context);
        return;
    }
    if (!container.object && isInApplication(container.value)) {
        setProperty(application.follow(container.value, context), part, value, application, context);
        return;
    }
    if (!container.object) throw cannotSet(part, value);
    Code const code = part.specifier().property->code;
    if (container.object->setProperty(code, value, context)) return;
    if (container.object->property(code)) throw mayNotSet(part, value);
    throw cannotSet(part, value);
}

void addObjects(Meant const& meant, ModelApplication& application, TextContext const& context,
                std::vector<ModelPointer>& objects) {
    if (meant.object) {
        objects.push_back(meant.object);
        return;
    }
    if (!meant.list) {
        if (!isInApplication(meant.value)) throw plainError(errors::NotOfThisClass);
        addObjects(application.follow(meant.value, context), application, context, objects);
        return;
    }
    for (Meant const& one : *meant.list)
        addObjects(one, application, context, objects);
}

bool hasForm(Value const& place, Form form) { return place.is(ValueKind::Specifier) && place.specifier().form == form; }

} // namespace

PropertyAnswer ModelObject::answer(Code code) {
    if (code == codes::Class) return Value::type(type());
    PropertyRow const* const found = row().property(code);
    return found ? found->read(*this) : PropertyAnswer(std::optional<Value>());
}

std::optional<Value> ModelObject::property(Code code) {
    PropertyAnswer const found = answer(code);
    return found.object ? std::optional(found.object->specifier()) : found.value;
}

Value ModelObject::properties() {
    std::vector<ClassRow const*> rows;
    for (ClassRow const* kind = &row(); kind; kind = kind->parent)
        rows.push_back(kind);
    std::vector<std::pair<Symbol, Value>> fields;
    fields.emplace_back(termSymbol(codes::Class, nameOfCode(codes::Class)), Value::type(type()));
    std::ranges::reverse(rows);
    for (ClassRow const* const kind : rows) {
        for (PropertyRow const& each : kind->properties) {
            if (each.isIn == InProperties::Unlisted) continue;
            if (std::optional<Value> const value = property(each.code))
                fields.emplace_back(termSymbol(each.code, nameOfCode(each.code)), *value);
        }
    }
    return Value::record(std::move(fields));
}

bool ModelObject::setProperty(Code code, Value const& value, TextContext const& context) {
    PropertyRow const* const found = row().property(code);
    return found && found->write && found->write(*this, value, context);
}

std::optional<std::vector<ModelPointer>> ModelObject::elements(Code elementType) {
    ElementRow const* const found = row().element(elementType);
    return found ? found->read(*this, elementType) : std::nullopt;
}

ModelPointer ModelObject::elementNamed(Code elementType, std::u16string const& name) {
    for (ModelPointer const& element : elements(elementType).value_or(std::vector<ModelPointer>())) {
        std::optional<Value> const found = element->property(codes::Name);
        if (found && found->is(ValueKind::Text) && foldedName(found->units()) == foldedName(name)) return element;
    }
    return nullptr;
}

ModelPointer ModelObject::elementIdentified(Code elementType, Value const& identifier) {
    for (ModelPointer const& element : elements(elementType).value_or(std::vector<ModelPointer>())) {
        std::optional<Value> const found = element->property(codes::Identifier);
        if (!found || found->kind() != identifier.kind()) continue;
        bool const isSame = found->is(ValueKind::Text)
                                ? found->units() == identifier.units()
                                : found->isNumber() && found->asNumber() == identifier.asNumber();
        if (isSame) return element;
    }
    return nullptr;
}

std::optional<Value> ModelObject::coerced(Code /*wanted*/) { return {}; }

ModelPointer ModelApplication::objectOfFile(FileObject const& /*file*/) { return nullptr; }

Value ModelApplication::self() const { return makeObject<ApplicationObject>(ValueKind::Application, name(), false); }

Meant ModelApplication::follow(Value const& meant, TextContext const& context) {
    return SpecifierResolution({.root = root(),
                                .fileObject = [this](FileObject const& file) { return objectOfFile(file); },
                                .dictionary = dictionary()},
                               context)
        .follow(meant);
}

std::vector<ModelPointer> ModelApplication::objects(Value const& meant, TextContext const& context) {
    std::vector<ModelPointer> found;
    bool const isNoObject = !meant.is(ValueKind::Specifier) && !meant.is(ValueKind::File) &&
                            !meant.is(ValueKind::List) && !meant.is(ValueKind::Application);
    if (isNoObject) throw plainError(errors::NotOfThisClass);
    // A file that is not there is no object of this application.
    bool const isMissing = meant.is(ValueKind::File) && !objectOfFile(meant.file());
    if (isMissing) throw plainError(errors::NotOfThisClass);
    addObjects(follow(meant, context), *this, context, found);
    return found;
}

Value ModelApplication::directOf(ApplicationCommand const& command) {
    return command.direct.isNothing() ? command.subject : command.direct;
}

Value ModelApplication::placeOf(ApplicationCommand const& command) {
    Value const* const at = command.find(codes::InsertionParameter);
    Value place = containerMeantBy(at ? *at : command.subject);
    if (hasForm(place, Form::Every)) place = Value(place.specifier().container);
    return place.isNothing() ? command.subject : place;
}

Value ModelApplication::containerMeantBy(Value const& destination) {
    if (!hasForm(destination, Form::Beginning) && !hasForm(destination, Form::End)) return destination;
    Value const list = destination.specifier().container;
    return hasForm(list, Form::Every) ? list.specifier().container : list;
}

Value ModelApplication::get(Value const& specifier, Code type, TextContext const& context) {
    return meantAs(*this, follow(specifier, context), type, context);
}

void ModelApplication::set(Value const& specifier, Value const& value, TextContext const& context) {
    SpecifierObject const& part = specifier.specifier();
    if (part.form != Form::Property) throw cannotSet(specifier, value);
    setProperty(follow(part.container, context), specifier, value, *this, context);
}

bool ModelApplication::exists(Value const& specifier, TextContext const& context) {
    try {
        Meant const meant = follow(specifier, context);
        return !meant.list || !meant.list->empty();
    } catch (ScriptError const& error) {
        bool const isAbsent = error.number == errors::CannotGet || error.number == errors::InvalidIndex ||
                              error.number == errors::FileNotFound;
        if (!isAbsent) throw;
        return false;
    }
}

std::size_t ModelApplication::count(Value const& specifier, Code elementClass, TextContext const& context) {
    Meant meant = follow(specifier, context);
    if (!meant.object && !meant.list && isInApplication(meant.value)) meant = follow(meant.value, context);
    if (meant.list) return meant.list->size();
    if (!meant.object) {
        std::optional<std::size_t> const count = countOf(meant.value, elementClass, context);
        if (!count) throw notUnderstood(specifier, u"count");
        return *count;
    }
    Code const type = elementClass == 0 ? codes::Item : elementClass;
    std::optional<std::vector<ModelPointer>> const elements = meant.object->elements(type);
    if (!elements) throw cannotGet(elementSpecifier(Form::Every, type, specifier));
    return elements->size();
}

Value ModelApplication::perform(Evaluator& evaluator, ApplicationCommand const& command) {
    CommandRow const* const row = dictionary().command(command.term.code);
    if (!row) throw notUnderstood(directOf(command), command.term.name);
    return row->perform(*this, evaluator, command);
}

Terminology const* ModelApplication::terms() const {
    if (!m_terms) m_terms = dictionary().terminology();
    return &*m_terms;
}

} // namespace mac::applescript
