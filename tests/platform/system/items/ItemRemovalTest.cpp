#include "platform/system/items/ItemRemoval.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/ItemStatus.h"
#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include <array>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sys/inotify.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace mac::test {

namespace {

using Names = std::vector<std::string>;

int errorOfRemoval(std::string const& path, RemovalQuestions const& questions = {}) {
    return codeOf(removeItem(itemAt(path), questions));
}

// The names that a folder's watch tells, in their order, with a slash before each and one at the end.
std::string namesInEvents(FileDescriptor const& watch) {
    std::array<char, 4096> bytes{};
    ssize_t const size = ::read(watch.number(), bytes.data(), bytes.size());
    std::string names = "/";
    for (ssize_t offset = 0; offset < size;) {
        inotify_event event{};
        std::memcpy(&event, bytes.data() + offset, sizeof event);
        names.append(bytes.data() + offset + sizeof event).append("/");
        offset += static_cast<ssize_t>(sizeof event + event.len);
    }
    return names;
}

class ItemRemoval : public PrivateMounts {
protected:
    ItemRemoval() { makeTree(m_folder, "tree"); }

    TemporaryFolder const m_folder{};
};

TEST_F(ItemRemoval, RemovesAFolderWithOneOfEachInIt) {
    m_folder.makeFile("file", "");
    m_folder.makeFile("._file", AppleDouble);
    m_folder.makeFile("._stray", "");
    Names told;
    EXPECT_EQ(
        errorOfRemoval(m_folder.path("tree"), {.willRemove = [&](std::string const& path) { told.push_back(path); }}),
        0);
    std::ranges::sort(told);
    EXPECT_EQ(told, (Names{"tree", "tree/file \xFF", "tree/inner", "tree/inner/deep.txt", "tree/link", "tree/pipe"}));
    EXPECT_EQ(errorOfRemoval(m_folder.path("file")), 0);
    EXPECT_EQ(namesIn(m_folder.path()), Names{"._stray"});
    EXPECT_EQ(codeOf(removeItem(itemAt("/"))), EBUSY);
}

TEST_F(ItemRemoval, RemovesNothingIfOneItemIsLocked) {
    OpenItem const deep = itemAt(m_folder.path("tree/inner/deep.txt"));
    ASSERT_TRUE(setLock(deep, ItemLock::Locked).isDone());
    EXPECT_EQ(errorOfRemoval(m_folder.path("tree")), ItemIsLocked);
    EXPECT_EQ(errorOfRemoval(m_folder.path("tree/inner/deep.txt")), ItemIsLocked);
    expectTree(m_folder.path("tree"));
    ASSERT_TRUE(setLock(deep, ItemLock::Unlocked).isDone());
    ASSERT_TRUE(setLock(itemAt(m_folder.path("tree")), ItemLock::Locked).isDone());
    EXPECT_EQ(errorOfRemoval(m_folder.path("tree")), ItemIsLocked);
    expectTree(m_folder.path("tree"));
    ASSERT_TRUE(setLock(itemAt(m_folder.path("tree")), ItemLock::Unlocked).isDone());
}

TEST_F(ItemRemoval, GoesOnWhereItIsToldTo) {
    OpenItem const deep = itemAt(m_folder.path("tree/inner/deep.txt"));
    ASSERT_TRUE(setLock(deep, ItemLock::Locked).isDone());
    std::vector<std::pair<std::string, int>> told;
    EXPECT_EQ(errorOfRemoval(m_folder.path("tree"), {.shouldContinueAfter =
                                                         [&](std::string const& path, SystemError const& error) {
                                                             told.emplace_back(path, error.code);
                                                             return true;
                                                         }}),
              ItemIsLocked);
    EXPECT_EQ(told, (std::vector<std::pair<std::string, int>>{{"tree/inner/deep.txt", ItemIsLocked},
                                                              {"tree/inner", ENOTEMPTY}}));
    EXPECT_EQ(namesIn(m_folder.path("tree")), Names{"inner"});
    EXPECT_EQ(textOf(m_folder.path("tree/inner/deep.txt")), "deep");
    ASSERT_TRUE(setLock(deep, ItemLock::Unlocked).isDone());
}

TEST_F(ItemRemoval, EndsAtTheFirstFailure) {
    for (char const* const name : {"", "tree", "tree/inner", "tree/inner/deep.txt"})
        OrdinaryUser::own(m_folder.path(name));
    OrdinaryUser const user;
    Names told;
    RemovalQuestions const questions{.willRemove = [&](std::string const& path) {
        told.push_back(path);
        // May no longer be changed from the last moment on.
        if (path != "tree/inner/deep.txt") return;
        EXPECT_EQ(::chmod(m_folder.path("tree/inner").c_str(), 0555), 0);
    }};
    EXPECT_EQ(errorOfRemoval(m_folder.path("tree"), questions), EACCES);
    EXPECT_EQ(told.back(), "tree/inner/deep.txt");
    EXPECT_EQ(textOf(m_folder.path("tree/inner/deep.txt")), "deep");
}

TEST_F(ItemRemoval, LeavesAnItemThatTookThePlace) {
    OpenItem const item = itemAt(m_folder.path("tree"));
    ASSERT_EQ(::rename(m_folder.path("tree").c_str(), m_folder.path("moved").c_str()), 0);
    EXPECT_EQ(codeOf(removeItem(item)), ENOENT);
    m_folder.makeFile("tree/another", "kept");
    EXPECT_EQ(codeOf(removeItem(item)), ESTALE);
    OpenItem const file = itemAt(m_folder.path("tree/another"));
    ASSERT_EQ(::rename(m_folder.path("tree/another").c_str(), m_folder.path("tree/first").c_str()), 0);
    m_folder.makeFile("tree/another", "second");
    EXPECT_EQ(codeOf(removeItem(file)), ESTALE);
    EXPECT_EQ(namesIn(m_folder.path("tree")), (Names{"another", "first"}));
    expectTree(m_folder.path("moved"));
}

TEST_F(ItemRemoval, FollowsNoLinkThatTookAFoldersPlace) {
    m_folder.makeFile("elsewhere/file", "kept");
    bool isReplaced = false;
    RemovalQuestions const questions{.willRemove = [&](std::string const&) {
        if (isReplaced) return;
        isReplaced = true;
        ASSERT_EQ(::rename(m_folder.path("tree/inner").c_str(), m_folder.path("inner").c_str()), 0);
        ASSERT_EQ(::symlink("../elsewhere", m_folder.path("tree/inner").c_str()), 0);
    }};
    static_cast<void>(removeItem(itemAt(m_folder.path("tree")), questions));
    EXPECT_TRUE(isReplaced);
    EXPECT_EQ(textOf(m_folder.path("elsewhere/file")), "kept");
}

TEST_F(ItemRemoval, RemovesNothingAroundAMountPoint) {
    mountMemory(m_folder.path("tree/inner"));
    m_folder.makeFile("tree/inner/file", "mounted");
    EXPECT_EQ(errorOfRemoval(m_folder.path("tree")), EBUSY);
    EXPECT_EQ(errorOfRemoval(m_folder.path("tree/inner")), EBUSY);
    EXPECT_EQ(textOf(m_folder.path("tree/inner/file")), "mounted");
    EXPECT_EQ(namesIn(m_folder.path("tree")).size(), 4U);
}

TEST_F(ItemRemoval, NeedsNoPermissionToListTheFolderAboveAFile) {
    m_folder.makeFile("box/file", "");
    for (char const* const name : {"", "box", "box/file", "tree", "tree/inner"})
        OrdinaryUser::own(m_folder.path(name));
    ASSERT_EQ(::chmod(m_folder.path("box").c_str(), 0300), 0);
    ASSERT_EQ(::chmod(m_folder.path("tree/inner").c_str(), 0), 0);
    OrdinaryUser const user;
    EXPECT_EQ(errorOfRemoval(m_folder.path("box/file")), 0);
    EXPECT_EQ(errorOfRemoval(m_folder.path("tree")), EACCES);
    EXPECT_EQ(namesIn(m_folder.path("tree")).size(), 4U) << "nothing went before it";
}

TEST_F(ItemRemoval, RemovesNothingOfAFolderWhoseNameMayNotGo) {
    m_folder.makeFile("box/item/inner/file", "x");
    for (char const* const name : {"", "box", "box/item", "box/item/inner", "box/item/inner/file"})
        OrdinaryUser::own(m_folder.path(name));
    ASSERT_EQ(::chmod(m_folder.path("box").c_str(), 0555), 0);
    OrdinaryUser const user;
    EXPECT_EQ(errorOfRemoval(m_folder.path("box/item")), EACCES);
    EXPECT_EQ(textOf(m_folder.path("box/item/inner/file")), "x");
    EXPECT_EQ(codeOf(confirmRemovable(itemAt(m_folder.path("box/item")), AskedNames::AllInOpenedFolders)), EACCES);
}

// A filter that does not know the question refuses it with the code of an immutable folder.
TEST_F(ItemRemoval, TakesNoFilterOfSystemCallsForTheFileSystem) {
    withRefusedCall(SYS_faccessat2, EPERM, [&] { EXPECT_EQ(errorOfRemoval(m_folder.path("tree")), 0); });
    EXPECT_FALSE(isThere(m_folder.path("tree")));
}

TEST_F(ItemRemoval, RemovesNothingOfAFolderWhoseContentsMayNotGo) {
    m_folder.makeFile("item/a", "a");
    m_folder.makeFile("item/inner/file", "x");
    for (char const* const name : {"", "item", "item/a", "item/inner", "item/inner/file"})
        OrdinaryUser::own(m_folder.path(name));
    ASSERT_EQ(::chmod(m_folder.path("item/inner").c_str(), 0555), 0);
    OrdinaryUser const user;
    EXPECT_EQ(errorOfRemoval(m_folder.path("item")), EACCES);
    EXPECT_EQ(textOf(m_folder.path("item/a")), "a");
    EXPECT_EQ(codeOf(confirmRemovable(itemAt(m_folder.path("item")), AskedNames::AllInOpenedFolders)), 0);
    ASSERT_EQ(::unlink(m_folder.path("item/inner/file").c_str()), -1);
    ASSERT_EQ(::chmod(m_folder.path("item/inner").c_str(), 0755), 0);
    ASSERT_EQ(::unlink(m_folder.path("item/inner/file").c_str()), 0);
    ASSERT_EQ(::chmod(m_folder.path("item/inner").c_str(), 0555), 0);
    EXPECT_EQ(errorOfRemoval(m_folder.path("item")), 0) << "an empty folder needs no permissions of its own";
}

TEST_F(ItemRemoval, RemovesNothingAroundAnItemThatASharedFolderKeeps) {
    if (!OrdinaryUser::isAnother()) GTEST_SKIP() << "only root can make another user's item";
    m_folder.makeFile("item/a", "a");
    m_folder.makeFile("item/shared/root's", "x");
    ASSERT_EQ(::chmod(m_folder.path("item/shared").c_str(), 01777), 0);
    for (char const* const name : {"", "item", "item/a"})
        OrdinaryUser::own(m_folder.path(name));
    OrdinaryUser const user;
    EXPECT_EQ(errorOfRemoval(m_folder.path("item")), EPERM);
    EXPECT_EQ(textOf(m_folder.path("item/a")), "a");
    EXPECT_EQ(codeOf(confirmRemovable(itemAt(m_folder.path("item")), AskedNames::AllInOpenedFolders)), EPERM);
}

TEST_F(ItemRemoval, RemovesAFileAndItsSidecarOrNeither) {
    std::string const file = m_folder.makeFile("file", "x");
    m_folder.makeFile("._file", AppleDouble);
    for (auto const remove : {+[](OpenItem const& item) { return removeEmptyItem(item); },
                              +[](OpenItem const& item) { return removeItem(item); }}) {
        withRefusedCall(SYS_unlinkat, EIO, [&] { EXPECT_EQ(codeOf(remove(itemAt(file))), EIO); });
        EXPECT_EQ(textOf(file), "x");
        EXPECT_EQ(textOf(m_folder.path("._file")), AppleDouble);
    }
    EXPECT_EQ(codeOf(removeEmptyItem(itemAt(file))), 0);
    EXPECT_FALSE(isThere(file));
    EXPECT_FALSE(isThere(m_folder.path("._file")));
}

// The names aside are those that a later cleaning removes: none is kept for ever.
TEST_F(ItemRemoval, BringsAFileAndItsSidecarBackWhereNoNameCanBeRemoved) {
    std::string const file = m_folder.makeFile("box/file", "x");
    std::string const sidecar = m_folder.makeFile("box/._file", AppleDouble);
    withRefusedCall(SYS_renameat2, EINVAL,
                    [&] { withRefusedCall(SYS_unlinkat, EACCES, [&] { EXPECT_EQ(errorOfRemoval(file), EACCES); }); });
    EXPECT_EQ(textOf(file), "x");
    EXPECT_EQ(textOf(sidecar), AppleDouble);
    FileDescriptor const box(::open(m_folder.path("box").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::size_t aside = 0;
    for (std::string const& name : namesIn(m_folder.path("box"))) {
        if (name == "file" || name == "._file") continue;
        std::optional<ParsedTemporaryName> const parsed = parseTemporaryName(name);
        EXPECT_TRUE(parsed && parsed->accepts(markOf(statusOf(box, name).value()))) << name;
        ++aside;
    }
    EXPECT_EQ(aside, 2U);
}

TEST_F(ItemRemoval, GivesNoSidecarToAFileThatTookTheName) {
    std::string const file = m_folder.makeFile("file", "x");
    m_folder.makeFile("._file", AppleDouble);
    RemovalQuestions const questions{.steps = [&](RemovalStep step) {
        if (step == RemovalStep::AllAside) m_folder.makeFile("file", "another's");
    }};
    withRefusedCall(SYS_unlinkat, EIO, [&] { EXPECT_EQ(errorOfRemoval(file, questions), EIO); });
    EXPECT_EQ(textOf(file), "another's");
    EXPECT_FALSE(isThere(m_folder.path("._file")));
}

// Where no name can be removed, the sidecar keeps its temporary name, too, and cannot be renamed to it again.
TEST_F(ItemRemoval, GivesNoSidecarToAFileThatTookTheNameWhereNoNameCanBeRemoved) {
    std::string const file = m_folder.makeFile("file", "x");
    m_folder.makeFile("._file", AppleDouble);
    RemovalQuestions const questions{.steps = [&](RemovalStep step) {
        if (step == RemovalStep::AllAside) m_folder.makeFile("file", "another's");
    }};
    withRefusedCall(SYS_renameat2, EINVAL, [&] {
        withRefusedCall(SYS_unlinkat, EACCES, [&] { EXPECT_EQ(errorOfRemoval(file, questions), EACCES); });
    });
    EXPECT_EQ(textOf(file), "another's");
    EXPECT_FALSE(isThere(m_folder.path("._file")));
}

// A process that is killed in between must not leave the file without its sidecar.
TEST_F(ItemRemoval, PutsTheSidecarBackBeforeItsFile) {
    std::string const file = m_folder.makeFile("box/file", "x");
    m_folder.makeFile("box/._file", AppleDouble);
    FileDescriptor const watch(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    ASSERT_GE(::inotify_add_watch(watch.number(), m_folder.path("box").c_str(), IN_MOVED_TO), 0);
    withRefusedCall(SYS_unlinkat, EIO, [&] { EXPECT_EQ(errorOfRemoval(file), EIO); });
    std::string const events = namesInEvents(watch);
    EXPECT_LT(events.find("/._file/"), events.find("/file/")) << events;
    EXPECT_NE(events.find("/file/"), std::string::npos) << events;
}

TEST_F(ItemRemoval, TellsWhereASidecarIsThatCannotGoBack) {
    std::string const file = m_folder.makeFile("file", "x");
    m_folder.makeFile("._file", AppleDouble + "own");
    RemovalQuestions const questions{.steps = [&](RemovalStep step) {
        if (step == RemovalStep::AllAside) m_folder.makeFile("._file", "another's");
    }};
    withRefusedCall(SYS_unlinkat, EIO, [&] {
        Result<void> const removed = removeItem(itemAt(file), questions);
        ASSERT_EQ(codeOf(removed), EIO);
        std::string const& name = removed.problem().item;
        std::optional<ParsedTemporaryName> const parsed = parseTemporaryName(name);
        EXPECT_TRUE(parsed && parsed->mark == MarkOfNoItem) << name;
        EXPECT_EQ(textOf(m_folder.path(name)), AppleDouble + "own");
    });
    EXPECT_EQ(textOf(file), "x");
    EXPECT_EQ(textOf(m_folder.path("._file")), "another's");
}

TEST_F(ItemRemoval, RemovesAFileWithASidecarThatIsBeingWritten) {
    std::string const file = m_folder.makeFile("file", "x");
    m_folder.makeFile("._file", AppleDouble);
    bool isWritten = false;
    auto const write = [&] { std::ofstream(file, std::ios::app) << "more"; };
    RemovalQuestions const questions{.willRemove = [&](std::string const&) { write(); },
                                     .steps =
                                         [&](RemovalStep step) {
                                             if (step == RemovalStep::Checked && !std::exchange(isWritten, true))
                                                 write();
                                         }};
    EXPECT_EQ(errorOfRemoval(file, questions), 0);
    EXPECT_TRUE(isWritten);
    EXPECT_FALSE(isThere(file) || isThere(m_folder.path("._file")));
}

TEST_F(ItemRemoval, LeavesANewSidecarBesideAFolderThatIsGone) {
    m_folder.makeFile("._tree", AppleDouble);
    RemovalQuestions const questions{.willRemove = [&](std::string const& path) {
        if (path != "tree") return;
        ASSERT_EQ(::unlink(m_folder.path("._tree").c_str()), 0);
        m_folder.makeFile("._tree", "another's");
    }};
    EXPECT_EQ(errorOfRemoval(m_folder.path("tree"), questions), 0);
    EXPECT_FALSE(isThere(m_folder.path("tree")));
    EXPECT_EQ(textOf(m_folder.path("._tree")), "another's");
}

TEST_F(ItemRemoval, RemovesTheSidecarOfAFolderThatTheVolumeCannotRename) {
    TemporaryFolder const changes;
    TemporaryFolder const point;
    m_folder.makeFolder("below/empty");
    m_folder.makeFile("below/._empty", AppleDouble);
    mountMemory(changes.path());
    changes.makeFolder("above");
    changes.makeFolder("work");
    mountLayers(m_folder.path("below"), changes.path(), point.path());
    if (IsSkipped()) return;
    EXPECT_EQ(codeOf(removeEmptyItem(itemAt(point.path("empty")))), 0);
    EXPECT_EQ(namesIn(point.path()), Names());
}

TEST_F(ItemRemoval, RemovesNothingOnAReadOnlyVolume) {
    TemporaryFolder const point;
    mountMemory(point.path());
    point.makeFile("folder/file", "contents");
    makeReadOnly(point.path());
    EXPECT_EQ(errorOfRemoval(point.path("folder")), EROFS);
    EXPECT_EQ(textOf(point.path("folder/file")), "contents");
}

} // namespace

} // namespace mac::test
