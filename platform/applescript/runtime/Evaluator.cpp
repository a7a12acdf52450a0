#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/ExpressionEvaluation.h"
#include "platform/applescript/runtime/HandlerCalls.h"
#include "platform/applescript/runtime/RunLimits.h"
#include <algorithm>

namespace mac::applescript {

namespace {

// How often a running script looks whether it is to stop, where it carries out no commands.
constexpr unsigned StepsBetweenLooks = 256;

} // namespace

Value const* CommandArguments::find(Code code) const {
    auto const found = std::ranges::find_if(named, [&](auto const& argument) { return argument.first == code; });
    return found == named.end() ? nullptr : &found->second;
}

Evaluator::Evaluator(EngineState& state, RunOptions const& options)
    : m_state(state), m_options(options), m_lowestStackAddress(lowestStackAddress()) {}

void Evaluator::checkpoint() {
    if (++m_steps % StepsBetweenLooks == 0) stopIfAsked();
}

void Evaluator::stopIfAsked() { stopRunIfAsked(); }

Value Evaluator::load(std::shared_ptr<SyntaxTree> const& tree) {
    return instantiate(*this, *tree->top, loadedTree(tree), nullptr);
}

Value Evaluator::runScript(ScriptObject& script, std::vector<Value> const& arguments) {
    return callRunHandler(*this, script, arguments);
}

Value Evaluator::callHandler(ScriptObject& script, HandlerMessage const& message) {
    return sendMessage(*this, script.self(), message);
}

Value Evaluator::handleEvent(ScriptObject& script, EventCode event, CommandArguments const& arguments) {
    return sendEvent(*this, script.self(), event, arguments);
}

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
