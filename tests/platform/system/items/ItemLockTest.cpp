#include "platform/system/items/ItemLock.h"
#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/items/ItemAttributes.h"
#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/Protection.h"
#include <unistd.h>

namespace mac::test {

namespace {

bool isLocked(std::string const& path) {
    OpenItem const item = itemAt(path);
    bool const isLocked = lockOf(item) == ItemLock::Locked;
    EXPECT_EQ(isLockedIn(item.folder, item.name), isLocked) << path;
    return isLocked;
}

int lock(std::string const& path) { return codeOf(setLock(itemAt(path), ItemLock::Locked)); }
int unlock(std::string const& path) { return codeOf(setLock(itemAt(path), ItemLock::Unlocked)); }

// The folder's items belong to an ordinary user, who runs the test.
class ItemLocks : public testing::Test {
protected:
    ItemLocks() {
        m_folder.makeFile("file", "contents");
        m_folder.makeFolder("folder");
        for (char const* const name : {"", "file", "folder"})
            OrdinaryUser::own(m_folder.path(name));
        m_user.emplace();
    }

    TemporaryFolder const m_folder{};
    std::optional<OrdinaryUser> m_user{};
};

TEST(ItemLock, IsTheImmutableFlagWhereTheUserMaySetIt) {
    TemporaryFolder const folder;
    if (!canLockFilesIn(folder)) GTEST_SKIP() << "files cannot be made immutable here";
    std::string const file = folder.makeFile("file", "contents");
    EXPECT_FALSE(isLocked(file));
    EXPECT_EQ(lock(file), 0);
    EXPECT_TRUE(isLocked(file));
    EXPECT_TRUE(isImmutable(itemAt(file).item));
    EXPECT_EQ(codeOf(sizeOnItem(itemAt(file), AttributeName(LockedAttribute))), ENODATA);
    EXPECT_EQ(lock(file), 0);
    EXPECT_EQ(unlock(file), 0);
    EXPECT_FALSE(isLocked(file));
}

TEST_F(ItemLocks, AreAnAttributeWhereTheUserMayNotSetTheFlag) {
    for (char const* const name : {"file", "folder"}) {
        std::string const path = m_folder.path(name);
        EXPECT_EQ(unlock(path), 0);
        EXPECT_FALSE(isLocked(path));
        EXPECT_EQ(lock(path), 0);
        EXPECT_EQ(lock(path), 0);
        EXPECT_TRUE(isLocked(path));
        EXPECT_FALSE(isImmutable(itemAt(path).item));
        EXPECT_TRUE(namesOfAttributes(itemAt(path)).value().empty());
        EXPECT_EQ(unlock(path), 0);
        EXPECT_FALSE(isLocked(path));
    }
}

TEST_F(ItemLocks, AreSetAndTakenOffWhereTheOwnerMayNotWrite) {
    std::string const file = m_folder.path("file");
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    EXPECT_EQ(unlock(file), 0);
    EXPECT_EQ(lock(file), 0);
    EXPECT_TRUE(isLocked(file));
    EXPECT_EQ(statusOf(file).st_mode & 07777U, 0444U);
    EXPECT_EQ(unlock(file), 0);
    EXPECT_FALSE(isLocked(file));
    EXPECT_EQ(statusOf(file).st_mode & 07777U, 0444U);
}

TEST_F(ItemLocks, AreNotForOtherKindsOfItems) {
    ASSERT_EQ(::symlink("file", m_folder.path("link").c_str()), 0);
    ASSERT_EQ(::mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
    for (char const* const name : {"link", "pipe"}) {
        EXPECT_EQ(lock(m_folder.path(name)), EPERM);
        EXPECT_FALSE(isLocked(m_folder.path(name)));
        EXPECT_EQ(unlock(m_folder.path(name)), 0);
    }
    EXPECT_FALSE(isLocked(m_folder.path("file")));
}

TEST_F(ItemLocks, ForbidToRenameAndAllowToCopy) {
    EXPECT_EQ(lock(m_folder.path("file")), 0);
    EXPECT_EQ(errorOf(move, m_folder.path("file"), m_folder.path(), "moved"), ItemIsLocked);
    EXPECT_EQ(errorOf(move, m_folder.path("file"), m_folder.path("folder"), "file"), ItemIsLocked);
    EXPECT_EQ(errorOf(copy, m_folder.path("file"), m_folder.path("folder"), "copy"), 0);
    EXPECT_TRUE(isLocked(m_folder.path("folder/copy")));
    // What holds a locked item can be renamed.
    EXPECT_EQ(errorOf(move, m_folder.path("folder"), m_folder.path(), "moved"), 0);
    EXPECT_EQ(namesIn(m_folder.path()), (std::vector<std::string>{"file", "moved"}));
}

class ItemLocksOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
    TemporaryFolder const m_point{};
};

TEST_F(ItemLocksOnVolumes, LieInTheSidecarWhereItemsHaveNoAttributes) {
    mountWithoutAttributes(m_point.path());
    std::string const file = m_point.makeFile("file", "contents");
    if (lock(file) == 0 && isImmutable(itemAt(file).item)) {
        EXPECT_EQ(unlock(file), 0);
        GTEST_SKIP() << "the file system has the immutable flag";
    }
    EXPECT_TRUE(isLocked(file));
    EXPECT_TRUE(isThere(m_point.path("._file")));
    EXPECT_EQ(errorOf(move, file, m_point.path(), "moved"), ItemIsLocked);
    EXPECT_EQ(unlock(file), 0);
    EXPECT_FALSE(isLocked(file));
    EXPECT_FALSE(isThere(m_point.path("._file")));
}

TEST_F(ItemLocksOnVolumes, KeepAFolderOnItsVolume) {
    mountMemory(m_point.path());
    m_folder.makeFile("folder/inner/file", "contents");
    ASSERT_EQ(lock(m_folder.path("folder/inner/file")), 0);
    EXPECT_EQ(errorOf(move, m_folder.path("folder"), m_point.path(), "folder"), ItemIsLocked);
    EXPECT_TRUE(namesIn(m_point.path()).empty());
    EXPECT_EQ(textOf(m_folder.path("folder/inner/file")), "contents");
    EXPECT_EQ(unlock(m_folder.path("folder/inner/file")), 0);
    EXPECT_EQ(errorOf(move, m_folder.path("folder"), m_point.path(), "folder"), 0);
}

} // namespace

} // namespace mac::test
