#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

// The old-style parser's part of the error.
std::string oldStyleComplaint(std::string_view text) {
    std::string const error = readList(text).error;
    constexpr std::string_view kHead = "\nOld-style plist parser error:\n\t";
    std::size_t const head = error.find(kHead);
    if (!error.starts_with("XML parser error:\n\t") || head == std::string::npos || !error.ends_with('\n'))
        return "not both complaints: " + error;
    return error.substr(head + kHead.size(), error.size() - head - kHead.size() - 1);
}

struct OldStyleRow {
    char const* text;
    char const* expected;
};

void PrintTo(OldStyleRow const& row, std::ostream* out) { *out << row.text; }

class OldStyleValue : public testing::TestWithParam<OldStyleRow> {};

TEST_P(OldStyleValue, IsRead) {
    Reading const reading = readList(GetParam().text);
    EXPECT_EQ(reading.error, "");
    EXPECT_EQ(dump(reading.list), GetParam().expected);
    EXPECT_EQ(reading.format, NSPropertyListOpenStepFormat);
}

INSTANTIATE_TEST_SUITE_P(
    PropertyListOldStyle, OldStyleValue,
    testing::Values(
        OldStyleRow{"{a;}", R"({"a":"a"})"}, OldStyleRow{"a = b;", R"({"a":"b"})"}, OldStyleRow{"a;", R"({"a":"a"})"},
        OldStyleRow{"a = b; c = (d);", R"({"a":"b","c":["d"]})"}, OldStyleRow{"{ a = b; }", R"({"a":"b"})"},
        OldStyleRow{"{}", "{}"}, OldStyleRow{" \n\t", "{}"}, OldStyleRow{"// nothing\n/* at all */", "{}"},
        OldStyleRow{"()", "[]"}, OldStyleRow{"(a, b)", R"(["a","b"])"}, OldStyleRow{"(a, b, )", R"(["a","b"])"},
        OldStyleRow{"((), {}, <>)", "[[],{},<>]"}, OldStyleRow{"word", R"("word")"},
        OldStyleRow{" 'single \"quotes\"' ", R"("single \u0022quotes\u0022")"}, OldStyleRow{R"("it's")", R"("it's")"},
        OldStyleRow{R"("\a\b\f\n\r\t\v\"\\\q\'")", R"("\u0007\u0008\u000c\u000a\u000d\u0009\u000b\u0022\u005cq'")"},
        OldStyleRow{R"("\U00e9\U41x\ud")", R"("\u00e9Axud")"}, OldStyleRow{R"("\101\7\0")", R"("A\u0007\u0000")"},
        OldStyleRow{R"("\335\344\341\256")", R"("\u00e9\u00ee\u00c6\ufb01")"}, OldStyleRow{R"("\377")", R"("\ufffd")"},
        OldStyleRow{R"("\1012")", R"("A2")"}, OldStyleRow{"\"two\nlines\"", R"("two\u000alines")"},
        OldStyleRow{"<0fbD 77\n>", "<0fbd77>"},
        OldStyleRow{"{ url = http://host/p.$1_-x; }", R"({"url":"http://host/p.$1_-x"})"},
        OldStyleRow{"{ /* c */ a /* c */ = // c\n b /* ; */ ; }", R"({"a":"b"})"},
        OldStyleRow{"{ a = 1; a = 2; }", R"({"a":"2"})"},
        OldStyleRow{"{ a = { b = ( { c; } ); }; }", R"({"a":{"b":[{"c":"c"}]}})"},
        OldStyleRow{"'a' = 'b';\n\"c d\" = e;", R"({"a":"b","c d":"e"})"}, OldStyleRow{"3.0", R"("3.0")"},
        OldStyleRow{"\xEF\xBB\xBF{ a = \"\xC3\xA9\"; }", R"({"a":"\u00e9"})"}));

class OldStyleMistake : public testing::TestWithParam<OldStyleRow> {};

TEST_P(OldStyleMistake, IsRefusedWithItsLine) {
    EXPECT_EQ(readList(GetParam().text).list == nil, true);
    EXPECT_EQ(oldStyleComplaint(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    PropertyListOldStyle, OldStyleMistake,
    testing::Values(OldStyleRow{"{ a = b }", "A \";\" is missing before \"}\" at line 1"},
                    OldStyleRow{"{ a = b;\n c = d\n e = f; }", "A \";\" is missing before \"e\" at line 3"},
                    OldStyleRow{"a = b", "A \";\" is missing before the end of the text, at line 1"},
                    OldStyleRow{"{ a }", "A \"=\" or \";\" is missing before \"}\" at line 1"},
                    OldStyleRow{"{ a = ; }", "A value is missing before \";\" at line 1"},
                    OldStyleRow{"{ a = b;", "A key or \"}\" is missing before the end of the text, at line 1"},
                    OldStyleRow{"{ (a) = b; }", "A key or \"}\" is missing before \"(\" at line 1"},
                    OldStyleRow{"(a\nb)", "A \",\" or \")\" is missing before \"b\" at line 2"},
                    OldStyleRow{"(,)", "A value is missing before \",\" at line 1"},
                    OldStyleRow{"(a,,b)", "A value is missing before \",\" at line 1"},
                    OldStyleRow{"(a", "A \",\" or \")\" is missing before the end of the text, at line 1"},
                    OldStyleRow{"(a)\n\n(b)", "There is text behind the list at line 3"},
                    OldStyleRow{"a b", "A \"=\" or \";\" is missing before \"b\" at line 1"},
                    OldStyleRow{"a = b; }", "A key or \"}\" is missing before \"}\" at line 1"},
                    OldStyleRow{"\n'open", "There is a quoted string without end at line 2"},
                    OldStyleRow{"\"open\\", "There is a quoted string without end at line 1"},
                    OldStyleRow{"/* open", "There is a comment without end at line 1"},
                    OldStyleRow{"<0f0>", "Two hexadecimal digits or \">\" is missing before \">\" at line 1"},
                    OldStyleRow{"<0 f>", "Two hexadecimal digits or \">\" is missing at line 1"},
                    OldStyleRow{"<0f", "There is data without end at line 1"},
                    OldStyleRow{"\"\\777\"", "There is an octal escape that is no byte at line 1"},
                    OldStyleRow{"\"\\Ux\"", "There is a \\U without hexadecimal digits at line 1"},
                    OldStyleRow{"{ a = \xC3\xA9; }", "A value is missing at line 1"}));

TEST(PropertyListOldStyle, ReadsUTF16) {
    std::string const text("\xFF\xFE{\0a\0;\0}\0", 10);
    EXPECT_EQ(dump(readList(text).list), R"({"a":"a"})");
}

TEST(PropertyListOldStyle, CountsEveryKindOfLineEnd) {
    EXPECT_EQ(oldStyleComplaint("{\r\n\r\xE2\x80\xA8\n=}"), "A key or \"}\" is missing before \"=\" at line 5");
}

TEST(PropertyListOldStyle, CannotBeWritten) {
    Writing const writing = writeList(NSString("a"), NSPropertyListOpenStepFormat);
    EXPECT_EQ(writing.bytes, "");
    EXPECT_EQ(writing.error, "Old-style property lists cannot be written");
}

} // namespace
} // namespace mac::test
