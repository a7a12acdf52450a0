#include "pathutils/FileOperations.h"
#include "platform/foundation/running/Log.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/Protection.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::test {

namespace {

using Names = std::vector<std::string>;

// Moving, copying and renaming.
class FileOperationsMoving : public testing::Test {
protected:
    FileOperationsMoving() {
        m_folder.makeFile("file.txt", "contents");
        m_folder.makeFile("source/inner/file", "inner");
        m_folder.makeFolder("target");
    }
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }
    void link(char const* target, char const* name) const {
        ASSERT_EQ(::symlink(target, m_folder.path(name).c_str()), 0);
    }

    TemporaryFolder const m_folder{};
};

TEST_F(FileOperationsMoving, TheFinderMovesToAFolderAndTellsWhere) {
    EXPECT_EQ(fileSystemBytes(pxMoveToFolder_(at("file.txt"), at("target"))), m_folder.path("target/file.txt"));
    EXPECT_EQ(fileSystemBytes(pxMoveToFolder_(at("source"), at("target/"))), m_folder.path("target/source/"));
    EXPECT_EQ(textOf(m_folder.path("target/source/inner/file")), "inner");
    EXPECT_EQ(namesIn(m_folder.path()), Names{"target"});
}

TEST_F(FileOperationsMoving, ALinkIsMovedItself) {
    link("../file.txt", "target/link");
    link("source", "folderLink");
    EXPECT_EQ(fileSystemBytes(pxMoveToFolder_(at("target/link"), at("source"))), m_folder.path("source/link"));
    EXPECT_EQ(textOf(m_folder.path("source/link")), "contents");
    EXPECT_TRUE(pxMoveToFolder2_(at("folderLink"), at("target")));
    EXPECT_EQ(namesIn(m_folder.path("target")), Names{"folderLink"});
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file.txt", "source", "target"}));
    EXPECT_EQ(namesIn(m_folder.path("source")), (Names{"inner", "link"}));
}

TEST_F(FileOperationsMoving, TheFinderReplacesNothingAndMovesNothingThatIsMissing) {
    m_folder.makeFile("target/file.txt", "old");
    EXPECT_TRUE(pxMoveToFolder_(at("file.txt"), at("target")) == nil);
    EXPECT_EQ(textOf(m_folder.path("target/file.txt")), "old");
    for (NSString const& none : {at("none"), NSString(""), NSString("file.txt"), NSString()}) {
        EXPECT_TRUE(pxMoveToFolder_(none, at("target")) == nil);
        EXPECT_TRUE(pxMoveToFolder_(at("source"), none) == nil);
    }
    EXPECT_TRUE(pxMoveToFolder_(at("source"), at("file.txt")) == nil);
    EXPECT_TRUE(pxMoveToFolder_(at("source"), at("source/inner")) == nil);
    EXPECT_EQ(textOf(m_folder.path("source/inner/file")), "inner");
}

TEST_F(FileOperationsMoving, TheFinderMovesNamesThatScriptsCouldMisread) {
    for (std::string const& name : {std::string("\"q\" \\ %@ '"), std::string("a\nb"), std::string("\xff\x80"),
                                    std::string("\"\ntell me to quit\n\""), std::string(255, 'x')}) {
        m_folder.makeFile(name, "odd");
        EXPECT_EQ(fileSystemBytes(pxMoveToFolder_(at(name), at("target"))), m_folder.path("target/" + name));
        EXPECT_EQ(textOf(m_folder.path("target/" + name)), "odd");
    }
}

TEST_F(FileOperationsMoving, MovesWithoutTheFinderButReplacesNothing) {
    EXPECT_TRUE(pxMoveToFolder2_(at("file.txt"), at("target")));
    EXPECT_EQ(textOf(m_folder.path("target/file.txt")), "contents");
    m_folder.makeFile("file.txt", "another");
    EXPECT_FALSE(pxMoveToFolder2_(at("file.txt"), at("target")));
    EXPECT_EQ(textOf(m_folder.path("target/file.txt")), "contents");
    EXPECT_EQ(textOf(m_folder.path("file.txt")), "another");
    link("nowhere", "target/source");
    EXPECT_FALSE(pxMoveToFolder2_(at("source"), at("target"))) << "a link that leads nowhere has the name";
    EXPECT_TRUE(isThere(m_folder.path("source")));
    for (NSString const& none : {at("none"), NSString(""), NSString()}) {
        EXPECT_FALSE(pxMoveToFolder2_(none, at("target")));
        EXPECT_FALSE(pxMoveToFolder2_(at("source"), none));
    }
    EXPECT_FALSE(pxMoveToFolder2_(at("source"), at("file.txt")));
    EXPECT_FALSE(pxMoveToFolder2_(at("source"), at("source")));
    EXPECT_EQ(textOf(m_folder.path("source/inner/file")), "inner");
}

TEST_F(FileOperationsMoving, CopiesToAPathThatNamesTheCopy) {
    EXPECT_TRUE(pxCopyToPath_(at("source"), at("target/copy")) == nil);
    EXPECT_EQ(textOf(m_folder.path("target/copy/inner/file")), "inner");
    EXPECT_EQ(textOf(m_folder.path("source/inner/file")), "inner");
    EXPECT_EQ(text(pxCopyToPath_(at("file.txt"), at("target/copy"))),
              std::string("\"copy\": ") + std::strerror(EEXIST));
    EXPECT_EQ(textOf(m_folder.path("target/copy/inner/file")), "inner");
    EXPECT_EQ(text(pxCopyToPath_(at("none"), at("target/none"))), std::string("\"none\": ") + std::strerror(ENOENT));
    EXPECT_EQ(text(pxCopyToPath_(at("file.txt"), nil)), "Could not copy file item.");
    EXPECT_EQ(text(pxCopyToPath_("", at("target/none"))), "Could not copy file item.");
    EXPECT_FALSE(pxCopyToPath_(at("file.txt"), at("none/copy")) == nil);
    EXPECT_FALSE(pxCopyToPath_(at("file.txt"), at("target/.")) == nil);
    EXPECT_FALSE(pxCopyToPath_(at("source"), at("source/inner/copy")) == nil);
    EXPECT_EQ(namesIn(m_folder.path("source/inner")), Names{"file"});
    EXPECT_EQ(namesIn(m_folder.path("target")), Names{"copy"});
    EXPECT_TRUE(pxCopyToPath_(nil, at("target/none")) == nil);
}

TEST_F(FileOperationsMoving, AFailedCopyIsLogged) {
    testing::internal::CaptureStderr();
    pxCopyToPath_(at("none"), at("target/none"));
    std::string const log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("-[NSString(PXUtils) pxCopyToPath:] errorInfo: "), std::string::npos) << log;
    EXPECT_NE(log.find("ToPath"), std::string::npos) << log;
    testing::internal::CaptureStderr();
    pxCopyToPath_(at("file.txt"), at("target/copy"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "a copy that was made is not logged";
}

TEST_F(FileOperationsMoving, CopiesToAFolderOverWhatIsThere) {
    EXPECT_TRUE(pxCopyToFolder_(at("file.txt"), at("target")) == nil);
    m_folder.makeFile("target/source/old", "old");
    EXPECT_TRUE(pxCopyToFolder_(at("source"), at("target")) == nil);
    EXPECT_EQ(namesIn(m_folder.path("target")), (Names{"file.txt", "source"}));
    EXPECT_EQ(namesIn(m_folder.path("target/source")), Names{"inner"});
    EXPECT_EQ(textOf(m_folder.path("target/source/inner/file")), "inner");
    m_folder.makeFile("file.txt", "newer");
    EXPECT_TRUE(pxCopyToFolder_(at("file.txt"), at("target")) == nil);
    EXPECT_EQ(textOf(m_folder.path("target/file.txt")), "newer");
}

TEST_F(FileOperationsMoving, ACopyToAFolderTellsTheStatus) {
    EXPECT_EQ(text(pxCopyToFolder_(at("none"), at("target"))), "Copy: Error-code = -43");
    EXPECT_EQ(text(pxCopyToFolder_(at("file.txt"), at("none"))), "Copy: Error-code = -43");
    EXPECT_EQ(text(pxCopyToFolder_(at("source"), at("file.txt"))), "Copy: Error-code = -1407");
    EXPECT_EQ(text(pxCopyToFolder_(at("file.txt"), nil)), "Copy: Error-code = -50");
    EXPECT_EQ(text(pxCopyToFolder_(at("file.txt"), at(""))), "Copy: Error-code = -48") << "onto itself";
    EXPECT_EQ(text(pxCopyToFolder_(at("source"), at("source/inner"))), "Copy: Error-code = -122");
    EXPECT_EQ(textOf(m_folder.path("file.txt")), "contents");
    EXPECT_TRUE(pxCopyToFolder_(nil, at("target")) == nil);
    EXPECT_TRUE(namesIn(m_folder.path("target")).empty());
}

TEST_F(FileOperationsMoving, TakesTheNameOfAnotherItem) {
    m_folder.makeFile("target/an\xff other: \"%@", "");
    EXPECT_TRUE(pxRenameToNameOf_(at("file.txt"), at("target/an\xff other: \"%@")));
    EXPECT_EQ(textOf(m_folder.path("an\xff other: \"%@")), "contents");
    EXPECT_FALSE(isThere(m_folder.path("file.txt")));
    EXPECT_FALSE(pxRenameToNameOf_(at("source"), at("target")));
    EXPECT_TRUE(isThere(m_folder.path("source")));
    link("source", "target/link");
    EXPECT_TRUE(pxRenameToNameOf_(at("source"), at("target/link"))) << "of the link itself";
    EXPECT_EQ(textOf(m_folder.path("link/inner/file")), "inner");
    for (NSString const& none : {at("none"), NSString(""), NSString()}) {
        EXPECT_FALSE(pxRenameToNameOf_(at("target"), none));
        EXPECT_FALSE(pxRenameToNameOf_(none, at("target")));
    }
}

TEST_F(FileOperationsMoving, RenamesAndAbbreviatesTheHomeFolder) {
    EnvironmentVariable const home("HOME", m_folder.path());
    EXPECT_EQ(text(pxRenameTo_keepExtension_(at("file.txt"), "b", YES)), "~/b.txt");
    EXPECT_EQ(text(pxRenameTo_keepExtension_(at("b.txt"), "c", NO)), "~/c");
    EXPECT_EQ(text(pxRenameTo_keepExtension_("~/c", "d.e", NO)), "~/d.e");
    EXPECT_EQ(textOf(m_folder.path("d.e")), "contents");
    EXPECT_EQ(text(pxRenameTo_keepExtension_(at("source"), "s", YES)),
              text(NSString("~").stringByAppendingPathComponent_("s").stringByAppendingPathExtension_("")));
}

TEST_F(FileOperationsMoving, RenamesToNoNameThatIsTaken) {
    EXPECT_TRUE(pxRenameTo_keepExtension_(at("file.txt"), "target", NO) == nil);
    EXPECT_TRUE(pxRenameTo_keepExtension_(at("file.txt"), "file.txt", NO) == nil) << "which is its own";
    EXPECT_TRUE(pxRenameTo_keepExtension_(at("none"), "b", NO) == nil);
    EXPECT_TRUE(pxRenameTo_keepExtension_(at("file.txt"), "none/b", NO) == nil);
    EXPECT_TRUE(pxRenameTo_keepExtension_(at("file.txt"), nil, NO) == nil);
    EXPECT_TRUE(pxRenameTo_keepExtension_(nil, "b", NO) == nil);
    EXPECT_EQ(textOf(m_folder.path("file.txt")), "contents");
}

TEST_F(FileOperationsMoving, ChangesTheCaseByWayOfAFreeName) {
    // If the second of the two moves is blocked, the first is not undone.
    m_folder.makeFile("Readme.txt", "read");
    m_folder.makeFile("README.txt", "taken");
    m_folder.makeFile("README-1.txt", "taken");
    EXPECT_TRUE(pxRenameTo_keepExtension_(at("Readme.txt"), "README.txt", NO) == nil);
    EXPECT_EQ(textOf(m_folder.path("README-2.txt")), "read");
    EXPECT_FALSE(isThere(m_folder.path("Readme.txt")));
    EXPECT_EQ(textOf(m_folder.path("README.txt")), "taken");
    ASSERT_EQ(::unlink(m_folder.path("README.txt").c_str()), 0);
    ASSERT_EQ(::rename(m_folder.path("README-2.txt").c_str(), m_folder.path("readme.txt").c_str()), 0);
    EXPECT_EQ(fileSystemBytes(pxRenameTo_keepExtension_(at("readme.txt"), "README.txt", NO)),
              m_folder.path("README.txt"));
    EXPECT_EQ(textOf(m_folder.path("README.txt")), "read");
    EXPECT_FALSE(isThere(m_folder.path("readme.txt")));
}

TEST_F(FileOperationsMoving, ALockedItemIsNeitherMovedNorReplaced) {
    EXPECT_TRUE(pxPathSetNotWritable_locked_(at("file.txt"), NO, YES));
    EXPECT_FALSE(pxMoveToFolder2_(at("file.txt"), at("target")));
    EXPECT_TRUE(pxMoveToFolder_(at("file.txt"), at("target")) == nil);
    EXPECT_TRUE(pxRenameTo_keepExtension_(at("file.txt"), "b", NO) == nil);
    EXPECT_FALSE(pxRenameToNameOf_(at("file.txt"), at("source/inner")));
    m_folder.makeFile("source/file.txt", "newer");
    EXPECT_EQ(text(pxCopyToFolder_(at("source/file.txt"), at(""))), "Copy: Error-code = -45");
    EXPECT_EQ(textOf(m_folder.path("file.txt")), "contents");
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file.txt", "source", "target"}));
    EXPECT_TRUE(pxSetFileAttributesFrom_(at("file.txt"), at("source/inner/file")));
    EXPECT_TRUE(pxMoveToFolder2_(at("file.txt"), at("target")));
}

} // namespace

} // namespace mac::test
