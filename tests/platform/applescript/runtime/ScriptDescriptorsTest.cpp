#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/NSAppleScript.h"
#include "platform/applescript/runtime/DescriptorKeywords.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/platform/applescript/ScriptHome.h"
#include <gtest/gtest.h>

namespace mac::applescript::test {

namespace {

Value valueOfSource(std::u16string_view source) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    EXPECT_TRUE(script) << utf8FromUnits(error.message);
    ScriptOutcome const outcome = script ? script->run({}) : ScriptOutcome();
    EXPECT_FALSE(outcome.error) << utf8FromUnits(source) << ": "
                                << utf8FromUnits(outcome.error.value_or(ScriptError()).message);
    return outcome.value;
}

std::string printed(AEDesc const& desc) {
    std::string const text = NSAppleEventDescriptor::descriptorWithAEDesc(desc).description().UTF8String();
    constexpr std::string_view opening = "<NSAppleEventDescriptor: ";
    return text.substr(opening.size(), text.size() - opening.size() - 1);
}

std::string printedValue(std::u16string_view source, Value const& application = {}) {
    return printed(descriptorOfValue(valueOfSource(source), application));
}

// The source form of the value after a way through a descriptor.
std::string roundTrip(std::u16string_view source, Value const& application = {}) {
    return utf8FromUnits(
        sourceForm(valueOfDescriptor(descriptorOfValue(valueOfSource(source), application), application)));
}

template <class Function>
std::int32_t errorNumber(Function function) {
    try {
        function();
    } catch (ScriptError const& error) {
        return error.number;
    }
    return 0;
}

std::int32_t readingError(AEDesc const& desc) {
    return errorNumber([&] { valueOfDescriptor(desc); });
}

AEDesc codeDesc(DescType type, Code code) { return makeDescOf(type, code); }

AEDesc bytesDesc(DescType type, std::string_view bytes) { return makeDesc(type, std::as_bytes(std::span(bytes))); }

AEDesc record(DescType type, std::initializer_list<std::pair<AEKeyword, AEDesc>> fields) {
    AEDesc made = makeContainer(type, DescriptorForm::Record);
    for (auto const& [keyword, value] : fields)
        EXPECT_TRUE(putEntry(made, keyword, value));
    return made;
}

AEDesc list(std::initializer_list<AEDesc> items) {
    AEDesc made = makeContainer(typeAEList, DescriptorForm::List);
    for (AEDesc const& item : items)
        EXPECT_TRUE(putItem(made, 0, item));
    return made;
}

TEST(ScriptDescriptors, EveryKindOfValueHasItsType) {
    struct Row {
        std::u16string_view source;
        std::string_view type;
    };
    constexpr auto rows = std::to_array<Row>({
        {u"true", "'true'(\"true\")"},
        {u"false", "'fals'(\"false\")"},
        {u"-7", "-7"},
        {u"1.5", "'doub'(\"1.5\")"},
        {u"536870912", "'doub'(\"536870912\")"},
        {u"\"añ\"", "'utxt'(\"añ\")"},
        {u"\"\"", "'utxt'(\"\")"},
        {u"missing value", "'msng'"},
        {u"null", "'null'()"},
        {u"integer", "'long'"},
        {u"March", "'mar '"},
        {u"yes", "'yes '"},
        {u"{1, {\"a\"}, {}}", "[ 1, [ 'utxt'(\"a\") ], [  ] ]"},
        {u"{name:\"x\", |my key|:1, b:2}",
         R"x({ 'pnam':'utxt'("x"), 'usrf':[ 'utxt'("my key"), 1, 'utxt'("b"), 2 ] })x"},
        {u"{class:application, name:\"x\"}", "'capp'{ 'pnam':'utxt'(\"x\") }"},
        {u"{class:integer, name:\"x\"}", "{ 'pcls':'long', 'pnam':'utxt'(\"x\") }"},
        {u"«data abcd00FF»", "'abcd'($00FF$)"},
        {u"current application", "'psn '($0000000002000000$)"},
        {u"script x\nend script\nx", "'scpt'($78$)"},
        {u"AppleScript", "'ascr'"},
    });
    // The way of files to text.
    classOf<NSAppleScript>();
    for (Row const& row : rows)
        EXPECT_EQ(printedValue(row.source), row.type) << utf8FromUnits(row.source);
    std::string const volume = utf8FromUnits(nameOfStartupVolume());
    EXPECT_EQ(printedValue(u"POSIX file \"/a b/ñ\""), "'furl'(\"" + volume + ":a b:ñ\")");
    EXPECT_EQ(printed(descriptorOfValue({})), "'null'()");
}

TEST(ScriptDescriptors, AWeekdayIsEnumeratedAndMissingValueAType) {
    EXPECT_EQ(descriptorOfValue(valueOfSource(u"Monday")).descriptorType, typeEnumerated);
    EXPECT_EQ(descriptorOfValue(valueOfSource(u"missing value")).descriptorType, typeType);
    EXPECT_EQ(descriptorOfValue(valueOfSource(u"yes")).descriptorType, typeEnumerated);
}

TEST(ScriptDescriptors, ADateCountsTheSecondsOfLocalTimeSince1904) {
    AEDesc const desc = descriptorOfValue(valueOfSource(u"date \"January 2, 1904 12:00:05 AM\""));
    EXPECT_EQ(desc.descriptorType, typeLongDateTime);
    EXPECT_EQ(mac::valueOf<std::int64_t>(desc, typeLongDateTime), 86405);
}

TEST(ScriptDescriptors, ValuesComeBackAsTheyWent) {
    struct Row {
        std::u16string_view source;
        std::string_view form;
    };
    constexpr auto rows = std::to_array<Row>({
        {u"true", "true"},
        {u"-12", "-12"},
        {u"0.1", "0.1"},
        {u"\"a\\\"b\"", "\"a\\\"b\""},
        {u"{}", "{}"},
        {u"{1, {2, \"c\"}, missing value, null}", "{1, {2, \"c\"}, missing value, null}"},
        {u"{class:application, name:\"x\", |my key|:{1, 2}}", "{class:application, name:\"x\", |my key|:{1, 2}}"},
        {u"date \"Friday, November 9, 2007 11:35:50 AM\"", "date \"Friday, November 9, 2007 11:35:50 AM\""},
        {u"March", "March"},
        {u"Friday", "Friday"},
        {u"yes", "yes"},
        {u"integer", "integer"},
        {u"«data abcd00FF»", "«data abcd00FF»"},
        {u"current application", "current application"},
        {u"application \"No Such One\"", "application \"No Such One\""},
        {u"application id \"com.example.none\"", "application id \"com.example.none\""},
    });
    for (Row const& row : rows)
        EXPECT_EQ(roundTrip(row.source), row.form);
}

TEST(ScriptDescriptors, TextKeepsALoneSurrogate) {
    std::u16string const units{u'a', char16_t{0xDCE9}, u'b'};
    EXPECT_EQ(valueOfDescriptor(descriptorOfValue(Value::text(units))).units(), units);
}

TEST(ScriptDescriptors, TextKeepsAMarkOfByteOrderThatItBeginsWith) {
    for (char16_t const mark : {char16_t{0xFEFF}, char16_t{0xFFFE}}) {
        std::u16string const units{mark, u'a', u'b'};
        AEDesc const desc = descriptorOfValue(Value::text(units));
        EXPECT_EQ(valueOfDescriptor(desc).units(), units);
        std::u16string const alone{mark};
        EXPECT_EQ(valueOfDescriptor(descriptorOfValue(Value::text(alone))).units(), alone);
        EXPECT_EQ(valueOfDescriptor(descriptorOfValue(Value::list({Value::text(units)}))).items()[0].units(), units);
    }
}

TEST(ScriptDescriptors, AFileKeepsBytesThatAreNoText) {
    std::u16string const path = unitsFromFileSystemBytes("/a%20b/\xE9 c\n\"?#");
    Value const file = makeObject<FileObject>(ValueKind::File, FileObject::Kind::PosixFile, path);
    Value const alias = makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias, path);
    EXPECT_EQ(valueOfDescriptor(descriptorOfValue(file)).file().path, path);
    EXPECT_EQ(valueOfDescriptor(descriptorOfValue(alias)).file().path, path);
    EXPECT_EQ(valueOfDescriptor(descriptorOfValue(alias)).file().kind, FileObject::Kind::Alias);
    Value const none = makeObject<FileObject>(ValueKind::File, FileObject::Kind::PosixFile, u"/\xD800");
    EXPECT_EQ(errorNumber([&] { descriptorOfValue(none); }), errors::CannotCoerce);
}

TEST(ScriptDescriptors, AFileIsReadFromEveryFormOfItsURL) {
    EXPECT_EQ(valueOfDescriptor(bytesDesc(typeFileURL, "file:///a%20b")).file().path, u"/a b");
    EXPECT_EQ(valueOfDescriptor(bytesDesc(typeFileURL, "file://localhost/a")).file().path, u"/a");
    for (std::string_view const wrong :
         {"", "/a", "http://localhost/a", "file://elsewhere/a", "file:///a%2", "file:///a%zz", "file:///a%00"})
        EXPECT_EQ(readingError(bytesDesc(typeFileURL, wrong)), errors::CorruptData) << wrong;
}

TEST(ScriptDescriptors, AContainerOfTheTypeOfFilesIsNoFile) {
    installFileCoercions();
    for (DescType const type : {keywords::AliasType, typeFileURL})
        for (DescriptorForm const form : {DescriptorForm::List, DescriptorForm::Record})
            for (DescType const wanted : {typeUnicodeText, keywords::AliasType, typeFileURL}) {
                AEDesc const container = makeContainer(type, form);
                AEDesc result;
                bool const isItself = wanted == type;
                EXPECT_EQ(AECoerceDesc(&container, wanted, &result), isItself ? noErr : errAECoercionFail);
            }
}

Value finder() { return makeObject<ApplicationObject>(ValueKind::Application, u"Finder", false); }

TEST(ScriptDescriptors, AReferenceIsRootedInTheApplicationItIsSentTo) {
    Value const specifier =
        elementSpecifier(Form::Name, codeOf("file"), propertySpecifier(termSymbol(codeOf("home"), u"home"), finder()),
                         Value::text(u"a"));
    EXPECT_EQ(
        printed(descriptorOfValue(specifier, makeObject<ApplicationObject>(ValueKind::Application, u"FINDER", false))),
        "'obj '{ 'want':'file', 'form':'name', 'seld':'utxt'(\"a\"), 'from':'obj '{ 'want':'prop', 'form':'prop', "
        "'seld':'home', 'from':'null'() } }");
    std::string const rooted = printed(descriptorOfValue(specifier));
    EXPECT_TRUE(rooted.ends_with("'from':'aprl'($657070633A2F2F2F46696E646572$) } }")) << rooted;
    Value const back = valueOfDescriptor(descriptorOfValue(specifier, finder()), finder());
    constexpr std::u16string_view form = u"file \"a\" of home of application \"Finder\"";
    EXPECT_EQ(sourceForm(back), form);
    EXPECT_EQ(sourceForm(valueOfDescriptor(descriptorOfValue(specifier))), form);
}

TEST(ScriptDescriptors, EveryFormOfReferenceComesBack) {
    Value const items = Value::list({Value::integer(1), Value::integer(2)});
    auto const element = [&](Form form, Value const& from = {}, Value const& to = {}) {
        return elementSpecifier(form, codeOf("cobj"), items, from, to);
    };
    Value const wordTwo = elementSpecifier(Form::Index, codeOf("cwor"), {}, Value::integer(2));
    Value const userProperty = propertySpecifier(identifierSymbol(u"my name"), items);
    struct Row {
        Value specifier;
        std::string_view form;
    };
    for (Row const& row : {
             Row{element(Form::Index, Value::integer(-1)), "item -1 of {1, 2}"},
             Row{element(Form::Identifier, Value::integer(4)), "item id 4 of {1, 2}"},
             Row{element(Form::Name, Value::text(u"n")), "item \"n\" of {1, 2}"},
             Row{element(Form::Every), "every item of {1, 2}"},
             Row{element(Form::Some), "some item of {1, 2}"},
             Row{element(Form::Middle), "middle item of {1, 2}"},
             Row{element(Form::Last), "last item of {1, 2}"},
             Row{element(Form::Range, Value::integer(1), Value::integer(2)), "items 1 thru 2 of {1, 2}"},
             Row{element(Form::Range, wordTwo, wordTwo), "items from word 2 to word 2 of {1, 2}"},
             Row{element(Form::Beginning), "beginning of {1, 2}"},
             Row{element(Form::End), "end of {1, 2}"},
             Row{element(Form::Before), "before {1, 2}"},
             Row{element(Form::After), "after {1, 2}"},
             Row{userProperty, "|my name| of {1, 2}"},
         })
        EXPECT_EQ(utf8FromUnits(sourceForm(valueOfDescriptor(descriptorOfValue(row.specifier)))), row.form);
}

Value test(Operation operation, Value const& left, Value const& right = {}) {
    Value const made = makeObject<TestObject>(ValueKind::Test);
    made.test().operation = operation;
    made.test().left = left;
    made.test().right = right;
    return made;
}

TEST(ScriptDescriptors, EveryTestOfAFilterComesBack) {
    Value const files = elementSpecifier(Form::Every, codeOf("file"), finder());
    Value const name = propertySpecifier(termSymbol(codeOf("pnam"), u"name"), {});
    Value const text = Value::text(u"a");
    struct Row {
        Operation operation;
        std::string_view words;
    };
    auto const cameBack = [&](Value const& whole) {
        Value const specifier = elementSpecifier(Form::Filter, 0, Value(), files, whole);
        return utf8FromUnits(sourceForm(valueOfDescriptor(descriptorOfValue(specifier))));
    };
    std::string const beginning = "every file of application \"Finder\" whose ";
    EXPECT_EQ(cameBack(test(Operation::Not, test(Operation::Less, name, text))), beginning + "not name < \"a\"");
    for (Row const& row : {Row{Operation::Equal, "="}, Row{Operation::NotEqual, "≠"}, Row{Operation::Less, "<"},
                           Row{Operation::Greater, ">"}, Row{Operation::AtMost, "≤"}, Row{Operation::AtLeast, "≥"},
                           Row{Operation::Contains, "contains"}, Row{Operation::DoesNotContain, "does not contain"},
                           Row{Operation::IsIn, "is in"}, Row{Operation::IsNotIn, "is not in"},
                           Row{Operation::StartsWith, "starts with"}, Row{Operation::EndsWith, "ends with"}}) {
        Value const comparison = test(row.operation, name, text);
        std::string const form = "name " + std::string(row.words) + " \"a\"";
        EXPECT_EQ(cameBack(comparison), beginning + form);
        EXPECT_EQ(cameBack(test(Operation::And, comparison, comparison)), beginning + form + " and " + form);
        EXPECT_EQ(cameBack(test(Operation::Or, comparison, comparison)), beginning + form + " or " + form);
    }
}

TEST(ScriptDescriptors, AFilterIsWrittenAsApplicationsReadIt) {
    Value const files = elementSpecifier(Form::Every, codeOf("file"), finder());
    Value const name = propertySpecifier(termSymbol(codeOf("pnam"), u"name"), {});
    Value const specifier =
        elementSpecifier(Form::Filter, 0, Value(), files, test(Operation::NotEqual, name, Value::text(u"a")));
    EXPECT_EQ(printed(descriptorOfValue(specifier, finder())),
              "'obj '{ 'want':'file', 'form':'test', 'seld':'logi'{ 'logc':'NOT ', 'term':[ 'cmpd'{ 'obj1':'obj '{ "
              "'want':'prop', 'form':'prop', 'seld':'pnam', 'from':'exmn'() }, 'relo':'=   ', 'obj2':'utxt'(\"a\") } ] "
              "}, 'from':'obj '{ 'want':'file', 'form':'indx', 'seld':'abso'($206C6C61$), 'from':'null'() } }");
}

TEST(ScriptDescriptors, AFilterLiesInWhatItFilters) {
    Value const files = elementSpecifier(Form::Every, codeOf("file"), finder());
    Value const name = propertySpecifier(termSymbol(codeOf("pnam"), u"name"), {});
    Value const filter = elementSpecifier(Form::Filter, codeOf("file"), finder(), files,
                                          test(Operation::Equal, name, Value::text(u"a")));
    Value const back = valueOfDescriptor(descriptorOfValue(filter, finder()), finder());
    ASSERT_TRUE(back.is(ValueKind::Specifier));
    EXPECT_EQ(back.specifier().want, codeOf("file"));
    EXPECT_TRUE(rootOf(back).is(ValueKind::Application));
}

TEST(ScriptDescriptors, NumbersOfEverySizeAreRead) {
    EXPECT_EQ(valueOfDescriptor(makeDescOf(typeSInt16, std::int16_t{-3})).asInteger(), -3);
    EXPECT_EQ(valueOfDescriptor(makeDescOf(typeUInt32, std::uint32_t{7})).asInteger(), 7);
    EXPECT_EQ(valueOfDescriptor(makeDescOf(typeSInt64, std::int64_t{1} << 40)).asReal(), 1099511627776.0);
    EXPECT_EQ(valueOfDescriptor(makeDescOf(typeSInt32, std::int32_t{1} << 30)).kind(), ValueKind::Real);
    EXPECT_TRUE(valueOfDescriptor(makeDescOf(typeBoolean, std::uint8_t{1})).asBoolean());
    EXPECT_TRUE(valueOfDescriptor(codeDesc(typeEnumerated, codeOf("true"))).asBoolean());
    EXPECT_EQ(valueOfDescriptor(codeDesc(typeType, codeOf("mon "))).kind(), ValueKind::Type);
    EXPECT_EQ(valueOfDescriptor(bytesDesc(typeText, "a\xC3\xB1")).units(), u"añ");
    EXPECT_EQ(valueOfDescriptor(bytesDesc(DescType("bmrk"), "xyz")).kind(), ValueKind::Data);
}

TEST(ScriptDescriptors, WhatIsNotWhatItsTypeSaysIsRefused) {
    AEDesc const null;
    AEDesc const home = codeDesc(typeType, codeOf("home"));
    AEDesc const property = codeDesc(typeEnumerated, codeOf("prop"));
    for (AEDesc const& wrong :
         {bytesDesc(typeSInt32, "abc"),
          bytesDesc(typeIEEE64BitFloatingPoint, ""),
          bytesDesc(typeUnicodeText, "abc"),
          bytesDesc(typeUTF8Text, "\xFF"),
          bytesDesc(typeType, "ab"),
          bytesDesc(typeBoolean, ""),
          bytesDesc(typeLongDateTime, "abcd"),
          makeDescOf(typeLongDateTime, std::int64_t{1} << 60),
          bytesDesc(typeAEList, "x"),
          bytesDesc(typeAERecord, "x"),
          bytesDesc(typeObjectSpecifier, "x"),
          bytesDesc(typeNull, "x"),
          bytesDesc(DescType("alis"), ""),
          bytesDesc(typeProcessSerialNumber, "x"),
          record(typeObjectSpecifier, {}),
          record(typeObjectSpecifier, {{AEKeyword("want"), home}, {AEKeyword("form"), property}}),
          record(typeObjectSpecifier, {{AEKeyword("want"), home},
                                       {AEKeyword("form"), codeDesc(typeEnumerated, codeOf("none"))},
                                       {AEKeyword("seld"), home},
                                       {AEKeyword("from"), null}}),
          record(typeObjectSpecifier, {{AEKeyword("want"), home},
                                       {AEKeyword("form"), codeDesc(typeEnumerated, codeOf("rele"))},
                                       {AEKeyword("seld"), codeDesc(typeEnumerated, codeOf("none"))},
                                       {AEKeyword("from"), null}}),
          record(DescType("insl"), {{AEKeyword("kobj"), null}}),
          record(DescType("cmpd"), {}),
          record(DescType("logi"),
                 {{AEKeyword("logc"), codeDesc(typeEnumerated, codeOf("AND "))}, {AEKeyword("term"), list({home})}}),
          record(typeAERecord, {{AEKeyword("usrf"), home}}),
          record(typeAERecord, {{AEKeyword(), home}}),
          record(typeAERecord, {{AEKeyword("usrf"), list({makeDescOf(typeSInt32, 1)})}}),
          record(typeAERecord, {{AEKeyword("usrf"), list({makeDescOf(typeSInt32, 1), home})}})})
        EXPECT_EQ(readingError(wrong), errors::CorruptData) << printed(wrong);
}

TEST(ScriptDescriptors, AListThatHoldsItselfIsRefused) {
    EXPECT_EQ(errorNumber([] { descriptorOfValue(valueOfSource(u"set x to {}\nset end of x to x\nx")); }),
              errors::StackOverflow);
}

TEST(ScriptDescriptors, AListOfListsThatDoublesWithEachLevelIsRefused) {
    Value const value = valueOfSource(u"set x to {}\nrepeat 40 times\nset x to {x, x}\nend repeat\nx");
    EXPECT_EQ(errorNumber([&] { descriptorOfValue(value); }), errors::ValueTooLarge);
    AEDesc desc = list({});
    for (int level = 0; level < 40; ++level)
        desc = list({desc, desc});
    EXPECT_EQ(readingError(desc), errors::ValueTooLarge);
}

TEST(ScriptDescriptors, WhatNestsDeeperThanADescriptorMayIsRefused) {
    Value const value = valueOfSource(u"set x to {}\nrepeat 100000 times\nset x to {x}\nend repeat\nx");
    EXPECT_EQ(errorNumber([&] { descriptorOfValue(value); }), errors::StackOverflow);
    AEDesc desc = list({});
    for (std::size_t level = 1; level < kDescriptorMaximumDepth; ++level)
        desc = list({desc});
    EXPECT_EQ(readingError(desc), 0);
}

} // namespace

} // namespace mac::applescript::test
