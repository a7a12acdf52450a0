#pragma once

#include "platform/applescript/NSAppleScript.h"
#include "platform/applescript/runtime/ScriptEngine.h"

namespace mac {

class NSAppleScript::Body : public ObjectBody {
public:
    NSString source;
    std::optional<applescript::CompiledScript> compiled;
    double longestRun{0};
};

// What a caller is told of an error of the engine.
NSDictionary errorDictionary(applescript::ScriptError const& error);

// Has the script do what the event says.
applescript::ScriptOutcome perform(applescript::CompiledScript& script, AppleEvent const& event,
                                   applescript::RunOptions const& options);

} // namespace mac
