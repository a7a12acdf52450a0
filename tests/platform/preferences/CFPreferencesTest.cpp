#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/preferences/PreferenceHome.h"
#include "tests/support/Commands.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {

using CFPreferencesTest = PreferenceHome;

namespace {

constexpr char Dictionary[] = "<plist><dict><key>kept</key><string>as it was</string></dict></plist>";

} // namespace

TEST_F(CFPreferencesTest, WhatWasSetIsReadBackAtOnceAndAfterSynchronising) {
    setValueIn("a.b", "number", NSNumber::numberWithInt_(7));
    EXPECT_TRUE(valueIn("a.b", "number").isEqual_(NSNumber::numberWithInt_(7)));
    EXPECT_NE(::access(file("a.b").c_str(), F_OK), 0);
    EXPECT_TRUE(synchronize("a.b"));
    EXPECT_TRUE(valueIn("a.b", "number").isEqual_(NSNumber::numberWithInt_(7)));
    EXPECT_NE(contentsOf(file("a.b")).find("<integer>7</integer>"), std::string::npos);
}

TEST_F(CFPreferencesTest, NilRemovesAValueAndLeavesTheOthers) {
    makeFile("remove",
             "<plist><dict><key>one</key><integer>1</integer><key>two</key><integer>2</integer></dict></plist>");
    setValueIn("remove", "one", nil);
    EXPECT_TRUE(valueIn("remove", "one") == nil);
    EXPECT_TRUE(synchronize("remove"));
    EXPECT_TRUE(valueIn("remove", "one") == nil);
    EXPECT_TRUE(valueIn("remove", "two").isEqual_(NSNumber::numberWithInt_(2)));
}

TEST_F(CFPreferencesTest, WhatAnotherProgramWroteIsSeenAfterSynchronising) {
    EXPECT_TRUE(synchronize("other"));
    EXPECT_TRUE(valueIn("other", "kept") == nil);
    makeFile("other", Dictionary);
    EXPECT_TRUE(valueIn("other", "kept") == nil);
    EXPECT_TRUE(synchronize("other"));
    EXPECT_TRUE(valueIn("other", "kept").isEqual_("as it was"));
}

TEST_F(CFPreferencesTest, WhatAnotherProgramWroteIsKeptByTheNextWriting) {
    setValueIn("both", "mine", "1");
    makeFile("both", Dictionary);
    EXPECT_TRUE(synchronize("both"));
    EXPECT_TRUE(valueIn("both", "kept").isEqual_("as it was"));
    EXPECT_TRUE(valueIn("both", "mine").isEqual_("1"));
}

TEST_F(CFPreferencesTest, DomainsUsersAndHostsAreApart) {
    setValueIn("one", "key", "one");
    setValueIn("two", "key", "two");
    CFPreferencesSetValue("key", "here", "one", kCFPreferencesCurrentUser, kCFPreferencesCurrentHost);
    CFPreferencesSetValue("key", "all", "one", kCFPreferencesAnyUser, kCFPreferencesAnyHost);
    EXPECT_TRUE(synchronize("one"));
    EXPECT_TRUE(synchronize("two"));
    EXPECT_TRUE(CFPreferencesSynchronize("one", kCFPreferencesCurrentUser, kCFPreferencesCurrentHost));
    EXPECT_TRUE(CFPreferencesSynchronize("one", kCFPreferencesAnyUser, kCFPreferencesAnyHost));
    EXPECT_TRUE(valueIn("one", "key").isEqual_("one"));
    EXPECT_TRUE(valueIn("two", "key").isEqual_("two"));
    EXPECT_TRUE(
        CFPreferencesCopyValue("key", "one", kCFPreferencesCurrentUser, kCFPreferencesCurrentHost).isEqual_("here"));
    EXPECT_TRUE(CFPreferencesCopyValue("key", "one", kCFPreferencesAnyUser, kCFPreferencesAnyHost).isEqual_("all"));
    EXPECT_EQ(::access(m_folder.path("system/framekeeper/Preferences/one.plist").c_str(), F_OK), 0);
}

TEST_F(CFPreferencesTest, WhatIsNoDomainHasNoValuesAndDoesNotSynchronise) {
    for (NSString const& domain : {NSString(), NSString(""), NSString("../one"), NSString("a/b")}) {
        setValueIn(domain, "key", "value");
        EXPECT_TRUE(valueIn(domain, "key") == nil);
        EXPECT_FALSE(synchronize(domain));
    }
    EXPECT_FALSE(CFPreferencesSynchronize("one", "root", kCFPreferencesAnyHost));
    EXPECT_FALSE(CFPreferencesSynchronize("one", kCFPreferencesCurrentUser, nil));
    EXPECT_TRUE(valueIn("one", nil) == nil);
}

TEST_F(CFPreferencesTest, TextThatXMLCannotCarryIsWrittenAllTheSame) {
    NSString const name = NSString::stringWithFileSystemRepresentation_("a\xFF\x01");
    setValueIn("bytes", "path", name);
    EXPECT_TRUE(synchronize("bytes"));
    EXPECT_TRUE(valueIn("bytes", "path").isEqual_(name));
}

TEST_F(CFPreferencesTest, AValueThatIsNoPropertyListIsNotWritten) {
    setValueIn("object", "key", NSArray::arrayWithObject_(id(NSArray::array().objectEnumerator())));
    EXPECT_FALSE(synchronize("object"));
    EXPECT_TRUE(valueIn("object", "key") == nil);
    EXPECT_NE(::access(file("object").c_str(), F_OK), 0);
}

// Contents of a file that is no dictionary.
class DamagedPreferences : public PreferenceHome, public testing::WithParamInterface<char const*> {};

TEST_P(DamagedPreferences, IsToldAndStaysAsItIs) {
    makeFile("damaged", GetParam());
    EXPECT_FALSE(synchronize("damaged"));
    EXPECT_TRUE(valueIn("damaged", "key") == nil);
    setValueIn("damaged", "key", "value");
    EXPECT_FALSE(synchronize("damaged"));
    EXPECT_TRUE(valueIn("damaged", "key") == nil);
    EXPECT_EQ(contentsOf(file("damaged")), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Contents, DamagedPreferences,
                         testing::Values("", "<plist><dict><key>cut", "<plist><array/></plist>", "bplist00\xFF\xFF"));

TEST_F(CFPreferencesTest, APipeOrFolderInPlaceOfTheFileIsToldAndStays) {
    makeFile("neighbour", Dictionary);
    ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
    ASSERT_EQ(::mkdir(file("folder").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("loop.plist", file("loop").c_str()), 0);
    for (NSString const& domain : {NSString("pipe"), NSString("folder"), NSString("loop")}) {
        EXPECT_FALSE(synchronize(domain)) << domain.UTF8String();
        setValueIn(domain, "key", "value");
        EXPECT_FALSE(synchronize(domain)) << domain.UTF8String();
    }
}

TEST_F(CFPreferencesTest, AFileTooLargeIsToldAndStays) {
    makeFile("large", "");
    ASSERT_EQ(::truncate(file("large").c_str(), off_t{1} << 30), 0);
    EXPECT_FALSE(synchronize("large"));
    setValueIn("large", "key", "value");
    EXPECT_FALSE(synchronize("large"));
    struct stat status {};
    ASSERT_EQ(::stat(file("large").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, off_t{1} << 30);
}

TEST_F(CFPreferencesTest, AFolderThatMayNotBeWrittenIsTold) {
    makeFile("closed", Dictionary);
    std::string const folder = m_folder.path("config/framekeeper/Preferences");
    for (std::string const& item :
         {m_folder.path(), m_folder.path("config"), m_folder.path("config/framekeeper"), folder, file("closed")})
        OrdinaryUser::own(item);
    ASSERT_EQ(::chmod(folder.c_str(), 0500), 0);
    {
        OrdinaryUser const user;
        EXPECT_TRUE(synchronize("closed"));
        setValueIn("closed", "key", "value");
        EXPECT_FALSE(synchronize("closed"));
        EXPECT_TRUE(valueIn("closed", "kept").isEqual_("as it was"));
        EXPECT_TRUE(valueIn("closed", "key") == nil);
    }
    ASSERT_EQ(::chmod(folder.c_str(), 0700), 0);
}

TEST_F(CFPreferencesTest, AWritingThatTheDiskRefusesLeavesTheOldFileAlone) {
    makeFile("full", Dictionary);
    withRefusedCall(SYS_fsync, EIO, [] {
        setValueIn("full", "key", "value");
        EXPECT_FALSE(synchronize("full"));
    });
    EXPECT_EQ(contentsOf(file("full")), Dictionary);
}

TEST_F(CFPreferencesTest, TheFileBehindASymbolicLinkIsReplaced) {
    m_folder.makeFile("dotfiles/linked.plist", Dictionary);
    makeFile("neighbour", Dictionary);
    ASSERT_EQ(::symlink(m_folder.path("dotfiles/linked.plist").c_str(), file("linked").c_str()), 0);
    setValueIn("linked", "key", "value");
    EXPECT_TRUE(synchronize("linked"));
    EXPECT_NE(contentsOf(m_folder.path("dotfiles/linked.plist")).find("value"), std::string::npos);
    struct stat status {};
    ASSERT_EQ(::lstat(file("linked").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

} // namespace mac::test
