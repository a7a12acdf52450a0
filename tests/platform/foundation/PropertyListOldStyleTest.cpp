#include "tests/platform/foundation/PropertyListDump.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

// The old-style parser's part of the error.
std::string complaint(std::string_view text) {
    std::string const error = readList(text).error;
    constexpr std::string_view kHead = "\nOld-style plist parser error:\n\t";
    std::size_t const head = error.find(kHead);
    if (!error.starts_with("XML parser error:\n\t") || head == std::string::npos || !error.ends_with('\n'))
        return "not both complaints: " + error;
    return error.substr(head + kHead.size(), error.size() - head - kHead.size() - 1);
}

struct Row {
    char const* text;
    char const* expected;
};

void PrintTo(Row const& row, std::ostream* out) { *out << row.text; }

class OldStyleValue : public testing::TestWithParam<Row> {};

TEST_P(OldStyleValue, IsRead) {
    Reading const reading = readList(GetParam().text);
    EXPECT_EQ(reading.error, "");
    EXPECT_EQ(dump(reading.list), GetParam().expected);
    EXPECT_EQ(reading.format, NSPropertyListOpenStepFormat);
}

INSTANTIATE_TEST_SUITE_P(
    PropertyListOldStyle, OldStyleValue,
    testing::Values(
        Row{"{a;}", R"({"a":"a"})"}, Row{"a = b;", R"({"a":"b"})"}, Row{"a;", R"({"a":"a"})"},
        Row{"a = b; c = (d);", R"({"a":"b","c":["d"]})"}, Row{"{ a = b; }", R"({"a":"b"})"}, Row{"{}", "{}"},
        Row{" \n\t", "{}"}, Row{"// nothing\n/* at all */", "{}"}, Row{"()", "[]"}, Row{"(a, b)", R"(["a","b"])"},
        Row{"(a, b, )", R"(["a","b"])"}, Row{"((), {}, <>)", "[[],{},<>]"}, Row{"word", R"("word")"},
        Row{" 'single \"quotes\"' ", R"("single \u0022quotes\u0022")"}, Row{R"("it's")", R"("it's")"},
        Row{R"("\a\b\f\n\r\t\v\"\\\q\'")", R"("\u0007\u0008\u000c\u000a\u000d\u0009\u000b\u0022\u005cq'")"},
        Row{R"("\U00e9\U41x\ud")", R"("\u00e9Axud")"}, Row{R"("\101\7\0")", R"("A\u0007\u0000")"},
        Row{R"("\335\344\341\256")", R"("\u00e9\u00ee\u00c6\ufb01")"}, Row{R"("\377")", R"("\ufffd")"},
        Row{R"("\1012")", R"("A2")"}, Row{"\"two\nlines\"", R"("two\u000alines")"}, Row{"<0fbD 77\n>", "<0fbd77>"},
        Row{"{ url = http://host/p.$1_-x; }", R"({"url":"http://host/p.$1_-x"})"},
        Row{"{ /* c */ a /* c */ = // c\n b /* ; */ ; }", R"({"a":"b"})"}, Row{"{ a = 1; a = 2; }", R"({"a":"2"})"},
        Row{"{ a = { b = ( { c; } ); }; }", R"({"a":{"b":[{"c":"c"}]}})"},
        Row{"'a' = 'b';\n\"c d\" = e;", R"({"a":"b","c d":"e"})"}, Row{"3.0", R"("3.0")"},
        Row{"\xEF\xBB\xBF{ a = \"\xC3\xA9\"; }", R"({"a":"\u00e9"})"}));

class OldStyleMistake : public testing::TestWithParam<Row> {};

TEST_P(OldStyleMistake, IsRefusedWithItsLine) {
    EXPECT_EQ(readList(GetParam().text).list == nil, true);
    EXPECT_EQ(complaint(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    PropertyListOldStyle, OldStyleMistake,
    testing::Values(Row{"{ a = b }", "A \";\" is missing before \"}\" at line 1"},
                    Row{"{ a = b;\n c = d\n e = f; }", "A \";\" is missing before \"e\" at line 3"},
                    Row{"a = b", "A \";\" is missing before the end of the text, at line 1"},
                    Row{"{ a }", "A \"=\" or \";\" is missing before \"}\" at line 1"},
                    Row{"{ a = ; }", "A value is missing before \";\" at line 1"},
                    Row{"{ a = b;", "A key or \"}\" is missing before the end of the text, at line 1"},
                    Row{"{ (a) = b; }", "A key or \"}\" is missing before \"(\" at line 1"},
                    Row{"(a\nb)", "A \",\" or \")\" is missing before \"b\" at line 2"},
                    Row{"(,)", "A value is missing before \",\" at line 1"},
                    Row{"(a,,b)", "A value is missing before \",\" at line 1"},
                    Row{"(a", "A \",\" or \")\" is missing before the end of the text, at line 1"},
                    Row{"(a)\n\n(b)", "There is text behind the list at line 3"},
                    Row{"a b", "A \"=\" or \";\" is missing before \"b\" at line 1"},
                    Row{"a = b; }", "A key or \"}\" is missing before \"}\" at line 1"},
                    Row{"\n'open", "There is a quoted string without end at line 2"},
                    Row{"\"open\\", "There is a quoted string without end at line 1"},
                    Row{"/* open", "There is a comment without end at line 1"},
                    Row{"<0f0>", "Two hexadecimal digits or \">\" is missing before \">\" at line 1"},
                    Row{"<0 f>", "Two hexadecimal digits or \">\" is missing at line 1"},
                    Row{"<0f", "There is data without end at line 1"},
                    Row{"\"\\777\"", "There is an octal escape that is no byte at line 1"},
                    Row{"\"\\Ux\"", "There is a \\U without hexadecimal digits at line 1"},
                    Row{"{ a = \xC3\xA9; }", "A value is missing at line 1"}));

TEST(PropertyListOldStyle, ReadsUTF16) {
    std::string const text("\xFF\xFE{\0a\0;\0}\0", 10);
    EXPECT_EQ(dump(readList(text).list), R"({"a":"a"})");
}

TEST(PropertyListOldStyle, CountsEveryKindOfLineEnd) {
    EXPECT_EQ(complaint("{\r\n\r\xE2\x80\xA8\n=}"), "A key or \"}\" is missing before \"=\" at line 5");
}

TEST(PropertyListOldStyle, CannotBeWritten) {
    Writing const writing = writeList(NSString("a"), NSPropertyListOpenStepFormat);
    EXPECT_EQ(writing.bytes, "");
    EXPECT_EQ(writing.error, "Old-style property lists cannot be written");
}

} // namespace
} // namespace mac::test
