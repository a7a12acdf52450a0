#include "platform/applescript/language/LanguageCodes.h"
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
    {u"item", u"items", codes::Item},
    {u"text", u"", codes::TextType},
    {u"string", u"strings", codes::StringType},
    {u"Unicode text", u"", codes::UnicodeTextType},
    {u"international text", u"", codeOf("itxt")},
    {u"styled text", u"", codeOf("STXT")},
    {u"character", u"characters", codes::CharacterType},
    {u"word", u"words", codes::WordType},
    {u"paragraph", u"paragraphs", codes::ParagraphType},
    {u"text item", u"text items", codes::TextItemType},
    {u"integer", u"integers", codes::IntegerType},
    {u"real", u"reals", codes::RealType},
    {u"number", u"numbers", codes::NumberType},
    {u"boolean", u"booleans", codes::BooleanType},
    {u"list", u"lists", codes::ListType},
    {u"record", u"records", codes::RecordType},
    {u"date", u"dates", codes::DateType},
    {u"alias", u"aliases", codes::AliasType},
    {u"file", u"files", codes::File},
    {u"POSIX file", u"POSIX files", codes::POSIXFileType},
    {u"script", u"scripts", codes::ScriptType},
    {u"class", u"classes", codes::ClassType},
    {u"constant", u"constants", codes::ConstantType},
    {u"handler", u"handlers", codes::HandlerType},
    {u"data", u"", codes::DataType},
    {u"application", u"applications", codes::Application},
    {u"month", u"", codes::MonthType},
    {u"weekday", u"weekdays", codes::WeekdayType},
    {u"anything", u"", codes::AnyType},
    {u"reference", u"references", codes::ReferenceType},
    {u"number or date", u"", codeOf("nd  ")},
    {u"location reference", u"", codes::InsertionLocation},
});

// Properties of values, of scripts and of AppleScript itself.
constexpr auto LanguageProperties = std::to_array<LanguageNameRow>({
    {u"class", codes::Class},
    {u"contents", codes::Contents},
    {u"length", codes::Length},
    {u"rest", codes::Rest},
    {u"reverse", codes::Reverse},
    {u"id", codes::Identifier},
    {u"name", codes::Name},
    {u"version", codes::Version},
    {u"running", codes::Running},
    {u"frontmost", codes::Frontmost},
    {u"parent", codes::Parent},
    {u"properties", codes::Properties},
    {u"quoted form", codes::QuotedForm},
    {u"POSIX path", codes::POSIXPath},
    {u"text item delimiters", codes::TextItemDelimiters},
    {u"month", codes::MonthType},
    {u"weekday", codes::WeekdayType},
    {u"day", codes::Day},
    {u"year", codes::Year},
    {u"time", codes::Time},
    {u"hours", codes::Hours},
    {u"minutes", codes::Minutes},
    {u"seconds", codes::Seconds},
    {u"days", codes::Days},
    {u"weeks", codes::Weeks},
    {u"date string", codes::DateString},
    {u"short date string", codes::ShortDateString},
    {u"time string", codes::TimeString},
    {u"space", codes::Space},
    {u"tab", codes::Tab},
    {u"linefeed", codes::Linefeed},
    {u"quote", codes::Quote},
    {u"pi", codes::Pi},
});

constexpr auto LanguageConstants = std::to_array<LanguageNameRow>({
    {u"yes", codes::Yes},
    {u"no", codes::No},
    {u"ask", codes::Ask},
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
    {u"missing value", codes::MissingValue},
    {u"null", codes::Null},
    {u"January", codes::January},
    {u"February", codes::February},
    {u"March", codes::March},
    {u"April", codes::April},
    {u"May", codes::May},
    {u"June", codes::June},
    {u"July", codes::July},
    {u"August", codes::August},
    {u"September", codes::September},
    {u"October", codes::October},
    {u"November", codes::November},
    {u"December", codes::December},
    {u"Sunday", codes::Sunday},
    {u"Monday", codes::Monday},
    {u"Tuesday", codes::Tuesday},
    {u"Wednesday", codes::Wednesday},
    {u"Thursday", codes::Thursday},
    {u"Friday", codes::Friday},
    {u"Saturday", codes::Saturday},
});

constexpr auto SavingAnswers =
    std::to_array<Enumerator>({{u"yes", codes::Yes}, {u"no", codes::No}, {u"ask", codes::Ask}});
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
