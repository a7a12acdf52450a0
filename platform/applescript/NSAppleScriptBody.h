#pragma once

#include "platform/applescript/NSAppleScript.h"
#include "platform/applescript/ScriptEngine.h"

namespace mac {

class NSAppleScript::Body : public ObjectBody {
public:
    NSString source;
    std::optional<applescript::CompiledScript> compiled;
};

// What a caller is told of an error of the engine.
NSDictionary errorDictionary(applescript::ScriptError const& error);

} // namespace mac
