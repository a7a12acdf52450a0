#include "platform/applescript/runtime/SourceForm.h"
#include "tests/platform/applescript/ScriptHome.h"
#include "tests/platform/applescript/applications/FinderScripts.h"
#include "tests/support/PrivateMounts.h"
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::applescript::test {

namespace {

// A desktop in the memory, so that home and the other volume lie on different ones.
class FinderOnVolumes : public mac::test::PrivateMounts {
protected:
    ScriptHome const m_home{};
    // A user who may not write in /mnt can hardly mount either; the test is skipped for such a user.
    mac::test::TemporaryFolder const m_point{::access("/mnt", W_OK) == 0 ? "/mnt" : "/tmp"};
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
        R"(tell application "Finder" to set name of (POSIX file ")" + point + R"(/old") to "new")";
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
    std::string const one = R"(item 1 of folder "inner" of (POSIX file ")" + m_point.path() + "\")";
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

TEST_F(FinderOnVolumes, SaysWhyTheReplacedItemCannotBeThrownAway) {
    mountMemory(m_point.path());
    m_point.makeFile(".Trash-" + std::to_string(::getuid()), "no folder");
    std::string const old = m_point.makeFile("letter.txt", "old");
    std::string const file = m_home.folder().makeFile("letter.txt", "new");
    std::string const reason = textResult(trashScript(old));
    EXPECT_EQ(errorNumberOf(trashScript(old)), -10000);
    for (std::string const command : {"move", "duplicate"}) {
        std::string const source = "tell application \"Finder\" to " + command + " (POSIX file \"" + escaped(file) +
                                   "\") to (POSIX file \"" + escaped(m_point.path()) + "\") with replacing";
        EXPECT_EQ(textResult(source), reason) << command;
        EXPECT_EQ(errorNumberOf(source), -10000) << command;
        EXPECT_EQ(textOf(old), "old");
        EXPECT_EQ(textOf(file), "new");
    }
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
