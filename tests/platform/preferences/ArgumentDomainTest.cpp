#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/preferences/PreferenceDomains.h"
#include <gtest/gtest.h>
#include <vector>

namespace mac::test {

namespace {

NSDictionary domainOfWords(std::vector<std::string> words) {
    words.insert(words.begin(), "program");
    return argumentDomain(words);
}

} // namespace

TEST(ArgumentDomain, IsMadeOfKeysWithValues) {
    NSDictionary const values = domainOfWords({"file", "-colour", "blue", "other", "-size", "12"});
    EXPECT_TRUE(values.isEqual_(NSDictionary::dictionaryWithObjectsAndKeys_({"blue", "colour", "12", "size"})));
    EXPECT_EQ(domainOfWords({}).count(), 0U);
    EXPECT_EQ(argumentDomain({}).count(), 0U);
}

TEST(ArgumentDomain, LeavesOutKeysWithoutValueAndOtherOptions) {
    EXPECT_EQ(domainOfWords({"-last"}).count(), 0U);
    EXPECT_EQ(domainOfWords({"--style", "fusion", "-", "x"}).count(), 0U);
    EXPECT_EQ(domainOfWords({"--", "-key", "value"}).count(), 0U);
    NSDictionary const values = domainOfWords({"-a", "-b", "1"});
    EXPECT_TRUE(values.isEqual_(NSDictionary::dictionaryWithObject_forKey_("1", "b")));
}

TEST(ArgumentDomain, TakesNegativeNumbersForValues) {
    NSDictionary const values = domainOfWords({"-offset", "-12.5", "-5", "x"});
    EXPECT_TRUE(values.isEqual_(NSDictionary::dictionaryWithObject_forKey_("-12.5", "offset")));
}

TEST(ArgumentDomain, TakesTheLastOfEqualKeys) {
    EXPECT_TRUE(domainOfWords({"-k", "1", "-k", "2"}).objectForKey_("k").isEqual_("2"));
}

TEST(ArgumentDomain, ReadsPropertyLists) {
    NSDictionary const values = domainOfWords({"-array", "(a, b)", "-dictionary", "{a = 1;}", "-quoted", "\"a b\"",
                                               "-xml", "<plist><integer>7</integer></plist>"});
    EXPECT_TRUE(values.objectForKey_("array").isEqual_(NSArray::arrayWithObjects_({"a", "b"})));
    EXPECT_TRUE(values.objectForKey_("dictionary").isEqual_(NSDictionary::dictionaryWithObject_forKey_("1", "a")));
    EXPECT_TRUE(values.objectForKey_("quoted").isEqual_("a b"));
    EXPECT_TRUE(values.objectForKey_("xml").isEqual_(NSNumber::numberWithInt_(7)));
}

TEST(ArgumentDomain, KeepsTextThatIsNoPropertyList) {
    for (char const* const word : {"a=b;", "(a, b", "{", "<", "\"open", "", "1", "/* comment */ a"})
        EXPECT_TRUE(domainOfWords({"-k", word}).objectForKey_("k").isEqual_(NSString::stringWithUTF8String_(word)))
            << word;
}

TEST(ArgumentDomain, TakesAnyBytes) {
    NSDictionary const values = domainOfWords({"-k\xFF", "v\xFE", "-list", "(\xFF\xFE, \xC3"});
    NSString const key = NSString::stringWithFileSystemRepresentation_("k\xFF");
    EXPECT_TRUE(values.objectForKey_(key).isEqual_(NSString::stringWithFileSystemRepresentation_("v\xFE")));
    EXPECT_TRUE(
        values.objectForKey_("list").isEqual_(NSString::stringWithFileSystemRepresentation_("(\xFF\xFE, \xC3")));
}

} // namespace mac::test
