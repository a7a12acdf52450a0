#include "platform/applescript/runtime/ScriptObject.h"
#include "platform/applescript/runtime/ObjectSpecifier.h"
#include <algorithm>

namespace mac::applescript {

ScriptObject::ScriptObject(std::shared_ptr<LoadedTree const> tree, ScriptDefinition const& definition,
                           ScriptObject* enclosing)
    : properties(definition.properties.size()), variables(definition.variables.size()), m_tree(std::move(tree)),
      m_definition(&definition) {
    if (!enclosing) return;
    m_enclosing = enclosing->self();
    parentValue = m_enclosing;
}

ScriptObject& ScriptObject::outermost() {
    ScriptObject* script = this;
    while (ScriptObject* const outer = script->enclosing())
        script = outer;
    return *script;
}

Value* ScriptObject::propertyNamed(Symbol name) {
    if (std::optional<std::uint32_t> const place = m_definition->propertyPlaces.placeOf(name))
        return &properties[*place];
    std::optional<std::uint32_t> const place = m_definition->variablePlaces.placeOf(name);
    return place && !variables[*place].isNothing() ? &variables[*place] : nullptr;
}

HandlerDefinition const* ScriptObject::handlerNamed(Symbol name) const {
    std::optional<std::uint32_t> const place = m_definition->handlerPlaces.placeOf(name);
    return place ? m_definition->handlers[*place] : nullptr;
}

Value ScriptObject::handlerValue(Symbol name) {
    HandlerDefinition const* const handler = handlerNamed(name);
    return handler ? makeObject<HandlerObject>(ValueKind::Handler, self(), *handler) : Value();
}

Value ScriptObject::duplicate() {
    Value const made = makeObject<ScriptObject>(ValueKind::Script, m_tree, *m_definition, enclosing());
    ScriptObject& script = made.script();
    script.properties = properties;
    script.variables = variables;
    script.parentValue = parentValue;
    return made;
}

void ScriptObject::visit(void (*visitor)(Value const& held)) const {
    for (Value const& property : properties)
        visitor(property);
    for (Value const& variable : variables)
        visitor(variable);
    visitor(parentValue);
    visitor(m_enclosing);
}

void ScriptObject::clear() {
    for (Value& property : properties)
        property = Value();
    for (Value& variable : variables)
        variable = Value();
    parentValue = Value();
    m_enclosing = Value();
}

Value propertySpecifier(Symbol property, Value container) {
    Value const value = makeObject<SpecifierObject>(ValueKind::Specifier);
    value.specifier().property = property;
    value.specifier().container = std::move(container);
    return value;
}

Value elementSpecifier(Form form, Code want, Value container, Value from, Value to) {
    Value const value = makeObject<SpecifierObject>(ValueKind::Specifier);
    SpecifierObject& specifier = value.specifier();
    specifier.form = form;
    specifier.want = want;
    specifier.container = std::move(container);
    specifier.from = std::move(from);
    specifier.to = std::move(to);
    return value;
}

Value const& rootOf(Value const& specifier) {
    Value const* root = &specifier;
    while (root->is(ValueKind::Specifier))
        root = &root->specifier().container;
    return *root;
}

} // namespace mac::applescript
