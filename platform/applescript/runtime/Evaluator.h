#pragma once

#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/runtime/Frame.h"
#include "platform/applescript/runtime/ObjectSpecifier.h"
#include "platform/applescript/runtime/OpenFiles.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/TextContext.h"
#include <atomic>
#include <functional>

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

// Runs scripts within the current limits. One object runs one script; main thread.
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
    // What the statement that runs sees; only while one runs.
    Frame& frame() const { return *m_frame; }
    // The script that `me` means in the statement that runs.
    Value currentScript() const { return m_frame->me; }
    // Throws ScriptStopped when the run is to end; the first looks only now and then.
    void checkpoint();
    static void stopIfAsked();
    bool hasStackRoom() const { return currentStackAddress() >= m_lowestStackAddress; }

private:
    friend class EnteredFrame;

    EngineState& m_state;
    RunOptions const& m_options;
    Frame* m_frame{nullptr};
    std::uintptr_t m_lowestStackAddress;
    unsigned m_steps{0};
};

// What runs sees this frame, until the object goes.
class EnteredFrame {
public:
    EnteredFrame(Evaluator& evaluator, Frame& frame) : m_current(evaluator.m_frame), m_outer(evaluator.m_frame) {
        m_current = &frame;
    }
    ~EnteredFrame() { m_current = m_outer; }
    EnteredFrame(EnteredFrame const&) = delete;
    EnteredFrame& operator=(EnteredFrame const&) = delete;

private:
    Frame*& m_current;
    Frame* m_outer;
};

// The standard addition that handles the event; null if none does.
using Addition = Value (*)(Evaluator& evaluator, CommandArguments const& arguments);
Addition additionFor(EventCode event);
// Whether the command reads or changes more than the script's own values.
bool hasEffects(EventCode event);

// The tree with the values of its literals.
std::shared_ptr<LoadedTree const> loadedTree(std::shared_ptr<SyntaxTree> tree);

// A script object of the definition in the tree. Its properties are set in their order, by what can be seen where it
// stands: in the frame that runs, if one does. `enclosing` is the script around it; null for the outermost.
Value instantiate(Evaluator& evaluator, ScriptDefinition const& definition,
                  std::shared_ptr<LoadedTree const> const& tree, ScriptObject* enclosing);

} // namespace mac::applescript
