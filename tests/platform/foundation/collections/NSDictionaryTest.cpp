#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

// "a=1 b=2", in the dictionary's order.
std::string entries(NSDictionary const& dictionary) {
    std::string all;
    for (id const& key : dictionary.allKeys())
        all += (all.empty() ? "" : " ") + text(key) + "=" + text(dictionary.objectForKey_(key));
    return all;
}

NSDictionary twoEntries() { return NSDictionary::dictionaryWithObjectsAndKeys_({"1", "a", "2", "b"}); }

NSMutableDictionary mutableTwoEntries() { return NSMutableDictionary::dictionaryWithDictionary_(twoEntries()); }

} // namespace

TEST(NSDictionary, HoldsWhatItWasMadeOf) {
    EXPECT_EQ(NSDictionary::dictionary().count(), 0U);
    EXPECT_EQ(entries(NSDictionary::dictionaryWithObject_forKey_("1", "a")), "a=1");
    EXPECT_EQ(entries(twoEntries()), "a=1 b=2");
    EXPECT_EQ(entries(NSDictionary::dictionaryWithObjects_forKeys_(words({"1", "2"}), words({"a", "b"}))), "a=1 b=2");
    EXPECT_EQ(entries(NSDictionary::dictionaryWithDictionary_(twoEntries())), "a=1 b=2");
    EXPECT_TRUE(twoEntries().isMemberOfClass_(classOf<NSDictionary>()));
}

TEST(NSDictionary, TakesObjectsAndKeysUpToTheFirstNil) {
    EXPECT_EQ(entries(NSDictionary::dictionaryWithObjectsAndKeys_({"1", "a", nil, "b", "3", "c"})), "a=1");
    EXPECT_EQ(NSDictionary::dictionaryWithObjectsAndKeys_({}).count(), 0U);
    EXPECT_EQ(NSDictionary::dictionaryWithObjectsAndKeys_({nil}).count(), 0U);
}

TEST(NSDictionary, RaisesForWhatMakesNone) {
    EXPECT_THROW(NSDictionary::dictionaryWithObject_forKey_(nil, "a"), NSInvalidArgumentException);
    EXPECT_THROW(NSDictionary::dictionaryWithObject_forKey_("1", nil), NSInvalidArgumentException);
    EXPECT_THROW(NSDictionary::dictionaryWithObjectsAndKeys_({"1"}), NSInvalidArgumentException);
    EXPECT_THROW(NSDictionary::dictionaryWithObjectsAndKeys_({"1", nil}), NSInvalidArgumentException);
    EXPECT_THROW(NSDictionary::dictionaryWithObjects_forKeys_(words({"1"}), words({"a", "b"})),
                 NSInvalidArgumentException);
    EXPECT_THROW(NSDictionary::dictionaryWithObjects_forKeys_(nil, words({"a"})), NSInvalidArgumentException);
}

TEST(NSDictionary, OfNilIsEmpty) {
    ASSERT_TRUE(NSDictionary::dictionaryWithDictionary_(nil) != nil);
    EXPECT_EQ(NSDictionary::dictionaryWithDictionary_(nil).count(), 0U);
    EXPECT_EQ(NSDictionary::dictionaryWithObjects_forKeys_(nil, nil).count(), 0U);
}

TEST(NSDictionary, AnswersValuesByEqualKeys) {
    NSDictionary const dictionary =
        NSDictionary::dictionaryWithObjectsAndKeys_({"text", "1", "number", number(1), "list", words({"x"})});
    EXPECT_EQ(text(dictionary.objectForKey_("1")), "text");
    EXPECT_EQ(text(dictionary.objectForKey_(NSNumber::numberWithDouble_(1))), "number");
    EXPECT_EQ(text(dictionary.objectForKey_(words({"x"}))), "list");
    EXPECT_TRUE(dictionary.objectForKey_("x") == nil);
    EXPECT_TRUE(dictionary.objectForKey_(nil) == nil);
}

TEST(NSDictionary, ListsKeysAndValuesInTheOrderOfInsertion) {
    EXPECT_TRUE(twoEntries().allKeys().isEqual_(words({"a", "b"})));
    EXPECT_TRUE(twoEntries().allValues().isEqual_(words({"1", "2"})));
    EXPECT_TRUE(twoEntries().keyEnumerator().allObjects().isEqual_(words({"a", "b"})));
    EXPECT_TRUE(twoEntries().objectEnumerator().allObjects().isEqual_(words({"1", "2"})));
}

TEST(NSDictionary, ListsTheKeysOfAValue) {
    NSDictionary const dictionary = NSDictionary::dictionaryWithObjectsAndKeys_({"1", "a", "2", "b", "1", "c"});
    EXPECT_TRUE(dictionary.allKeysForObject_("1").isEqual_(words({"a", "c"})));
    EXPECT_EQ(dictionary.allKeysForObject_("x").count(), 0U);
    EXPECT_EQ(dictionary.allKeysForObject_(nil).count(), 0U);
}

TEST(NSDictionary, NilAnswersNothing) {
    NSDictionary const none;
    EXPECT_EQ(none.count(), 0U);
    EXPECT_TRUE(none.objectForKey_("a") == nil);
    EXPECT_TRUE(none.allKeys() == nil);
    EXPECT_TRUE(none.allValues() == nil);
    EXPECT_TRUE(none.allKeysForObject_("1") == nil);
    EXPECT_TRUE(none.keyEnumerator() == nil);
    EXPECT_TRUE(none.objectEnumerator() == nil);
    EXPECT_FALSE(none.isEqualToDictionary_(nil));
    EXPECT_FALSE(none.isEqualToDictionary_(NSDictionary::dictionary()));
}

TEST(NSDictionary, EqualsAnotherOfEqualEntriesInWhateverOrder) {
    NSDictionary const same = NSDictionary::dictionaryWithObjectsAndKeys_({"2", "b", "1", "a"});
    EXPECT_TRUE(twoEntries().isEqualToDictionary_(same));
    EXPECT_EQ(twoEntries().hash(), same.hash());
    EXPECT_TRUE(twoEntries().isEqual_(mutableTwoEntries()));
    EXPECT_EQ(twoEntries().hash(), mutableTwoEntries().hash());
    EXPECT_FALSE(twoEntries().isEqual_(NSDictionary::dictionaryWithObjectsAndKeys_({"1", "a", "x", "b"})));
    EXPECT_FALSE(twoEntries().isEqual_(NSDictionary::dictionaryWithObjectsAndKeys_({"1", "a", "2", "x"})));
    EXPECT_FALSE(twoEntries().isEqual_(NSDictionary::dictionaryWithObject_forKey_("1", "a")));
    EXPECT_FALSE(twoEntries().isEqualToDictionary_(nil));
    EXPECT_FALSE(twoEntries().isEqual_("a=1 b=2"));
}

TEST(NSDictionary, HashesByWhichValueStandsUnderWhichKey) {
    NSDictionary const swapped = NSDictionary::dictionaryWithObjectsAndKeys_({"2", "a", "1", "b"});
    NSDictionary const turned = NSDictionary::dictionaryWithObjectsAndKeys_({"a", "1", "b", "2"});
    EXPECT_NE(twoEntries().hash(), swapped.hash());
    EXPECT_NE(twoEntries().hash(), turned.hash());
}

TEST(NSDictionary, CopiesToItselfAndMutableCopiesToAnother) {
    NSDictionary const dictionary = twoEntries();
    EXPECT_TRUE(isSame(dictionary.copy(), dictionary));
    NSMutableDictionary const changed = as<NSMutableDictionary>(dictionary.mutableCopy());
    changed.setObject_forKey_("3", "c");
    EXPECT_EQ(entries(dictionary), "a=1 b=2");
    EXPECT_EQ(entries(changed), "a=1 b=2 c=3");
    EXPECT_TRUE(changed.copy().isMemberOfClass_(classOf<NSDictionary>()));
}

TEST(NSDictionary, DescribesItselfInTheOrderOfItsKeys) {
    NSDictionary const dictionary = NSDictionary::dictionaryWithObjectsAndKeys_({"2", "b", "a b", "a/b", "1", "a"});
    EXPECT_EQ(text(dictionary), "{\n    a = 1;\n    \"a/b\" = \"a b\";\n    b = 2;\n}");
    EXPECT_EQ(text(NSDictionary::dictionaryWithObjectsAndKeys_({"x", number(2), "y", number(1)})),
              "{\n    2 = x;\n    1 = y;\n}");
    EXPECT_EQ(text(NSDictionary::dictionary()), "{\n}");
}

TEST(NSMutableDictionary, SetsReplacesAndRemoves) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionaryWithCapacity_(0xFFFFFFFF);
    dictionary.setObject_forKey_("1", "a");
    dictionary.setObject_forKey_("2", "b");
    dictionary.setObject_forKey_("3", "a");
    EXPECT_EQ(entries(dictionary), "a=3 b=2");
    dictionary.removeObjectForKey_("a");
    dictionary.removeObjectForKey_("x");
    EXPECT_EQ(entries(dictionary), "b=2");
    dictionary.setObject_forKey_("4", "a");
    EXPECT_EQ(entries(dictionary), "b=2 a=4");
    dictionary.removeAllObjects();
    EXPECT_EQ(dictionary.count(), 0U);
}

TEST(NSMutableDictionary, HoldsNoNil) {
    NSMutableDictionary const dictionary = mutableTwoEntries();
    EXPECT_THROW(dictionary.setObject_forKey_(nil, "a"), NSInvalidArgumentException);
    EXPECT_THROW(dictionary.setObject_forKey_("1", nil), NSInvalidArgumentException);
    EXPECT_THROW(dictionary.removeObjectForKey_(nil), NSInvalidArgumentException);
    EXPECT_EQ(entries(dictionary), "a=1 b=2");
}

TEST(NSMutableDictionary, CopiesItsKeys) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    NSMutableString const key = NSMutableString::stringWithString_("a");
    dictionary.setObject_forKey_("1", key);
    key.setString_("b");
    EXPECT_EQ(text(dictionary.objectForKey_("a")), "1");
    EXPECT_TRUE(dictionary.objectForKey_(key) == nil);
    EXPECT_EQ(entries(dictionary), "a=1");
}

TEST(NSMutableDictionary, AKeyThatCannotBeCopiedRaises) {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    EXPECT_THROW(dictionary.setObject_forKey_("1", Parcel::parcelWithName_("p")), NSInvalidArgumentException);
    EXPECT_EQ(dictionary.count(), 0U);
}

TEST(NSMutableDictionary, TakesTheEntriesOfAnother) {
    NSMutableDictionary const dictionary = mutableTwoEntries();
    dictionary.addEntriesFromDictionary_(NSDictionary::dictionaryWithObjectsAndKeys_({"3", "b", "4", "c"}));
    EXPECT_EQ(entries(dictionary), "a=1 b=3 c=4");
    dictionary.addEntriesFromDictionary_(nil);
    dictionary.addEntriesFromDictionary_(dictionary);
    EXPECT_EQ(entries(dictionary), "a=1 b=3 c=4");
    dictionary.setDictionary_(NSDictionary::dictionaryWithObject_forKey_("x", "y"));
    EXPECT_EQ(entries(dictionary), "y=x");
    dictionary.setDictionary_(dictionary);
    EXPECT_EQ(entries(dictionary), "y=x");
    dictionary.setDictionary_(nil);
    EXPECT_EQ(dictionary.count(), 0U);
}

TEST(NSMutableDictionary, RemovesSeveralKeys) {
    NSMutableDictionary const dictionary = mutableTwoEntries();
    dictionary.removeObjectsForKeys_(words({"a", "x"}));
    EXPECT_EQ(entries(dictionary), "b=2");
    dictionary.removeObjectsForKeys_(nil);
    dictionary.removeObjectsForKeys_(dictionary.allKeys());
    EXPECT_EQ(dictionary.count(), 0U);
}

TEST(NSMutableDictionary, NilChangesNothing) {
    NSMutableDictionary const none;
    none.setObject_forKey_("1", "a");
    none.setObject_forKey_(nil, nil);
    none.removeObjectForKey_("a");
    none.removeObjectForKey_(nil);
    none.removeObjectsForKeys_(words({"a"}));
    none.removeAllObjects();
    none.addEntriesFromDictionary_(twoEntries());
    none.setDictionary_(twoEntries());
    EXPECT_EQ(none.count(), 0U);
}

TEST(NSMutableDictionary, MayHoldItself) {
    NSMutableDictionary const first = NSMutableDictionary::dictionary();
    NSMutableDictionary const second = NSMutableDictionary::dictionary();
    first.setObject_forKey_(first, "self");
    second.setObject_forKey_(second, "self");
    EXPECT_EQ(text(first), "{\n    self = ...;\n}");
    EXPECT_EQ(first.hash(), second.hash());
    EXPECT_FALSE(first.isEqual_(second));
    first.removeAllObjects();
    second.removeAllObjects();
}

TEST(NSMutableDictionary, IsWholeWhenWhatItDropsIsDestroyed) {
    void (*const drops[])(NSMutableDictionary const&){
        [](NSMutableDictionary const& dictionary) { dictionary.removeObjectForKey_("p"); },
        [](NSMutableDictionary const& dictionary) { dictionary.setObject_forKey_("x", "p"); },
        [](NSMutableDictionary const& dictionary) { dictionary.removeAllObjects(); },
        [](NSMutableDictionary const& dictionary) { dictionary.setDictionary_(nil); },
    };
    for (auto const& drop : drops) {
        NSMutableDictionary const dictionary = mutableTwoEntries();
        Parcel parcel = Parcel::parcelWithName_("p");
        bool isSeen = false;
        bodyOf(parcel)->m_lastWord = [&] {
            isSeen = true;
            EXPECT_TRUE(as<Parcel>(dictionary.objectForKey_("p")) == nil);
            dictionary.setObject_forKey_("word", "last");
        };
        dictionary.setObject_forKey_(parcel, "p");
        parcel = nil;
        drop(dictionary);
        EXPECT_TRUE(isSeen);
        EXPECT_EQ(text(dictionary.objectForKey_("last")), "word");
    }
}

TEST(NSMutableDictionary, ComparesHardlyAnyKeysOfHashesInARow) {
    constexpr int count = 100'000;
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    std::vector<Peg> pegs;
    for (int value = 0; value < count; ++value) {
        pegs.push_back(Peg::pegWithNumber_hash_(value, static_cast<std::uint64_t>(value) * 4096));
        dictionary.setObject_forKey_(number(value), pegs.back());
    }
    EXPECT_EQ(dictionary.count(), static_cast<NSUInteger>(count));
    unsigned comparisons = 0;
    for (Peg const& one : pegs)
        comparisons += bodyOf(one)->m_comparisons;
    EXPECT_EQ(comparisons, 0U);
}

} // namespace mac::test
