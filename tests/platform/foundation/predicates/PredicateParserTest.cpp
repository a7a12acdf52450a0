#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/predicates/NSPredicate.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {

namespace {

std::string formatOf(std::string_view format) {
    return NSPredicate::predicateWithFormat_(utf8(format)).predicateFormat().UTF8String();
}

template <class... Arguments>
std::string errorOf(std::string_view format, Arguments const&... arguments) {
    try {
        NSPredicate::predicateWithFormat_(utf8(format), arguments...);
    } catch (NSInvalidArgumentException const& error) {
        return error.reason();
    }
    return "none";
}

TEST(PredicateText, ReadsEscapesInText) {
    EXPECT_EQ(formatOf(R"(a == 'it\'s \"\\\t\x41\u00e9\101')"), "a == \"it's \\\"\\\\\\u0009Aé"
                                                                "A\"");
}

TEST(PredicateText, WritesItselfAsTextThatMakesItAgain) {
    for (std::string_view const format : {
             "a == 1",
             "a == -1.5",
             "a == 1.0",
             "a == -0.0",
             "a == 1e+300",
             "a == 18446744073709551615",
             "a == -9223372036854775808",
             "a == TRUE",
             "a != NULL",
             R"(a == CAST("nan", "NSNumber"))",
             R"(a == CAST("-inf", "NSNumber"))",
             "a < CAST(12.25, \"NSDate\")",
             "a.b.@count >= SELF",
             "#size == #any",
             "#self.a == 1",
             "#\"none yet.x\" == 1",
             "a BEGINSWITH[cd] \"x\"",
             "a MATCHES[c] \".*\"",
             "NONE a.b LIKE \"x*\"",
             "ALL a IN {1, \"two\", {}, {NULL}, b}",
             "a BETWEEN {1, b}",
             "NOT (a == 1 OR b == 2)",
             "NOT NOT a == 1",
             "a == 1 AND b == 2 AND c == 3",
             "a == 1 AND (b == 2 AND c == 3)",
             "(a == 1 AND b == 2) OR (c == 3 AND NOT d == 4)",
             "TRUEPREDICATE OR FALSEPREDICATE",
         })
        EXPECT_EQ(formatOf(format), format);
}

TEST(PredicateText, WritesReservedKeysAndOddKeysSoThatTheyReadBack) {
    for (std::string_view const key :
         {"in", "SELF", "self.x", "Size", "any.x", "two words", "a-b", "1st", "a..b", "quote\"d", "\u00e9t\u00e9"}) {
        NSDictionary const object = NSDictionary::dictionaryWithObject_forKey_("v", utf8(key));
        NSPredicate const predicate = NSPredicate::predicateWithFormat_("%K == 'v'", utf8(key));
        NSPredicate const again = NSPredicate::predicateWithFormat_(predicate.predicateFormat());
        EXPECT_TRUE(again.isEqual_(predicate)) << predicate.predicateFormat().UTF8String();
        if (key.find('.') == std::string_view::npos) {
            EXPECT_TRUE(again.evaluateWithObject_(object)) << key;
        }
    }
}

TEST(PredicateText, KeepsSmallAndLargeNumbersExactly) {
    for (double const value :
         {std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::max(), 0.1, -0.0}) {
        NSPredicate const predicate = NSPredicate::predicateWithFormat_("a == %f", value);
        NSPredicate const again = NSPredicate::predicateWithFormat_(predicate.predicateFormat());
        EXPECT_TRUE(again.evaluateWithObject_(
            NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithDouble_(value), "a")))
            << predicate.predicateFormat().UTF8String();
    }
}

struct Mistake {
    std::string_view format;
    std::string_view place;
};

void PrintTo(Mistake const& mistake, std::ostream* stream) { *stream << mistake.format; }

class PredicateMistake : public testing::TestWithParam<Mistake> {};

TEST_P(PredicateMistake, RaisesWithItsPlace) {
    EXPECT_NE(errorOf(GetParam().format).find("at character " + std::string(GetParam().place) + ":"), std::string::npos)
        << GetParam().format << ": " << errorOf(GetParam().format);
}

INSTANTIATE_TEST_SUITE_P(
    Syntax, PredicateMistake,
    testing::Values(Mistake{"", "0"}, Mistake{"   ", "3"}, Mistake{"name", "4"}, Mistake{"name ==", "7"},
                    Mistake{"== 1", "0"}, Mistake{"a == 1 b", "7"}, Mistake{"a == 1 AND", "10"},
                    Mistake{"(a == 1", "7"}, Mistake{"a == 1)", "6"}, Mistake{"a == 'open", "5"},
                    Mistake{"a == {1, 2", "10"}, Mistake{"a == {1 2}", "8"}, Mistake{"a ==[x] 1", "4"},
                    Mistake{"a ==[c 1", "4"}, Mistake{"a == 12abc", "5"}, Mistake{"a == 0x", "5"},
                    Mistake{"a == 1.2.3", "5"}, Mistake{"a == 1e", "5"}, Mistake{"a == 1e999", "5"},
                    Mistake{"a == 0xFFFFFFFFFFFFFFFFFF", "5"}, Mistake{"a == %@", "5"}, Mistake{"%K == 1", "0"},
                    Mistake{"a == %y", "5"}, Mistake{"a == %0$@", "5"}, Mistake{"a == %3@", "5"},
                    Mistake{"a == %", "5"}, Mistake{"a. == 1", "2"}, Mistake{"a == in", "5"}, Mistake{"in == 1", "0"},
                    Mistake{"a == '\\q'", "6"}, Mistake{"a == '\\u12'", "10"}, Mistake{"a + 1 == 2", "2"},
                    Mistake{"a[0] == 1", "1"}, Mistake{"$A == 1", "0"}, Mistake{"sum(a) == 1", "3"},
                    Mistake{"SUBQUERY(a, $x, $x == 1)", "0"}, Mistake{"a BETWEEN {1}", "10"},
                    Mistake{"a BETWEEN 1", "10"}, Mistake{"CAST(1, 'NSThing') == 1", "5"},
                    Mistake{"a == TRUEPREDICATE", "5"}, Mistake{"ANY ANY a == 1", "4"}, Mistake{"a == 1; b", "6"}));

TEST(PredicateText, RefusesDepthBeyondItsBound) {
    EXPECT_NE(errorOf(std::string(1'000'000, '(')).find("nested too deeply"), std::string::npos);
    EXPECT_NE(errorOf(std::string(1'000'000, '!')).find("nested too deeply"), std::string::npos);
    EXPECT_NE(errorOf("a == " + std::string(1'000'000, '{')).find("nested too deeply"), std::string::npos);
    EXPECT_EQ(errorOf(std::string(90, '(') + "a == 1" + std::string(90, ')')), "none");
}

TEST(PredicateText, TakesAThousandConditionsInARow) {
    std::string format = "version == 210";
    for (int index = 0; index < 1000; ++index)
        format += " AND version == 210";
    EXPECT_TRUE(
        NSPredicate::predicateWithFormat_(utf8(format))
            .evaluateWithObject_(NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithInt_(210), "version")));
}

TEST(PredicateText, RefusesArgumentsOfTheWrongKind) {
    EXPECT_NE(errorOf("%K == 1", NSNumber::numberWithInt_(1)).find("no key path"), std::string::npos);
    EXPECT_NE(errorOf("%K == 1", nil).find("no key path"), std::string::npos);
    EXPECT_NE(errorOf("%K == 1", "").find("no key path"), std::string::npos);
    EXPECT_NE(errorOf("a == %d", "text").find("no number"), std::string::npos);
    EXPECT_NE(errorOf("a == %s", NSNumber::numberWithInt_(1)).find("no text"), std::string::npos);
    EXPECT_NE(errorOf("a == %2$@", "one").find("no argument"), std::string::npos);
    EXPECT_NE(errorOf("a == %@ AND b == %@", "one").find("at character 17"), std::string::npos);
    EXPECT_THROW(NSPredicate::predicateWithFormat_(nil), NSInvalidArgumentException);
}

} // namespace
} // namespace mac::test
