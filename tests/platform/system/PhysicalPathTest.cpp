#include "platform/system/FileDescriptor.h"
#include "platform/system/LongPath.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

class PhysicalPath : public testing::Test {
protected:
    void SetUp() override {
        m_folder.makeFile("real/deep/file", "");
        ASSERT_EQ(::symlink("real/deep", m_folder.path("link").c_str()), 0);
        ASSERT_EQ(::symlink("file", m_folder.path("real/deep/last").c_str()), 0);
    }
    // The temporary folder's own path may hold symbolic links.
    static std::string resolvedBySystem(std::string const& folder) {
        char* const resolved = ::realpath(folder.c_str(), nullptr);
        std::string path = resolved;
        std::free(resolved);
        return path;
    }
    std::string real(std::string const& relative) const { return resolvedBySystem(m_folder.path("real")) + relative; }
    TemporaryFolder const m_folder{};
};

TEST_F(PhysicalPath, ResolvesTheFolder) {
    EXPECT_EQ(physicalPath(m_folder.path("link/file")), real("/deep/file"));
    EXPECT_EQ(physicalPath(m_folder.path("link/none")), real("/deep/none"));
}

TEST_F(PhysicalPath, LeavesAFinalSymbolicLinkAlone) {
    EXPECT_EQ(physicalPath(m_folder.path("link/last")), real("/deep/last"));
}

// Behind a symbolic link ".." is the folder above what it leads to.
TEST_F(PhysicalPath, GoesUpAsTheSystemDoes) {
    EXPECT_EQ(physicalPath(m_folder.path("link/../deep/file")), real("/deep/file"));
    EXPECT_EQ(physicalPath(m_folder.path("link/..")), real(""));
    EXPECT_EQ(physicalPath("/"), "/");
}

TEST_F(PhysicalPath, KeepsAPathWhoseFolderIsMissing) {
    EXPECT_EQ(physicalPath("/nonexistent/a/\xff/"), "/nonexistent/a/\xff");
    EXPECT_EQ(physicalPath(""), "");
    EXPECT_TRUE(physicalPath("nonexistent/a").ends_with("/nonexistent/a"));
    EXPECT_TRUE(physicalPath("nonexistent/a").starts_with('/'));
}

// The process is in a folder that is removed while the object lives.
class RemovedCurrentFolder {
public:
    explicit RemovedCurrentFolder(std::string const& path) {
        EXPECT_TRUE(m_before.isOpen());
        EXPECT_EQ(::mkdir(path.c_str(), 0700), 0);
        EXPECT_EQ(::chdir(path.c_str()), 0);
        EXPECT_EQ(::rmdir(path.c_str()), 0);
    }
    ~RemovedCurrentFolder() { EXPECT_EQ(::fchdir(m_before.number()), 0); }
    RemovedCurrentFolder(RemovedCurrentFolder const&) = delete;
    RemovedCurrentFolder& operator=(RemovedCurrentFolder const&) = delete;

private:
    FileDescriptor const m_before{::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)};
};

// The system still leads up from there, so that an action would find the item.
TEST_F(PhysicalPath, LeadsUpFromACurrentFolderThatIsGone) {
    RemovedCurrentFolder const gone(m_folder.path("real/deep/gone"));
    EXPECT_EQ(physicalPath("../file"), real("/deep/file"));
    EXPECT_EQ(physicalPath("../last"), real("/deep/last"));
    EXPECT_EQ(physicalPath(".."), real("/deep"));
    EXPECT_EQ(physicalPath(m_folder.path("link/file")), real("/deep/file"));
    // There is no such item, and no path to it.
    EXPECT_EQ(physicalPath("file"), "file");
    EXPECT_EQ(physicalPath("."), ".");
}

TEST_F(PhysicalPath, IsResolvedAtAnyLength) {
    LongFolder inner;
    inner.makeFile("file", "");
    std::size_t const middle = inner.path().find('/', inner.path().size() / 2);
    ASSERT_LT(middle, inner.path().size());
    std::string const outer = inner.path().substr(0, middle);
    std::string const rest = inner.path().substr(middle);
    ASSERT_EQ(::symlink(outer.c_str(), m_folder.path("outer").c_str()), 0);
    std::string const expected = resolvedBySystem(outer) + rest;
    for (std::string const& folder : {inner.path(), m_folder.path("outer") + rest}) {
        EXPECT_EQ(physicalPath(folder + "/file"), expected + "/file");
        EXPECT_EQ(physicalPath(folder + "/none"), expected + "/none");
        EXPECT_EQ(physicalPath(folder + "/./"), expected);
    }
    // Its folder does not exist.
    EXPECT_EQ(physicalPath(m_folder.path("outer") + rest + "/none/../file"),
              m_folder.path("outer") + rest + "/none/../file");
}

// An item behind a closed folder cannot be opened either.
TEST_F(PhysicalPath, KeepsAPathThroughAFolderThatMayNotBeEntered) {
    std::string const path = m_folder.path("link/../../real/deep/closed/file");
    m_folder.makeFile("real/deep/closed/file", "");
    ASSERT_EQ(::chmod(m_folder.path("real/deep").c_str(), 0), 0);
    {
        OrdinaryUser const user;
        EXPECT_EQ(physicalPath(path), path);
    }
    ASSERT_EQ(::chmod(m_folder.path("real/deep").c_str(), 0700), 0);
}

} // namespace
} // namespace mac::test
