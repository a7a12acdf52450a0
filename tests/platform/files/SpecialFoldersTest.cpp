#include "platform/files/SpecialFolders.h"
#include "platform/files/references/ItemReferences.h"
#include "tests/platform/files/trash/TrashHome.h"
#include "tests/support/PrivateMounts.h"
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

class SpecialFolders : public PrivateMounts {
protected:
    // The folder's path; empty if there is none, and the status is kept.
    std::string folder(FSVolumeRefNum volume, OSType type, BOOL isMade) {
        FSRef ref{};
        m_status = FSFindFolder(volume, type, isMade, &ref);
        Result<ReferencedItem> const item = itemOfReference(ref);
        return item.hasValue() ? item.value().path : "";
    }
    static FSVolumeRefNum volumeOf(std::string const& path) {
        FSRef ref{};
        FSCatalogInfo information;
        EXPECT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>(path.c_str()), &ref, nullptr), noErr);
        EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoVolume, &information, nullptr, nullptr, nullptr), noErr);
        return information.volume;
    }

    TrashHome const m_home{};
    TemporaryFolder const m_point{};
    EnvironmentVariable const m_homePath{"HOME", m_home.folder.makeFolder("home")};
    EnvironmentVariable const m_cache{"XDG_CACHE_HOME", m_home.path("cache/of/mine")};
    EnvironmentVariable const m_state{"XDG_STATE_HOME", m_home.path("state/of/mine")};
    OSErr m_status{noErr};
};

TEST_F(SpecialFolders, TheUsersTrashIsTheHomeFolders) {
    EXPECT_EQ(folder(kUserDomain, kTrashFolderType, NO), "");
    EXPECT_EQ(m_status, fnfErr);
    EXPECT_EQ(folder(kUserDomain, kTrashFolderType, YES), m_home.path("data/Trash/files"));
    EXPECT_EQ(folder(kUserDomain, kTrashFolderType, NO), m_home.path("data/Trash/files"));
}

TEST_F(SpecialFolders, AVolumeHasFoldersOfItsOwn) {
    mountMemory(m_point.path());
    FSVolumeRefNum const volume = volumeOf(m_point.path());
    std::string const user = std::to_string(::geteuid());
    EXPECT_EQ(folder(volume, kTrashFolderType, NO), "");
    EXPECT_EQ(m_status, fnfErr);
    EXPECT_EQ(folder(volume, kTrashFolderType, YES), m_point.path(".Trash-" + user + "/files"));
    EXPECT_EQ(folder(volume, kTemporaryFolderType, NO), "");
    EXPECT_EQ(m_status, fnfErr);
    EXPECT_EQ(folder(volume, kTemporaryFolderType, YES), m_point.path(".TemporaryItems-" + user));
}

TEST_F(SpecialFolders, AReadOnlyVolumeGetsNone) {
    mountMemory(m_point.path());
    makeReadOnly(m_point.path());
    FSVolumeRefNum const volume = volumeOf(m_point.path());
    for (OSType const type : {kTrashFolderType, kTemporaryFolderType}) {
        EXPECT_EQ(folder(volume, type, YES), "");
        EXPECT_TRUE(m_status == wPrErr || m_status == fnfErr) << m_status;
    }
}

TEST_F(SpecialFolders, TemporaryItemsOfTheUserAreTheirsAlone) {
    EXPECT_EQ(folder(kUserDomain, kTemporaryFolderType, NO), "");
    EXPECT_EQ(folder(kUserDomain, kTemporaryFolderType, YES), m_home.path("cache/of/mine/TemporaryItems"));
    ASSERT_EQ(::chmod(m_home.path("cache/of/mine/TemporaryItems").c_str(), 0755), 0);
    EXPECT_EQ(folder(kUserDomain, kTemporaryFolderType, YES), "");
    EXPECT_EQ(m_status, permErr);
}

TEST_F(SpecialFolders, LogsLieInTheUsersStateFolderForTheUserAlone) {
    EXPECT_EQ(folder(kUserDomain, kLogsFolderType, NO), "");
    EXPECT_EQ(m_status, fnfErr);
    std::string const logs = m_home.path("state/of/mine/framekeeper/Logs");
    EXPECT_EQ(folder(kUserDomain, kLogsFolderType, YES), logs);
    EXPECT_EQ(folder(kUserDomain, kLogsFolderType, NO), logs);
    for (std::string const& made : {logs, m_home.path("state/of/mine/framekeeper"), m_home.path("state")}) {
        struct stat status {};
        ASSERT_EQ(::stat(made.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0700U) << made;
    }
    EXPECT_EQ(folder(volumeOf(m_home.path("state")), kLogsFolderType, YES), "");
    EXPECT_EQ(m_status, fnfErr);
}

TEST_F(SpecialFolders, LogsMayLieBehindALinkButNotInAFile) {
    std::string const elsewhere = m_home.folder.makeFolder("elsewhere");
    m_home.folder.makeFolder("state/of/mine/framekeeper");
    std::string const logs = m_home.path("state/of/mine/framekeeper/Logs");
    ASSERT_EQ(::symlink(elsewhere.c_str(), logs.c_str()), 0);
    EXPECT_EQ(folder(kUserDomain, kLogsFolderType, YES), elsewhere);
    ASSERT_EQ(::unlink(logs.c_str()), 0);
    m_home.folder.makeFile("state/of/mine/framekeeper/Logs", "a file");
    EXPECT_EQ(folder(kUserDomain, kLogsFolderType, YES), "");
    EXPECT_NE(m_status, noErr);
}

TEST_F(SpecialFolders, OtherTypesAndVolumesHaveNone) {
    EXPECT_EQ(folder(kUserDomain, FourCharCode("pref"), YES), "");
    EXPECT_EQ(m_status, fnfErr);
    EXPECT_EQ(folder(0x3F3F, kTrashFolderType, YES), "");
    EXPECT_EQ(m_status, nsvErr);
    EXPECT_EQ(FSFindFolder(kUserDomain, kTrashFolderType, YES, nullptr), paramErr);
}

} // namespace

} // namespace mac::test
