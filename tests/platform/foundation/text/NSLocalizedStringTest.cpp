#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/text/Localization.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace mac::test {
namespace {

// English for the other tests again.
class LoadedLocalization {
public:
    LoadedLocalization(std::string const& folder, std::vector<std::string> const& languages)
        : m_language(loadLocalization(folder, languages)) {}
    ~LoadedLocalization() { loadLocalization("", {}); }
    LoadedLocalization(LoadedLocalization const&) = delete;
    LoadedLocalization& operator=(LoadedLocalization const&) = delete;

    std::string const& language() const { return m_language; }

private:
    std::string m_language;
};

std::string localized(NSString const& key) { return NSLocalizedString(key, nil).UTF8String(); }

std::string copies(NSUInteger count) { return localizedCount(count, "%n copy", "%n copies", nil).UTF8String(); }

TEST(NSLocalizedString, IsTheKeyWithoutACatalogue) {
    EXPECT_EQ(localized("Café %@"), "Café %@");
    EXPECT_EQ(localized(""), "");
    EXPECT_EQ(localized(nil), "");
    EXPECT_STREQ(localizable("a key"), "a key");
}

TEST(NSLocalizedString, CountsInEnglishWithoutACatalogue) {
    EXPECT_EQ(copies(0), "0 copies");
    EXPECT_EQ(copies(1), "1 copy");
    EXPECT_EQ(copies(2), "2 copies");
    EXPECT_EQ(localizedCount(1, nil, "%n copies", nil).UTF8String(), "");
    EXPECT_EQ(localizedCount(2, "%n copy", nil, nil).UTF8String(), "");
    EXPECT_EQ(localizedCount(7, "", "%n of %n", nil).UTF8String(), "7 of 7");
}

TEST(NSLocalizedString, IsTheTextOfTheCatalogue) {
    LoadedLocalization const polish(FRAMEKEEPER_TEST_CATALOGUES, {"pl_PL", "pl"});
    EXPECT_EQ(polish.language(), "pl");
    EXPECT_EQ(localized("Café %@"), "Kawiarnia %@");
    EXPECT_EQ(localized("a text that the catalogue lacks"), "a text that the catalogue lacks");
}

TEST(NSLocalizedString, CountsInTheFormsOfTheLanguage) {
    LoadedLocalization const polish(FRAMEKEEPER_TEST_CATALOGUES, {"pl"});
    EXPECT_EQ(copies(0), "0 kopii");
    EXPECT_EQ(copies(1), "1 kopia");
    EXPECT_EQ(copies(22), "22 kopie");
    EXPECT_EQ(copies(25), "25 kopii");
    EXPECT_EQ(copies(1'000'000'001), "1000000001 kopii");
    EXPECT_EQ(copies(4'294'967'282U), "4294967282 kopie");
}

TEST(Localization, TakesTheFirstLanguageThatHasACatalogue) {
    EXPECT_EQ(LoadedLocalization(FRAMEKEEPER_TEST_CATALOGUES, {"xx_YY", "xx", "pl"}).language(), "pl");
    EXPECT_EQ(LoadedLocalization(FRAMEKEEPER_TEST_CATALOGUES, {"xx"}).language(), "");
}

TEST(Localization, NeedsNoCatalogueForEnglish) {
    for (char const* english : {"en", "en_GB"}) {
        LoadedLocalization const loaded(FRAMEKEEPER_TEST_CATALOGUES, {english, "pl"});
        EXPECT_EQ(loaded.language(), "") << english;
        EXPECT_EQ(copies(1), "1 copy") << english;
    }
}

TEST(Localization, LeavesADamagedCatalogueAlone) {
    TemporaryFolder const folder;
    folder.makeFile("framekeeper_pl.qm", "no catalogue");
    folder.makeFile("framekeeper_xx.qm", "");
    EXPECT_EQ(LoadedLocalization(folder.path(), {"pl", "xx"}).language(), "");
}

TEST(Localization, FindsTheCatalogueFolderAboveAProgram) {
    TemporaryFolder const folder;
    std::string const catalogues = folder.path("share/framekeeper/translations");
    for (char const* each : {"share", "share/framekeeper", "share/framekeeper/translations"})
        ASSERT_EQ(::mkdir(folder.path(each).c_str(), 0755), 0);
    EXPECT_EQ(localizationFolder(folder.path("bin/program")), catalogues);
    EXPECT_EQ(localizationFolder(folder.path("lib/machine/name/Name.app/Contents/Linux/program")), catalogues);
    EXPECT_EQ(localizationFolder(folder.path("a/b/c/d/e/f/g/program")), "");
    EXPECT_EQ(localizationFolder(""), "");
    EXPECT_EQ(localizationFolder("/program"), "");
}

TEST(Localization, FindsTheGermanCatalogueOfTheTree) {
    EnvironmentVariable const preferred("LANGUAGE", "xx_YY:de_AT:fr");
    EnvironmentVariable const all("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(loadLocalization(), "de");
    EXPECT_EQ(localized("Not running"), "Läuft nicht");
    loadLocalization("", {});
    EXPECT_EQ(localized("Not running"), "Not running");
}

} // namespace
} // namespace mac::test
