#include "platform/foundation/objects/Selector.h"
#include "platform/foundation/text/NSString.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <concepts>
#include <gtest/gtest.h>
#include <vector>

namespace mac::test {

TEST(Selector, OfEqualNamesAreOne) {
    SEL const first = "compare:";
    EXPECT_TRUE(first == SEL(std::string_view(std::string("compare") + ":")));
    EXPECT_FALSE(first == SEL("compare"));
    EXPECT_EQ(std::hash<SEL>()(first), std::hash<SEL>()(SEL("compare:")));
    EXPECT_EQ(first.name(), "compare:");
}

TEST(Selector, WithoutNameIsNull) {
    EXPECT_FALSE(static_cast<bool>(SEL()));
    EXPECT_FALSE(static_cast<bool>(SEL("")));
    EXPECT_TRUE(SEL("") == SEL());
    EXPECT_EQ(SEL().name(), "");
    EXPECT_TRUE(static_cast<bool>(SEL("a")));
}

TEST(Selector, ComesFromLiteralsAndNoOtherArrays) {
    static_assert(std::convertible_to<char const(&)[4], SEL>);
    static_assert(!std::constructible_from<SEL, char(&)[4]>);
    static_assert(!std::convertible_to<char const*, SEL>);
    static_assert(!std::convertible_to<std::string_view, SEL> && !std::convertible_to<SEL, bool>);
}

TEST(Selector, ConvertsFromAndToStrings) {
    EXPECT_TRUE(NSSelectorFromString("trashAction:") == SEL("trashAction:"));
    EXPECT_EQ(NSStringFromSelector("trashAction:").UTF8String(), "trashAction:");
    EXPECT_FALSE(static_cast<bool>(NSSelectorFromString("")));
    EXPECT_FALSE(static_cast<bool>(NSSelectorFromString(nil)));
    EXPECT_TRUE(NSStringFromSelector(SEL()) == nil);
}

TEST(Selector, OfAKnownNameIsFoundWithoutMakingOne) {
    EXPECT_FALSE(static_cast<bool>(SEL::ofKnownName("nobody has used this name")));
    EXPECT_FALSE(static_cast<bool>(SEL::ofKnownName("nobody has used this name")));
    SEL const used = "somebody has used this name";
    EXPECT_TRUE(SEL::ofKnownName("somebody has used this name") == used);
    EXPECT_FALSE(static_cast<bool>(SEL::ofKnownName("")));
}

TEST(Selector, IsTheSameOnEveryThread) {
    constexpr std::size_t names = 200;
    std::vector<std::vector<SEL>> made(4, std::vector<SEL>(names));
    onThreads(4, [&made](unsigned number) {
        for (std::size_t index = 0; index < names; ++index)
            made[number][index] = SEL(std::string_view("threads" + std::to_string(index)));
    });
    EXPECT_EQ(made[0], made[1]);
    EXPECT_EQ(made[1], made[2]);
    EXPECT_EQ(made[2], made[3]);
}

} // namespace mac::test
