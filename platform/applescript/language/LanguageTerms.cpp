#include "platform/applescript/language/Terminology.h"
#include "platform/applescript/language/Units.h"
#include <array>

namespace mac::applescript {

namespace {

struct LanguageClassRow {
    std::u16string_view name;
    std::u16string_view plural;
    Code code;
};

struct LanguageNameRow {
    std::u16string_view name;
    Code code;
};

constexpr auto LanguageClasses = std::to_array<LanguageClassRow>({
    {u"item", u"items", codeOf("cobj")},
    {u"text", u"", codeOf("ctxt")},
    {u"string", u"strings", codeOf("TEXT")},
    {u"Unicode text", u"", codeOf("utxt")},
    {u"international text", u"", codeOf("itxt")},
    {u"styled text", u"", codeOf("STXT")},
    {u"character", u"characters", codeOf("cha ")},
    {u"word", u"words", codeOf("cwor")},
    {u"paragraph", u"paragraphs", codeOf("cpar")},
    {u"text item", u"text items", codeOf("citm")},
    {u"integer", u"integers", codeOf("long")},
    {u"real", u"reals", codeOf("doub")},
    {u"number", u"numbers", codeOf("nmbr")},
    {u"boolean", u"booleans", codeOf("bool")},
    {u"list", u"lists", codeOf("list")},
    {u"record", u"records", codeOf("reco")},
    {u"date", u"dates", codeOf("ldt ")},
    {u"alias", u"aliases", codeOf("alis")},
    {u"file", u"files", codeOf("file")},
    {u"POSIX file", u"POSIX files", codeOf("psxf")},
    {u"script", u"scripts", codeOf("scpt")},
    {u"class", u"classes", codeOf("pcls")},
    {u"constant", u"constants", codeOf("enum")},
    {u"handler", u"handlers", codeOf("hand")},
    {u"data", u"", codeOf("rdat")},
    {u"application", u"applications", codeOf("capp")},
    {u"month", u"", codeOf("mnth")},
    {u"weekday", u"weekdays", codeOf("wkdy")},
    {u"anything", u"", codeOf("****")},
    {u"reference", u"references", codeOf("obj ")},
    {u"number or date", u"", codeOf("nd  ")},
    {u"location reference", u"", codeOf("insl")},
});

// Properties of values, of scripts and of AppleScript itself.
constexpr auto LanguageProperties = std::to_array<LanguageNameRow>({
    {u"class", codeOf("pcls")},       {u"contents", codeOf("pcnt")},    {u"length", codeOf("leng")},
    {u"rest", codeOf("rest")},        {u"reverse", codeOf("rvse")},     {u"id", codeOf("ID  ")},
    {u"name", codeOf("pnam")},        {u"version", codeOf("vers")},     {u"running", codeOf("prun")},
    {u"frontmost", codeOf("pisf")},   {u"parent", codeOf("pare")},      {u"properties", codeOf("pALL")},
    {u"quoted form", codeOf("strq")}, {u"POSIX path", codeOf("psxp")},  {u"text item delimiters", codeOf("txdl")},
    {u"month", codeOf("mnth")},       {u"weekday", codeOf("wkdy")},     {u"day", codeOf("day ")},
    {u"year", codeOf("year")},        {u"time", codeOf("time")},        {u"hours", codeOf("hour")},
    {u"minutes", codeOf("min ")},     {u"seconds", codeOf("scnd")},     {u"days", codeOf("days")},
    {u"weeks", codeOf("week")},       {u"date string", codeOf("dstr")}, {u"short date string", codeOf("shdt")},
    {u"time string", codeOf("tstr")}, {u"space", codeOf("spac")},       {u"tab", codeOf("tab ")},
    {u"linefeed", codeOf("lnfd")},    {u"quote", codeOf("quot")},       {u"pi", codeOf("pi  ")},
});

constexpr auto LanguageConstants = std::to_array<LanguageNameRow>({
    {u"yes", codeOf("yes ")},
    {u"no", codeOf("no  ")},
    {u"ask", codeOf("ask ")},
    {u"case", codeOf("case")},
    {u"diacriticals", codeOf("diac")},
    {u"white space", codeOf("whit")},
    {u"hyphens", codeOf("hyph")},
    {u"punctuation", codeOf("punc")},
    {u"expansion", codeOf("expa")},
    {u"numeric strings", codeOf("nume")},
    {u"application responses", codeOf("rmte")},
});

constexpr auto Values = std::to_array<LanguageNameRow>({
    {u"missing value", codeOf("msng")}, {u"null", codeOf("null")},      {u"January", codeOf("jan ")},
    {u"February", codeOf("feb ")},      {u"March", codeOf("mar ")},     {u"April", codeOf("apr ")},
    {u"May", codeOf("may ")},           {u"June", codeOf("jun ")},      {u"July", codeOf("jul ")},
    {u"August", codeOf("aug ")},        {u"September", codeOf("sep ")}, {u"October", codeOf("oct ")},
    {u"November", codeOf("nov ")},      {u"December", codeOf("dec ")},  {u"Sunday", codeOf("sun ")},
    {u"Monday", codeOf("mon ")},        {u"Tuesday", codeOf("tue ")},   {u"Wednesday", codeOf("wed ")},
    {u"Thursday", codeOf("thu ")},      {u"Friday", codeOf("fri ")},    {u"Saturday", codeOf("sat ")},
});

constexpr auto SavingAnswers =
    std::to_array<Enumerator>({{u"yes", codeOf("yes ")}, {u"no", codeOf("no  ")}, {u"ask", codeOf("ask ")}});
constexpr auto QuitParameters =
    std::to_array<CommandParameter>({{.label = u"saving", .code = codeOf("savo"), .enumerators = SavingAnswers}});

constexpr auto LanguageCommands = std::to_array<CommandTerm>({
    {.name = u"exists", .code = eventOf("coredoex"), .direct = DirectParameter::Required},
    {.name = u"run", .code = eventOf("aevtoapp"), .direct = DirectParameter::Optional},
    {.name = u"launch", .code = eventOf("ascrnoop"), .direct = DirectParameter::Optional},
    {.name = u"activate", .code = eventOf("miscactv"), .direct = DirectParameter::Optional},
    {.name = u"reopen", .code = eventOf("aevtrapp"), .direct = DirectParameter::Optional},
    {.name = u"open", .code = eventOf("aevtodoc"), .direct = DirectParameter::Required},
    {.name = u"print", .code = eventOf("aevtpdoc"), .direct = DirectParameter::Required},
    {.name = u"quit", .code = eventOf("aevtquit"), .direct = DirectParameter::Optional, .parameters = QuitParameters},
    {.name = u"idle", .code = eventOf("miscidle"), .direct = DirectParameter::Optional},
    {.name = u"log", .code = eventOf("ascrcmnt"), .direct = DirectParameter::Optional},
});

} // namespace

void addLanguageTerms(Terminology& terms) {
    for (LanguageClassRow const& row : LanguageClasses)
        terms.addClass(row.name, row.plural, row.code);
    for (LanguageNameRow const& row : LanguageProperties)
        terms.addProperty(row.name, row.code);
    for (LanguageNameRow const& row : LanguageConstants)
        terms.addConstant(row.name, row.code);
    for (LanguageNameRow const& row : Values)
        terms.addValue(row.name, row.code);
    for (CommandTerm const& command : LanguageCommands)
        terms.addCommand(command);
    for (Unit const& unit : allUnits()) {
        terms.addClass(unit.name, u"", unit.code);
        if (!unit.otherName.empty()) terms.addClass(unit.otherName, u"", unit.code);
    }
}

} // namespace mac::applescript
