#include "platform/foundation/collections/ValueOrder.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/support/SeededRandom.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace mac::test {
namespace {

NSArray by(char const* selector, BOOL ascending) {
    return NSArray::arrayWithObject_(
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("value", ascending, SEL(selector)));
}

// What the messages alone make of one criterion.
std::vector<std::size_t> orderByMessages(std::vector<id> const& values, NSArray const& descriptors) {
    NSSortDescriptor const descriptor = as<NSSortDescriptor>(descriptors.objectAtIndex_(0));
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, [&](std::size_t first, std::size_t second) {
        return descriptor.compareValues(values[first], values[second]) == NSOrderedAscending;
    });
    return order;
}

std::vector<id> randomTexts(std::u16string_view start, std::size_t count) {
    std::mt19937 random = seededRandom(7);
    // Letters that fold to others or to several, marks, halves of a pair, a byte that is no text.
    constexpr std::array<char16_t, 20> letters{u'a', u'A', u'b',   u'B', u'z', u'Z',   u'/',   u'1',   u' ',   0x01,
                                               0xE9, u'e', 0x0301, 0xDF, u's', 0x0130, 0xFB01, 0xD83D, 0xDE00, 0xDCFF};
    std::vector<id> texts;
    for (std::size_t index = 0; index < count; ++index) {
        std::u16string text(start);
        for (unsigned length = static_cast<unsigned>(random() % 12); length > 0; --length)
            text += letters[random() % letters.size()];
        texts.push_back(NSString::stringWithCodeUnits(text));
    }
    return texts;
}

TEST(ValueOrder, OfTextsIsThatOfTheMessages) {
    for (char const* const selector : {"compare:", "caseInsensitiveCompare:"}) {
        for (BOOL const ascending : {YES, NO}) {
            for (char16_t const* const start : {u"", u"/home/user/", u"/home/\u0438\u0432\u0430\u043D/"}) {
                std::vector<id> const texts = randomTexts(start, 600);
                EXPECT_EQ(orderOfRows(texts, by(selector, ascending)), orderByMessages(texts, by(selector, ascending)))
                    << selector;
            }
        }
    }
}

TEST(ValueOrder, OfNumbersIsThatOfTheMessages) {
    std::vector<id> const numbers{
        NSNumber::numberWithBool_(YES),
        NSNumber::numberWithDouble_(0.5),
        NSNumber::numberWithLongLong_(9007199254740993),
        NSNumber::numberWithLongLong_(9007199254740992),
        NSNumber::numberWithDouble_(9007199254740994.0),
        NSNumber::numberWithDouble_(-0.0),
        NSNumber::numberWithInt_(0),
        NSNumber::numberWithLongLong_(-3),
        NSNumber::numberWithDouble_(-1e300),
        NSNumber::numberWithUnsignedLongLong_(18446744073709551615U),
        NSNumber::numberWithDouble_(INFINITY),
        NSNumber::numberWithInt_(1),
    };
    for (BOOL const ascending : {YES, NO})
        EXPECT_EQ(orderOfRows(numbers, by("compare:", ascending)), orderByMessages(numbers, by("compare:", ascending)));
}

TEST(ValueOrder, TakesMissingValuesAmongTexts) {
    std::vector<id> const values{"b", nil, "a", nil};
    EXPECT_EQ(orderOfRows(values, by("compare:", YES)), (std::vector<std::size_t>{1, 3, 2, 0}));
    EXPECT_EQ(orderOfRows(values, by("compare:", NO)), (std::vector<std::size_t>{0, 2, 1, 3}));
}

TEST(ValueOrder, ComesFromTheNextCriterionWhereTheFirstIsEqual) {
    NSArray const criteria = NSArray::arrayWithObjects_({
        NSSortDescriptor::sortDescriptorWithKey_ascending_("version", NO),
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("path", YES, "caseInsensitiveCompare:"),
    });
    std::vector<id> const values{"1", "/b", "2", "/B", "1", "/A", "2", "/a", "2", "/b"};
    EXPECT_EQ(orderOfRows(values, criteria), (std::vector<std::size_t>{3, 1, 4, 2, 0}));
}

TEST(ValueOrder, RaisesForAValueThatDoesNotUnderstandTheMessage) {
    std::vector<id> const values{NSArray::array(), NSArray::array()};
    EXPECT_THROW(orderOfRows(values, by("caseInsensitiveCompare:", YES)), NSInvalidArgumentException);
}

TEST(ValueOrder, OfNothingIsEmpty) {
    EXPECT_TRUE(orderOfRows({}, by("compare:", YES)).empty());
    EXPECT_TRUE(orderOfRows({}, NSArray::array()).empty());
}

TEST(RowOrdering, FindsTheSameOrderInManySteps) {
    std::vector<id> values;
    std::mt19937 random = seededRandom(5);
    for (id const& text : randomTexts(u"/start/", 3000)) {
        // Most rows are equal by the first criterion.
        values.push_back(NSNumber::numberWithInt_(static_cast<int>(random() % 9)));
        values.push_back(text);
    }
    NSArray const criteria = NSArray::arrayWithObjects_(
        {NSSortDescriptor::sortDescriptorWithKey_ascending_("number", NO),
         NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("text", YES, "caseInsensitiveCompare:")});
    RowOrdering ordering(values, criteria);
    int steps = 1;
    while (!ordering.advance(100))
        ++steps;
    EXPECT_GT(steps, 10);
    EXPECT_EQ(ordering.order(), orderOfRows(values, criteria));
    RowOrdering atOnce(values, criteria);
    EXPECT_TRUE(atOnce.advance(3000));
}

} // namespace
} // namespace mac::test
