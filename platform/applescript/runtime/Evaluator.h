#pragma once

#include "platform/applescript/runtime/ObjectSpecifier.h"
#include "platform/applescript/runtime/OpenFiles.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptObject.h"
#include "platform/applescript/runtime/TextContext.h"
#include <atomic>
#include <functional>
#include <span>

namespace mac::applescript {

// What bounds a run, and where what a script says goes.
struct RunOptions {
    // Set from any thread, it stops the script with -128. Null: never.
    std::atomic<bool> const* cancelled{nullptr};
    // Stops the script with -1712 when it has run so long. 0: never.
    double seconds{0};
    // A script that may only compute: commands that touch the computer answer -1723.
    bool computesOnly{false};
    std::function<void(std::u16string const&)> log{};
};

// What outlives a run: text item delimiters and open files.
struct EngineState {
    TextContext text{};
    OpenFiles files{};
};

struct CommandArguments {
    Value direct{};
    std::vector<std::pair<Code, Value>> named{};
    // Null where it is not given.
    Value const* find(Code code) const;
};

// A handler called by its name from outside of the script.
struct HandlerMessage {
    std::u16string name{};
    // The parameters in order, or the direct one where the handler's are labeled; Nothing where there are none.
    Value direct{};
    std::vector<std::pair<Symbol, Value>> labeled{};
};

// Walks the tree of a script and does what it says, within the current limits. One object runs one script; main thread.
class Evaluator {
public:
    Evaluator(EngineState& state, RunOptions const& options);

    // The script of a tree with its properties set.
    Value load(std::shared_ptr<SyntaxTree> const& tree);
    Value runScript(ScriptObject& script, std::vector<Value> const& arguments);
    // The handler of the script, or of its parents, by name and by the event of a command. Throws -1708 where there is
    // none.
    Value callHandler(ScriptObject& script, HandlerMessage const& message);
    Value handleEvent(ScriptObject& script, EventCode event, CommandArguments const& arguments);

    TextContext& context() { return m_state.text; }
    EngineState& state() { return m_state; }
    RunOptions const& options() const { return m_options; }
    // The script that `me` means in the statement that runs.
    Value currentScript() const { return m_frame->me; }
    // Throws ScriptStopped when the run is to end; the first looks only now and then.
    void checkpoint();
    static void stopIfAsked();

private:
    enum class Flow : std::uint8_t { Next, Exit, Return };

    struct Frame {
        ScriptObject* lexical{nullptr};
        ScriptObject* root{nullptr};
        HandlerDefinition const* handler{nullptr};
        Value me{};
        Value it{};
        Value* locals{nullptr};
        Value result{};
    };

    struct FoundHandler {
        ScriptObject* owner{nullptr};
        HandlerDefinition const* handler{nullptr};
        // Keeps the owner while the arguments are evaluated, which may replace whatever led to it.
        Value kept{};
    };

    // EvaluatorStatements.cpp
    Flow execute(Node const& statement);
    Flow executeStatement(Node const& statement);
    Flow executeBlock(Node const* block);
    // Sets that add to the text or list of the same variable, which then grows where it lies if nobody else sees it.
    // False for other statements.
    bool executeGrowth(Node const& statement);
    bool growAtEnd(Node const& target, Node const& sum);
    bool growAtBeginning(Node const& target, Node const& sum);
    bool isAlone(Value const& value, Node const& target);
    // EvaluatorItems.cpp: items of lists by their number.
    std::optional<std::int32_t> plainInteger(Node const& node);
    std::optional<std::int32_t> plainSum(Node const& node);
    Value* plainItem(Node const& node);
    Flow executeIf(Node const& node);
    Flow executeRepeat(Node const& node);
    Flow executeRepeatFrom(Node const& node);
    Flow executeRepeatIn(Node const& node);
    Flow executeTell(Node const& node);
    Flow executeTry(Node const& node);
    Flow executeConsidering(Node const& node);
    Flow executeTimeout(Node const& node);
    // Whether the loop goes on after its block.
    bool executeBody(Node const& loop, Flow& flow);
    void bindError(Node const& node, ScriptError const& error);
    [[noreturn]] void raise(Node const& node);

    // EvaluatorExpressions.cpp
    Value evaluate(Node const& node);
    Value evaluateGuarded(Node const& node);
    Value evaluateNode(Node const& node);
    // A value there must be.
    Value valueOf(Node const& node);
    Value& variable(Node const& node);
    Value handlerAround(Symbol name) const;
    Value evaluateUnary(Node const& node);
    Value evaluateBinary(Node const& node);
    Value isRunning(Node const& node);
    Value evaluateOperation(Operation operation, Value const& left, Value const& right);
    Value evaluateCoercion(Node const& node);
    Value evaluateDate(Node const& node);
    Value evaluateFile(Node const& node);
    Value evaluateCount(Node const& node);
    Value instantiate(ScriptDefinition& definition, ScriptObject* enclosing, std::shared_ptr<SyntaxTree> const& tree);

    // EvaluatorReferences.cpp
    Value evaluateProperty(Node const& node);
    Value evaluateElement(Node const& node);
    Value evaluateFilter(Node const& node);
    // A part of something: its value, or of what lies in an application the specifier, which is still to be asked for.
    struct Part {
        Value value{};
        bool isUnasked{false};
    };
    Part partOf(Node const& node);
    Part propertyPart(Node const& node);
    Part elementPart(Node const& node);
    Part filterPart(Node const& node);
    // The value, but the specifier of what lies in an application.
    Value unaskedValue(Node const& node);
    Value asked(Part const& part);
    // What the part lies in, in an application; nothing where it lies in none.
    std::optional<Value> placeInApplication(Node const& node, Value const& container) const;
    Value referenceTo(Node const& node);
    Value containerReference(Node const* node);
    Value testOf(Node const& node);
    Value operandOfTest(Node const& node);
    Value examinedOperand(Node const& node);
    Value rangeEnd(Node const& node);
    Value constructedText(Node const& node);
    void assign(Node const& target, Value const& value);
    void assignProperty(Node const& target, Value const& value);
    void assignElement(Node const& target, Value const& value);

    // EvaluatorCalls.cpp
    Value evaluateCall(Node const& node);
    Value evaluateLabeledCall(Node const& node);
    Value evaluateCommand(Node const& node);
    Value carryOut(Node const& node);
    Value evaluateContinue(Node const& node);
    CommandArguments argumentsOf(Node const& node, bool isForApplication = false);
    Value commandTarget(CommandArguments const& arguments) const;
    Value performCommand(CommandTerm const& command, CommandArguments const& arguments, Node const& node);
    Value exists(Node const& node);
    Value receiverOf(Node const& node);
    FoundHandler findHandler(Value const& start, Symbol name) const;
    FoundHandler findCommandHandler(Value const& start, EventCode event) const;
    void bindParameter(Node const& pattern, Value const* given);
    Value callPositional(FoundHandler found, Value const& me, std::span<Value const> arguments);
    Value callLabeled(FoundHandler found, Value const& me, Node const& node);
    Value callLabeled(FoundHandler found, Value const& me, HandlerMessage const& message);
    Value callCommandHandler(FoundHandler found, Value const& me, CommandArguments const& arguments);
    Value enter(FoundHandler found, Value const& me, std::function<void()> const& bind);

    EngineState& m_state;
    RunOptions const& m_options;
    Frame* m_frame{nullptr};
    std::uintptr_t m_lowestStackAddress;
    unsigned m_steps{0};
};

// One of the standard additions; null for an event that is none.
using Addition = Value (*)(Evaluator& evaluator, CommandArguments const& arguments);
Addition additionFor(EventCode event);
// Whether the command reads or changes more than the script's own values.
bool hasEffects(EventCode event);

} // namespace mac::applescript
