#pragma once

#include "platform/applescript/language/SyntaxTree.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include <memory>

namespace mac::applescript {

// A parsed script with the values of its literals, made once; shared by the script objects that stand in it.
struct LoadedTree {
    std::shared_ptr<SyntaxTree> tree{};
    // By the index of the literal.
    std::vector<Value> literals{};
};

// A script that runs or waits to: the outermost one, or a script object inside. Holds the values of its properties and,
// for the outermost, of the variables that its statements share.
class ScriptObject final : public ContainerObject {
public:
    ScriptObject(std::shared_ptr<LoadedTree const> tree, ScriptDefinition const& definition, ScriptObject* enclosing);

    ScriptDefinition const& definition() const { return *m_definition; }
    std::shared_ptr<SyntaxTree> const& tree() const { return m_tree->tree; }
    std::shared_ptr<LoadedTree const> const& loadedTree() const { return m_tree; }
    Value const* literals() const { return m_tree->literals.data(); }
    // The script around this one in the source; null for the outermost.
    ScriptObject* enclosing() const { return m_enclosing.isNothing() ? nullptr : &m_enclosing.script(); }
    ScriptObject& outermost();
    // What answers for what this script does not know. Nothing: AppleScript itself.
    Value const& parent() const { return parentValue; }
    Value self() { return Value::object(ValueKind::Script, *this); }

    // Null where the script itself has none; parents are not asked.
    Value* propertyNamed(Symbol name);
    HandlerDefinition const* handlerNamed(Symbol name) const;
    // The script's own handler of that name as a value; Nothing where it has none.
    Value handlerValue(Symbol name);
    // A script of the same definition whose properties and variables start with what these hold now.
    Value duplicate();

    std::vector<Value> properties;
    std::vector<Value> variables;
    Value parentValue;

protected:
    void visit(void (*visitor)(Value const& held)) const override;
    void clear() override;

private:
    std::shared_ptr<LoadedTree const> m_tree;
    ScriptDefinition const* m_definition;
    Value m_enclosing;
};

// A handler as a value: called, it sees what is around it in the script that it stands in.
struct HandlerObject final : ContainerObject {
    HandlerObject(Value script, HandlerDefinition const& handler) : owner(std::move(script)), definition(&handler) {}
    Value owner;
    HandlerDefinition const* definition;

protected:
    void visit(void (*visitor)(Value const& held)) const override { visitor(owner); }
    void clear() override { owner = Value(); }
};

inline HandlerObject& Value::handler() const { return static_cast<HandlerObject&>(*m_content.object); }
inline ScriptObject& Value::script() const { return static_cast<ScriptObject&>(*m_content.object); }

} // namespace mac::applescript
