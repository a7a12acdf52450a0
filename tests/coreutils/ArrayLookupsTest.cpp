#include "coreutils/ArrayLookups.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/NSNull.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

NSDictionary entry(id const& value) { return NSDictionary::dictionaryWithObject_forKey_(value, "path"); }

TEST(PxObjectWithValueForKeyPath, FindsTheElementWhoseValueIsEqual) {
    NSDictionary const wanted = entry("/b");
    NSArray const entries = NSArray::arrayWithObjects_({entry("/a"), wanted, entry("/c")});
    EXPECT_TRUE(isSame(pxObjectWithValue_forKeyPath_(entries, "/b", "path"), wanted));
}

TEST(PxObjectWithValueForKeyPath, TakesTheFirstOfSeveral) {
    NSDictionary const first = entry("/a");
    NSArray const entries = NSArray::arrayWithObjects_({entry("/b"), first, entry("/a")});
    EXPECT_TRUE(isSame(pxObjectWithValue_forKeyPath_(entries, "/a", "path"), first));
}

TEST(PxObjectWithValueForKeyPath, AnswersNilWithoutAMatchOrElements) {
    EXPECT_TRUE(pxObjectWithValue_forKeyPath_(NSArray::array(), "/a", "path") == nil);
    EXPECT_TRUE(pxObjectWithValue_forKeyPath_(NSArray::arrayWithObject_(entry("/b")), "/a", "path") == nil);
}

TEST(PxObjectWithValueForKeyPath, MindsTheCaseOfText) {
    NSArray const entries = NSArray::arrayWithObject_(entry("/applications/x.app"));
    EXPECT_TRUE(pxObjectWithValue_forKeyPath_(entries, "/Applications/X.app", "path") == nil);
}

TEST(PxObjectWithValueForKeyPath, ComparesNumbersByValueAndNeverWithText) {
    NSDictionary const one = entry(NSNumber::numberWithDouble_(1.0));
    NSArray const entries = NSArray::arrayWithObjects_({entry("1"), one});
    EXPECT_TRUE(isSame(pxObjectWithValue_forKeyPath_(entries, NSNumber::numberWithInt_(1), "path"), one));
}

TEST(PxObjectWithValueForKeyPath, FindsAMissingValueByNil) {
    NSDictionary const without = NSDictionary::dictionary();
    NSArray const entries = NSArray::arrayWithObjects_({entry("/a"), without});
    EXPECT_TRUE(isSame(pxObjectWithValue_forKeyPath_(entries, nil, "path"), without));
}

TEST(PxObjectWithValueForKeyPath, WalksAKeyPath) {
    NSDictionary const outer = NSDictionary::dictionaryWithObject_forKey_(entry("/a"), "file");
    EXPECT_TRUE(isSame(pxObjectWithValue_forKeyPath_(NSArray::arrayWithObject_(outer), "/a", "file.path"), outer));
}

TEST(PxObjectWithValueForKeyPath, TreatsTheValueAsAValueWhateverItLooksLike) {
    NSDictionary const odd = entry("' OR TRUEPREDICATE OR 'a' == '%@");
    NSArray const entries = NSArray::arrayWithObjects_({entry("/a"), odd});
    EXPECT_TRUE(isSame(pxObjectWithValue_forKeyPath_(entries, odd.objectForKey_("path"), "path"), odd));
}

TEST(PxObjectWithValueForKeyPath, RaisesForAnElementThatDoesNotKnowTheKey) {
    EXPECT_THROW(pxObjectWithValue_forKeyPath_(NSArray::arrayWithObject_("text"), "/a", "path"),
                 NSUndefinedKeyException);
}

TEST(PxObjectWithValueForKeyPath, OfNilIsNilWhateverItIsAskedFor) {
    EXPECT_TRUE(pxObjectWithValue_forKeyPath_(nil, "/a", "path") == nil);
    EXPECT_TRUE(pxObjectWithValue_forKeyPath_(nil, nil, nil) == nil);
}

TEST(PxObjectWithValueForKeyPath, NeedsAKeyPath) {
    EXPECT_THROW(pxObjectWithValue_forKeyPath_(NSArray::arrayWithObject_(entry("/a")), "/a", nil),
                 NSInvalidArgumentException);
}

// The whole array is looked through: what raises behind the match raises all the same.
TEST(PxObjectWithValueForKeyPath, RaisesAlsoForAnElementBehindTheMatch) {
    EXPECT_THROW(pxObjectWithValue_forKeyPath_(NSArray::arrayWithObjects_({entry("/a"), "text"}), "/a", "path"),
                 NSUndefinedKeyException);
}

TEST(PxObjectWithValueForKeyPath, FindsTheNullObjectByNil) {
    NSDictionary const null = entry(NSNull::null());
    EXPECT_TRUE(isSame(pxObjectWithValue_forKeyPath_(NSArray::arrayWithObject_(null), nil, "path"), null));
}

TEST(PxObjectWithValueForKeyPath, LooksThroughAHundredThousandElements) {
    std::vector<id> entries;
    entries.reserve(100'000);
    for (int index = 0; index < 100'000; ++index)
        entries.push_back(entry(NSString::stringWithFormat_("/Volumes/Disk/%d.app", index)));
    NSArray const array = NSArray::arrayWithVector(entries);
    EXPECT_TRUE(isSame(pxObjectWithValue_forKeyPath_(array, "/Volumes/Disk/99999.app", "path"), entries.back()));
}

TEST(PxObjectAtIndex, AnswersTheElementBelowTheCountAndNilBeyond) {
    NSArray const array = NSArray::arrayWithObjects_({"a", "b"});
    EXPECT_TRUE(pxObjectAtIndex_(array, 0).isEqual_("a"));
    EXPECT_TRUE(pxObjectAtIndex_(array, 1).isEqual_("b"));
    EXPECT_TRUE(pxObjectAtIndex_(array, 2) == nil);
    EXPECT_TRUE(pxObjectAtIndex_(array, 0xFFFFFFFF) == nil);
}

TEST(PxObjectAtIndex, OfAnEmptyArrayOrNilIsNil) {
    EXPECT_TRUE(pxObjectAtIndex_(NSArray::array(), 0) == nil);
    EXPECT_TRUE(pxObjectAtIndex_(nil, 0) == nil);
}

TEST(PxLookUps, AreMessagesOfArraysToo) {
    id const array = NSArray::arrayWithObjects_({"a", "b"});
    EXPECT_TRUE(array.performSelector_withObject_("pxObjectAtIndex:", NSNumber::numberWithInt_(1)).isEqual_("b"));
    EXPECT_TRUE(array.respondsToSelector_("pxObjectWithValue:forKeyPath:"));
}

} // namespace
} // namespace mac::test
