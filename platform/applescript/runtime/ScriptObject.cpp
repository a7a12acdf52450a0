#include "platform/applescript/runtime/ScriptObject.h"
#include "platform/applescript/runtime/ObjectSpecifier.h"
#include <algorithm>

namespace mac::applescript {

ScriptObject::ScriptObject(std::shared_ptr<SyntaxTree> tree, ScriptDefinition& definition, ScriptObject* enclosing)
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
    auto const& names = m_definition->properties;
    for (std::size_t index = 0; index < names.size(); ++index)
        if (isSameName(names[index].first, name)) return &properties[index];
    auto const& shared = m_definition->variables;
    for (std::size_t index = 0; index < shared.size(); ++index)
        if (isSameName(shared[index], name) && !variables[index].isNothing()) return &variables[index];
    return nullptr;
}

HandlerDefinition const* ScriptObject::handlerNamed(Symbol name) const {
    for (HandlerDefinition const* const handler : m_definition->handlers)
        if (isSameName(handler->name, name)) return handler;
    return nullptr;
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
