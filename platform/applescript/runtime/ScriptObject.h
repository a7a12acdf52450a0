#pragma once

#include "platform/applescript/language/SyntaxTree.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include <memory>

namespace mac::applescript {

// A script that runs or waits to: the outermost one, or a script object inside. Holds the values of its properties and,
// for the outermost, of the variables that its statements share.
class ScriptObject final : public ContainerObject {
public:
    ScriptObject(std::shared_ptr<SyntaxTree> tree, ScriptDefinition& definition, ScriptObject* enclosing);

    ScriptDefinition& definition() const { return *m_definition; }
    std::shared_ptr<SyntaxTree> const& tree() const { return m_tree; }
    // The script around this one in the source; null for the outermost.
    ScriptObject* enclosing() const { return m_enclosing.isNothing() ? nullptr : &m_enclosing.script(); }
    ScriptObject& outermost();
    // What answers for what this script does not know. Nothing: AppleScript itself.
    Value const& parent() const { return parentValue; }
    Value self() { return Value::object(ValueKind::Script, *this); }

    // Null where the script itself has none; parents are not asked.
    Value* propertyNamed(Symbol name);
    HandlerDefinition const* handlerNamed(Symbol name) const;

    std::vector<Value> properties;
    std::vector<Value> variables;
    Value parentValue;

protected:
    void visit(void (*visitor)(Value const& held)) const override;
    void clear() override;

private:
    std::shared_ptr<SyntaxTree> m_tree;
    ScriptDefinition* m_definition;
    Value m_enclosing;
};

inline ScriptObject& Value::script() const { return static_cast<ScriptObject&>(*m_content.object); }

} // namespace mac::applescript
