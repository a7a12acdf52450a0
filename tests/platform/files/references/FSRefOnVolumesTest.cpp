#include "platform/files/references/ItemReferences.h"
#include "tests/platform/files/references/References.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <fstream>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

class FSRefOnVolumes : public PrivateMounts {
protected:
    std::string nameOf(unsigned index) const { return m_point + "/" + std::to_string(index); }
    // References to so many new files on the volume.
    std::vector<FSRef> referencesToFiles(unsigned count) const {
        std::vector<FSRef> references;
        for (unsigned index = 0; index < count; ++index)
            references.push_back(referenceTo(m_folder.makeFile("volume/" + std::to_string(index), "")));
        return references;
    }

    TemporaryFolder const m_folder{};
    std::string const m_point{m_folder.makeFolder("volume")};
};

// A file system in memory that records no birth times.
TEST_F(FSRefOnVolumes, FindsAllUnmovedItemsWhereNoBirthTimesAreKnown) {
    mountWithoutAttributes(m_point);
    std::vector<FSRef> const references = referencesToFiles(300);
    for (unsigned index = 0; index < references.size(); ++index)
        EXPECT_EQ(pathOf(references[index]), nameOf(index));
}

TEST_F(FSRefOnVolumes, FindsUnmovedItemsThatHaveChangedSince) {
    mountWithoutAttributes(m_point);
    std::vector<FSRef> const references = referencesToFiles(300);
    std::ofstream(nameOf(0)) << "changed";
    ASSERT_EQ(::rename(nameOf(1).c_str(), (m_point + "/renamed").c_str()), 0);
    ASSERT_EQ(::unlink(nameOf(2).c_str()), 0);
    m_folder.makeFile("volume/2", "another");
    EXPECT_EQ(pathOf(references[0]), nameOf(0));
    EXPECT_EQ(pathOf(references[1]), m_point + "/renamed");
    EXPECT_EQ(pathOf(references[2]), "-");
}

// ext3 gives the number of a removed file to the next one, and knows no birth times.
TEST_F(FSRefOnVolumes, AreNeverAnotherItemWhereNumbersAreGivenAgain) {
    mountImage(m_folder.path("image"), m_point, {"-t", "ext3", "-I", "128"});
    if (IsSkipped()) return;
    std::vector<FSRef> const references = referencesToFiles(300);
    std::ofstream(nameOf(0)) << "changed";
    releaseRemovedItems();
    struct stat removed {};
    struct stat another {};
    ASSERT_EQ(::stat(nameOf(1).c_str(), &removed), 0);
    ASSERT_EQ(::unlink(nameOf(1).c_str()), 0);
    m_folder.makeFile("volume/1", "another");
    ASSERT_EQ(::stat(nameOf(1).c_str(), &another), 0);
    ASSERT_EQ(removed.st_ino, another.st_ino);
    EXPECT_EQ(pathOf(references[0]), nameOf(0));
    EXPECT_EQ(pathOf(references[1]), "-");
    EXPECT_EQ(pathOf(references[2]), nameOf(2));
}

TEST_F(FSRefOnVolumes, OfAMomentDoNotKeepTheVolume) {
    mountMemory(m_point);
    std::string const file = m_folder.makeFile("volume/file", "");
    FSRef reference{};
    {
        PassingReferences const passing;
        reference = referenceTo(file);
        EXPECT_EQ(pathOf(reference), file);
        {
            PassingReferences const inner;
            EXPECT_EQ(referenceTo(file), reference);
        }
        EXPECT_EQ(pathOf(reference), file);
    }
    EXPECT_EQ(pathOf(reference), "-");
    EXPECT_EQ(::umount(m_point.c_str()), 0);
    mountMemory(m_point);
}

TEST_F(FSRefOnVolumes, OfAMomentStayIfSomeoneHoldsThem) {
    mountMemory(m_point);
    std::string const before = m_folder.makeFile("volume/before", "");
    FSRef const held = referenceTo(before);
    {
        PassingReferences const passing;
        EXPECT_EQ(referenceTo(before), held);
    }
    EXPECT_EQ(pathOf(held), before);
    EXPECT_NE(::umount(m_point.c_str()), 0);
}

} // namespace
} // namespace mac::test
