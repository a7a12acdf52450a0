#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSString.h"

// Scripts in files.

namespace mac::applescript::additions {

// A file of source text, compiled. Its properties have their first values, and nothing of it has run.
Value loadScript(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    Value const named = resolved(arguments.direct, context);
    std::u16string const path = requirePath(named, context);
    NSData const data = NSData::dataWithContentsOfFile_(NSString::stringWithCodeUnits(path));
    if (data == nil) throw fileNotFound(asFile(named, path));
    std::string bytes(reinterpret_cast<char const*>(data.bytes()), data.length());
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark)) bytes.erase(0, byteOrderMark.size());
    if (bytes.size() > context.mostUnits) throw plainError(errors::ValueTooLarge);
    std::u16string const source = textOfBytes(bytes);
    try {
        Evaluator inner(evaluator.state(), evaluator.options());
        return inner.load(ScriptParser(source, terminologySource()).parse());
    } catch (ScriptError& error) {
        // The place is one in the other source.
        error.range.reset();
        error.isSyntax = false;
        throw;
    }
}

} // namespace mac::applescript::additions
