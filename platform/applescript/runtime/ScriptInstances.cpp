#include "platform/applescript/runtime/ScriptInstances.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"

namespace mac::applescript {

namespace {

// The value of a literal; each kind has its own.
struct LiteralValue {
    Value operator()(bool flag) const { return Value::boolean(flag); }
    Value operator()(std::int32_t number) const { return Value::integer(number); }
    Value operator()(double number) const { return Value::real(number); }
    Value operator()(std::u16string const& text) const { return Value::text(text); }
    Value operator()(TypeLiteral const& type) const { return Value::type(type.code); }
    Value operator()(ConstantLiteral const& constant) const { return Value::constant(constant.code); }
    Value operator()(AppleScriptLiteral const& /*literal*/) const { return Value::appleScript(); }
    Value operator()(CurrentApplicationLiteral const& /*literal*/) const { return Value::currentApplication(); }
    Value operator()(DataLiteral const& data) const {
        return makeObject<DataObject>(ValueKind::Data, data.type, data.bytes);
    }
};

} // namespace

std::shared_ptr<LoadedTree const> loadedTree(std::shared_ptr<SyntaxTree> tree) {
    std::vector<Value> literals;
    literals.reserve(tree->literals.size());
    for (Literal const* const literal : tree->literals)
        literals.push_back(std::visit(LiteralValue(), literal->content));
    return std::make_shared<LoadedTree const>(LoadedTree{.tree = std::move(tree), .literals = std::move(literals)});
}

Value instantiate(Evaluator& evaluator, ScriptDefinition const& definition,
                  std::shared_ptr<LoadedTree const> const& tree, ScriptObject* enclosing) {
    Value made = makeObject<ScriptObject>(ValueKind::Script, tree, definition, enclosing);
    ScriptObject& script = made.script();
    // The locals of the body around the script, in which its properties were resolved, and those of the script's own
    // statements, in which the properties of the script objects that stand among them were.
    std::vector<Value> inside(definition.outsideHandlers->localCount);
    Value* const around = enclosing ? evaluator.frame().locals : inside.data();
    Frame frame{.script = &script,
                .outermost = &script.outermost(),
                .literals = script.literals(),
                .locals = around,
                .me = made,
                .it = made};
    EnteredFrame const entered(evaluator, frame);
    for (std::size_t index = 0; index < definition.properties.size(); ++index) {
        PropertyDefinition const& property = definition.properties[index];
        frame.locals = property.initial->is<ScriptExpression>() ? inside.data() : around;
        script.properties[index] = valueOf(evaluator, *property.initial);
        if (property.name->code == codes::Parent) script.parentValue = script.properties[index];
    }
    return made;
}

} // namespace mac::applescript
