#include "platform/applescript/additions/StoredScript.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/foundation/text/Encodings.h"
#include <charconv>
#include <system_error>

namespace mac::applescript {

namespace {

// What every version begins with, and this one.
constexpr std::string_view AnyVersion = "%Framekeeper script ";
constexpr std::string_view ThisVersion = "%Framekeeper script 1, ";
constexpr std::string_view EndOfLine = " bytes\n";

// The rest behind the beginning, of which the text may hold a part only.
std::string_view restBehind(std::string_view beginning, std::string_view text) {
    if (text.starts_with(beginning)) return text.substr(beginning.size());
    throw plainError(beginning.starts_with(text) ? errors::EndOfFile : errors::CorruptData);
}

} // namespace

std::string storedScript(std::u16string const& source) {
    std::string const text = utf8FromUnits(source);
    if (text.size() > MostScriptBytes) throw plainError(errors::ValueTooLarge);
    if (unitsFromUTF8(text) != source) throw plainError(errors::CannotCoerce);
    return std::string(ThisVersion) + std::to_string(text.size()) + std::string(EndOfLine) + text;
}

std::optional<std::u16string> sourceInStoredScript(std::string_view bytes) {
    bool const isStart = !bytes.empty() && AnyVersion.starts_with(bytes);
    if (!isStart && !bytes.starts_with(AnyVersion)) return {};
    std::string_view const numbered = restBehind(ThisVersion, bytes);
    std::size_t count = 0;
    char const* const end = numbered.data() + numbered.size();
    std::from_chars_result const read = std::from_chars(numbered.data(), end, count);
    if (numbered.empty()) throw plainError(errors::EndOfFile);
    if (read.ec == std::errc::result_out_of_range) throw plainError(errors::ValueTooLarge);
    if (read.ec != std::errc()) throw plainError(errors::CorruptData);
    std::string_view const text =
        restBehind(EndOfLine, numbered.substr(static_cast<std::size_t>(read.ptr - numbered.data())));
    if (count > MostScriptBytes) throw plainError(errors::ValueTooLarge);
    if (text.size() != count) throw plainError(text.size() < count ? errors::EndOfFile : errors::CorruptData);
    std::optional<std::u16string> source = unitsFromUTF8(text);
    if (!source) throw plainError(errors::CorruptData);
    return source;
}

} // namespace mac::applescript
