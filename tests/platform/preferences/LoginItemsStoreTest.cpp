#include "platform/preferences/LoginItemsStore.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/preferences/PreferenceHome.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include <cerrno>
#include <filesystem>
#include <map>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {

namespace {

using Files = std::map<std::string, std::string>;

// The login items of a user for whom the computer starts nothing else.
class LoginItemsStore : public PreferenceHome {
protected:
    LoginItemsStore() { read(); }

    static std::string entry(std::string const& command) {
        return "[Desktop Entry]\nType=Application\nName=Item\nExec=" + command + "\n";
    }
    void addEntry(std::string const& name, std::string const& text) const {
        m_folder.makeFile("config/autostart/" + name, text);
    }
    Files files() const {
        Files files;
        std::filesystem::path const folder = m_folder.path("config/autostart");
        if (!std::filesystem::exists(folder)) return files;
        for (auto const& file : std::filesystem::directory_iterator(folder))
            files[file.path().filename()] = contentsOf(file.path());
        return files;
    }

    static NSArray read() {
        synchronize("loginwindow");
        NSArray const items = as<NSArray>(valueIn("loginwindow", "AutoLaunchedApplicationDictionary"));
        return items == nil ? NSArray::array() : items;
    }
    static bool write(NSArray const& items) {
        setValueIn("loginwindow", "AutoLaunchedApplicationDictionary", items);
        return synchronize("loginwindow");
    }
    static NSDictionary item(NSString const& path) {
        return NSDictionary::dictionaryWithObjectsAndKeys_({NSNumber::numberWithBool_(NO), "Hide", path, "Path"});
    }

private:
    EnvironmentVariable const m_home{"HOME", m_folder.makeFolder("home")};
    EnvironmentVariable const m_desktop{"XDG_CURRENT_DESKTOP", ""};
};

NSArray list(std::initializer_list<id> items) { return NSArray::arrayWithObjects_(items); }

} // namespace

TEST_F(LoginItemsStore, ADictionaryIsReadBackAsItWasWritten) {
    NSDictionary const written = NSDictionary::dictionaryWithObjectsAndKeys_(
        {NSNumber::numberWithBool_(YES), "Hide", "~/Mirror Frame.app", "Path",
         NSData::dataWithBytes_length_("\0\xFF", 2), "AliasData",
         list({"a", NSNumber::numberWithInt_(2), NSDictionary::dictionary()}), "Other"});
    EXPECT_TRUE(write(list({written})));
    EXPECT_EQ(files().size(), 1u);
    EXPECT_TRUE(read().isEqual_(list({written})));
    EXPECT_FALSE(isSame(read().objectAtIndex_(0), read().objectAtIndex_(0)));
}

TEST_F(LoginItemsStore, WhatTheDesktopCannotStartStaysInTheFile) {
    NSArray const odd = list({"text", NSNumber::numberWithInt_(1), NSDictionary::dictionary(), item(""),
                              item("relative.app"), item("/no/such/program"), item("/etc/passwd")});
    addEntry("z.desktop", entry("/bin/true"));
    NSDictionary const bundle = item("/x/Mirror Frame.app");
    EXPECT_TRUE(write(read().arrayByAddingObjectsFromArray_(odd).arrayByAddingObject_(bundle)));
    EXPECT_EQ(files().size(), 2u);
    NSArray const all = read();
    ASSERT_EQ(all.count(), 9u);
    EXPECT_TRUE(all.subarrayWithRange_({1, 7}).isEqual_(odd));
    EXPECT_TRUE(all.lastObject().isEqual_(bundle));
    EXPECT_TRUE(write(all));
    EXPECT_TRUE(read().isEqual_(all));
}

TEST_F(LoginItemsStore, OwnItemsStayInTheOrderInWhichTheyWereWritten) {
    EXPECT_TRUE(write(list({item("/x/b.app"), item("/x/c.app")})));
    EXPECT_TRUE(write(read().arrayByAddingObject_(item("/x/a.app"))));
    EXPECT_TRUE(read().isEqual_(list({item("/x/b.app"), item("/x/c.app"), item("/x/a.app")})));
}

TEST_F(LoginItemsStore, WritingTheReadItemsChangesNoFile) {
    addEntry("a.desktop", entry("/bin/true --option"));
    EXPECT_TRUE(write(read().arrayByAddingObject_(item("/x/a.app"))));
    Files const before = files();
    EXPECT_TRUE(write(read()));
    EXPECT_TRUE(write(NSArray::arrayWithArray_(read())));
    EXPECT_EQ(files(), before);
}

TEST_F(LoginItemsStore, OfEqualEntriesTheOneLeftOutIsRemoved) {
    addEntry("a.desktop", entry("/bin/true first"));
    addEntry("b.desktop", entry("/bin/true second"));
    NSArray const both = read();
    ASSERT_TRUE(both.objectAtIndex_(0).isEqual_(both.objectAtIndex_(1)));
    EXPECT_TRUE(write(list({both.objectAtIndex_(1)})));
    EXPECT_EQ(files(), (Files{{"b.desktop", entry("/bin/true second")}}));
}

TEST_F(LoginItemsStore, AnEntryThatAppearedSinceTheReadIsKept) {
    addEntry("a.desktop", entry("/bin/true"));
    NSArray const before = read();
    addEntry("new.desktop", entry("/bin/false"));
    EXPECT_TRUE(write(NSArray::array()));
    EXPECT_EQ(files(), (Files{{"new.desktop", entry("/bin/false")}}));
    EXPECT_TRUE(write(before));
    EXPECT_EQ(files(), (Files{{"a.desktop", entry("/bin/true")}, {"new.desktop", entry("/bin/false")}}));
}

TEST_F(LoginItemsStore, ReplacingAnItemAndTakingThatBackLeavesTheVeryFiles) {
    addEntry("other.desktop", entry("/bin/false"));
    addEntry("mine.desktop", entry("\"/x/Mirror Frame.app/Contents/Linux/m\" --quiet"));
    Files const before = files();
    NSArray const all = read();
    EXPECT_TRUE(write(list({all.objectAtIndex_(1), item("/y/Mirror Frame.app")})));
    EXPECT_EQ(files().count("mine.desktop"), 0u);
    read();
    EXPECT_TRUE(write(all));
    EXPECT_EQ(files(), before);
}

TEST_F(LoginItemsStore, AnOwnEntryThatAnotherProgramPointedElsewhereIsReadAsItIs) {
    EXPECT_TRUE(write(list({item("/x/Mirror Frame.app")})));
    Files const written = files();
    addEntry(written.begin()->first, written.begin()->second + "Exec=/bin/true\n");
    NSDictionary const read = as<NSDictionary>(LoginItemsStore::read().objectAtIndex_(0));
    EXPECT_EQ(as<NSString>(read.objectForKey_("Path")).UTF8String(), "/bin/true");
}

TEST_F(LoginItemsStore, AChangeThatFailsHalfwayIsTakenBack) {
    addEntry("a.desktop", entry("/bin/one"));
    addEntry("b.desktop", entry("/bin/two"));
    read();
    addEntry("b.desktop", entry("/bin/three"));
    EXPECT_FALSE(write(list({item("/x/Mirror Frame.app")})));
    EXPECT_EQ(files(), (Files{{"a.desktop", entry("/bin/one")}, {"b.desktop", entry("/bin/three")}}));
}

// The disk takes no new file, so that the entry that was removed first cannot be put back at once.
TEST_F(LoginItemsStore, AnEntryThatCouldNotBePutBackIsNotForgotten) {
    addEntry("a.desktop", entry("/bin/one"));
    addEntry("b.desktop", entry("/bin/two"));
    NSArray const both = readLoginItems(NSArray::array()).items;
    addEntry("b.desktop", entry("/bin/three"));
    withRefusedCall(SYS_fsync, EIO, [] { EXPECT_FALSE(writeLoginItems(NSArray::array()).isDone()); });
    ASSERT_EQ(files(), (Files{{"b.desktop", entry("/bin/three")}}));
    EXPECT_TRUE(writeLoginItems(both).isDone());
    EXPECT_EQ(files(), (Files{{"a.desktop", entry("/bin/one")}, {"b.desktop", entry("/bin/three")}}));
}

// The desktop may be unable to start a program that cannot be looked at.
TEST_F(LoginItemsStore, AProgramThatCannotBeLookedAtIsNotWritten) {
    std::string const program = m_folder.makeFile("program", "");
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    NSArray const items = list({item(NSString::stringWithUTF8String_(program))});
    withRefusedCall(SYS_newfstatat, EIO, [&] { EXPECT_FALSE(writeLoginItems(items).isDone()); });
    EXPECT_EQ(files(), Files());
    EXPECT_TRUE(writeLoginItems(items).isDone());
    EXPECT_EQ(files().size(), 1U);
}

// In the list of preferences alone no desktop would start it.
TEST_F(LoginItemsStore, WhatWasStartedBeforeIsNotWrittenWithoutAnEntry) {
    std::string const program = m_folder.makeFile("program", "");
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    addEntry("a.desktop", entry(program));
    NSArray const items = read();
    ASSERT_EQ(items.count(), 1U);
    std::filesystem::remove(m_folder.path("config/autostart/a.desktop"));
    ASSERT_EQ(::chmod(program.c_str(), 0644), 0);
    ASSERT_EQ(read().count(), 0U);
    NativeWriting const refused = writeLoginItems(items);
    ASSERT_FALSE(refused.isDone());
    EXPECT_EQ(refused.problem->reason, program + ": It cannot be started any more");
    EXPECT_FALSE(write(items));
    EXPECT_EQ(read().count(), 0U);
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    EXPECT_TRUE(write(items));
    EXPECT_EQ(files().size(), 1U);
}

// Hiding an entry of the system takes a new file, which the disk refuses.
TEST_F(LoginItemsStore, WhatNeedsANewFileIsRemovedFirst) {
    addEntry("a.desktop", entry("/bin/one"));
    m_folder.makeFile("system/autostart/s.desktop", entry("/bin/true"));
    EnvironmentVariable const folders("XDG_CONFIG_DIRS", m_folder.path("system"));
    ASSERT_EQ(read().count(), 2U);
    withRefusedCall(SYS_fsync, EIO, [] { EXPECT_FALSE(write(NSArray::array())); });
    EXPECT_EQ(files(), (Files{{"a.desktop", entry("/bin/one")}}));
}

TEST_F(LoginItemsStore, AFolderThatMayNotBeWrittenIsTold) {
    addEntry("a.desktop", entry("/bin/true"));
    m_folder.makeFolder("config/framekeeper/Preferences");
    for (char const* const item : {"", "config", "config/framekeeper", "config/framekeeper/Preferences"})
        OrdinaryUser::own(m_folder.path(item));
    Files const before = files();
    std::string const folder = m_folder.path("config/autostart");
    ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
    {
        OrdinaryUser const user;
        EXPECT_EQ(read().count(), 1u);
        EXPECT_FALSE(write(NSArray::array()));
        NativeWriting const written = writeLoginItems(read().arrayByAddingObject_(item("/x/Mirror Frame.app")));
        ASSERT_FALSE(written.isDone());
        EXPECT_NE(written.problem->reason.find(folder + ": "), std::string::npos) << written.problem->reason;
        EXPECT_EQ(read().count(), 1u);
    }
    ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
    EXPECT_EQ(files(), before);
}

TEST_F(LoginItemsStore, OnlyWhatThisProgramWroteIsItsOwn) {
    addEntry("a.desktop", entry("/bin/true"));
    EXPECT_TRUE(write(read().arrayByAddingObject_(item("/x/a.app"))));
    NSArray const all = read();
    EXPECT_FALSE(isOwnLoginItem(all.objectAtIndex_(0)));
    EXPECT_TRUE(isOwnLoginItem(all.objectAtIndex_(1)));
    EXPECT_FALSE(isOwnLoginItem(nil));
}

} // namespace mac::test
