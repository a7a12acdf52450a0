#include "platform/foundation/predicates/NSPredicate.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/NSNull.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

// A record with a value of every kind.
NSDictionary sample() {
    return NSDictionary::dictionaryWithObjectsAndKeys_({
        "Mirror Frame.app",
        "name",
        NSNumber::numberWithInt_(210),
        "version",
        NSNumber::numberWithDouble_(1.5),
        "size",
        NSNumber::numberWithBool_(YES),
        "running",
        NSNull::null(),
        "nothing",
        utf8("Café Straße"),
        "place",
        NSArray::arrayWithObjects_({"a", "B", "c"}),
        "tags",
        NSArray::array(),
        "none yet",
        NSSet::setWithObjects_({"x", "y"}),
        "marks",
        NSDictionary::dictionaryWithObject_forKey_("inner", "name"),
        "file",
        "3",
        "digits",
        NSDate::dateWithTimeIntervalSinceReferenceDate_(100),
        "date",
    });
}

bool holds(std::string_view format) {
    return NSPredicate::predicateWithFormat_(utf8(format)).evaluateWithObject_(sample());
}

struct Case {
    std::string_view format;
    bool holds;
};

void PrintTo(Case const& tried, std::ostream* stream) { *stream << tried.format; }

class PredicateLanguage : public testing::TestWithParam<Case> {};

TEST_P(PredicateLanguage, DecidesAsDocumented) {
    EXPECT_EQ(holds(GetParam().format), GetParam().holds) << GetParam().format;
}

INSTANTIATE_TEST_SUITE_P(
    Equality, PredicateLanguage,
    testing::Values(Case{"name = 'Mirror Frame.app'", true}, Case{"name == \"Mirror Frame.app\"", true},
                    Case{"name == 'mirror frame.app'", false}, Case{"name != 'x'", true}, Case{"name <> 'x'", true},
                    Case{"name <> 'Mirror Frame.app'", false}, Case{"'Mirror Frame.app' == name", true},
                    Case{"version == 210", true}, Case{"version == 210.0", true}, Case{"version == '210'", false},
                    Case{"digits == 3", false}, Case{"running == 1", true}, Case{"running == TRUE", true},
                    Case{"running == no", false}, Case{"size == 1.5", true}, Case{"size == 15e-1", true},
                    Case{"version == 0xD2", true}, Case{"version == 0b11010010", true}, Case{"version == 0o322", true},
                    Case{"version != -210", true}, Case{"tags == {'a', 'B', 'c'}", true},
                    Case{"tags == {'a', 'b', 'c'}", false}));

INSTANTIATE_TEST_SUITE_P(Nothing, PredicateLanguage,
                         testing::Values(Case{"missing == nil", true}, Case{"missing = NULL", true},
                                         Case{"missing != nil", false}, Case{"nothing == nil", true},
                                         Case{"nothing == missing", true}, Case{"name == nil", false},
                                         Case{"name != nil", true}, Case{"missing < 1", false},
                                         Case{"missing >= nil", false}, Case{"missing CONTAINS 'a'", false},
                                         Case{"missing IN {'a', nil}", true}, Case{"missing IN {'a'}", false},
                                         Case{"missing.name == nil", true}));

INSTANTIATE_TEST_SUITE_P(
    Order, PredicateLanguage,
    testing::Values(Case{"version < 211", true}, Case{"version < 210", false}, Case{"version <= 210", true},
                    Case{"version =< 209", false}, Case{"version > 209.5", true}, Case{"version >= 210", true},
                    Case{"version => 211", false}, Case{"name < 'N'", true}, Case{"name > 'N'", false},
                    Case{"name >[c] 'mirror a'", true}, Case{"digits < 4", false}, Case{"digits > 2", false},
                    Case{"date > CAST(99, 'NSDate')", true}, Case{"tags < 4", false},
                    Case{"version BETWEEN {200, 210}", true}, Case{"version BETWEEN {211, 300}", false},
                    Case{"version BETWEEN {size, 300}", true}, Case{"version < CAST('inf', 'NSNumber')", true},
                    Case{"version < CAST('nan', 'NSNumber')", false},
                    Case{"version >= CAST('nan', 'NSNumber')", false}));

INSTANTIATE_TEST_SUITE_P(
    Text, PredicateLanguage,
    testing::Values(Case{"name BEGINSWITH 'Mirror'", true}, Case{"name BEGINSWITH 'mirror'", false},
                    Case{"name beginswith[c] 'mirror'", true}, Case{"name ENDSWITH '.app'", true},
                    Case{"name ENDSWITH '.App'", false}, Case{"name ENDSWITH[c] '.APP'", true},
                    Case{"name CONTAINS 'or Fr'", true}, Case{"name CONTAINS ''", false},
                    Case{"name BEGINSWITH ''", false}, Case{"place == 'Cafe Straße'", false},
                    Case{"place ==[d] 'Cafe Straße'", true}, Case{"place ==[cd] 'CAFE STRASSE'", true},
                    Case{"place ==[c] 'CAFE STRASSE'", false}, Case{"place CONTAINS[CD] 'fe strasse'", true},
                    Case{"place ==[c] 'Cafe\\u0301 straSSe'", true}, Case{"place == 'Cafe\\u0301 Straße'", false},
                    Case{"version CONTAINS '2'", false}, Case{"version BEGINSWITH 2", false}));

INSTANTIATE_TEST_SUITE_P(Wildcards, PredicateLanguage,
                         testing::Values(Case{"name LIKE 'Mirror*'", true}, Case{"name LIKE '*Frame'", false},
                                         Case{"name LIKE '*Frame*'", true}, Case{"name LIKE 'Mirror?Frame.app'", true},
                                         Case{"name LIKE 'Mirror??Frame.app'", false}, Case{"name LIKE '*'", true},
                                         Case{"name LIKE ''", false}, Case{"name LIKE '**.*p*'", true},
                                         Case{"name LIKE 'mirror*'", false}, Case{"name LIKE[c] 'mirror*'", true},
                                         Case{"'a*b' LIKE 'a\\\\*b'", true}, Case{"'aXb' LIKE 'a\\\\*b'", false},
                                         Case{"'😀' LIKE '?'", true}, Case{"'a\\\\b' LIKE 'a\\\\\\\\b'", true},
                                         Case{"place LIKE[d] 'Cafe*'", true},
                                         Case{"'mississippi' LIKE '*is*ip*'", true},
                                         Case{"'mississippi' LIKE '*is*ip'", false}));

INSTANTIATE_TEST_SUITE_P(PartsWithoutCase, PredicateLanguage,
                         testing::Values(Case{"'/A/Mirror Frame.app' CONTAINS[c] 'mirror f'", true},
                                         Case{"'/A/Mirror Frame.app' CONTAINS[c] 'mirror g'", false},
                                         Case{"'abab' CONTAINS[c] 'ABABA'", false},
                                         Case{"'Kelvin' CONTAINS[c] '\xE2\x84\xAA'", true},
                                         Case{"'Stra\xC3\x9F"
                                              "e' CONTAINS[c] 'STRASS'",
                                              true},
                                         Case{"'text' CONTAINS[c] ''", false}, Case{"'' CONTAINS[c] 'a'", false},
                                         Case{"'TEXT' CONTAINS[d] 'e'", false}, Case{"'TEXT' CONTAINS[cd] 'e'", true}));

INSTANTIATE_TEST_SUITE_P(RegularExpressions, PredicateLanguage,
                         testing::Values(Case{"name MATCHES 'Mirror .*\\\\.app'", true},
                                         Case{"name MATCHES 'Mirror'", false}, Case{"name MATCHES 'mirror.*'", false},
                                         Case{"name MATCHES[c] 'mirror.*'", true},
                                         Case{"place MATCHES[d] 'Cafe .*'", true}, Case{"digits MATCHES '\\\\d'", true},
                                         Case{"'' MATCHES ''", true}, Case{"digits MATCHES digits", true},
                                         Case{"version MATCHES '210'", false}, Case{"missing MATCHES '.*'", false}));

INSTANTIATE_TEST_SUITE_P(
    Collections, PredicateLanguage,
    testing::Values(Case{"'a' IN tags", true}, Case{"'b' IN tags", false}, Case{"'b' IN[c] tags", true},
                    Case{"tags CONTAINS 'c'", true}, Case{"tags CONTAINS 'd'", false}, Case{"'x' IN marks", true},
                    Case{"'z' IN marks", false}, Case{"marks CONTAINS[c] 'X'", true}, Case{"'inner' IN file", true},
                    Case{"'rror' IN name", true}, Case{"version IN {1, 210.0}", true}, Case{"version IN {}", false},
                    Case{"name IN {version, name}", true}, Case{"nil IN {1, nil}", true}, Case{"nil IN marks", false},
                    Case{"tags.@count == 3", true}, Case{"ANY tags == 'B'", true}, Case{"ANY tags == 'D'", false},
                    Case{"SOME tags ==[c] 'b'", true}, Case{"ALL tags MATCHES '.'", true},
                    Case{"ALL tags == 'a'", false}, Case{"NONE tags == 'D'", true}, Case{"NONE tags == 'a'", false},
                    Case{"ANY marks == 'y'", true}, Case{"ANY missing == 'y'", false}, Case{"ALL missing == 'y'", true},
                    Case{"NONE missing == 'y'", true}, Case{"ANY {1, 2} == 2", true}, Case{"ANY {nil} == nil", true}));

INSTANTIATE_TEST_SUITE_P(Compounds, PredicateLanguage,
                         testing::Values(Case{"TRUEPREDICATE", true}, Case{"FALSEPREDICATE", false},
                                         Case{"NOT FALSEPREDICATE", true}, Case{"!TRUEPREDICATE", false},
                                         Case{"NOT NOT TRUEPREDICATE", true},
                                         Case{"TRUEPREDICATE OR TRUEPREDICATE AND FALSEPREDICATE", true},
                                         Case{"(TRUEPREDICATE OR TRUEPREDICATE) AND FALSEPREDICATE", false},
                                         Case{"truepredicate && !falsepredicate", true},
                                         Case{"FALSEPREDICATE || FALSEPREDICATE", false},
                                         Case{"NOT FALSEPREDICATE AND FALSEPREDICATE", false},
                                         Case{"name == 'x' or (version > 1 and not size > 2)", true},
                                         Case{"  (  ( version==210 )  )\n\t", true}));

INSTANTIATE_TEST_SUITE_P(Keys, PredicateLanguage,
                         testing::Values(Case{"file.name == 'inner'", true}, Case{"SELF.version == 210", true},
                                         Case{"self.file.name == 'inner'", true}, Case{"SELF == nil", false},
                                         Case{"SELF CONTAINS 'inner'", false}, Case{"'Mirror Frame.app' IN SELF", true},
                                         Case{"#size == 1.5", true}, Case{"SIZE == nil", true},
                                         Case{"#'none yet' == {}", true}));

TEST(Predicate, TakesKeysAndValuesAsArguments) {
    NSPredicate const predicate = NSPredicate::predicateWithFormat_("%K = %@ AND %K = %@", "name", "Mirror Frame.app",
                                                                    "version", NSNumber::numberWithInt_(210));
    EXPECT_TRUE(predicate.evaluateWithObject_(sample()));
    EXPECT_EQ(predicate.predicateFormat().UTF8String(), "name == \"Mirror Frame.app\" AND version == 210");
}

TEST(Predicate, NeverReadsAnArgumentAsLanguage) {
    for (std::string_view const hostile :
         {"x' OR TRUEPREDICATE OR 'x' == 'x", "\" OR 1 == 1", "%@", "TRUEPREDICATE", "name"}) {
        NSString const value = utf8(hostile);
        NSPredicate const predicate = NSPredicate::predicateWithFormat_("name == %@", value);
        EXPECT_FALSE(predicate.evaluateWithObject_(sample())) << hostile;
        EXPECT_TRUE(predicate.evaluateWithObject_(NSDictionary::dictionaryWithObject_forKey_(value, "name")))
            << hostile;
        NSPredicate const again = NSPredicate::predicateWithFormat_(predicate.predicateFormat());
        EXPECT_TRUE(again.isEqual_(predicate)) << hostile;
    }
}

TEST(Predicate, LeavesArgumentsWithinQuotesAlone) {
    NSDictionary const object = NSDictionary::dictionaryWithObject_forKey_("%@", "name");
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("name == '%@'", "other").evaluateWithObject_(object));
}

TEST(Predicate, TakesArgumentsOfEveryKind) {
    NSDictionary const object = sample();
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("version == %d", 210).evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("version == %lu", 210UL).evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("version > %lld", -1LL).evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("size == %f", 1.5).evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("name == %s", "Mirror Frame.app").evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("digits == %c", '3').evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("running == %@", YES).evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("missing == %@", nil).evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("%K.name == %@", "file", "inner").evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("%2$K == %1$@", "inner", "file.name").evaluateWithObject_(object));
    NSArray const versions = NSArray::arrayWithObjects_({NSNumber::numberWithInt_(1), NSNumber::numberWithInt_(210)});
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("version IN %@", versions).evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("version BETWEEN %@", versions).evaluateWithObject_(object));
}

TEST(Predicate, FindsANameThatIsNotUTF8) {
    NSString const name = NSString::stringWithFileSystemRepresentation_("Mirror \xFF.app");
    NSDictionary const object = NSDictionary::dictionaryWithObject_forKey_(name, "name");
    NSPredicate const predicate = NSPredicate::predicateWithFormat_("name == %@", name);
    EXPECT_TRUE(predicate.evaluateWithObject_(object));
    EXPECT_TRUE(NSPredicate::predicateWithFormat_(predicate.predicateFormat()).evaluateWithObject_(object));
    EXPECT_FALSE(
        predicate.evaluateWithObject_(NSDictionary::dictionaryWithObject_forKey_(utf8("Mirror \uFFFD.app"), "name")));
}

TEST(Predicate, RefusesAWrongRegularExpressionWhenItIsMade) {
    EXPECT_THROW(NSPredicate::predicateWithFormat_("a MATCHES '(('"), NSInvalidArgumentException);
    NSPredicate const late = NSPredicate::predicateWithFormat_("'x' MATCHES pattern");
    EXPECT_THROW(late.evaluateWithObject_(NSDictionary::dictionaryWithObject_forKey_("((", "pattern")),
                 NSInvalidArgumentException);
}

TEST(Predicate, GivesUpOnARegularExpressionThatWouldNeverEnd) {
    NSPredicate const predicate = NSPredicate::predicateWithFormat_("SELF MATCHES '(a+)+b'");
    EXPECT_THROW(predicate.evaluateWithObject_(utf8(std::string(200, 'a'))), NSGenericException);
}

TEST(Predicate, MatchesWildcardsWithoutTrouble) {
    NSString const value = utf8(std::string(3000, 'a'));
    NSPredicate const predicate = NSPredicate::predicateWithFormat_("SELF LIKE '*a*a*a*a*a*a*a*a*a*a*b'");
    EXPECT_FALSE(predicate.evaluateWithObject_(value));
}

TEST(Predicate, PassesOnThatAKeyIsUnknown) {
    NSPredicate const predicate = NSPredicate::predicateWithFormat_("path == 'a'");
    EXPECT_THROW(predicate.evaluateWithObject_("text"), NSUndefinedKeyException);
}

TEST(Predicate, RefusesToLookForMembersOfWhatHasNone) {
    EXPECT_THROW(holds("ANY version == 1"), NSInvalidArgumentException);
}

TEST(Predicate, RaisesForBoundsThatAreNotTwo) {
    EXPECT_THROW(holds("version BETWEEN tags"), NSInvalidArgumentException);
}

TEST(Predicate, OfAValueHoldsAlwaysOrNever) {
    EXPECT_TRUE(NSPredicate::predicateWithValue_(YES).evaluateWithObject_(nil));
    EXPECT_FALSE(NSPredicate::predicateWithValue_(NO).evaluateWithObject_(nil));
}

TEST(Predicate, IsEqualToOneOfTheSameMeaningInOtherWords) {
    NSPredicate const first = NSPredicate::predicateWithFormat_("a = 1 && b <> 'x'");
    EXPECT_TRUE(first.isEqual_(NSPredicate::predicateWithFormat_("%K == %d AND b != \"x\"", "a", 1)));
    EXPECT_EQ(first.hash(), NSPredicate::predicateWithFormat_("a == 1.0 AND b != 'x'").hash());
    EXPECT_FALSE(first.isEqual_(NSPredicate::predicateWithFormat_("a == 1 AND b != 'y'")));
    EXPECT_FALSE(first.isEqual_(NSPredicate::predicateWithFormat_("a == 1 OR b != 'x'")));
    EXPECT_TRUE(isSame(first.copy(), first));
}

TEST(Predicate, AnswersMessagesByName) {
    id const predicate = NSPredicate::predicateWithFormat_("version == 210");
    EXPECT_TRUE(as<NSNumber>(predicate.performSelector_withObject_("evaluateWithObject:", sample())).boolValue());
    EXPECT_TRUE(predicate.performSelector_("predicateFormat").isEqual_("version == 210"));
}

TEST(Predicate, OfNilHoldsForNothing) {
    NSPredicate const none = nil;
    EXPECT_FALSE(none.evaluateWithObject_(sample()));
    EXPECT_TRUE(none.predicateFormat() == nil);
}

TEST(Predicate, EvaluatesNilAsAnObjectWithoutValues) {
    EXPECT_TRUE(NSPredicate::predicateWithFormat_("a.b == nil").evaluateWithObject_(nil));
    EXPECT_FALSE(NSPredicate::predicateWithFormat_("a == 1").evaluateWithObject_(nil));
}

} // namespace
} // namespace mac::test
