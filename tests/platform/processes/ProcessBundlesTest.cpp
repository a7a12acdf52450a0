#include "platform/processes/SerialNumbers.h"
#include "platform/system/items/ItemIdentity.h"
#include "tests/platform/processes/Programs.h"
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace mac::test {

namespace {

constexpr char const RunningIdentifier[] = "com.example.running";

// How the program of a copy is run.
enum class CopyKind {
    Program,
    // A script of a shell, which keeps it open while it runs.
    ShellScript,
    // A script whose interpreter reads all of it and closes it.
    ClosedScript,
};

constexpr char const* ShellText = "#!/bin/sh\necho ready\nread line\n";
constexpr char const* ClosedText = "#!/usr/bin/perl\n$| = 1; print \"ready\\n\"; <STDIN>;\n";

// A bundle that a process runs from, in a folder of its own.
class RunningBundle {
public:
    explicit RunningBundle(CopyKind kind) : m_kind(kind) {
        make("A.app", RunningIdentifier);
        m_child = std::make_unique<ChildProcess>(std::vector<std::string>{m_folder.path("A.app/Contents/Linux/A")});
        if (kind == CopyKind::Program) {
            waitUntilCatRuns(*m_child);
            return;
        }
        EXPECT_EQ(m_child->readLine(), "ready");
    }

    void make(std::string const& name, std::string const& identifier) const {
        m_folder.makeBundle(name, informationFile(identifier, "1.0", "1"));
        std::string const program = name + "/Contents/Linux/A";
        if (m_kind == CopyKind::Program) copyOfCat(m_folder, program);
        if (m_kind == CopyKind::ShellScript) makeScript(m_folder, program, ShellText);
        if (m_kind == CopyKind::ClosedScript) makeScript(m_folder, program, ClosedText);
    }
    void move(std::string const& from, std::string const& to) const {
        m_folder.makeFolder(to.substr(0, to.rfind('/')));
        ASSERT_EQ(::rename(m_folder.path(from).c_str(), m_folder.path(to).c_str()), 0);
    }
    void remove(std::string const& name) const { std::filesystem::remove_all(m_folder.path(name)); }

    // Until what is made next is younger than all there is. False where the file system records no birth times.
    bool waitUntilNextIsYounger() const {
        std::int64_t const first = birthOfNewFile();
        while (first != 0 && birthOfNewFile() == first) {}
        return first != 0;
    }

    std::string path(std::string const& relative) const { return m_folder.path(relative); }
    ChildProcess& child() const { return *m_child; }
    std::string bundlePath() const { return textAt(informationOf(numberOf(*m_child)), kIOBundlePathKey); }
    std::string identifier() const { return textAt(informationOf(numberOf(*m_child)), kCFBundleIdentifierKey); }
    // Whether a walk over all processes that looks for the bundle's identifier comes to the process.
    bool isListed() const {
        return processWith(kCFBundleIdentifierKey, NSString(RunningIdentifier)) == numberOf(*m_child);
    }

private:
    std::int64_t birthOfNewFile() const {
        remove("new");
        return identifyAtPath(m_folder.makeFile("new", ""), LinkAtEnd::IsNotFollowed).value().identity.birth;
    }

    TemporaryFolder m_folder;
    CopyKind m_kind;
    std::unique_ptr<ChildProcess> m_child{};
};

class BundleOfProcess : public testing::TestWithParam<CopyKind> {};

class OpenProgram : public testing::TestWithParam<CopyKind> {};

} // namespace

TEST_P(BundleOfProcess, IsToldUnderItsNewNameOnceItWasSeen) {
    RunningBundle const bundle(GetParam());
    ASSERT_TRUE(bundle.isListed());
    bundle.move("A.app", "./B.app");
    EXPECT_TRUE(bundle.isListed());
    EXPECT_EQ(bundle.bundlePath(), bundle.path("B.app"));
    bundle.move("B.app", "./C.app");
    EXPECT_TRUE(bundle.isListed());
    EXPECT_EQ(bundle.bundlePath(), bundle.path("C.app"));
    EXPECT_EQ(textAt(informationOf(numberOf(bundle.child())), kCFBundleExecutableKey),
              bundle.path("C.app/Contents/Linux/A"));
}

TEST_P(BundleOfProcess, ThatIsDeletedKeepsItsLastPathAndTheProcessEndsWhenAsked) {
    RunningBundle const bundle(GetParam());
    ASSERT_TRUE(bundle.isListed());
    bundle.move("A.app", "./B.app");
    ASSERT_TRUE(bundle.isListed());
    bundle.remove("B.app");
    EXPECT_TRUE(bundle.isListed()) << "as the copy that it was started as";
    EXPECT_EQ(bundle.bundlePath(), bundle.path("B.app"));
    EXPECT_EQ(textAt(informationOf(numberOf(bundle.child())), kCFBundleExecutableKey),
              bundle.path("B.app/Contents/Linux/A"));
    EXPECT_TRUE(askToEnd(identityOf(numberOf(bundle.child())).value()));
    EXPECT_EQ(bundle.child().wait(), -SIGTERM);
    EXPECT_FALSE(processWith(kCFBundleIdentifierKey, NSString(RunningIdentifier)));
}

TEST_P(BundleOfProcess, IsToldWhileItIsDeletedPieceByPiece) {
    RunningBundle const bundle(GetParam());
    ASSERT_TRUE(bundle.isListed());
    for (char const* const piece : {"A.app/Contents/Info.plist", "A.app/Contents/Linux", "A.app/Contents", "A.app"}) {
        bundle.remove(piece);
        EXPECT_TRUE(bundle.isListed()) << "without " << piece;
        EXPECT_EQ(bundle.bundlePath(), bundle.path("A.app")) << "without " << piece;
    }
}

// The process keeps the path, since a copy is quit by its path, but is known as what it was started as: what the new
// copy's information file says is not true of it.
TEST_P(BundleOfProcess, ThatWasReplacedByAnotherCopyIsNotTakenForThatOne) {
    RunningBundle const bundle(GetParam());
    ASSERT_TRUE(bundle.isListed());
    bundle.remove("A.app");
    bundle.make("A.app", "com.example.replacement");
    EXPECT_TRUE(bundle.isListed());
    EXPECT_EQ(bundle.identifier(), RunningIdentifier);
    EXPECT_EQ(bundle.bundlePath(), bundle.path("A.app"));
    EXPECT_FALSE(processWith(kCFBundleIdentifierKey, NSString("com.example.replacement")));
}

// The old one goes aside, as it does when an item is replaced: there it still is, whatever took its place.
TEST_P(BundleOfProcess, ThatMadeRoomForAnotherCopyIsToldWhereItIs) {
    RunningBundle const bundle(GetParam());
    ASSERT_TRUE(bundle.isListed());
    bundle.move("A.app", "./Old.app");
    bundle.make("A.app", "com.example.replacement");
    EXPECT_TRUE(bundle.isListed());
    EXPECT_EQ(bundle.bundlePath(), bundle.path("Old.app"));
}

// A new version written into the bundle that the process was started from: it is still that bundle.
TEST_P(BundleOfProcess, ThatWasUpdatedInPlaceTellsWhatItIsNow) {
    RunningBundle const bundle(GetParam());
    ASSERT_TRUE(bundle.isListed());
    bundle.remove("A.app/Contents");
    bundle.make("A.app", "com.example.updated");
    EXPECT_EQ(bundle.identifier(), "com.example.updated");
    EXPECT_EQ(bundle.bundlePath(), bundle.path("A.app"));
}

TEST_P(OpenProgram, IsToldInItsNewFolderAndInTheTrashThoughNobodySawItBefore) {
    RunningBundle const bundle(GetParam());
    bundle.move("A.app", "other/A.app");
    EXPECT_EQ(bundle.bundlePath(), bundle.path("other/A.app"));
    EXPECT_EQ(bundle.identifier(), RunningIdentifier);
    RunningBundle const trashed(GetParam());
    trashed.move("A.app", ".Trash-0/files/A 2.app");
    EXPECT_EQ(trashed.bundlePath(), trashed.path(".Trash-0/files/A 2.app"));
    EXPECT_EQ(trashed.identifier(), RunningIdentifier);
    trashed.remove(".Trash-0/files/A 2.app");
    EXPECT_EQ(trashed.bundlePath(), trashed.path(".Trash-0/files/A 2.app")) << "the trash was emptied";
    EXPECT_EQ(trashed.identifier(), RunningIdentifier);
}

// Its path is the system's to tell; its identifier went with the information file, and none is made up.
TEST_P(OpenProgram, ThatWasDeletedBeforeAnybodySawItHasAPathAndNoIdentifier) {
    RunningBundle const bundle(GetParam());
    bundle.remove("A.app");
    EXPECT_EQ(bundle.bundlePath(), bundle.path("A.app"));
    EXPECT_TRUE(informationOf(numberOf(bundle.child())).objectForKey_(kCFBundleIdentifierKey) == nil);
    EXPECT_FALSE(processWith(kCFBundleIdentifierKey, NSString(RunningIdentifier)));
}

// The bundle at the path is younger than the program that runs, so it cannot be the one that the program came with.
TEST_P(OpenProgram, ThatWasReplacedBeforeAnybodySawItHasNotTheNewCopysIdentifier) {
    RunningBundle const bundle(GetParam());
    bundle.remove("A.app");
    bundle.waitUntilNextIsYounger();
    bundle.make("A.app", "com.example.replacement");
    EXPECT_EQ(bundle.bundlePath(), bundle.path("A.app"));
    EXPECT_TRUE(informationOf(numberOf(bundle.child())).objectForKey_(kCFBundleIdentifierKey) == nil);
}

// The bundle is as old as the program that was started from it: an update that replaced the program only.
TEST_P(OpenProgram, ThatWasReplacedInItsBundleBeforeAnybodySawItHasTheBundlesIdentifier) {
    RunningBundle const bundle(GetParam());
    if (!bundle.waitUntilNextIsYounger()) GTEST_SKIP() << "the file system records no birth times";
    bundle.remove("A.app/Contents/Linux");
    EXPECT_EQ(bundle.bundlePath(), bundle.path("A.app"));
    EXPECT_EQ(bundle.identifier(), RunningIdentifier);
}

// Nothing tells where it is: the interpreter has closed it, and the arguments have the path that was called.
TEST(BundlesOfProcesses, OfAClosedScriptThatWasMovedToAnotherFolderKeepsItsLastPath) {
    RunningBundle const bundle(CopyKind::ClosedScript);
    ASSERT_TRUE(bundle.isListed());
    bundle.move("A.app", "other/A.app");
    EXPECT_TRUE(bundle.isListed());
    EXPECT_EQ(bundle.bundlePath(), bundle.path("A.app"));
}

TEST(BundlesOfProcesses, OfAClosedScriptThatNobodySawIsNotBelievedFromItsArguments) {
    RunningBundle const bundle(CopyKind::ClosedScript);
    bundle.remove("A.app");
    NSDictionary const information = informationOf(numberOf(bundle.child()));
    EXPECT_FALSE(information == nil);
    EXPECT_TRUE(information.objectForKey_(kIOBundlePathKey) == nil);
}

TEST(BundlesOfProcesses, IsForgottenWhenTheProcessBecomesAnotherProgram) {
    TemporaryFolder const folder;
    folder.makeBundle("A.app", informationFile(RunningIdentifier, "1.0", "1"));
    std::string const script =
        makeScript(folder, "A.app/Contents/Linux/A", "#!/bin/sh\necho ready\nread line\nexec /bin/cat\n");
    ChildProcess const child({script});
    ASSERT_EQ(child.readLine(), "ready");
    ASSERT_EQ(textAt(informationOf(numberOf(child)), kIOBundlePathKey), folder.path("A.app"));
    std::filesystem::remove_all(folder.path("A.app"));
    child.writeLine("go on");
    waitUntilCatRuns(child);
    EXPECT_TRUE(informationOf(numberOf(child)).objectForKey_(kIOBundlePathKey) == nil);
}

// The system's mark of a deleted file is a name that a file may have.
TEST(BundlesOfProcesses, OfADeletedProgramIsNotConfusedWithAFileThatIsCalledAsTheMarkSays) {
    TemporaryFolder const folder;
    std::string const path = copyOfCat(folder, "A.app/Contents/Linux/cat");
    ChildProcess const child({path});
    waitUntilCatRuns(child);
    folder.makeFile("A.app/Contents/Linux/cat (deleted)", "another");
    ASSERT_EQ(::unlink(path.c_str()), 0);
    EXPECT_EQ(textAt(informationOf(numberOf(child)), kCFBundleExecutableKey), path);

    std::string const linked = copyOfCat(folder, "B.app/Contents/Linux/cat");
    ASSERT_EQ(::link(linked.c_str(), folder.path("kept").c_str()), 0);
    ChildProcess const other({linked});
    waitUntilCatRuns(other);
    folder.makeFile("B.app/Contents/Linux/cat (deleted)", "another");
    ASSERT_EQ(::unlink(linked.c_str()), 0);
    EXPECT_EQ(textAt(informationOf(numberOf(other)), kCFBundleExecutableKey), linked) << "the file has another name";

    std::string const named = copyOfCat(folder, "C.app/Contents/Linux/cat (deleted)");
    ChildProcess const third({named});
    waitUntilCatRuns(third);
    EXPECT_EQ(textAt(informationOf(numberOf(third)), kCFBundleExecutableKey), named);
    ASSERT_EQ(::unlink(named.c_str()), 0);
    EXPECT_EQ(textAt(informationOf(numberOf(third)), kCFBundleExecutableKey), named);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, BundleOfProcess,
                         testing::Values(CopyKind::Program, CopyKind::ShellScript, CopyKind::ClosedScript));
INSTANTIATE_TEST_SUITE_P(OfEachKind, OpenProgram, testing::Values(CopyKind::Program, CopyKind::ShellScript));

} // namespace mac::test
