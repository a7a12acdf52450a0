#include "platform/files/references/HeldItems.h"
#include "platform/files/FileOperations.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/files/trash/ReplacingTransfer.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "tests/platform/files/references/References.h"
#include "tests/platform/files/trash/TrashHome.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

// Which items references hold open, and which they find without that.

namespace mac::test {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

std::size_t openDescriptors() {
    std::unique_ptr<DIR, CloseFolder> const folder(::opendir("/proc/self/fd"));
    std::size_t count = 0;
    while (::readdir(folder.get()))
        ++count;
    return count;
}

// Makes so many references that those of earlier tests are no longer held.
void fillWithOthers(TemporaryFolder const& folder, unsigned count = 256) {
    for (unsigned index = 0; index < count; ++index)
        referenceTo(folder.makeFile("others/" + std::to_string(index), ""));
}

TEST(HeldItems, FollowsTheLast256) {
    TemporaryFolder const folder;
    std::vector<FSRef> references;
    references.reserve(256);
    for (int index = 0; index < 256; ++index)
        references.push_back(referenceTo(folder.makeFile("files/" + std::to_string(index), "")));
    folder.makeFolder("moved");
    for (int index = 0; index < 256; ++index) {
        std::string const name = std::to_string(index);
        ASSERT_EQ(::rename(folder.path("files/" + name).c_str(), folder.path("moved/x" + name).c_str()), 0);
    }
    for (int index = 0; index < 256; ++index)
        EXPECT_EQ(pathOf(references[static_cast<std::size_t>(index)]), folder.path("moved/x" + std::to_string(index)));
}

TEST(HeldItems, OfAnEarlierItemIsLookedForInItsFolder) {
    TemporaryFolder const folder;
    FSRef const same = referenceTo(folder.makeFile("a/same", ""));
    FSRef const renamed = referenceTo(folder.makeFile("a/old", ""));
    FSRef const moved = referenceTo(folder.makeFile("a/moved", ""));
    FSRef const removed = referenceTo(folder.makeFile("a/removed", ""));
    fillWithOthers(folder);
    ASSERT_EQ(::rename(folder.path("a/old").c_str(), folder.path("a/new").c_str()), 0);
    ASSERT_EQ(::rename(folder.path("a/moved").c_str(), folder.path("elsewhere").c_str()), 0);
    ASSERT_EQ(::unlink(folder.path("a/removed").c_str()), 0);
    for (int index = 0; index < 20; ++index)
        folder.makeFile("a/removed", std::to_string(index));
    EXPECT_EQ(pathOf(same), folder.path("a/same"));
    EXPECT_EQ(pathOf(renamed), folder.path("a/new"));
    EXPECT_EQ(pathOf(moved), "-");
    EXPECT_EQ(pathOf(removed), "-");
    // Made anew it is followed again.
    EXPECT_TRUE(referenceTo(folder.path("elsewhere")) == moved);
    EXPECT_EQ(pathOf(moved), folder.path("elsewhere"));
}

// Where it was when it was let go, not when it was made.
TEST(HeldItems, OfAnEarlierItemRemembersWhereItWasLast) {
    TemporaryFolder const folder;
    FSRef const reference = referenceTo(folder.makeFile("a/file", ""));
    folder.makeFolder("b");
    ASSERT_EQ(::rename(folder.path("a/file").c_str(), folder.path("b/file").c_str()), 0);
    fillWithOthers(folder);
    EXPECT_EQ(pathOf(reference), folder.path("b/file"));
}

TEST(HeldItems, HoldsNoMoreThan256Descriptors) {
    TemporaryFolder const folder;
    fillWithOthers(folder, 10);
    std::size_t const before = openDescriptors();
    fillWithOthers(folder, 1'000);
    EXPECT_LE(openDescriptors(), before + 256);
    for (int index = 0; index < 100; ++index)
        referenceTo(folder.path("others/0"));
    EXPECT_LE(openDescriptors(), before + 256);
}

// Two calls to hold the item, one to look at another one and two to let the oldest one go.
constexpr unsigned MostCallsForNewReference = 5;

TEST(HeldItems, AsksNothingAboutTheOthersThatAreHeld) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    fillWithOthers(folder);
    FSRef const other = referenceTo(folder.path("others/255"));
    // The first path that a process asks for opens what it then keeps open.
    std::function<void()> const askFirst = [&] { pathOf(other); };
    std::optional<unsigned> const calls = systemCallsOf([&] { referenceTo(file); }, askFirst);
    if (!calls) GTEST_SKIP() << "tracing is not allowed here";
    EXPECT_GT(*calls, 0U);
    EXPECT_LE(*calls, MostCallsForNewReference);
    FSRef const reference = referenceTo(file);
    EXPECT_EQ(systemCallsOf([&] { referenceTo(file); }, askFirst), 1U);
    EXPECT_LE(*systemCallsOf([&] { pathOf(reference); }, askFirst), 2U);
}

// Descriptors have other numbers in a process that was forked off.
TEST(HeldItems, AreFoundInAForkedProcessByItsOwnDescriptors) {
    TemporaryFolder const folder;
    FSRef const kept = referenceTo(folder.makeFile("kept", ""));
    ASSERT_EQ(pathOf(kept), folder.path("kept"));
    std::string const later = folder.makeFile("later", "");
    std::string const moved = folder.path("moved");
    pid_t const child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        FSRef const reference = referenceTo(later);
        bool const isFollowed = ::rename(later.c_str(), moved.c_str()) == 0 && pathOf(reference) == moved;
        ::_exit(isFollowed && pathOf(kept) == folder.path("kept") ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

// The name that the open item had is gone, and it lies in another folder under the name that it got later.
TEST(HeldItems, MadeAgainIsFoundUnderAnOnlyNameInAnotherFolder) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("a/file", "");
    std::string const other = folder.makeFolder("b") + "/other";
    FSRef const reference = referenceTo(file);
    ASSERT_EQ(::link(file.c_str(), other.c_str()), 0);
    ASSERT_EQ(::unlink(file.c_str()), 0);
    EXPECT_EQ(pathOf(reference), "-");
    EXPECT_EQ(referenceTo(other), reference);
    EXPECT_EQ(pathOf(reference), other);
    // And back, where both names are known by then.
    ASSERT_EQ(::link(other.c_str(), file.c_str()), 0);
    EXPECT_EQ(referenceTo(file), reference);
    EXPECT_EQ(referenceTo(other), reference);
    ASSERT_EQ(::unlink(other.c_str()), 0);
    EXPECT_EQ(referenceTo(file), reference);
    EXPECT_EQ(pathOf(reference), file);
}

TEST(HeldItems, OfAnEarlierItemIsFoundAlsoWhereALinkOnTheWayLeadsElsewhere) {
    TemporaryFolder const folder;
    folder.makeFile("first/file", "");
    folder.makeFile("second/file", "");
    std::string const link = folder.path("current");
    ASSERT_EQ(::symlink("first", link.c_str()), 0);
    FSRef const reference = referenceTo(link + "/file");
    EXPECT_EQ(pathOf(reference), folder.path("first/file"));
    fillWithOthers(folder);
    ASSERT_EQ(::unlink(link.c_str()), 0);
    ASSERT_EQ(::symlink("second", link.c_str()), 0);
    EXPECT_EQ(pathOf(reference), folder.path("first/file"));
    EXPECT_NE(referenceTo(link + "/file"), reference);
    EXPECT_EQ(pathOf(referenceTo(link + "/file")), folder.path("second/file"));
}

TEST(HeldItems, MadeAgainIsFoundUnderTheOtherName) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("a/file", "");
    folder.makeFolder("b");
    ASSERT_EQ(::link(file.c_str(), folder.path("b/other").c_str()), 0);
    FSRef const reference = referenceTo(file);
    EXPECT_EQ(referenceTo(folder.path("b/other")), reference);
    ASSERT_EQ(::unlink(file.c_str()), 0);
    EXPECT_EQ(pathOf(reference), folder.path("b/other"));
}

// As the client of a network volume keeps a file that is open when its name is removed.
TEST(HeldItems, IsNotFoundUnderANameThatIsKeptForAnOpenFile) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("a/file", "");
    std::string const kept = folder.path("a/.nfs00000000000a01ff00000001");
    std::string const other = folder.makeFolder("b") + "/other";
    FSRef const reference = referenceTo(file);
    ASSERT_EQ(::link(file.c_str(), other.c_str()), 0);
    ASSERT_EQ(::rename(file.c_str(), kept.c_str()), 0);
    EXPECT_EQ(pathOf(reference), "-");
    EXPECT_EQ(referenceTo(other), reference);
    EXPECT_EQ(pathOf(reference), other);
    // The newer descriptor is held, which follows the file.
    ASSERT_EQ(::rename(other.c_str(), folder.path("moved").c_str()), 0);
    EXPECT_EQ(pathOf(reference), folder.path("moved"));
}

TEST(HeldItems, FollowsMovesWhereTheSystemCannotRenameExclusively) {
    TrashHome const home;
    std::string const file = home.folder.makeFile("a/file", "");
    home.folder.makeFolder("b");
    FSRef const reference = referenceTo(file);
    withRefusedCall(SYS_renameat2, EINVAL, [&] {
        OpenItem const item = openItemAtPath(file, LinkAtEnd::IsNotFollowed).takeValue();
        FileDescriptor const other = openPath(home.folder.path("b"), O_PATH | O_DIRECTORY).takeValue();
        ItemTransfer const transfer{.item = item, .folder = other, .name = "moved"};
        EXPECT_TRUE(moveItem(transfer, NameClash::IsRefused).isDone());
    });
    std::string const moved = home.folder.path("b/moved");
    EXPECT_EQ(pathOf(reference), moved);
    withRefusedCall(SYS_renameat2, EINVAL, [&] {
        Result<TrashedItem, TrashProblem> const trashed = moveToTrash(moved);
        ASSERT_TRUE(trashed.hasValue());
        EXPECT_EQ(pathOf(reference), trashed.value().path);
        EXPECT_TRUE(putBack(trashed.value()).hasValue());
    });
    EXPECT_EQ(pathOf(reference), moved);
    withRefusedCall(SYS_renameat2, EINVAL,
                    [&] { EXPECT_EQ(FSRenameUnicode(&reference, 7, u"renamed", 0, nullptr), noErr); });
    EXPECT_EQ(pathOf(reference), home.folder.path("b/renamed"));
    // The open item follows it from then on.
    ASSERT_EQ(::rename(home.folder.path("b/renamed").c_str(), file.c_str()), 0);
    EXPECT_EQ(pathOf(reference), file);
}

TEST(HeldItems, OfAnEarlierItemIsFoundUnderTheNameThatItGotLater) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("a/file", "");
    std::string const other = folder.makeFolder("b") + "/other";
    FSRef const reference = referenceTo(file);
    ASSERT_EQ(::link(file.c_str(), other.c_str()), 0);
    EXPECT_EQ(referenceTo(other), reference);
    ASSERT_EQ(::unlink(file.c_str()), 0);
    fillWithOthers(folder);
    EXPECT_EQ(pathOf(reference), other);
}

TEST(HeldItems, MadeAgainOfALongPathIsFoundThere) {
    LongFolder longFolder;
    longFolder.makeFile("file", "");
    longFolder.makeFolder("inner");
    std::string const& path = longFolder.path();
    FSRef const reference = referenceTo(path + "/file");
    ASSERT_EQ(pathOf(reference), path + "/file");
    FileDescriptor const inner = openPath(path, O_PATH).takeValue();
    ASSERT_EQ(::renameat(inner.number(), "file", inner.number(), "inner/moved"), 0);
    EXPECT_EQ(referenceTo(path + "/inner/moved"), reference);
    EXPECT_EQ(pathOf(reference), path + "/inner/moved");
    ASSERT_EQ(::renameat(inner.number(), "inner/moved", inner.number(), "file"), 0);
}

std::size_t removedItemsHeldOpen() {
    std::vector<std::string> const names = namesInFolder("/proc/self/fd", LinkAtEnd::IsFollowed).valueOr({});
    return static_cast<std::size_t>(std::ranges::count_if(names, [](std::string const& name) {
        std::array<char, 4096> text{};
        ssize_t const length = ::readlink(("/proc/self/fd/" + name).c_str(), text.data(), text.size());
        return length > 0 && std::string_view(text.data(), static_cast<std::size_t>(length)).ends_with(" (deleted)");
    }));
}

// Each new reference looks at one of them.
TEST(HeldItems, LetsRemovedItemsGoAsOthersAreMade) {
    TemporaryFolder const folder;
    fillWithOthers(folder, 256);
    releaseRemovedItems();
    for (int index = 156; index < 256; ++index)
        ASSERT_EQ(::unlink(folder.path("others/" + std::to_string(index)).c_str()), 0);
    std::size_t const removed = removedItemsHeldOpen();
    EXPECT_GE(removed, 100U);
    for (int index = 0; index < 100; ++index)
        referenceTo(folder.makeFile("later/" + std::to_string(index), ""));
    EXPECT_EQ(removedItemsHeldOpen(), removed - 100);
}

TEST(HeldItems, MakesRoomWhenNoDescriptorIsLeft) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    fillWithOthers(folder);
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &old), 0);
    rlimit few = old;
    few.rlim_cur = 200;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    FSRef const reference = referenceTo(file);
    std::string const path = pathOf(reference);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &old), 0);
    EXPECT_EQ(path, file);
}

TEST(HeldItems, DoesNotKeepRemovedItems) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    referenceTo(file);
    releaseRemovedItems();
    std::size_t const before = openDescriptors();
    ASSERT_EQ(::unlink(file.c_str()), 0);
    releaseRemovedItems();
    EXPECT_EQ(openDescriptors(), before - 1);
}

TEST(HeldItems, DoesNotKeepWhatTheTrashIsEmptiedOf) {
    TrashHome const home;
    Result<TrashedItem, TrashProblem> const item = moveToTrash(home.folder.makeFile("file", ""));
    ASSERT_TRUE(item.hasValue());
    referenceTo(item.value().path);
    releaseRemovedItems();
    std::size_t const before = openDescriptors();
    EXPECT_EQ(emptyTrash().removed, 1U);
    EXPECT_EQ(openDescriptors(), before - 1);
}

} // namespace
} // namespace mac::test
