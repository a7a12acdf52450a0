#include "tests/command/CommandRun.h"
#include "tests/support/Companion.h"
#include <filesystem>
#include <functional>
#include <unistd.h>

// The command as a process of its own, on real files.

namespace framekeeper::test {
namespace {

using Words = std::vector<std::string>;

class Command : public CommandTest {};

TEST_F(Command, ListsTheCopiesInTheOrderOfTheWindow) {
    std::string const newer = copyAt("b", "2.1");
    std::string const older = copyAt("a", "1.9");
    CommandRun const done = run({"list", "-0"});
    EXPECT_EQ(done.status, 0) << done.errors;
    EXPECT_EQ(done.output, newer + '\0' + older + '\0');
}

TEST_F(Command, ListsNothingInAnEmptyHome) {
    CommandRun const done = run({"list"});
    EXPECT_EQ(done.status, 0) << done.errors;
    EXPECT_EQ(done.output, "No copies.\n");
}

TEST_F(Command, ListsWithoutABusAndADisplay) {
    mac::test::EnvironmentVariable const none("DBUS_SESSION_BUS_ADDRESS", std::nullopt);
    mac::test::EnvironmentVariable const display("DISPLAY", std::nullopt);
    std::string const copy = copyAt("a");
    CommandRun const done = run({"list"});
    EXPECT_EQ(done.status, 0);
    EXPECT_NE(done.output.find(copy), std::string::npos) << done.output;
    EXPECT_EQ(done.errors, "");
}

TEST_F(Command, KeepsEveryByteOfAPath) {
    std::string const copy = copyAt("\xff\n\x1b");
    EXPECT_EQ(run({"list", "-0"}).output, copy + '\0');
    EXPECT_NE(run({"list", "--json"}).output.find("/%FF%0A%1B/Mirror%20Frame.app\""), std::string::npos);
    EXPECT_NE(run({"list"}).output.find("/\\xff\\n\\x1b/Mirror Frame.app\n"), std::string::npos);
    EXPECT_EQ(run({"info", copy}).status, 0);
    EXPECT_EQ(run({"trash", copy}).status, 0);
    EXPECT_FALSE(isThere(copy));
}

TEST_F(Command, TellsOneCopy) {
    std::string const copy = copyAt("a", "1.4");
    CommandRun const done = run({"info", copy + "/"});
    EXPECT_EQ(done.status, 0);
    EXPECT_NE(done.output.find("Version:   1.4 (1.4)\n"), std::string::npos) << done.output;
}

TEST_F(Command, SaysWhichCopyIsMissingAndTellsTheOthers) {
    std::string const copy = copyAt("a");
    CommandRun const done = run({"info", "--json", home("nowhere"), copy});
    EXPECT_EQ(done.status, 3);
    EXPECT_NE(done.output.find(copy), std::string::npos);
    EXPECT_NE(done.errors.find("nowhere: no copy of Mirror Frame is there"), std::string::npos) << done.errors;
}

TEST_F(Command, ShowsACopyInTheFileBrowser) {
    EXPECT_EQ(run({"reveal", copyAt("a")}).status, 0);
    EXPECT_TRUE(m_desktop.lastLine().starts_with("ShowItems file://")) << m_desktop.lastLine();
}

TEST_F(Command, MovesACopyToTheTrashAndBack) {
    std::string const copy = copyAt("a");
    CommandRun const trashed = run({"trash", "-0", copy});
    EXPECT_EQ(trashed.status, 0) << trashed.errors;
    EXPECT_FALSE(isThere(copy));
    ASSERT_TRUE(trashed.output.ends_with('\0'));
    std::string const inTrash(trashed.output.c_str());
    EXPECT_TRUE(isThere(inTrash)) << inTrash;
    CommandRun const restored = run({"restore", inTrash});
    EXPECT_EQ(restored.status, 0) << restored.errors;
    EXPECT_EQ(restored.output, copy + "\n");
    EXPECT_TRUE(isThere(copy));
}

TEST_F(Command, RestoresByWhereTheCopyCameFrom) {
    std::string const copy = copyAt("a");
    ASSERT_EQ(run({"trash", copy}).status, 0);
    EXPECT_EQ(run({"restore", copy}).status, 0);
    EXPECT_TRUE(isThere(copy));
    EXPECT_EQ(run({"restore", copy}).status, 3);
}

TEST_F(Command, RestoresTheCopyThatWasTrashedBeforeAnotherItemOfItsName) {
    std::string const copy = copyAt("a");
    ASSERT_EQ(run({"trash", copy}).status, 0);
    m_desktop.folder.makeFile("home/a/Mirror Frame.app", "no copy");
    std::string const files = m_desktop.folder.path("data/Trash/");
    std::filesystem::rename(copy, files + "files/later");
    std::string origin = copy;
    origin.replace(origin.find(' '), 1, "%20");
    m_desktop.folder.makeFile("data/Trash/info/later.trashinfo",
                              "[Trash Info]\nPath=" + origin + "\nDeletionDate=2040-01-01T00:00:00\n");
    CommandRun const done = run({"restore", copy});
    EXPECT_EQ(done.status, 0) << done.errors;
    EXPECT_TRUE(isThere(copy + "/Contents/Info.plist"));
    EXPECT_TRUE(isThere(files + "files/later"));
}

TEST_F(Command, FailsToRestoreFromAPathThatCannotBeLookedAt) {
    ASSERT_EQ(::symlink("loop", home("loop").c_str()), 0);
    EXPECT_EQ(run({"restore", home("loop/Mirror Frame.app")}).status, 1);
}

TEST_F(Command, DoesNotRestoreOverAnotherCopy) {
    std::string const copy = copyAt("a");
    CommandRun const trashed = run({"trash", "-0", copy});
    copyAt("a", "3");
    CommandRun const done = run({"restore", trashed.output.c_str()});
    EXPECT_EQ(done.status, 1);
    EXPECT_NE(done.errors, "");
    EXPECT_TRUE(isThere(trashed.output.c_str()));
}

TEST_F(Command, DeletesOnlyWhenThatIsConfirmed) {
    std::string const copy = copyAt("a");
    CommandRun const refused = run({"delete", copy});
    EXPECT_EQ(refused.status, 5);
    EXPECT_TRUE(isThere(copy));
    EXPECT_EQ(run({"delete", "--yes", copy}).status, 0);
    EXPECT_FALSE(isThere(copy));
}

// On a terminal of its own, which script(1) makes; answers what the terminal showed.
std::string shownOnATerminal(std::string const& words, std::string const& copy, std::string const& answer) {
    mac::test::EnvironmentVariable const program("COMMAND", FRAMEKEEPER_CLI);
    mac::test::EnvironmentVariable const path("COPY", copy);
    mac::test::ChildProcess terminal({"/usr/bin/script", "-qec", "\"$COMMAND\" " + words, "/dev/null"});
    terminal.writeLine(answer);
    std::string shown;
    for (std::string line = terminal.readLine(); !line.empty(); line = terminal.readLine())
        shown += line + '\n';
    terminal.wait();
    return shown;
}

TEST_F(Command, AsksOnATerminalBeforeItDeletes) {
    std::string const copy = copyAt("a");
    EXPECT_NE(shownOnATerminal("delete \"$COPY\"", copy, "n").find("Delete for good? [y/N]"), std::string::npos);
    EXPECT_TRUE(isThere(copy));
    shownOnATerminal("delete \"$COPY\"", copy, "y");
    EXPECT_FALSE(isThere(copy));
}

// Deletes the copy on a terminal, where the answer is yes, and calls the function once the path was shown there.
int statusOfDeleting(std::string const& copy, std::function<void()> const& whenAsked) {
    mac::test::EnvironmentVariable const program("COMMAND", FRAMEKEEPER_CLI);
    mac::test::EnvironmentVariable const path("COPY", copy);
    mac::test::ChildProcess terminal({"/usr/bin/script", "-qec", "\"$COMMAND\" delete \"$COPY\"", "/dev/null"});
    // The shell may have something to say first.
    std::string shown = terminal.readLine();
    while (!shown.empty() && shown.find("Mirror Frame.app") == std::string::npos)
        shown = terminal.readLine();
    EXPECT_NE(shown, "");
    whenAsked();
    terminal.writeLine("y");
    while (!terminal.readLine().empty()) {}
    return terminal.wait();
}

TEST_F(Command, DeletesTheCopyAtThePathThatWasConfirmed) {
    std::string const copy = copyAt("a");
    std::string const other = copyAt("b");
    std::string const way = home("way");
    ASSERT_EQ(::symlink("a", way.c_str()), 0);
    int const status = statusOfDeleting(way + "/Mirror Frame.app", [&] {
        EXPECT_EQ(::unlink(way.c_str()), 0);
        EXPECT_EQ(::symlink("b", way.c_str()), 0);
    });
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(isThere(copy));
    EXPECT_TRUE(isThere(other));
}

TEST_F(Command, DeletesNoCopyThatTookThePlaceOfTheConfirmedOne) {
    std::string const copy = copyAt("a");
    std::string const other = copyAt("b");
    int const status = statusOfDeleting(copy, [&] {
        EXPECT_EQ(::rename(copy.c_str(), home("a/kept").c_str()), 0);
        EXPECT_EQ(::rename(other.c_str(), copy.c_str()), 0);
    });
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(isThere(copy));
    EXPECT_TRUE(isThere(home("a/kept")));
}

TEST_F(Command, TellsHowFarTheSearchIsOnATerminal) {
    std::string const shown = shownOnATerminal("list", copyAt("a"), "");
    EXPECT_NE(shown.find("Searching: "), std::string::npos) << shown;
}

TEST_F(Command, TouchesNothingThatIsNoCopy) {
    std::string const folder = m_desktop.folder.makeFolder("home/Letters");
    for (char const* const verb : {"reveal", "trash", "swap-icon", "quit", "restore"})
        EXPECT_EQ(run({verb, folder}).status, 3) << verb;
    EXPECT_EQ(run({"delete", "--yes", folder}).status, 3);
    EXPECT_EQ(run({"login", "add", folder}).status, 3);
    EXPECT_EQ(run({"login", "remove", folder}).status, 3);
    EXPECT_EQ(run({"places", "remove", folder}).status, 3);
    EXPECT_TRUE(isThere(folder));
}

TEST_F(Command, TouchesNoCopyThroughASymbolicLink) {
    std::string const copy = copyAt("a");
    m_desktop.folder.makeFolder("home/b");
    std::string const link = home("b/Mirror Frame.app");
    ASSERT_EQ(::symlink(copy.c_str(), link.c_str()), 0);
    std::string const information = bytesOfFile(copy + "/Contents/Info.plist");
    for (char const* const verb : {"swap-icon", "reveal", "trash", "info"})
        EXPECT_EQ(run({verb, link}).status, 3) << verb;
    EXPECT_EQ(run({"delete", "--yes", link}).status, 3);
    EXPECT_EQ(run({"login", "add", link}).status, 3);
    EXPECT_EQ(bytesOfFile(copy + "/Contents/Info.plist"), information);
    EXPECT_TRUE(isThere(link));
}

TEST_F(Command, ContinuesAfterAPathThatFails) {
    std::string const copy = copyAt("a");
    CommandRun const done = run({"trash", "--json", home("nowhere"), copy});
    EXPECT_EQ(done.status, 3);
    EXPECT_FALSE(isThere(copy));
    EXPECT_NE(done.output.find("\"status\": \"no-such-copy\""), std::string::npos) << done.output;
    EXPECT_NE(done.output.find("\"status\": \"done\""), std::string::npos);
}

TEST_F(Command, SwapsAnIconAndShowsTheCopy) {
    std::string const copy = copyAt("a");
    EXPECT_EQ(run({"swap-icon", copy}).status, 0);
    EXPECT_NE(bytesOfFile(copy + "/Contents/Info.plist").find("mirrorframe2"), std::string::npos);
}

TEST_F(Command, TellsASwappedIconThatCouldNotBeShownApart) {
    std::string const copy = copyAt("a");
    m_desktop.install("/nonexistent/browser");
    m_desktop.folder.makeFile("data/dbus-1/services/browser.service", "");
    CommandRun const done = run({"swap-icon", "--json", copy});
    EXPECT_EQ(done.status, 4) << done.errors;
    EXPECT_NE(done.output.find("\"status\": \"not-shown\", \"reason\": \"its icon is swapped"), std::string::npos)
        << done.output;
    EXPECT_NE(bytesOfFile(copy + "/Contents/Info.plist").find("mirrorframe2"), std::string::npos);
}

TEST_F(Command, FailsToSwapTheIconOfACopyWithoutSuchIcons) {
    std::string const copy = m_desktop.folder.makeBundle(
        "home/a/Mirror Frame.app", mac::test::informationFile("com.tidelark.mirrorframe", "1", "1"));
    EXPECT_EQ(run({"swap-icon", copy}).status, 1);
}

TEST_F(Command, ChangesTheLoginItems) {
    std::string const copy = copyAt("a");
    EXPECT_EQ(run({"login", "add", copy}).status, 0);
    EXPECT_EQ(run({"login", "-0"}).output, copy + '\0');
    EXPECT_EQ(run({"login", "remove", copy}).status, 0);
    EXPECT_EQ(run({"login", "-0"}).output, "");
}

TEST_F(Command, RemovesALoginItemWhoseCopyHasGone) {
    std::string const copy = copyAt("a");
    ASSERT_EQ(run({"login", "add", copy}).status, 0);
    ASSERT_EQ(run({"delete", "-y", copy}).status, 0);
    EXPECT_EQ(run({"login", "-0"}).output, copy + '\0');
    EXPECT_EQ(run({"login", "remove", copy}).status, 0);
    EXPECT_EQ(run({"login", "-0"}).output, "");
}

TEST_F(Command, RemovesACopyFromThePlaces) {
    std::string const copy = copyAt("a");
    std::string const other = home("Letters");
    std::string uri = "file://" + copy;
    uri.replace(uri.find(' '), 1, "%20");
    m_desktop.folder.makeFile("config/gtk-3.0/bookmarks", "file://" + other + "\n" + uri + "\n");
    EXPECT_EQ(run({"places", "-0"}).output, copy + '\0');
    CommandRun const done = run({"places", "remove", copy});
    // No file browser runs that could take it up.
    EXPECT_EQ(done.status, 4) << done.errors;
    EXPECT_EQ(bytesOfFile(m_desktop.folder.path("config/gtk-3.0/bookmarks")), "file://" + other + "\n");
}

TEST_F(Command, RemovesACopyFromAllListsOfPlaces) {
    std::string const copy = copyAt("a");
    std::string uri = "file://" + copy;
    uri.replace(uri.find(' '), 1, "%20");
    m_desktop.folder.makeFile("config/gtk-3.0/bookmarks", uri + "\n");
    m_desktop.folder.makeFile("data/user-places.xbel", "<!DOCTYPE xbel>\n<xbel>\n <bookmark href=\"" + uri +
                                                           "\"><title>Mirror</title></bookmark>\n</xbel>\n");
    EXPECT_EQ(run({"places", "-0"}).output, copy + '\0');
    CommandRun const done = run({"places", "remove", copy});
    EXPECT_EQ(done.status, 4) << done.errors;
    EXPECT_EQ(bytesOfFile(m_desktop.folder.path("config/gtk-3.0/bookmarks")), "");
    EXPECT_EQ(bytesOfFile(m_desktop.folder.path("data/user-places.xbel")).find("Mirror"), std::string::npos);
    EXPECT_EQ(run({"places", "-0"}).output, "");
}

TEST_F(Command, RemovesAllLoginItemsOfACopy) {
    std::string const copy = copyAt("a");
    ASSERT_EQ(run({"login", "add", copy}).status, 0);
    std::filesystem::path const folder = m_desktop.folder.path("config/autostart");
    std::filesystem::path const item = std::filesystem::directory_iterator(folder)->path();
    std::filesystem::copy_file(item, folder / "another.desktop");
    EXPECT_EQ(run({"login", "remove", copy}).status, 0);
    EXPECT_EQ(run({"login", "-0"}).output, "");
    EXPECT_EQ(run({"login", "remove", copy}).status, 3);
}

TEST_F(Command, FailsToTellPlacesThatCannotBeRead) {
    std::string const copy = copyAt("a");
    m_desktop.folder.makeFolder("config/gtk-3.0/bookmarks");
    for (Words const& words : {Words{"places"}, Words{"list"}, Words{"info", copy}}) {
        CommandRun const done = run(words);
        EXPECT_EQ(done.status, 1) << words.front();
        EXPECT_NE(done.output, "");
        EXPECT_NE(done.errors.find("could not be read"), std::string::npos) << done.errors;
        EXPECT_NE(done.errors.find("config/gtk-3.0/bookmarks: Is a directory\n"), std::string::npos) << done.errors;
    }
    EXPECT_NE(run({"list"}).output.find(copy), std::string::npos);
    CommandRun const removed = run({"places", "remove", copy});
    EXPECT_EQ(removed.status, 1);
    EXPECT_NE(removed.errors.find("config/gtk-3.0/bookmarks: Is a directory\n"), std::string::npos) << removed.errors;
}

TEST_F(Command, FailsToTellLoginItemsThatCannotBeRead) {
    std::string const copy = copyAt("a");
    m_desktop.folder.makeFile("config/autostart", "no folder");
    EXPECT_EQ(run({"login"}).status, 1);
    for (Words const& words : {Words{"login", "add", copy}, Words{"login", "remove", copy}}) {
        CommandRun const done = run(words);
        EXPECT_EQ(done.status, 1);
        EXPECT_NE(done.errors.find("config/autostart: Not a directory\n"), std::string::npos) << done.errors;
    }
    EXPECT_EQ(run({"info", copy}).status, 1);
}

TEST_F(Command, QuitsAllProcessesOfACopy) {
    mac::test::RunningCompanion first("willing");
    mac::test::RunningCompanion second("willing");
    EXPECT_EQ(run({"quit", text(first.bundle())}).status, 0);
    EXPECT_FALSE(first.isRunning());
    EXPECT_FALSE(second.isRunning());
}

TEST_F(Command, QuitsACopyThatRuns) {
    mac::test::RunningCompanion willing("willing");
    std::string const path = text(willing.bundle());
    EXPECT_EQ(run({"quit", path}).status, 0);
    EXPECT_EQ(run({"quit", path}).status, 3);
}

TEST_F(Command, FailsToQuitACopyThatRefuses) {
    mac::test::RunningCompanion refusing("refusing");
    EXPECT_EQ(run({"quit", text(refusing.bundle())}).status, 1);
    EXPECT_TRUE(refusing.isRunning());
}

TEST_F(Command, SaysHowItIsUsed) {
    CommandRun const help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.starts_with("usage: ")) << help.output;
    for (Words const& words : {Words{}, Words{"list", "--frobnicate"}, Words{"frobnicate"}, Words{"trash"}}) {
        CommandRun const wrong = run(words);
        EXPECT_EQ(wrong.status, 2);
        EXPECT_EQ(wrong.output, "");
        EXPECT_NE(wrong.errors.find("usage: "), std::string::npos);
    }
    EXPECT_TRUE(run({"--version"}).output.starts_with("framekeeper-cli "));
}

TEST_F(Command, ReportsOutputThatCannotBeWritten) {
    copyAt("a");
    for (char const* const redirection : {">/dev/full", ">&-"}) {
        for (Words const& words : {Words{"list"}, Words{"--help"}, Words{"login"}}) {
            CommandRun const done = runInto(redirection, words);
            EXPECT_EQ(done.status, 6) << redirection;
            EXPECT_NE(done.errors.find("standard output"), std::string::npos) << done.errors;
        }
    }
}

TEST_F(Command, ReportsAClosedPipe) {
    copyAt("a");
    std::string const status = m_desktop.folder.path("status");
    // The reader has gone before the command starts.
    mac::test::ChildProcess shell(
        {"/bin/sh", "-c",
         "mkfifo \"$1.pipe\"; { : <\"$1.pipe\"; echo gone >\"$1.gone\"; } & exec 3>\"$1.pipe\"; wait; "
         "\"$2\" list >&3 2>/dev/null; echo $? >\"$1\"",
         "sh", status, FRAMEKEEPER_CLI});
    EXPECT_EQ(shell.wait(), 0);
    EXPECT_EQ(bytesOfFile(status), "6\n");
}

} // namespace
} // namespace framekeeper::test
