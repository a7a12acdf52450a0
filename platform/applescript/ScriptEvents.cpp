#include "platform/applescript/NSAppleScriptBody.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/events/EventDispatch.h"
#include <algorithm>
#include <array>

// Events that a script itself is to handle.

namespace mac {

namespace {

using namespace applescript;

constexpr AEKeyword GivenParameters{"givn"};

struct PrepositionRow {
    AEKeyword keyword;
    std::u16string_view label;
};

constexpr auto Prepositions = std::to_array<PrepositionRow>({
    {AEKeyword("abou"), u"about"},      {AEKeyword("abve"), u"above"},   {AEKeyword("agst"), u"against"},
    {AEKeyword("aprt"), u"apart from"}, {AEKeyword("arnd"), u"around"},  {AEKeyword("asdf"), u"aside from"},
    {AEKeyword("at  "), u"at"},         {AEKeyword("belw"), u"below"},   {AEKeyword("bnth"), u"beneath"},
    {AEKeyword("bsid"), u"beside"},     {AEKeyword("btwn"), u"between"}, {AEKeyword("by  "), u"by"},
    {AEKeyword("for "), u"for"},        {AEKeyword("from"), u"from"},    {AEKeyword("isto"), u"instead of"},
    {AEKeyword("into"), u"into"},       {AEKeyword("on  "), u"on"},      {AEKeyword("onto"), u"onto"},
    {AEKeyword("outo"), u"out of"},     {AEKeyword("over"), u"over"},    {AEKeyword("snce"), u"since"},
    {AEKeyword("thru"), u"thru"},       {AEKeyword("thgh"), u"through"}, {AEKeyword("undr"), u"under"},
});

void addGiven(HandlerMessage& message, Value const& given) {
    if (given.is(ValueKind::Record)) {
        for (auto const& field : given.fields())
            message.labeled.push_back(field);
        return;
    }
    if (!given.is(ValueKind::List) || given.items().size() % 2 != 0) throw plainError(errors::CorruptData);
    std::vector<Value> const& items = given.items();
    for (std::size_t index = 0; index < items.size(); index += 2) {
        if (!items[index].is(ValueKind::Text)) throw plainError(errors::CorruptData);
        message.labeled.emplace_back(identifierSymbol(items[index].units()), items[index + 1]);
    }
}

void addParameter(HandlerMessage& message, DescriptorEntry const& entry) {
    if (entry.keyword == keyASSubroutineName) return;
    Value const value = valueOfDescriptor(entry.desc);
    if (entry.keyword == keyDirectObject) {
        message.direct = value;
        return;
    }
    if (entry.keyword == keyASUserRecordFields || entry.keyword == GivenParameters) return addGiven(message, value);
    auto const* const row = std::ranges::find(Prepositions, entry.keyword, &PrepositionRow::keyword);
    if (row != Prepositions.end()) message.labeled.emplace_back(identifierSymbol(row->label), value);
}

ScriptOutcome callHandler(CompiledScript& script, AppleEvent const& event, RunOptions const& options) {
    HandlerMessage message;
    std::vector<DescriptorEntry> const& parameters = contentsOf(event).entries;
    AEDesc const* const name = findEntry(parameters, keyASSubroutineName);
    std::optional<AEDesc> const text = name ? mac::coerced(*name, typeUnicodeText) : std::nullopt;
    std::optional<std::u16string> const units = text ? plainTextOf(*text) : std::nullopt;
    if (!units) throw plainError(errors::NotUnderstood);
    message.name = *units;
    for (DescriptorEntry const& parameter : parameters)
        addParameter(message, parameter);
    return script.call(options, message);
}

CommandArguments argumentsOf(AppleEvent const& event) {
    CommandArguments arguments;
    for (DescriptorEntry const& entry : contentsOf(event).entries) {
        Value const value = valueOfDescriptor(entry.desc);
        if (entry.keyword == keyDirectObject)
            arguments.direct = value;
        else
            arguments.named.emplace_back(entry.keyword.value(), value);
    }
    return arguments;
}

ScriptOutcome performEvent(CompiledScript& script, AppleEvent const& event, RunOptions const& options) {
    if (!isEvent(event)) throw plainError(errors::NotUnderstood);
    constexpr unsigned bitsOfCode = 32;
    Code const eventClass = codeAttribute(event, keyEventClassAttr);
    Code const eventID = codeAttribute(event, keyEventIDAttr);
    bool const isCall = eventClass == kASAppleScriptSuite.value() && eventID == kASSubroutineEvent.value();
    if (isCall) return callHandler(script, event, options);
    CommandArguments const arguments = argumentsOf(event);
    bool const isRun = eventClass == kCoreEventClass.value() && eventID == kAEOpenApplication.value();
    if (!isRun) return script.handle(options, EventCode{eventClass} << bitsOfCode | eventID, arguments);
    if (arguments.direct.is(ValueKind::List)) return script.run(options, arguments.direct.items());
    return script.run(options, arguments.direct.isNothing() ? std::vector<Value>() : std::vector{arguments.direct});
}

} // namespace

ScriptOutcome perform(CompiledScript& script, AppleEvent const& event, RunOptions const& options) {
    try {
        return performEvent(script, event, options);
    } catch (ScriptError const& error) {
        return {.error = error};
    }
}

} // namespace mac
