#include "platform/icons/ResourceFork.h"
#include "tests/platform/icons/IconBytes.h"
#include <gtest/gtest.h>
#include <optional>

namespace mac::test {
namespace {

constexpr OSType Icons{"icns"};

std::optional<std::string> resource(std::string_view fork, OSType type, std::int16_t number) {
    std::optional<std::span<std::byte const>> const found =
        resourceInFork(std::as_bytes(std::span(fork)), type, number);
    if (!found) return std::nullopt;
    return std::string(reinterpret_cast<char const*>(found->data()), found->size());
}

TEST(ResourceFork, HasAResourceByTypeAndNumber) {
    std::string const fork = resourceFork("icns", -16455, "bytes");
    EXPECT_EQ(resource(fork, Icons, -16455), "bytes");
    EXPECT_FALSE(resource(fork, Icons, 16455));
    EXPECT_FALSE(resource(fork, OSType("ICN#"), -16455));
    EXPECT_EQ(resource(resourceFork("icns", 0, ""), Icons, 0), "");
}

TEST(ResourceFork, ThatIsCutHasNoneOrTheWholeOne) {
    std::string const fork = resourceFork("icns", 1, "bytes");
    for (std::size_t length = 0; length < fork.size(); ++length)
        EXPECT_FALSE(resource(fork.substr(0, length), Icons, 1)) << length;
}

TEST(ResourceFork, ThatContradictsItselfHasNone) {
    std::string const whole = resourceFork("icns", 1, "bytes");
    for (std::size_t place = 0; place < whole.size(); ++place) {
        std::string fork = whole;
        fork[place] = '\xFF';
        // What it still holds has the length that it is said to have.
        EXPECT_EQ(resource(fork, Icons, 1).value_or("12345").size(), 5U) << place;
    }
    EXPECT_FALSE(resource(std::string(16, '\xFF'), Icons, 1));
    EXPECT_FALSE(resource(std::string(300, '\0'), Icons, 1));
}

} // namespace
} // namespace mac::test
