#include "platform/foundation/files/NSSearchPath.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

std::string libraries(NSUInteger domains, BOOL expandTilde = YES) {
    return joined(NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, domains, expandTilde));
}

class SearchPaths : public testing::Test {
protected:
    EnvironmentVariable const m_home{"HOME", "/home/ä"};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", std::nullopt};
    EnvironmentVariable const m_shared{"XDG_DATA_DIRS", "/usr/share/desktop:/usr/local/share/:/usr/share:/usr/locale"};
};

TEST_F(SearchPaths, BeginWithTheUsersDomainAndEndWithTheSystems) {
    EXPECT_EQ(libraries(NSAllDomainsMask),
              "/home/ä/.local/share /usr/local/share /usr/share/desktop /usr/share /usr/locale");
    EXPECT_EQ(libraries(NSUserDomainMask), "/home/ä/.local/share");
    EXPECT_EQ(libraries(NSLocalDomainMask), "/usr/local/share");
    EXPECT_EQ(libraries(NSSystemDomainMask), "/usr/share/desktop /usr/share /usr/locale");
    EXPECT_EQ(libraries(NSNetworkDomainMask), "");
    EXPECT_EQ(libraries(0), "");
}

TEST_F(SearchPaths, KeepTheTildeUnlessItIsToBeExpanded) {
    EXPECT_EQ(libraries(NSUserDomainMask, NO), "~/.local/share");
    EXPECT_EQ(libraries(NSLocalDomainMask, NO), "/usr/local/share");
}

TEST_F(SearchPaths, FollowTheEnvironment) {
    EnvironmentVariable const data("XDG_DATA_HOME", "/elsewhere/data/");
    EnvironmentVariable const shared("XDG_DATA_DIRS", "relative:/a::/a/:/elsewhere/data");
    EXPECT_EQ(libraries(NSAllDomainsMask), "/elsewhere/data /a") << "each once, relative ones never";
    EnvironmentVariable const noShared("XDG_DATA_DIRS", "");
    EXPECT_EQ(libraries(NSLocalDomainMask | NSSystemDomainMask), "/usr/local/share /usr/share");
}

TEST_F(SearchPaths, KnowNoFoldersForAnotherPurpose) {
    EXPECT_EQ(NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory(999), NSAllDomainsMask, YES).count(), 0U);
}

} // namespace
} // namespace mac::test
