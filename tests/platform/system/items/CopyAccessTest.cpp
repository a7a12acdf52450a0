#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/Protection.h"
#include <sys/xattr.h>
#include <unistd.h>

// Tests of who may read a copy.

namespace mac::test {

namespace {

unsigned modeOf(std::string const& path) { return statusOf(path).st_mode & 07777U; }

class CopyAccess : public PrivateMounts {
protected:
    // A file with an access list, on a volume that has such lists.
    std::string makeListed(std::string const& list) {
        mountMemory(m_listed.path(), "mode=777");
        std::string file = m_listed.makeFile("file", "x");
        EXPECT_TRUE(setList(file, AccessListName, list));
        return file;
    }

    TemporaryFolder const m_listed{};
    TemporaryFolder const m_point{};
};

TEST_F(CopyAccess, GivesTheGroupItsOwnEntryWhereTheListCannotBeKept) {
    struct Case {
        std::string list;
        unsigned before;
        unsigned after;
    };
    std::vector<Case> const cases{
        {listForUser(6, 0), 0760, 0700},
        {listForUser(7, 5), 0770, 0750},
        {listForUser(4, 4, 4), 0744, 0744},
        // The mask cuts the group's entry.
        {accessList({{AccessEntry::Owner, 6},
                     {AccessEntry::User, 7, 7000},
                     {AccessEntry::OwningGroup, 6},
                     {AccessEntry::Mask, 4},
                     {AccessEntry::Others, 0}}),
         0640, 0640},
        // A user to whom the list denies what others may do would count as one of the others.
        {listForUser(0, 4, 4), 0744, 0700},
        {accessList({{AccessEntry::Owner, 6},
                     {AccessEntry::OwningGroup, 4},
                     {AccessEntry::Group, 0, 7000},
                     {AccessEntry::Mask, 4},
                     {AccessEntry::Others, 4}}),
         0644, 0640},
    };
    mountWithoutAttributes(m_point.path());
    std::string const file = makeListed(cases[0].list);
    int number = 0;
    for (Case const& each : cases) {
        ASSERT_TRUE(setList(file, AccessListName, each.list));
        ASSERT_EQ(modeOf(file), each.before);
        std::string const name = "copy " + std::to_string(number++);
        EXPECT_EQ(errorOf(copy, file, m_point.path(), name), 0);
        EXPECT_EQ(modeOf(m_point.path(name)), each.after) << name;
    }
}

TEST_F(CopyAccess, KeepsAListWhereItCan) {
    std::string const list = listForUser(6, 4);
    std::string const file = makeListed(list);
    ASSERT_TRUE(setList(m_listed.makeFolder("folder"), DefaultListName, list));
    EXPECT_EQ(errorOf(copy, file, m_listed.path(), "copy"), 0);
    EXPECT_EQ(listOf(m_listed.path("copy"), AccessListName), list);
    EXPECT_EQ(errorOf(copy, m_listed.path("folder"), m_listed.path(), "second"), 0);
    EXPECT_EQ(listOf(m_listed.path("second"), DefaultListName), list);
    EXPECT_EQ(listOf(m_listed.path("second"), AccessListName), "");
}

TEST_F(CopyAccess, TakesNoListFromTheTargetFolder) {
    makeListed(listForUser(6, 4));
    std::string const there = m_listed.makeFolder("there");
    ASSERT_TRUE(setList(there, DefaultListName, listForUser(7, 7)));
    TemporaryFolder const source;
    makeTree(source, "tree");
    std::string const file = source.makeFile("file", "x");
    ASSERT_EQ(::chmod(file.c_str(), 0660), 0);
    EXPECT_EQ(errorOf(copy, source.path("tree"), there, "tree"), 0);
    EXPECT_EQ(errorOf(copy, file, there, "file"), 0);
    ASSERT_EQ(::mkfifo(source.path("pipe").c_str(), 0660), 0);
    EXPECT_EQ(errorOf(copy, source.path("pipe"), there, "pipe"), 0);
    for (char const* const name : {"file", "pipe", "tree", "tree/inner", "tree/inner/deep.txt", "tree/pipe"}) {
        EXPECT_EQ(listOf(there + "/" + name, AccessListName), "") << name;
        EXPECT_EQ(listOf(there + "/" + name, DefaultListName), "") << name;
        EXPECT_EQ(modeOf(there + "/" + name), modeOf(source.path(name))) << name;
    }
    expectTree(there + "/tree");
}

TEST_F(CopyAccess, GivesASidecarThePermissionsOfItsItem) {
    mountWithoutAttributes(m_point.path());
    mountMemory(m_listed.path());
    for (unsigned const mode : {0644U, 0600U, 0444U, 0755U}) {
        std::string const name = "file " + std::to_string(mode);
        std::string const file = m_listed.makeFile(name, "x");
        ASSERT_EQ(::setxattr(file.c_str(), "user.colour", "blue", 4, 0), 0) << "needs attributes in memory";
        ASSERT_EQ(::chmod(file.c_str(), mode), 0);
        EXPECT_EQ(errorOf(copy, file, m_point.path(), name), 0);
        EXPECT_EQ(modeOf(m_point.path(name)), mode);
        EXPECT_EQ(modeOf(m_point.path("._" + name)), mode & 0666U);
    }
}

TEST_F(CopyAccess, GivesASidecarTheAccessListOfItsItem) {
    std::string const list = listForUser(6, 0);
    std::string const file = makeListed(list);
    std::string const large(60'000, 'x');
    ASSERT_EQ(::setxattr(file.c_str(), "user.colour", large.data(), large.size(), 0), 0);
    ASSERT_EQ(::chmod(m_point.path().c_str(), 0755), 0);
    // Attributes count as a kilobyte of an item each.
    mountMemory(m_point.path(), "nr_inodes=20");
    ASSERT_EQ(errorOf(copy, file, m_point.path(), "copy"), 0);
    if (!isThere(m_point.path("._copy"))) GTEST_SKIP() << "memory holds attributes without limit here";
    EXPECT_EQ(listOf(m_point.path("copy"), AccessListName), list);
    std::string const ofSidecar = listOf(m_point.path("._copy"), AccessListName);
    EXPECT_FALSE(ofSidecar.empty()) << "the group itself may not read the item";
    EXPECT_EQ(modeOf(m_point.path("._copy")), 0660U) << "the mask";
}

TEST_F(CopyAccess, GivesAnotherGroupNoMoreThanBothOthersAndTheOldGroupHad) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root makes files of another user";
    mountMemory(m_listed.path(), "mode=777");
    OrdinaryUser const user;
    struct Case {
        unsigned before;
        unsigned after;
    };
    for (auto const& [before, after] : {Case{0644, 0644}, Case{0664, 0644}, Case{0604, 0600}, Case{04755, 0755}}) {
        ASSERT_EQ(::seteuid(0), 0);
        std::string const file = m_point.makeFile("file", "x");
        ASSERT_EQ(::chmod(m_point.path().c_str(), 0755), 0);
        // Readable for the user as one of the others.
        ASSERT_EQ(::chown(file.c_str(), 1, 1), 0);
        ASSERT_EQ(::chmod(file.c_str(), before), 0);
        ASSERT_EQ(::seteuid(OrdinaryUser::ID), 0);
        std::string const name = "copy " + std::to_string(before);
        EXPECT_EQ(errorOf(copy, file, m_listed.path(), name), 0);
        EXPECT_EQ(modeOf(m_listed.path(name)), after) << before;
    }
}

} // namespace

} // namespace mac::test
