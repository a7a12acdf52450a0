#include "fuzz/Trials.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/foundation/text/Encodings.h"
#include <optional>

namespace mac::fuzz {

namespace {

using namespace mac::applescript;

std::optional<std::u16string> formOf(Value const& value) {
    try {
        return sourceForm(value);
    } catch (ScriptError const&) {
        return {};
    }
}

std::optional<Value> valueIn(AEDesc const& desc, std::string& complaint) {
    try {
        return valueOfDescriptor(desc);
    } catch (ScriptError const& error) {
        if (error.number == 0 || error.message.empty()) complaint = "an error that says nothing";
        return {};
    }
}

} // namespace

std::string complaintAboutScriptDescriptor(std::span<std::byte const> bytes) {
    Result<AEDesc, Failure> const desc = unflattened(bytes);
    if (!desc.hasValue()) return {};
    std::string complaint;
    std::optional<Value> const value = valueIn(desc.value(), complaint);
    if (!value) return complaint;
    AEDesc again;
    try {
        again = descriptorOfValue(*value);
    } catch (ScriptError const&) {
        return {};
    }
    std::optional<Value> const second = valueIn(again, complaint);
    if (!second) return "what was written cannot be read";
    std::optional<std::u16string> const first = formOf(*value);
    std::optional<std::u16string> const form = formOf(*second);
    if (first == form) return {};
    return utf8FromUnits(first.value_or(u"no form")) + " became " + utf8FromUnits(form.value_or(u"no form"));
}

} // namespace mac::fuzz
