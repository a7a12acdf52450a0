#include "platform/foundation/text/LinearSearch.h"
#include "platform/foundation/text/UnitSearch.h"
#include "tests/support/SeededRandom.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace mac::test {

namespace {

// Counts how often two elements are compared.
struct CountedSame {
    std::size_t* count;
    bool operator()(char16_t one, char16_t other) const {
        ++*count;
        return one == other;
    }
};

struct Searched {
    std::vector<std::size_t> places;
    std::size_t comparisons{0};
};

Searched searched(std::u16string_view text, std::u16string_view sought, SearchDirection direction) {
    Searched result;
    LinearSearch<char16_t, CountedSame> const search(std::span(sought.data(), sought.size()), direction,
                                                     CountedSame{&result.comparisons});
    search.forEachIn(std::span(text.data(), text.size()), [&](std::size_t place) {
        result.places.push_back(place);
        return true;
    });
    return result;
}

std::vector<std::size_t> placesByEye(std::u16string_view text, std::u16string_view sought) {
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place + sought.size() <= text.size(); ++place) {
        if (text.substr(place, sought.size()) == sought) places.push_back(place);
    }
    return places;
}

std::u16string randomText(std::mt19937& random, std::size_t length) {
    std::u16string text;
    while (text.size() < length)
        text.push_back(u"ab"[random() % 2]);
    return text;
}

} // namespace

TEST(LinearSearch, FindsEveryPlaceAlsoThoseThatOverlap) {
    EXPECT_EQ(searched(u"aaaa", u"aa", SearchDirection::Forwards).places, (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(searched(u"aaaa", u"aa", SearchDirection::Backwards).places, (std::vector<std::size_t>{2, 1, 0}));
    EXPECT_TRUE(searched(u"a", u"aa", SearchDirection::Forwards).places.empty());
    EXPECT_TRUE(searched(u"", u"a", SearchDirection::Backwards).places.empty());
}

TEST(LinearSearch, FindsWhatLookingAtEachPlaceFinds) {
    std::mt19937 random = seededRandom(7);
    for (int round = 0; round < 500; ++round) {
        std::u16string const text = randomText(random, random() % 40);
        std::u16string const sought = randomText(random, 1 + random() % 12);
        std::vector<std::size_t> expected = placesByEye(text, sought);
        EXPECT_EQ(searched(text, sought, SearchDirection::Forwards).places, expected);
        EXPECT_EQ(UnitSearch(sought).findIn(text), std::u16string_view(text).find(sought));
        EXPECT_EQ(UnitSearch(sought, SearchDirection::Backwards).findIn(text), std::u16string_view(text).rfind(sought));
        std::ranges::reverse(expected);
        EXPECT_EQ(searched(text, sought, SearchDirection::Backwards).places, expected);
    }
}

// The text where looking at each place compares a million times as often.
TEST(LinearSearch, ComparesInProportionToTheText) {
    std::u16string const text(20000, u'a');
    for (SearchDirection const direction : {SearchDirection::Forwards, SearchDirection::Backwards}) {
        std::u16string sought(5000, u'a');
        sought[direction == SearchDirection::Forwards ? 4999 : 0] = u'b';
        Searched const search = searched(text, sought, direction);
        EXPECT_TRUE(search.places.empty());
        EXPECT_LE(search.comparisons, 2 * (text.size() + sought.size()));
        Searched const found = searched(text, std::u16string(5000, u'a'), direction);
        EXPECT_EQ(found.places.size(), 15001U);
        EXPECT_LE(found.comparisons, 2 * (text.size() + sought.size()));
    }
}

TEST(UnitSearch, ContinuesBehindEachMatch) {
    for (std::u16string_view const sought : {u"aba", u"ababababa"}) {
        std::u16string text;
        for (int count = 0; count < 3; ++count)
            text += std::u16string(sought) + u"b";
        std::vector<std::size_t> places;
        UnitSearch(sought).forEachIn(text, [&](std::size_t place) { places.push_back(place); });
        EXPECT_EQ(places, (std::vector<std::size_t>{0, sought.size() + 1, 2 * sought.size() + 2}));
        places.clear();
        UnitSearch(sought, SearchDirection::Backwards).forEachIn(text, [&](std::size_t place) {
            places.push_back(place);
        });
        EXPECT_EQ(places, (std::vector<std::size_t>{2 * sought.size() + 2, sought.size() + 1, 0}));
    }
    UnitSearch(u"").forEachIn(u"a", [](std::size_t) { FAIL(); });
}

} // namespace mac::test
