#include "platform/system/items/TreeRemoval.h"
#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include <unistd.h>

namespace mac::test {

namespace {

class TreeRemoval : public PrivateMounts {
protected:
    int remove(std::string const& name, RemovalRules const& rules = {}) const {
        FileDescriptor const folder = folderAt(m_folder.path());
        Result<ItemPlace> const place = placeOf(folder, name);
        return place.hasValue() ? codeOf(removeTree(folder, name, place.value().identity, rules))
                                : place.problem().code;
    }

    TemporaryFolder const m_folder{};
};

TEST_F(TreeRemoval, RemovesItemsOfAllKinds) {
    makeTree(m_folder, "tree");
    m_folder.makeFile("outside/file", "x");
    ASSERT_EQ(::symlink(m_folder.path("outside").c_str(), m_folder.path("tree/inner/way out").c_str()), 0);
    ASSERT_EQ(::symlink("outside", m_folder.path("link").c_str()), 0);
    m_folder.makeFile("file", "x");
    ASSERT_EQ(::mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
    for (char const* const name : {"tree", "link", "file", "pipe"})
        EXPECT_EQ(remove(name), 0) << name;
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"outside"});
    EXPECT_EQ(textOf(m_folder.path("outside/file")), "x");
    EXPECT_EQ(remove("none"), ENOENT);
}

TEST_F(TreeRemoval, RemovesFoldersOfAnyDepth) {
    std::string deep = "tree";
    FileDescriptor folder(::open(m_folder.makeFolder(deep).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::string const name(200, 'x');
    for (int depth = 0; depth < 100; ++depth) {
        ASSERT_EQ(::mkdirat(folder.number(), name.c_str(), 0700), 0);
        folder = FileDescriptor(::openat(folder.number(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    std::size_t const before = namesIn("/proc/self/fd").size();
    EXPECT_EQ(remove("tree"), 0);
    EXPECT_EQ(namesIn("/proc/self/fd").size(), before);
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
}

TEST_F(TreeRemoval, LeavesAnotherItemThatHasTheName) {
    m_folder.makeFile("file", "x");
    FileDescriptor const folder = folderAt(m_folder.path());
    ItemIdentity const identity = placeOf(folder, "file").value().identity;
    ASSERT_EQ(::rename(m_folder.path("file").c_str(), m_folder.path("elsewhere").c_str()), 0);
    m_folder.makeFile("file/inner", "y");
    EXPECT_EQ(codeOf(removeTree(folder, "file", identity)), ESTALE);
    EXPECT_EQ(textOf(m_folder.path("file/inner")), "y");
}

TEST_F(TreeRemoval, DoesNotCrossMounts) {
    m_folder.makeFile("tree/a/file", "x");
    m_folder.makeFolder("tree/mount");
    mountMemory(m_folder.path("tree/mount"));
    m_folder.makeFile("tree/mount/kept", "x");
    EXPECT_EQ(remove("tree"), EBUSY);
    EXPECT_EQ(textOf(m_folder.path("tree/mount/kept")), "x");
    EXPECT_EQ(namesIn(m_folder.path("tree")), std::vector<std::string>{"mount"}) << "all else is gone";
    FileDescriptor const tree = folderAt(m_folder.path("tree"));
    EXPECT_EQ(codeOf(removeTree(tree, "mount", placeOf(tree, "mount").value().identity)), EBUSY);
    EXPECT_EQ(textOf(m_folder.path("tree/mount/kept")), "x");
}

TEST_F(TreeRemoval, OpensClosedFoldersOnlyIfToldSo) {
    m_folder.makeFile("tree/closed/file", "x");
    m_folder.makeFile("tree/still/file", "x");
    for (char const* const name : {"", "tree", "tree/closed", "tree/still", "tree/closed/file", "tree/still/file"})
        OrdinaryUser::own(m_folder.path(name));
    OrdinaryUser const user;
    ASSERT_EQ(::chmod(m_folder.path("tree/closed").c_str(), 0), 0);
    ASSERT_EQ(::chmod(m_folder.path("tree/still").c_str(), 0555), 0);
    EXPECT_EQ(remove("tree"), EACCES);
    EXPECT_EQ(namesIn(m_folder.path("tree")), (std::vector<std::string>{"closed", "still"}));
    EXPECT_EQ(remove("tree", {.makesAccessible = true}), 0);
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
}

TEST_F(TreeRemoval, AsksBeforeItRemovesAFolderThatCannotBeListed) {
    m_folder.makeFolder("tree/closed");
    for (char const* const name : {"", "tree", "tree/closed"})
        OrdinaryUser::own(m_folder.path(name));
    OrdinaryUser const user;
    ASSERT_EQ(::chmod(m_folder.path("tree/closed").c_str(), 0), 0);
    std::vector<std::string> asked;
    RemovalRules const rules{
        .beforeRemoval = [&](FileDescriptor const&, std::string const&, std::string const& path) -> Result<void> {
            asked.push_back(path);
            return SystemError{.code = EBUSY};
        }};
    EXPECT_EQ(remove("tree", rules), EBUSY);
    EXPECT_EQ(asked, std::vector<std::string>{"tree/closed"});
    EXPECT_EQ(namesIn(m_folder.path("tree")), std::vector<std::string>{"closed"});
    EXPECT_EQ(remove("tree"), 0);
}

TEST_F(TreeRemoval, CanBeGivenUp) {
    m_folder.makeFile("tree/a/file", "x");
    m_folder.makeFile("tree/b/file", "x");
    int asked = 0;
    EXPECT_EQ(remove("tree", {.shouldContinue = [&] { return ++asked < 3; }}), ECANCELED);
    EXPECT_EQ(namesIn(m_folder.path("tree")).size(), 1U);
    EXPECT_EQ(remove("tree", {.shouldContinue = [] { return true; }}), 0);
}

} // namespace

} // namespace mac::test
