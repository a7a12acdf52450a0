#include "tests/platform/files/Attributes.h"
#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include <filesystem>
#include <fstream>
#include <set>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mac::test {

namespace {

std::set<int> openDescriptors() {
    std::set<int> open;
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        open.insert(std::stoi(entry.path().filename()));
    return open;
}

// Closes in the end what has been opened since: a close that the system refused here has closed nothing.
class ClosedAgain {
public:
    ClosedAgain() : m_before(openDescriptors()) {}
    ~ClosedAgain() {
        for (int const number : openDescriptors())
            if (!m_before.contains(number)) ::close(number);
    }
    ClosedAgain(ClosedAgain const&) = delete;
    ClosedAgain& operator=(ClosedAgain const&) = delete;

private:
    std::set<int> const m_before;
};

class ItemTransferOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
    TemporaryFolder const m_point{};
};

TEST_F(ItemTransferOnVolumes, MovesAFolderToAnotherVolume) {
    mountMemory(m_point.path());
    makeTree(m_folder, "tree");
    EXPECT_EQ(errorOf(move, m_folder.path("tree"), m_point.path(), "tree"), 0);
    expectTree(m_point.path("tree"));
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, KeepsTheOriginalOfACopyThatCouldNotBeWritten) {
    mountMemory(m_point.path());
    makeTree(m_folder, "tree");
    for (long const call : {SYS_close, SYS_fdatasync}) {
        ClosedAgain const closed;
        withRefusedCall(call, EIO, [&] {
            EXPECT_EQ(errorOf(move, m_folder.path("tree"), m_point.path(), "tree"), EIO) << call;
            int const ofCopy = call == SYS_close ? EIO : 0;
            EXPECT_EQ(errorOf(copy, m_folder.path("tree/inner"), m_point.path(), "tree"), ofCopy) << call;
        });
        expectTree(m_folder.path("tree"));
        std::vector<std::string> const whole{"tree"};
        EXPECT_EQ(namesIn(m_point.path()), call == SYS_close ? std::vector<std::string>() : whole)
            << "a copy is not flushed";
    }
}

TEST_F(ItemTransferOnVolumes, MovesFilesOfSeveralNamesAndTheirAppleDoubleFile) {
    mountMemory(m_point.path());
    m_folder.makeFile("tree/a", "x");
    ASSERT_EQ(::link(m_folder.path("tree/a").c_str(), m_folder.path("tree/b").c_str()), 0);
    ASSERT_EQ(::link(m_folder.path("tree/a").c_str(), m_folder.path("tree/c").c_str()), 0);
    m_folder.makeFile("._tree", AppleDouble);
    EXPECT_EQ(errorOf(move, m_folder.path("tree"), m_point.path(), "tree"), 0);
    EXPECT_EQ(namesIn(m_point.path("tree")), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(textOf(m_point.path("._tree")), AppleDouble);
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, MovesAFolderThatNobodyMayChange) {
    mountMemory(m_point.path(), "mode=777");
    m_folder.makeFile("tree/inner/file", "x");
    for (char const* const name : {"", "tree", "tree/inner", "tree/inner/file"})
        OrdinaryUser::own(m_folder.path(name));
    OrdinaryUser const user;
    ASSERT_EQ(::chmod(m_folder.path("tree/inner").c_str(), 0555), 0);
    EXPECT_EQ(errorOf(move, m_folder.path("tree"), m_point.path(), "tree"), 0);
    EXPECT_EQ(textOf(m_point.path("tree/inner/file")), "x");
    EXPECT_EQ(statusOf(m_point.path("tree/inner")).st_mode & 0777U, 0555U);
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
    ::chmod(m_point.path("tree/inner").c_str(), 0755);
}

TEST_F(ItemTransferOnVolumes, SaysThatTheCopyIsWholeWhenTheOriginalCannotGo) {
    mountMemory(m_point.path(), "mode=777");
    std::string const file = m_folder.makeFile("closed/file", "x");
    OrdinaryUser::own(file);
    OrdinaryUser::own(m_folder.path());
    OrdinaryUser::own(m_folder.path("closed"));
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0555), 0);
    OrdinaryUser const user;
    ASSERT_NE(::faccessat(AT_FDCWD, m_folder.path("closed").c_str(), W_OK, AT_EACCESS), 0);
    Result<OpenItem> const item = openItemAtPath(file, LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(item.hasValue());
    FileDescriptor const target = folderAt(m_point.path());
    Result<void, TransferProblem> const moved = moveItem({.item = item.value(), .folder = target, .name = "file"});
    ASSERT_FALSE(moved.isDone());
    EXPECT_EQ(moved.problem().kind, TransferProblem::Kind::OriginalStays);
    EXPECT_EQ(moved.problem().error.code, EACCES);
    EXPECT_EQ(textOf(m_point.path("file")), "x");
    EXPECT_EQ(textOf(file), "x");
}

TEST_F(ItemTransferOnVolumes, LeavesTheOriginalWholeIfItsNameMayNotGo) {
    mountMemory(m_point.path(), "mode=777");
    m_folder.makeFile("closed/tree/inner/file", "x");
    for (char const* const name : {"", "closed", "closed/tree", "closed/tree/inner", "closed/tree/inner/file"})
        OrdinaryUser::own(m_folder.path(name));
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0555), 0);
    OrdinaryUser const user;
    OpenItem const item = itemAt(m_folder.path("closed/tree"));
    FileDescriptor const target = folderAt(m_point.path());
    Result<void, TransferProblem> const moved = moveItem({.item = item, .folder = target, .name = "tree"});
    ASSERT_FALSE(moved.isDone());
    EXPECT_EQ(moved.problem().kind, TransferProblem::Kind::OriginalStays);
    EXPECT_EQ(moved.problem().error.code, EACCES);
    EXPECT_EQ(textOf(m_point.path("tree/inner/file")), "x");
    EXPECT_EQ(textOf(m_folder.path("closed/tree/inner/file")), "x");
}

TEST_F(ItemTransferOnVolumes, LeavesTheOriginalWhereTheNameOfTheCopyIsNotOnTheDisk) {
    mountMemory(m_point.path());
    std::string const file = m_folder.makeFile("file", "x");
    Result<OpenItem> const item = openItemAtPath(file, LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(item.hasValue());
    withRefusedCall(SYS_fsync, EIO, [&] {
        FileDescriptor const target = folderAt(m_point.path());
        Result<void, TransferProblem> const moved = moveItem({.item = item.value(), .folder = target, .name = "file"});
        ASSERT_FALSE(moved.isDone());
        EXPECT_EQ(moved.problem().kind, TransferProblem::Kind::OriginalStays);
        EXPECT_EQ(moved.problem().error.code, EIO);
    });
    EXPECT_EQ(textOf(file), "x");
    ASSERT_EQ(::unlink(m_point.path("file").c_str()), 0);
    // Some file systems cannot flush folders.
    withRefusedCall(SYS_fsync, EINVAL, [&] { EXPECT_EQ(errorOf(move, file, m_point.path(), "file"), 0); });
    EXPECT_FALSE(isThere(file));
}

TEST_F(ItemTransferOnVolumes, LeavesTheOriginalWhenTheOtherVolumeIsFull) {
    mountMemory(m_point.path(), "size=64k");
    m_folder.makeFile("tree/large", std::string(std::size_t{1} << 20U, 'x'));
    EXPECT_EQ(errorOf(move, m_folder.path("tree"), m_point.path(), "tree"), ENOSPC);
    EXPECT_EQ(textOf(m_folder.path("tree/large")).size(), std::size_t{1} << 20U);
    EXPECT_EQ(namesIn(m_point.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, LeavesNothingOnAFullVolumeNotEvenOfASidecar) {
    mountMemory(m_point.path(), "size=64k");
    std::ofstream(m_point.path("full")) << std::string(std::size_t{1} << 20U, 'x');
    m_folder.makeFile("file", "contents");
    m_folder.makeFile("._file", AppleDouble);
    for (Transfer const transfer : {copy, move})
        EXPECT_EQ(errorOf(transfer, m_folder.path("file"), m_point.path(), "file"), ENOSPC);
    EXPECT_EQ(namesIn(m_point.path()), std::vector<std::string>{"full"});
}

// The clock of file times ticks every few milliseconds, so two saves may have the same time.
TEST_F(ItemTransferOnVolumes, KeepsAFileThatIsSavedWhileItIsMoved) {
    mountWithoutAttributes(m_folder.path());
    mountMemory(m_point.path());
    for (int number = 0; number < 50; ++number) {
        std::string const file = m_folder.makeFile("file", "first");
        Result<OpenItem> const item = openItemAtPath(file, LinkAtEnd::IsNotFollowed);
        ASSERT_TRUE(item.hasValue());
        FileDescriptor const target = folderAt(m_point.path());
        std::string const name = "file " + std::to_string(number);
        auto const save = [&](PlaceItem const& place) {
            // Once for the rename that the other volume refuses, once for the copy.
            Result<void, TransferProblem> placed = place();
            std::ofstream(file) << "saved";
            return placed;
        };
        Result<void, TransferProblem> const moved =
            moveItem({.item = item.value(), .folder = target, .name = name, .placing = save});
        ASSERT_FALSE(moved.isDone()) << number;
        EXPECT_EQ(moved.problem().kind, TransferProblem::Kind::OriginalStays);
        EXPECT_EQ(textOf(file), "saved");
    }
}

TEST_F(ItemTransferOnVolumes, RefusesAStrayAppleDoubleFileBeforeItCopies) {
    mountMemory(m_point.path());
    m_folder.makeFile("file", "x");
    m_point.makeFile("._file", AppleDouble);
    int questions = 0;
    EXPECT_EQ(errorOf(move, m_folder.path("file"), m_point.path(), "file", [&] { return ++questions > 0; }), EEXIST);
    EXPECT_EQ(questions, 0);
    EXPECT_EQ(namesIn(m_point.path()), std::vector<std::string>{"._file"});
}

TEST_F(ItemTransferOnVolumes, KeepsAttributesThatTheOtherVolumeHasNoPlaceFor) {
    mountWithoutAttributes(m_point.path());
    std::string const file = m_folder.makeFile("file", "x");
    if (::setxattr(file.c_str(), "user.colour", "blue", 4, 0) != 0) GTEST_SKIP() << "no attributes on this volume";
    EXPECT_EQ(errorOf(move, file, m_point.path(), "file"), 0);
    EXPECT_EQ(namesIn(m_point.path()), (std::vector<std::string>{"._file", "file"}));
    EXPECT_EQ(errorOf(move, m_point.path("file"), m_folder.path(), "back"), 0);
    EXPECT_EQ(namesIn(m_point.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, JoinsAttributesOfItemsInAFolderWithThoseBesideThem) {
    mountWithoutAttributes(m_point.path());
    ASSERT_EQ(set(m_point.makeFile("model", "x"), "shape", "round"), 0);
    std::string const beside = textOf(m_point.path("._model"));
    // So many that no order of theirs is the right one by chance.
    std::string const names = "abcdefghijklmnopqrst";
    for (char const name : names) {
        std::string const file = m_folder.makeFile(std::string("tree/") + name, "x");
        m_folder.makeFile(std::string("tree/._") + name, beside);
        if (::setxattr(file.c_str(), "user.colour", "blue", 4, 0) != 0) GTEST_SKIP() << "no attributes on this volume";
    }
    for (Transfer const transfer : {copy, move}) {
        std::string const target = transfer == copy ? "copied" : "moved";
        EXPECT_EQ(errorOf(transfer, m_folder.path("tree"), m_point.path(), target), 0);
        for (char const name : names) {
            std::string const file = m_point.path(target + "/") + name;
            EXPECT_EQ(get(file, "colour"), "blue");
            EXPECT_EQ(get(file, "shape"), "round");
        }
    }
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, DoesNotEnterWhatIsMountedInside) {
    m_folder.makeFile("tree/file", "x");
    m_folder.makeFolder("tree/mount");
    mountMemory(m_folder.path("tree/mount"));
    m_folder.makeFolder("there");
    EXPECT_EQ(errorOf(copy, m_folder.path("tree"), m_folder.path("there"), "copy"), EBUSY);
    EXPECT_EQ(namesIn(m_folder.path("there")), std::vector<std::string>());
}

} // namespace

} // namespace mac::test
