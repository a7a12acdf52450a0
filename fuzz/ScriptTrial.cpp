#include "fuzz/Trials.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/foundation/text/Encodings.h"

namespace mac::fuzz {

namespace {

using namespace mac::applescript;

std::string complaintAboutError(ScriptError const& error, std::size_t sourceSize) {
    if (error.number == 0 && error.isSyntax) return "a syntax error without a number";
    if (error.message.empty()) return "an error without a message";
    if (!error.range || error.range->start > error.range->end) return "an error without a place";
    if (error.isSyntax && error.range->end > sourceSize) return "an error outside of the source";
    return {};
}

} // namespace

std::string complaintAboutScript(std::string_view bytes) {
    constexpr std::size_t mostUnits = 1U << 16U;
    constexpr std::size_t mostItems = 1U << 12U;
    constexpr double mostSeconds = 0.2;
    std::u16string const source = unitsFromFileSystemBytes(bytes);
    TextContext& text = engineState().text;
    text = TextContext();
    text.mostUnits = mostUnits;
    text.mostItems = mostItems;
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    if (!script) return complaintAboutError(error, source.size());
    ScriptOutcome const outcome = script->run({.seconds = mostSeconds, .computesOnly = true});
    // A message of a script's own may be anything.
    if (outcome.error) return outcome.error->range ? std::string() : "an error without a place";
    try {
        sourceForm(outcome.value);
    } catch (ScriptError const& thrown) {
        return complaintAboutError({.number = thrown.number, .message = thrown.message, .range = SourceRange{}}, 0);
    }
    return {};
}

} // namespace mac::fuzz
