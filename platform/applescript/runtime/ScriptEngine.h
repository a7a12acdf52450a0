#pragma once

#include "platform/applescript/language/ScriptParser.h"
#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// What came of a run: a value, Nothing where the script has none, or an error.
struct ScriptOutcome {
    Value value{};
    std::optional<ScriptError> error{};
};

// One compiled script. Properties keep their values from run to run. Text item delimiters and open files belong to the
// process. Main thread.
class CompiledScript {
public:
    CompiledScript(CompiledScript&&) noexcept = default;
    CompiledScript& operator=(CompiledScript&&) noexcept = default;
    CompiledScript(CompiledScript const&) = delete;
    CompiledScript& operator=(CompiledScript const&) = delete;
    ~CompiledScript();

    // Answers the script, or nothing and the error; its range is always set.
    static std::optional<CompiledScript> compile(std::u16string_view source, ScriptError& error);

    // `arguments` are what `on run` is given. An error's range is set.
    ScriptOutcome run(RunOptions const& options, std::vector<Value> const& arguments = {});
    // Call a handler, by name or by the event of its command; error -1708 if the script has none.
    ScriptOutcome call(RunOptions const& options, HandlerMessage const& message);
    ScriptOutcome handle(RunOptions const& options, EventCode event, CommandArguments const& arguments);

private:
    using Action = std::function<Value(Evaluator& evaluator, ScriptObject& script)>;
    ScriptOutcome perform(RunOptions const& options, Action const& action);

    explicit CompiledScript(std::shared_ptr<SyntaxTree> tree) : m_tree(std::move(tree)) {}

    std::shared_ptr<SyntaxTree> m_tree;
    Value m_script;
};

// A script that another script makes of its source. What is wrong with it is thrown as a ScriptError without a range,
// which would be one in the other source.
std::shared_ptr<SyntaxTree> parsedWithinScript(std::u16string_view source);

// Where the tables of applications come from.
TerminologySource terminologySource();
EngineState& engineState();

} // namespace mac::applescript
