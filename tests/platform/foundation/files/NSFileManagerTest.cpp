#include "platform/foundation/files/NSFileManager.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

bool exists(std::string_view bytes) { return NSFileManager::defaultManager().fileExistsAtPath_(path(bytes)); }

TEST(NSFileManager, IsOne) { EXPECT_TRUE(isSame(NSFileManager::defaultManager(), NSFileManager::defaultManager())); }

TEST(NSFileManager, TellsFilesFromFolders) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    bool isDirectory = true;
    EXPECT_TRUE(NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(path(file), &isDirectory));
    EXPECT_FALSE(isDirectory);
    EXPECT_TRUE(NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(path(folder.path()), &isDirectory));
    EXPECT_TRUE(isDirectory);
    EXPECT_FALSE(
        NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(path(folder.path("none")), &isDirectory));
    EXPECT_FALSE(isDirectory);
    EXPECT_TRUE(NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(path(file), nullptr));
}

TEST(NSFileManager, FollowsLinks) {
    TemporaryFolder const folder;
    ASSERT_EQ(::symlink(folder.path().c_str(), folder.path("to").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", folder.path("lost").c_str()), 0);
    ASSERT_EQ(::symlink("loop", folder.path("loop").c_str()), 0);
    bool isDirectory = false;
    EXPECT_TRUE(NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(path(folder.path("to")), &isDirectory));
    EXPECT_TRUE(isDirectory);
    EXPECT_FALSE(exists(folder.path("lost")));
    EXPECT_FALSE(exists(folder.path("loop")));
}

TEST(NSFileManager, FindsNothingAtPathsThatAreNone) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    EXPECT_FALSE(exists(file + "/below"));
    EXPECT_FALSE(exists(""));
    EXPECT_FALSE(NSFileManager::defaultManager().fileExistsAtPath_(nil));
    EXPECT_FALSE(NSFileManager::defaultManager().fileExistsAtPath_(
        NSString::stringWithCodeUnits(u"/tmp" + std::u16string(1, u'\0') + u"x")));
    EXPECT_FALSE(NSFileManager(nil).fileExistsAtPath_(path("/")));
}

TEST(NSFileManager, FindsNamesThatAreNotUTF8) {
    TemporaryFolder const folder;
    EXPECT_TRUE(exists(folder.makeFile("n\xE9 \xFF", "")));
    EXPECT_FALSE(exists(folder.path("n\xC3\xA9 \xFF")));
}

TEST(NSFileManager, FindsWhatHasALongerPathThanTheSystemTakes) {
    LongFolder folder;
    folder.makeFile("file", "x");
    struct stat status {};
    ASSERT_NE(::stat(folder.path().c_str(), &status), 0);
    bool isDirectory = false;
    EXPECT_TRUE(NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(path(folder.path()), &isDirectory));
    EXPECT_TRUE(isDirectory);
    EXPECT_TRUE(exists(folder.path() + "/file"));
    EXPECT_TRUE(exists(folder.path() + "//"));
    EXPECT_FALSE(exists(folder.path() + "/none"));
    EXPECT_FALSE(exists(folder.path() + "/file/below"));
}

TEST(NSFileManager, TakesSlashesAndDotsOfAnyNumber) {
    EXPECT_TRUE(exists("/" + std::string(20000, '/')));
    std::string dots = "/tmp";
    for (int index = 0; index < 5000; ++index)
        dots += "/./";
    EXPECT_TRUE(exists(dots));
    EXPECT_TRUE(exists(dots + "../tmp"));
    EXPECT_FALSE(exists("/" + std::string(20000, 'x')));
}

} // namespace
} // namespace mac::test
