#include "tests/command/CommandRun.h"
#include <algorithm>
#include <filesystem>

// What the command prints, of many copies and in the user's language.

namespace framekeeper::test {
namespace {

class CommandListing : public CommandTest {};

// A list that takes the square of the copies' number would not end here.
TEST_F(CommandListing, ListsThousandsOfCopies) {
    constexpr int copies = 3000;
    for (int copy = 0; copy < copies; ++copy)
        copyAt(std::to_string(copy));
    CommandRun const done = run({"list", "-0"});
    EXPECT_EQ(done.status, 0) << done.errors;
    EXPECT_EQ(std::ranges::count(done.output, '\0'), copies);
}

TEST_F(CommandListing, RemembersWhatItReadForTheNextSearch) {
    for (int folder = 0; folder < 40; ++folder)
        for (int inside = 0; inside < 50; ++inside)
            m_desktop.folder.makeFolder("home/" + std::to_string(folder) + "/" + std::to_string(inside));
    copyAt("a");
    mac::test::EnvironmentVariable const caches("XDG_CACHE_HOME", m_desktop.folder.makeFolder("caches"));
    std::string const listed = run({"list"}).output;
    EXPECT_GT(bytesOfFile(m_desktop.folder.path("caches/framekeeper/scanned-folders")).size(), 1'000U);
    EXPECT_EQ(run({"list"}).output, listed);
}

// For people in their language, for programs as ever.
TEST_F(CommandListing, SpeaksTheLanguageOfPeopleAndNotToPrograms) {
    mac::test::EnvironmentVariable const language("LANGUAGE", "de");
    mac::test::EnvironmentVariable const locale("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(run({"list"}).output, "Keine Kopien.\n");
    CommandRun const missing = run({"trash", "--json", home("none")});
    EXPECT_EQ(missing.status, 3);
    EXPECT_NE(missing.errors.find("dort liegt keine Kopie"), std::string::npos) << missing.errors;
    EXPECT_NE(missing.output.find("\"status\": \"no-such-copy\", \"reason\": \"no copy of Mirror Frame is there\""),
              std::string::npos)
        << missing.output;
    EXPECT_NE(run({"--help"}).output.find("Aufruf: framekeeper-cli"), std::string::npos);
    copyAt("a");
    EXPECT_TRUE(run({"list"}).output.starts_with("VERSION    VORHANDEN")) << run({"list"}).output;
}

// What the system refused is a reason, too.
TEST_F(CommandListing, GivesTheSystemsReasonsToPeopleInTheirLanguageAndToProgramsAsEver) {
    mac::test::EnvironmentVariable const language("LANGUAGE", "de");
    mac::test::EnvironmentVariable const locale("LC_ALL", "de_DE.UTF-8");
    std::string const copy = copyAt("a");
    std::string const folder = m_desktop.folder.makeFile("config/autostart", "no folder");
    EXPECT_NE(run({"login", "add", copy}).errors.find(folder + ": Kein Ordner\n"), std::string::npos);
    CommandRun const done = run({"login", "add", "--json", copy});
    EXPECT_NE(done.output.find("\"the list could not be read: " + folder + ": Not a directory\""), std::string::npos)
        << done.output;
    ASSERT_EQ(run({"trash", copy}).status, 0);
    std::filesystem::remove(std::filesystem::path(copy).parent_path());
    EXPECT_NE(run({"restore", copy}).errors.find("Datei oder Ordner nicht gefunden"), std::string::npos);
    EXPECT_NE(run({"restore", "--json", copy}).output.find("No such file or directory"), std::string::npos);
}

} // namespace
} // namespace framekeeper::test
