#include "platform/system/PhysicalPath.h"
#include "tests/support/TemporaryFolder.h"
#include <cstdlib>
#include <gtest/gtest.h>
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
    std::string real(std::string const& relative) const {
        std::string const whole = m_folder.path("real");
        char* const resolved = ::realpath(whole.c_str(), nullptr);
        std::string const path = resolved + relative;
        std::free(resolved);
        return path;
    }
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

} // namespace
} // namespace mac::test
