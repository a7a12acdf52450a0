#include "fuzz/Trials.h"
#include "platform/applescript/additions/StoredForms.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/applescript/runtime/ScalarText.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/ScriptError.h"
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
    // A look is taken after every command and every 256 steps.
    constexpr unsigned mostLooks = 512;
    std::u16string const source = unitsFromFileSystemBytes(bytes);
    TextContext& text = engineState().text;
    text = TextContext();
    text.mostUnits = mostUnits;
    text.mostItems = mostItems;
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    if (!script) return complaintAboutError(error, source.size());
    unsigned looks = 0;
    RunLimits const limits([&looks] { return ++looks <= mostLooks; }, std::nullopt);
    ScriptOutcome const outcome = script->run({.computesOnly = true});
    // A message of a script's own may be anything.
    if (outcome.error) return outcome.error->range ? std::string() : "an error without a place";
    try {
        sourceForm(outcome.value);
    } catch (ScriptError const& thrown) {
        return complaintAboutError({.number = thrown.number, .message = thrown.message, .range = SourceRange{}}, 0);
    }
    return {};
}

using namespace mac::applescript;

std::string complaintAboutStoredScript(std::span<std::byte const> bytes) {
    std::string const content(reinterpret_cast<char const*>(bytes.data()), bytes.size());
    std::optional<std::u16string> source;
    try {
        source = sourceInStoredScript(content);
    } catch (ScriptError const&) {
        return content.starts_with('%') ? std::string() : "bytes of another kind are refused";
    }
    if (!source) return {};
    // The number of bytes may have been written with zeros before it.
    std::string const again = storedScript(*source);
    if (sourceInStoredScript(again) != source) return "what was written cannot be read";
    return again.size() <= content.size() ? std::string() : "it has more bytes than it was read from";
}

using namespace mac::applescript;

std::string complaintAboutDateText(std::string_view bytes) {
    std::u16string const text = unitsFromFileSystemBytes(bytes);
    if (std::optional<std::int64_t> const date = dateInISOText(text)) {
        // Years after 9999 and before 0 are written in another form.
        std::int64_t const year = partsOfDate(*date).year;
        if (year >= 0 && year <= 9999 && dateInISOText(isoDateText(*date)) != date)
            return "an ISO date comes back otherwise";
    }
    constexpr std::int64_t base = 3'800'000'000;
    std::optional<std::int64_t> const date = dateInText(text, base);
    if (!date) return "";
    if (dateOfParts(partsOfDate(*date)) != *date) return "a date has the parts of another";
    std::int64_t const year = partsOfDate(*date).year;
    if (year < 1000 || year > 9999) return "";
    return dateInText(fullDateText(*date), base) == date ? "" : "a date that was written is read otherwise";
}

} // namespace mac::fuzz
