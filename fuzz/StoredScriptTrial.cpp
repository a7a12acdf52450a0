#include "fuzz/Trials.h"
#include "platform/applescript/additions/StoredForms.h"
#include "platform/applescript/runtime/ScriptError.h"

namespace mac::fuzz {

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

} // namespace mac::fuzz
