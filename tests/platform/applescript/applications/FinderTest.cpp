#include "platform/applescript/runtime/SourceForm.h"
#include "platform/files/references/HFSPaths.h"
#include "tests/platform/applescript/ScriptHome.h"
#include "tests/platform/applescript/applications/FinderScripts.h"
#include "tests/platform/files/trash/TrashHome.h"
#include "tests/support/Commands.h"
#include <array>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::applescript::test {

namespace {

std::atomic<bool>* s_isDeleted = nullptr;

// Sets the flag when an item in the folder is deleted: a signal interrupts the deleting thread, so that it runs on only
// after the flag is set. REQUIRES: the main thread deletes.
class FirstDeletion {
public:
    FirstDeletion(std::string const& folder, std::atomic<bool>& isDeleted) {
        s_isDeleted = &isDeleted;
        m_before = std::signal(SIGIO, [](int) { *s_isDeleted = true; });
        EXPECT_GE(::inotify_add_watch(m_events.number(), folder.c_str(), IN_DELETE), 0);
        EXPECT_EQ(::fcntl(m_events.number(), F_SETOWN, ::getpid()), 0);
        EXPECT_EQ(::fcntl(m_events.number(), F_SETFL, O_ASYNC | O_NONBLOCK), 0);
    }
    ~FirstDeletion() {
        m_events = FileDescriptor();
        std::signal(SIGIO, m_before);
        s_isDeleted = nullptr;
    }
    FirstDeletion(FirstDeletion const&) = delete;
    FirstDeletion& operator=(FirstDeletion const&) = delete;

private:
    FileDescriptor m_events{::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
    void (*m_before)(int){SIG_DFL};
};

TEST(Finder, ThrowsAwayAndSaysWhere) {
    ScriptHome const home;
    std::string const file = home.path("Documents/f1.txt");
    EXPECT_EQ(textResult(trashScript(file)), home.path(".local/share/Trash/files/f1.txt"));
    EXPECT_FALSE(isThere(file));
    EXPECT_EQ(textOf(home.path(".local/share/Trash/files/f1.txt")), "1");
    EXPECT_TRUE(isThere(home.path(".local/share/Trash/info/f1.txt.trashinfo")));
}

TEST(Finder, ThrowsAwayWhatAnotherProgramRestores) {
    ScriptHome const home;
    mac::test::EnvironmentVariable const runtime("XDG_RUNTIME_DIR", home.folder().makeFolder("runtime"));
    mac::test::EnvironmentVariable const programs("PATH", "/usr/bin:/bin");
    mac::test::EnvironmentVariable const data("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    if (!mac::test::gioKnowsTrash()) GTEST_SKIP() << mac::test::GioKnowsNoTrash;
    std::string const file = home.path("Documents/f1.txt");
    ASSERT_EQ(textResult(trashScript(file)), home.path(".local/share/Trash/files/f1.txt"));
    EXPECT_EQ(mac::test::gio({"trash", "--list"}), "trash:///f1.txt\t" + file + "\n");
    mac::test::gio({"trash", "--restore", "trash:///f1.txt"});
    EXPECT_EQ(textOf(file), "1");
}

TEST(Finder, ThrowsAwayAFolderWhosePathThenEndsInASlash) {
    ScriptHome const home;
    EXPECT_EQ(textResult(trashScript(home.path("Documents"))), home.path(".local/share/Trash/files/Documents/"));
}

TEST(Finder, ThrowsAwayTheLinkItself) {
    ScriptHome const home;
    ASSERT_EQ(::symlink("Documents", home.path("link").c_str()), 0);
    EXPECT_EQ(textResult(trashScript(home.path("link"))), home.path(".local/share/Trash/files/link"));
    EXPECT_TRUE(isThere(home.path("Documents/f1.txt")));
}

TEST(Finder, KeepsEveryByteOfAName) {
    ScriptHome const home;
    for (std::string const name : {"quote\" and \\ back", "colon:slash", "\xFF\xE9 bytes", "line\nfeed", "ünï", " "}) {
        std::string const file = home.folder().makeFile("Documents/" + name, name);
        EXPECT_EQ(textResult(trashScript(file)), home.path(".local/share/Trash/files/" + name));
        EXPECT_EQ(textOf(home.path(".local/share/Trash/files/" + name)), name);
        EXPECT_FALSE(isThere(file));
    }
}

TEST(Finder, MovesAndSaysWhere) {
    ScriptHome const home;
    EXPECT_EQ(textResult(moveScript(home.path("Documents/f1.txt"), home.path("Empty"))), home.path("Empty/f1.txt"));
    EXPECT_EQ(textOf(home.path("Empty/f1.txt")), "1");
    EXPECT_FALSE(isThere(home.path("Documents/f1.txt")));
}

TEST(Finder, LeavesBothWhereTheyAreWhenTheNameIsTaken) {
    ScriptHome const home;
    home.folder().makeFile("Empty/f1.txt", "other");
    EXPECT_EQ(errorNumberOf(moveScript(home.path("Documents/f1.txt"), home.path("Empty"))), -15267);
    EXPECT_EQ(textOf(home.path("Empty/f1.txt")), "other");
    EXPECT_EQ(textOf(home.path("Documents/f1.txt")), "1");
}

TEST(Finder, ReplacesOnlyWhenItIsTold) {
    ScriptHome const home;
    home.folder().makeFile("Empty/f1.txt", "other");
    std::string const source = R"(tell application "Finder" to move (POSIX file ")" + home.path("Documents/f1.txt") +
                               "\") to (POSIX file \"" + home.path("Empty") + "\") with replacing";
    EXPECT_EQ(errorNumberOf(source), 0);
    EXPECT_EQ(textOf(home.path("Empty/f1.txt")), "1");
    EXPECT_FALSE(isThere(home.path("Documents/f1.txt")));
}

TEST(Finder, PutsNothingOntoADesktopThatIsNotThere) {
    ScriptHome const home;
    ASSERT_EQ(::rename(home.path("Desktop").c_str(), home.path("Away").c_str()), 0);
    std::string const file = home.path("Documents/f1.txt");
    for (std::string const command : {"move", "duplicate"}) {
        std::string source = "tell application \"Finder\" to ";
        source.append(command).append(" (POSIX file \"").append(file).append("\") to it");
        EXPECT_EQ(errorNumberOf(source), -1728) << command;
    }
    EXPECT_EQ(errorNumberOf("tell application \"Finder\" to make new folder"), -1728);
    EXPECT_TRUE(isThere(file));
    EXPECT_FALSE(isThere(home.path("Documents/f1 copy.txt")));
}

TEST(Finder, DoesNotMoveAFolderIntoItself) {
    ScriptHome const home;
    EXPECT_EQ(errorNumberOf(moveScript(home.path("Documents"), home.path("Documents/Inner"))), -10024);
    EXPECT_TRUE(isThere(home.path("Documents/Inner/deep.md")));
}

constexpr char FinderAttribute[] = "user.com.apple.FinderInfo";
constexpr std::string_view TextOfAnEditor = "TEXTttxt";

std::string finderAttribute(std::string const& path) {
    std::array<char, 64> bytes{};
    ssize_t const length = ::lgetxattr(path.c_str(), FinderAttribute, bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

void setFinderAttribute(std::string const& path, std::string bytes) {
    bytes.resize(32);
    ASSERT_EQ(::setxattr(path.c_str(), FinderAttribute, bytes.data(), bytes.size(), 0), 0);
}

TEST(Finder, ALabelLeavesTypeAndCreatorAlone) {
    ScriptHome const home;
    std::string const file = home.path("Documents/f1.txt");
    setFinderAttribute(file, std::string(TextOfAnEditor) + "\x41\x01");
    EXPECT_EQ(errorNumberOf("tell application \"Finder\" to set label index of (POSIX file \"" + file + "\") to 2"), 0);
    EXPECT_EQ(finderAttribute(file).substr(0, 10), std::string(TextOfAnEditor) + "\x41\x0D");
}

TEST(Finder, SetsNoLabelWhereItCannotReadWhatElseIsThere) {
    ScriptHome const home;
    std::string const file = home.path("Documents/f1.txt");
    setFinderAttribute(file, std::string(TextOfAnEditor));
    std::string const before = finderAttribute(file);
    ASSERT_EQ(::chmod(home.path().c_str(), 0755), 0);
    mac::test::OrdinaryUser::own(file);
    ASSERT_EQ(::chmod(file.c_str(), 0200), 0);
    {
        mac::test::OrdinaryUser const user;
        EXPECT_EQ(errorNumberOf("tell application \"Finder\" to set label index of (POSIX file \"" + file + "\") to 2"),
                  -5000);
        EXPECT_EQ(outcomeOf(ofItem("label index", file)).value.asInteger(), 0);
    }
    ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
    EXPECT_EQ(finderAttribute(file), before);
}

TEST(Finder, SetsNoLabelOverInformationOfAnotherSize) {
    ScriptHome const home;
    std::string const file = home.path("Documents/f1.txt");
    ASSERT_EQ(::setxattr(file.c_str(), FinderAttribute, TextOfAnEditor.data(), TextOfAnEditor.size(), 0), 0);
    EXPECT_EQ(outcomeOf(ofItem("label index", file)).value.asInteger(), 0);
    for (std::string const label : {"2", "0"}) {
        std::string source = R"(tell application "Finder" to set label index of (POSIX file ")";
        source.append(file).append("\") to ").append(label);
        EXPECT_EQ(errorNumberOf(source), -36) << label;
    }
    EXPECT_EQ(finderAttribute(file), TextOfAnEditor);
}

TEST(Finder, AFileThatOnlyItsRightsProtectIsNotLocked) {
    ScriptHome const home;
    std::string const file = home.path("Documents/f1.txt");
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    EXPECT_EQ(utf8FromUnits(sourceForm(outcomeOf(ofItem("locked", file)).value)), "false");
}

TEST(Finder, LocksAnItemWhichThenStaysWhereItIs) {
    ScriptHome const home;
    std::string const file = home.path("Documents/f1.txt");
    std::string const item = "(POSIX file \"" + file + "\")";
    std::string const finder = "tell application \"Finder\" to ";
    EXPECT_EQ(textResult(finder + "set locked of " + item + " to true\n\"done\""), "done");
    EXPECT_EQ(utf8FromUnits(sourceForm(outcomeOf(ofItem("locked", file)).value)), "true");
    EXPECT_EQ(errorNumberOf(finder + "delete " + item), -45);
    EXPECT_EQ(errorNumberOf(finder + "move " + item + " to (path to desktop)"), -45);
    EXPECT_EQ(errorNumberOf(finder + "set name of " + item + " to \"other.txt\""), -45);
    EXPECT_TRUE(isThere(file));
    EXPECT_EQ(textResult(finder + "set locked of " + item + " to false\n\"done\""), "done");
    EXPECT_EQ(utf8FromUnits(sourceForm(outcomeOf(ofItem("locked", file)).value)), "false");
}

TEST(Finder, ShowsABundleByTheNameThatItGivesItself) {
    ScriptHome const home;
    std::string const bundle = home.folder().makeBundle(
        "Mine.app", "<plist version=\"1.0\"><dict><key>CFBundleDisplayName</key><string>Mine</string></dict></plist>");
    EXPECT_EQ(textResult(ofItem("displayed name", bundle)), "Mine");
    EXPECT_EQ(textResult(ofItem("name", bundle)), "Mine.app");
    EXPECT_EQ(utf8FromUnits(sourceForm(outcomeOf(ofItem("extension hidden", bundle)).value)), "true");
    std::string const plain = home.folder().makeFile("a:b.txt", "");
    EXPECT_EQ(textResult(ofItem("displayed name", plain)), "a/b.txt");
    setFinderAttribute(plain, std::string(8, '\0') + std::string("\0\x10", 2));
    EXPECT_EQ(textResult(ofItem("displayed name", plain)), "a/b");
}

TEST(Finder, TellsTheKindOfAnItemByWhatItHolds) {
    ScriptHome const home;
    ASSERT_EQ(::symlink("Documents", home.path("link").c_str()), 0);
    EXPECT_EQ(textResult(ofItem("kind", home.path("Desktop/Mirror.app"))), "Application");
    EXPECT_EQ(textResult(ofItem("kind", home.folder().makeFolder("Empty/x.pkg"))), "Installer package");
    EXPECT_EQ(textResult(ofItem("kind", home.path("link"))), "Alias");
    EXPECT_EQ(textResult(ofItem("kind", home.folder().makeFile("a.plist", ""))), "Property list");
    EXPECT_EQ(textResult(ofItem("kind", home.folder().makeFile("a.Qqq", "\1\2"))), "qqq document");
    EXPECT_EQ(textResult("tell application \"Finder\" to kind of startup disk"), "Volume");
}

TEST(Finder, FindsTheDesktopWhereTheUsersListSays) {
    ScriptHome const home;
    home.setDesktopFolders("XDG_DESKTOP_DIR=\"$HOME/Empty\"\n");
    home.folder().makeFile("Empty/here.txt", "");
    EXPECT_EQ(textResult("tell application \"Finder\" to name of item 1 of desktop"), "here.txt");
    EXPECT_EQ(textResult("POSIX path of (path to desktop)"), home.path("Empty/"));
}

TEST(Finder, FindsTheHomeOfTheUserWhereNoVariableSays) {
    ScriptHome const home;
    mac::test::EnvironmentVariable const none("HOME", "");
    if (::access(::getpwuid(::getuid())->pw_dir, F_OK) != 0) GTEST_SKIP() << "this user has no home";
    EXPECT_EQ(textResult("tell application \"Finder\" to POSIX path of (home as alias)"),
              textResult("POSIX path of (path to home folder)"));
    EXPECT_EQ(textResult("POSIX path of (path to home folder)"), std::string(::getpwuid(::getuid())->pw_dir) + "/");
}

TEST(Finder, TellsAnItemsURLByteForByte) {
    ScriptHome const home;
    std::string const file = home.folder().makeFile("a \xFF%é(1)", "");
    EXPECT_EQ(textResult(ofItem("URL", file)), "file://" + home.path("a%20%FF%25%C3%A9%281%29"));
    EXPECT_EQ(textResult(ofItem("URL", home.path("Empty"))), "file://" + home.path("Empty") + "/");
    EXPECT_EQ(textResult("tell application \"Finder\" to URL of startup disk"), "file:///");
}

TEST(Finder, SaysWhichApplicationComplains) {
    ScriptHome const home;
    ScriptOutcome const outcome = outcomeOf(R"(tell application "Finder" to name of folder "nope" of home)");
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->application, u"Finder");
    EXPECT_EQ(outcome.error->message, u"Finder got an error: Can’t get folder \"nope\" of home.");
}

TEST(Finder, IsNotAskedByAScriptThatMayOnlyCompute) {
    ScriptHome const home;
    EXPECT_EQ(errorNumberOf(trashScript(home.path("Documents/f1.txt")), {.computesOnly = true}), -1723);
    EXPECT_TRUE(isThere(home.path("Documents/f1.txt")));
    EXPECT_EQ(errorNumberOf("tell application \"Finder\" to empty trash", {.computesOnly = true}), -1723);
}

TEST(Finder, StopsWhenTheScriptIsToStop) {
    ScriptHome const home;
    std::atomic<bool> const cancelled{true};
    EXPECT_EQ(errorNumberOf(moveScript(home.path("Documents/f1.txt"), home.path("Empty")), {.cancelled = &cancelled}),
              -128);
    EXPECT_TRUE(isThere(home.path("Documents/f1.txt")));
}

TEST(Finder, StopsWhileItEmptiesTheTrash) {
    ScriptHome const home;
    for (std::string const name : {"f1.txt", "f2.txt", "f10.txt"})
        ASSERT_EQ(errorNumberOf(trashScript(home.path("Documents/" + name))), 0);
    std::atomic<bool> cancelled{false};
    FirstDeletion const deletion(home.path(".local/share/Trash/files"), cancelled);
    EXPECT_EQ(errorNumberOf("try\ntell application \"Finder\" to empty trash\nend try", {.cancelled = &cancelled}),
              -128);
    EXPECT_EQ(trashedItems().size(), 2U);
}

TEST(Finder, NamesWhatLiesInAPackageSoThatItIsFoundAgain) {
    ScriptHome const home;
    for (std::string const name : {"x.bundle", "x.component", "X.App", "x.xcodeproj", "x.framework"}) {
        std::string const file = home.folder().makeFile("Empty/" + name + "/Contents/in.txt", "");
        std::string const source = "tell application \"Finder\"\nset x to container of (POSIX file \"" + file +
                                   "\")\nname of item 1 of x\nend tell";
        EXPECT_EQ(textResult(source), "in.txt") << name;
        EXPECT_EQ(textResult(ofItem("name", home.path("Empty/" + name))), name);
    }
}

TEST(Finder, EntireContentsLeavesPackagesClosed) {
    ScriptHome const home;
    for (std::string const name : {"a.Component", "b.xcodeproj", "c.app"})
        home.folder().makeFile("Empty/" + name + "/inside", "");
    home.folder().makeFile("Empty/d.framework/inside", "");
    ScriptOutcome const outcome = outcomeOf(ofItem("name of every item of entire contents", home.path("Empty")));
    EXPECT_EQ(utf8FromUnits(sourceForm(outcome.value)),
              R"({"a.Component", "b.xcodeproj", "c.app", "d.framework", "inside"})");
}

TEST(Finder, StopsWhileItWalksThroughAFolder) {
    ScriptHome const home;
    std::atomic<bool> const cancelled{true};
    for (std::string const property : {"size", "entire contents"}) {
        std::string const kept = "try\n" + ofItem(property, home.path("Documents")) + "\nend try";
        EXPECT_EQ(errorNumberOf(kept, {.cancelled = &cancelled}), -128) << property;
    }
}

} // namespace

} // namespace mac::applescript::test
