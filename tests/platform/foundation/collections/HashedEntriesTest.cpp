#include "platform/foundation/collections/HashedEntries.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/SeededRandom.h"
#include <gtest/gtest.h>
#include <map>
#include <random>

namespace mac::test {

TEST(HashedEntries, AddingManyMakesTheTableAnewSeldom) {
    HashedEntries entries;
    std::size_t moves = 0;
    HashedEntries::Entry const* place = nullptr;
    for (int value = 0; value < 100'000; ++value) {
        entries.set(number(value), nil);
        moves += entries.entries().data() == place ? 0 : 1;
        place = entries.entries().data();
    }
    EXPECT_EQ(entries.count(), 100'000U);
    EXPECT_LT(moves, 40U);
}

TEST(HashedEntries, SaysWhetherAKeyIsNew) {
    HashedEntries entries;
    EXPECT_TRUE(entries.find("a") == nullptr);
    EXPECT_TRUE(entries.set("a", "one"));
    EXPECT_FALSE(entries.set("a", "two"));
    EXPECT_EQ(text(entries.find("a")->value), "two");
    EXPECT_EQ(entries.count(), 1U);
    entries.remove("b");
    entries.remove("a");
    entries.remove("a");
    EXPECT_EQ(entries.count(), 0U);
    EXPECT_TRUE(entries.find("a") == nullptr);
    EXPECT_TRUE(entries.set("a", "three"));
}

TEST(HashedEntries, FewStayRightThroughManyChanges) {
    std::mt19937 random = seededRandom(3);
    HashedEntries entries;
    std::map<int, int> plain;
    for (int step = 0; step < 4000; ++step) {
        int const key = static_cast<int>(random() % 12);
        if (random() % 2 == 0) {
            entries.set(number(key), number(step));
            plain[key] = step;
        } else {
            entries.remove(number(key));
            plain.erase(key);
        }
        ASSERT_EQ(entries.count(), plain.size());
        for (int asked = 0; asked < 12; ++asked) {
            HashedEntries::Entry const* const entry = entries.find(number(asked));
            ASSERT_EQ(entry != nullptr, plain.contains(asked));
            ASSERT_TRUE(!entry || entry->value.isEqual_(number(plain[asked])));
        }
        if (step % 500 != 0) continue;
        entries.clear();
        plain.clear();
    }
}

TEST(HashedEntries, TakesAKeyAndAValueThatItHolds) {
    HashedEntries entries;
    entries.set("a", "one");
    for (int value = 0; value < 100; ++value) {
        HashedEntries::Entry const& first = entries.entries().front();
        entries.set(number(value), first.value);
        EXPECT_EQ(text(entries.find(number(value))->value), "one");
    }
    HashedEntries::Entry const& last = entries.entries().back();
    entries.remove(last.key);
    EXPECT_EQ(entries.count(), 100U);
}

} // namespace mac::test
