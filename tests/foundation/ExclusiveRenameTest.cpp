#include "platform/foundation/ExclusiveRename.h"
#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/FolderContents.h"
#include "tests/support/Refusals.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

Names namesIn(std::string const& path) {
    Names names = namesInFolder(path, LinkAtEnd::IsFollowed).value_or(Names{"cannot be read"});
    std::ranges::sort(names);
    return names;
}

std::string textOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class RenameInSteps : public testing::Test {
protected:
    // 0, or errno.
    int rename(std::string const& from, std::string const& to, std::function<void()> const& afterFirstStep = {}) const {
        return renameInSteps(m_parent.number(), from, m_parent.number(), to, afterFirstStep) ? 0 : errno;
    }

    // Where no file can have two names.
    int renameWithoutLinks(std::string const& from, std::string const& to,
                           std::function<void()> const& afterFirstStep = {}) const {
        int result = 0;
        withRefusedCall(SYS_linkat, EPERM, [&] { result = rename(from, to, afterFirstStep); });
        return result;
    }

    TemporaryFolder const m_folder{};
    FileDescriptor const m_parent{::open(m_folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
};

TEST_F(RenameInSteps, MovesFilesFoldersAndLinks) {
    m_folder.makeFile("file", "x");
    m_folder.makeFile("folder/file", "y");
    ASSERT_EQ(::symlink("nowhere", m_folder.path("link").c_str()), 0);
    EXPECT_EQ(rename("file", "file 2"), 0);
    EXPECT_EQ(rename("folder", "folder 2"), 0);
    EXPECT_EQ(rename("link", "link 2"), 0);
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file 2", "folder 2", "link 2"}));
    EXPECT_EQ(textOf(m_folder.path("file 2")), "x");
    EXPECT_EQ(textOf(m_folder.path("folder 2/file")), "y");
    EXPECT_EQ(renameWithoutLinks("file 2", "file 3"), 0);
    EXPECT_EQ(renameWithoutLinks("link 2", "link 3"), 0);
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file 3", "folder 2", "link 3"}));
    EXPECT_EQ(textOf(m_folder.path("file 3")), "x");
}

TEST_F(RenameInSteps, ReplacesNothing) {
    m_folder.makeFile("file", "x");
    m_folder.makeFolder("folder");
    m_folder.makeFolder("empty");
    EXPECT_EQ(rename("file", "empty"), EEXIST);
    EXPECT_EQ(renameWithoutLinks("file", "empty"), EEXIST);
    EXPECT_EQ(rename("folder", "empty"), EEXIST);
    EXPECT_EQ(rename("folder", "file"), EEXIST);
    EXPECT_EQ(rename("none", "new"), ENOENT);
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"empty", "file", "folder"}));
}

TEST_F(RenameInSteps, PutsNothingInTheWayOfAFileThatCanHaveTwoNames) {
    m_folder.makeFile("file", "x");
    std::string const second = m_folder.path("second");
    EXPECT_EQ(rename("file", "second", [&] { std::ofstream(second, std::ios::app) << "y"; }), 0);
    EXPECT_EQ(textOf(second), "xy") << "who writes to it already writes to the file itself";
    EXPECT_EQ(namesIn(m_folder.path()), Names{"second"});
}

TEST_F(RenameInSteps, LeavesWhatTakesThePlaceOfTheFile) {
    std::string const file = m_folder.makeFile("file", "old");
    EXPECT_EQ(rename("file", "second",
                     [&] {
                         ::rename(file.c_str(), m_folder.path("moved").c_str());
                         m_folder.makeFile("file", "new");
                     }),
              ESTALE);
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file", "moved"}));
    EXPECT_EQ(textOf(file), "new");
    EXPECT_EQ(textOf(m_folder.path("moved")), "old");
}

TEST_F(RenameInSteps, LeavesWhatIsPutIntoTheEmptyThing) {
    m_folder.makeFile("file", "x");
    m_folder.makeFile("folder/inner", "y");
    std::string const second = m_folder.path("second");
    EXPECT_EQ(renameWithoutLinks("file", "second", [&] { std::ofstream(second) << "another's"; }), EEXIST);
    EXPECT_EQ(textOf(second), "another's");
    EXPECT_EQ(textOf(m_folder.path("file")), "x");
    EXPECT_EQ(rename("folder", "third", [&] { m_folder.makeFile("third/file", "another's"); }), EEXIST);
    EXPECT_EQ(textOf(m_folder.path("third/file")), "another's");
    EXPECT_EQ(textOf(m_folder.path("folder/inner")), "y");
}

TEST_F(RenameInSteps, LeavesNothingBehindWhenItFails) {
    m_folder.makeFolder("folder/inner");
    FileDescriptor const inner(::open(m_folder.path("folder/inner").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    EXPECT_FALSE(renameInSteps(m_parent.number(), "folder", inner.number(), "itself"));
    EXPECT_EQ(errno, EINVAL);
    EXPECT_TRUE(namesIn(m_folder.path("folder/inner")).empty());
    m_folder.makeFile("file", "x");
    int reason = 0;
    withRefusedCall(SYS_unlinkat, EACCES, [&] { reason = rename("file", "second"); });
    EXPECT_EQ(reason, EACCES);
    EXPECT_EQ(textOf(m_folder.path("file")), "x");
}

TEST_F(RenameInSteps, IsWhatIsDoneWhereTheSystemCannotRenameSo) {
    m_folder.makeFile("file", "x");
    m_folder.makeFile("taken", "y");
    withRefusedCall(SYS_renameat2, EINVAL, [&] {
        EXPECT_FALSE(renameWithoutReplacing(m_parent.number(), "file", m_parent.number(), "taken"));
        EXPECT_EQ(errno, EEXIST);
        EXPECT_TRUE(renameWithoutReplacing(m_parent.number(), "file", m_parent.number(), "free"));
    });
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"free", "taken"}));
    EXPECT_EQ(textOf(m_folder.path("taken")), "y");
}

} // namespace
} // namespace mac::test
