#include "pathutils/FileOperations.h"
#include "pathutils/PXFileManagerHandler.h"
#include "tests/support/DiskContents.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::test {

namespace {

class FileOperations : public testing::Test {
protected:
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }

    TemporaryFolder const m_folder{};
};

TEST_F(FileOperations, RemovesAFileAndAFolderWithAllInIt) {
    m_folder.makeFile("file", "contents");
    m_folder.makeFile("folder/deep/er/file", "contents");
    EXPECT_TRUE(pxRemoveFile2(at("file")) == nil);
    EXPECT_TRUE(pxRemoveFile(at("folder")));
    EXPECT_TRUE(namesIn(m_folder.path()).empty());
}

TEST_F(FileOperations, RemovesALinkAndNotWhatItLeadsTo) {
    m_folder.makeFile("folder/file", "contents");
    for (char const* const name : {"link", "link/"}) {
        ASSERT_EQ(::symlink("folder", m_folder.path("link").c_str()), 0);
        EXPECT_TRUE(pxRemoveFile(at(name)));
        EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>{"folder"});
        EXPECT_EQ(textOf(m_folder.path("folder/file")), "contents");
    }
}

TEST_F(FileOperations, TellsWhyNothingIsRemoved) {
    m_folder.makeFile("file", "contents");
    EXPECT_EQ(fileSystemBytes(pxRemoveFile2(at("none"))), "open of \"none\": No such file or directory");
    EXPECT_FALSE(pxRemoveFile(at("none")));
    EXPECT_FALSE(pxRemoveFile(at("file/below")));
    EXPECT_EQ(fileSystemBytes(pxRemoveFile2("")), "Could not delete file item.");
    EXPECT_FALSE(pxRemoveFile(""));
    EXPECT_FALSE(pxRemoveFile(at(".")));
    EXPECT_FALSE(pxRemoveFile(at("..")));
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
}

TEST_F(FileOperations, ANilReceiverIsNilAndNo) {
    EXPECT_TRUE(pxRemoveFile2(nil) == nil);
    EXPECT_FALSE(pxRemoveFile(nil));
}

} // namespace

} // namespace mac::test
