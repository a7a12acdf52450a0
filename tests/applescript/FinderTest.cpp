#include "platform/applescript/ScriptEngine.h"
#include "platform/applescript/SourceForm.h"
#include "platform/files/HFSPaths.h"
#include "platform/files/TrashSteps.h"
#include "platform/foundation/Encodings.h"
#include "tests/applescript/ScriptHome.h"
#include "tests/files/TrashHome.h"
#include "tests/support/Gio.h"
#include "tests/support/PrivateMounts.h"
#include <array>
#include <fstream>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::applescript::test {

namespace {

bool isThere(std::string const& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

std::string textOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// As a script's text holds it.
std::string escaped(std::string const& path) {
    std::string text;
    for (char const character : path) {
        if (character == '"' || character == '\\') text += '\\';
        text += character;
    }
    return text;
}

ScriptOutcome outcomeOf(std::string const& source, RunOptions const& options = {}) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(unitsFromFileSystemBytes(source), error);
    if (!script) return {.error = error};
    return script->run(options);
}

std::string textResult(std::string const& source) {
    ScriptOutcome const outcome = outcomeOf(source);
    if (outcome.error) return "! " + utf8FromUnits(outcome.error->message);
    if (!outcome.value.is(ValueKind::Text)) return "! no text";
    return fileSystemBytesFromUnits(outcome.value.units()).value_or("! no path");
}

std::int32_t errorNumberOf(std::string const& source, RunOptions const& options = {}) {
    ScriptOutcome const outcome = outcomeOf(source, options);
    return outcome.error ? outcome.error->number : 0;
}

std::string trashScript(std::string const& path) {
    return "set x to POSIX file \"" + escaped(path) +
           "\"\n"
           "tell application \"Finder\" to set y to delete x\n"
           "tell application \"Finder\" to set r to y as text\n"
           "POSIX path of r\n";
}

std::string moveScript(std::string const& path, std::string const& folder) {
    return "set x to POSIX file \"" + escaped(path) + "\"\nset y to POSIX file \"" + escaped(folder) +
           "\"\n"
           "tell application \"Finder\" to set z to move x to y\n"
           "tell application \"Finder\" to set r to z as text\n"
           "POSIX path of r\n";
}

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
        std::string const source = "tell application \"Finder\" to " + command + " (POSIX file \"" + file + "\") to it";
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

std::string ofItem(std::string const& property, std::string const& path) {
    return "tell application \"Finder\" to " + property + " of (POSIX file \"" + escaped(path) + "\")";
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
        std::string const source =
            "tell application \"Finder\" to set label index of (POSIX file \"" + file + "\") to " + label;
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
    TrashStepListener const listener([&](TrashStep step) {
        if (step == TrashStep::ItemErased) cancelled = true;
    });
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

// A desktop in the memory, so that home and the other volume lie on different ones.
class FinderOnVolumes : public mac::test::PrivateMounts {
protected:
    ScriptHome const m_home{};
    mac::test::TemporaryFolder const m_point{"/mnt"};
};

TEST_F(FinderOnVolumes, ThrowsAwayOnTheVolumeOfTheItem) {
    mountMemory(m_point.path());
    std::string const file = m_point.makeFile("letter.txt", "Dear Anna");
    std::string const trash = m_point.path(".Trash-" + std::to_string(::getuid()));
    EXPECT_EQ(textResult(trashScript(file)), trash + "/files/letter.txt");
    EXPECT_EQ(textOf(trash + "/files/letter.txt"), "Dear Anna");
    EXPECT_FALSE(isThere(file));
}

TEST_F(FinderOnVolumes, MovesAcrossVolumes) {
    mountMemory(m_point.path());
    EXPECT_EQ(textResult(moveScript(m_home.path("Documents"), m_point.path())), m_point.path("Documents") + "/");
    EXPECT_EQ(textOf(m_point.path("Documents/Inner/deep.md")), "deep");
    EXPECT_FALSE(isThere(m_home.path("Documents")));
}

TEST_F(FinderOnVolumes, EntireContentsStaysOnTheVolume) {
    std::string const point = m_home.folder().makeFolder("Empty/point");
    mountMemory(point);
    std::ofstream(point + "/inside") << "x";
    std::string const source = ofItem("(count entire contents", m_home.path("Empty")) + ") as text";
    EXPECT_EQ(textResult(source), "1");
}

TEST_F(FinderOnVolumes, StopsWhileARenamedFolderIsCopied) {
    mountMemory(m_point.path());
    m_point.makeFile("below/old/inside", "x");
    m_point.makeFolder("changes/above");
    m_point.makeFolder("changes/work");
    std::string const point = m_point.makeFolder("point");
    mountLayers(m_point.path("below"), m_point.path("changes"), point);
    if (IsSkipped()) return;
    std::string const source =
        "tell application \"Finder\" to set name of (POSIX file \"" + point + "/old\") to \"new\"";
    std::atomic<bool> const cancelled{true};
    EXPECT_EQ(errorNumberOf(source, {.cancelled = &cancelled}), -128);
    EXPECT_EQ(textOf(point + "/old/inside"), "x");
    EXPECT_FALSE(isThere(point + "/new"));
    EXPECT_EQ(errorNumberOf(source), 0);
    EXPECT_EQ(textOf(point + "/new/inside"), "x");
    EXPECT_FALSE(isThere(point + "/old"));
}

TEST_F(FinderOnVolumes, FindsADiskAgainWhereItListedAFolder) {
    mountMemory(m_point.path());
    for (std::string const name : {"inner", "b.app"}) {
        mountMemory(m_point.makeFolder(name));
        m_point.makeFile(name + "/inside", "x");
    }
    std::string const names = ofItem("name of every item of entire contents", m_point.path());
    EXPECT_EQ(utf8FromUnits(sourceForm(outcomeOf(names).value)), R"({"b.app", "inner"})");
    std::string const one = "item 1 of folder \"inner\" of (POSIX file \"" + m_point.path() + "\")";
    EXPECT_EQ(textResult("tell application \"Finder\" to name of " + one), "inside");
    EXPECT_EQ(errorNumberOf(ofItem("name of document file \"inner\"", m_point.path())), -1728);
}

TEST_F(FinderOnVolumes, SaysThatTheCopyIsCompleteWhenTheOriginalCannotGo) {
    mountMemory(m_point.path());
    std::string const file = m_point.makeFile("letter.txt", "Dear Anna");
    makeReadOnly(m_point.path());
    std::string const script = moveScript(file, m_home.path("Documents"));
    EXPECT_EQ(textResult(script), "! Finder got an error: The copy is complete, but the original could not be removed. "
                                  "The disk is write protected.");
    EXPECT_EQ(textOf(m_home.path("Documents/letter.txt")), "Dear Anna");
    EXPECT_EQ(textOf(file), "Dear Anna");
    EXPECT_EQ(errorNumberOf(script), -15267) << "the copy is there";
}

TEST_F(FinderOnVolumes, ShowsAVolumeAsADisk) {
    mountMemory(m_point.path());
    m_point.makeFile("letter.txt", "Dear Anna");
    std::string const name = m_point.path().substr(m_point.path().rfind('/') + 1);
    std::string const source = R"(tell application "Finder" to name of every file of disk ")" + name + "\" as text";
    EXPECT_EQ(textResult(source), "letter.txt");
    EXPECT_EQ(textResult("tell application \"Finder\" to (file \"letter.txt\" of disk \"" + name + "\") as text"),
              name + ":letter.txt");
}

} // namespace

} // namespace mac::applescript::test
