#include "platform/system/UserLanguages.h"
#include "tests/support/Environment.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

std::vector<std::string> languagesWith(char const* language, char const* locale) {
    EnvironmentVariable const preferred("LANGUAGE", language);
    EnvironmentVariable const all("LC_ALL", locale);
    return userLanguages();
}

using Languages = std::vector<std::string>;

TEST(UserLanguages, HaveTheirCountryFirstAndEnglishLast) {
    EXPECT_EQ(languagesWith("", "de_AT.UTF-8@euro"), (Languages{"de_AT", "de", "en"}));
    EXPECT_EQ(languagesWith("fr:de_CH", "de_DE.UTF-8"), (Languages{"fr", "de_CH", "de", "de_DE", "en"}));
    EXPECT_EQ(languagesWith("", "en_GB.UTF-8"), (Languages{"en_GB", "en"}));
}

TEST(UserLanguages, ArePreferredOnlyInALocaleThatSpeaks) {
    EXPECT_EQ(languagesWith("de", "C.UTF-8"), Languages{"en"});
    EXPECT_EQ(languagesWith("de", "POSIX"), Languages{"en"});
}

TEST(UserLanguages, AreNoPaths) { EXPECT_EQ(languagesWith("../../tmp/x:fr", "/etc/passwd"), (Languages{"fr", "en"})); }

} // namespace
} // namespace mac::test
