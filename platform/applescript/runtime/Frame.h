#pragma once

#include "platform/applescript/runtime/ScriptObject.h"

namespace mac::applescript {

// What the statements of one handler, or of one script outside of handlers, see while they run.
struct Frame {
    // The script that the statements stand in, and the outermost one around it.
    ScriptObject* script{nullptr};
    ScriptObject* outermost{nullptr};
    // The values of the literals of the script's tree.
    Value const* literals{nullptr};
    Value* locals{nullptr};
    Value me{};
    Value it{};
    // The value of the statement before.
    Value result{};
};

// Where the variable's value lies. Valid until the frame or the script that holds it goes.
inline Value& variableSlot(Frame const& frame, VariableReference const& variable) {
    if (variable.place.kind == Place::Kind::Local) return frame.locals[variable.place.index];
    if (variable.place.kind == Place::Kind::TopLevel) return frame.outermost->variables[variable.place.index];
    ScriptObject* script = frame.script;
    for (std::uint16_t depth = variable.place.depth; depth > 0; --depth)
        script = script->enclosing();
    return script->properties[variable.place.index];
}

} // namespace mac::applescript
