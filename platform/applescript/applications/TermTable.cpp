#include "platform/applescript/applications/TermTable.h"
#include <array>

namespace mac::applescript {

namespace {

constexpr auto CommonClasses = std::to_array<ClassTerm>({
    {u"window", u"windows", codeOf("cwin")},
    {u"document", u"documents", codeOf("docu")},
    {u"alias list", u"", codeOf("alst")},
});

constexpr auto CommonProperties = std::to_array<PropertyTerm>({
    {u"name", codeOf("pnam")},
    {u"id", codeOf("ID  ")},
    {u"version", codeOf("vers")},
    {u"running", codeOf("prun")},
    {u"frontmost", codeOf("pisf")},
    {u"properties", codeOf("pALL")},
    {u"index", codeOf("pidx")},
});

constexpr auto Make = std::to_array<CommandParameter>({
    {.label = u"new", .code = codeOf("kocl")},
    {.label = u"at", .code = codeOf("insh")},
    {.label = u"to", .code = codeOf("to  ")},
    {.label = u"with data", .code = codeOf("data")},
    {.label = u"with properties", .code = codeOf("prdt")},
});
constexpr auto DestinationParameters = std::to_array<CommandParameter>({
    {.label = u"to", .code = codeOf("insh")},
    {.label = u"replacing", .code = codeOf("alrp"), .isBoolean = true},
    {.label = u"routing suppressed", .code = codeOf("rout"), .isBoolean = true},
    {.label = u"exact copy", .code = codeOf("exct"), .isBoolean = true},
});
constexpr auto Answers =
    std::to_array<Enumerator>({{u"yes", codeOf("yes ")}, {u"no", codeOf("no  ")}, {u"ask", codeOf("ask ")}});
constexpr auto Close = std::to_array<CommandParameter>({
    {.label = u"saving in", .code = codeOf("kfil")},
    {.label = u"saving", .code = codeOf("savo"), .enumerators = Answers},
});
constexpr auto Save = std::to_array<CommandParameter>(
    {{.label = u"in", .code = codeOf("kfil")}, {.label = u"as", .code = codeOf("fltp")}});

constexpr auto CommonOptional = DirectParameter::Optional;
constexpr auto CommonRequired = DirectParameter::Required;

constexpr auto CommonCommands = std::to_array<CommandTerm>({
    {.name = u"make", .code = eventOf("corecrel"), .direct = CommonOptional, .parameters = Make},
    {.name = u"delete", .code = eventOf("coredelo"), .direct = CommonOptional},
    {.name = u"move", .code = eventOf("coremove"), .direct = CommonOptional, .parameters = DestinationParameters},
    {.name = u"duplicate", .code = eventOf("coreclon"), .direct = CommonOptional, .parameters = DestinationParameters},
    {.name = u"close", .code = eventOf("coreclos"), .direct = CommonOptional, .parameters = Close},
    {.name = u"save", .code = eventOf("coresave"), .direct = CommonOptional, .parameters = Save},
    {.name = u"select", .code = eventOf("miscslct"), .direct = CommonRequired},
    {.name = u"reveal", .code = eventOf("miscmvis"), .direct = CommonRequired},
});

} // namespace

Terminology terminologyOf(TermTable const& table) {
    Terminology terms;
    for (std::span<ClassTerm const> const rows : {std::span<ClassTerm const>(CommonClasses), table.classes})
        for (ClassTerm const& row : rows)
            terms.addClass(row.name, row.plural, row.code);
    for (std::span<PropertyTerm const> const rows : {std::span<PropertyTerm const>(CommonProperties), table.properties})
        for (PropertyTerm const& row : rows)
            terms.addProperty(row.name, row.code);
    for (PropertyTerm const& row : table.constants)
        terms.addConstant(row.name, row.code);
    for (std::span<CommandTerm const> const rows : {std::span<CommandTerm const>(CommonCommands), table.commands})
        for (CommandTerm const& row : rows)
            terms.addCommand(row);
    return terms;
}

} // namespace mac::applescript
