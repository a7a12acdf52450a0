#pragma once

#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/support/DiskContents.h"
#include <string>

// Scripts that tell the Finder something about a path, and what comes of them.

namespace mac::applescript::test {

using mac::test::isThere;
using mac::test::textOf;

// The path as a string literal of a script has it.
inline std::string escaped(std::string const& path) {
    std::string text;
    for (char const character : path) {
        if (character == '"' || character == '\\') text += '\\';
        text += character;
    }
    return text;
}

inline ScriptOutcome outcomeOf(std::string const& source, RunOptions const& options = {}) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(unitsFromFileSystemBytes(source), error);
    if (!script) return {.error = error};
    return script->run(options);
}

inline std::string textResult(std::string const& source) {
    ScriptOutcome const outcome = outcomeOf(source);
    if (outcome.error) return "! " + utf8FromUnits(outcome.error->message);
    if (!outcome.value.is(ValueKind::Text)) return "! no text";
    return fileSystemBytesFromUnits(outcome.value.units()).value_or("! no path");
}

inline std::int32_t errorNumberOf(std::string const& source, RunOptions const& options = {}) {
    ScriptOutcome const outcome = outcomeOf(source, options);
    return outcome.error ? outcome.error->number : 0;
}

inline std::string trashScript(std::string const& path) {
    return "set x to POSIX file \"" + escaped(path) +
           "\"\n"
           "tell application \"Finder\" to set y to delete x\n"
           "tell application \"Finder\" to set r to y as text\n"
           "POSIX path of r\n";
}

inline std::string moveScript(std::string const& path, std::string const& folder) {
    return "set x to POSIX file \"" + escaped(path) + "\"\nset y to POSIX file \"" + escaped(folder) +
           "\"\n"
           "tell application \"Finder\" to set z to move x to y\n"
           "tell application \"Finder\" to set r to z as text\n"
           "POSIX path of r\n";
}

inline std::string ofItem(std::string const& property, std::string const& path) {
    return "tell application \"Finder\" to " + property + " of (POSIX file \"" + escaped(path) + "\")";
}

} // namespace mac::applescript::test
