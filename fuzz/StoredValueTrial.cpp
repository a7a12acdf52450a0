#include "fuzz/Trials.h"
#include "platform/applescript/additions/StoredForms.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/ScriptError.h"
#include <array>
#include <optional>

namespace mac::fuzz {

namespace {

using namespace mac::applescript;

constexpr auto StoredClasses = std::to_array<Code>(
    {codes::IntegerType, codes::RealType, codes::BooleanType, codes::DateType, codes::ListType, codes::RecordType});

std::optional<StoredValue> storedIn(std::string_view bytes, Code type) {
    try {
        return storedValueIn(bytes, type);
    } catch (ScriptError const&) {
        return {};
    }
}

} // namespace

std::string complaintAboutStoredValue(std::span<std::byte const> bytes) {
    if (bytes.empty()) return {};
    Code const type = StoredClasses.at(static_cast<std::size_t>(bytes.front()) % StoredClasses.size());
    std::string_view const content(reinterpret_cast<char const*>(bytes.data()) + 1, bytes.size() - 1);
    std::optional<StoredValue> const read = storedIn(content, type);
    if (!read) return {};
    if (read->size > content.size()) return "it takes more bytes than there are";
    std::string written;
    try {
        written = storedBytes(read->value, type);
    } catch (ScriptError const&) {
        // A real where integers are stored, or a list of raw data that claims to be of another class, cannot be written
        // again.
        return {};
    }
    std::optional<StoredValue> const again = storedIn(written, type);
    if (!again) return "what was written cannot be read";
    if (again->size != written.size()) return "bytes are left over";
    return storedBytes(again->value, type) == written ? std::string() : "written twice it differs";
}

} // namespace mac::fuzz
