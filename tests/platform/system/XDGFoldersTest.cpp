#include "platform/system/XDGFolders.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

std::string folderIn(std::string_view list) {
    return folderInList(list, "XDG_MUSIC_DIR", "/home/ann").value_or("(none)");
}

TEST(DesktopFolders, AListNamesFoldersInTheHomeAndElsewhere) {
    EXPECT_EQ(folderIn("# comment\nXDG_MUSIC_DIR=\"$HOME/My Music\"\n"), "/home/ann/My Music");
    EXPECT_EQ(folderIn("  XDG_MUSIC_DIR = \"/srv/music\""), "/srv/music");
    EXPECT_EQ(folderIn("XDG_MUSIC_DIR=\"$HOME\""), "/home/ann");
    EXPECT_EQ(folderIn("XDG_MUSIC_DIR=\"/a\"\nXDG_MUSIC_DIR=\"/b\"\n"), "/b");
    EXPECT_EQ(folderIn("XDG_MUSIC_DIR=\"/a\\\"b\\\\c\""), "/a\"b\\c");
    EXPECT_EQ(folderIn("XDG_MUSIC_DIR=\"/a\xE9\""), "/a\xE9");
}

TEST(DesktopFolders, WhatIsNotInOrderNamesNone) {
    for (std::string_view const list :
         {std::string_view(""), std::string_view("\n\n"), std::string_view("XDG_MUSIC_DIR"),
          std::string_view("XDG_MUSIC_DIR="), std::string_view("XDG_MUSIC_DIR=/a"),
          std::string_view("XDG_MUSIC_DIR=\"/a"), std::string_view("XDG_MUSIC_DIR=\"/a\\"),
          std::string_view("XDG_MUSIC_DIR=\"Music\""), std::string_view("XDG_MUSIC_DIR=\"$HOMEWARD\""),
          std::string_view("#XDG_MUSIC_DIR=\"/a\""), std::string_view("XDG_MUSIC_DIRS=\"/a\""),
          std::string_view("XDG_MUSIC_DIR=\"/a\0b\"", 20)})
        EXPECT_EQ(folderIn(list), "(none)") << list;
}

TEST(DesktopFolders, TheEnvironmentComesBeforeTheUsersList) {
    TemporaryFolder const folder;
    EnvironmentVariable const configuration("XDG_CONFIG_HOME", folder.path());
    EnvironmentVariable const home("HOME", "/home/ann");
    EXPECT_FALSE(desktopFolder("XDG_MUSIC_DIR"));
    std::ofstream(folder.path() + "/user-dirs.dirs") << "XDG_MUSIC_DIR=\"$HOME/Songs\"\n";
    EXPECT_EQ(desktopFolder("XDG_MUSIC_DIR"), "/home/ann/Songs");
    EnvironmentVariable const relative("XDG_MUSIC_DIR", "relative");
    EXPECT_EQ(desktopFolder("XDG_MUSIC_DIR"), "/home/ann/Songs");
    EnvironmentVariable const set("XDG_MUSIC_DIR", "/srv/music");
    EXPECT_EQ(desktopFolder("XDG_MUSIC_DIR"), "/srv/music");
}

TEST(DesktopFolders, WhatIsNoListOfReasonableLengthNamesNone) {
    TemporaryFolder const folder;
    EnvironmentVariable const configuration("XDG_CONFIG_HOME", folder.path());
    std::string const list = folder.path("user-dirs.dirs");
    std::ofstream(list) << "XDG_MUSIC_DIR=\"/srv/music\"\n#" << std::string(std::size_t{1} << 20, ' ') << "\n";
    EXPECT_FALSE(desktopFolder("XDG_MUSIC_DIR"));
    ASSERT_EQ(::unlink(list.c_str()), 0);
    // A pipe without writer: opening it would block for ever.
    ASSERT_EQ(::mkfifo(list.c_str(), 0600), 0);
    EXPECT_FALSE(desktopFolder("XDG_MUSIC_DIR"));
}

TEST(DesktopFolders, TheHomeIsTheUsersWhereTheVariableIsNone) {
    TemporaryFolder const folder;
    EnvironmentVariable const configuration("XDG_CONFIG_HOME", folder.path());
    std::ofstream(folder.path() + "/user-dirs.dirs") << "XDG_MUSIC_DIR=\"$HOME/Songs\"\n";
    for (std::optional<std::string> const& value : {std::optional<std::string>(), {""}, {"relative/home"}}) {
        EnvironmentVariable const home("HOME", value);
        std::string const own = NSHomeDirectory().fileSystemRepresentation().value();
        EXPECT_EQ(desktopFolder("XDG_MUSIC_DIR"), own + "/Songs");
    }
}

TEST(DesktopFolders, ARootThatIsTheHomeIsOneSlash) {
    EXPECT_EQ(folderInList("XDG_MUSIC_DIR=\"$HOME/Songs\"", "XDG_MUSIC_DIR", "/"), "/Songs");
    EXPECT_EQ(folderInList("XDG_MUSIC_DIR=\"$HOME\"", "XDG_MUSIC_DIR", "/"), "/");
}

TEST(DesktopFolders, SettingsAndDataLieInTheHomeOrWhereTheEnvironmentSays) {
    EnvironmentVariable const home("HOME", "/home/ann/");
    for (std::optional<std::string> const& value : {std::optional<std::string>(), {""}, {"relative"}}) {
        EnvironmentVariable const configuration("XDG_CONFIG_HOME", value);
        EnvironmentVariable const data("XDG_DATA_HOME", value);
        EXPECT_EQ(configHome(), "/home/ann/.config");
        EXPECT_EQ(dataHome(), "/home/ann/.local/share");
    }
    EnvironmentVariable const configuration("XDG_CONFIG_HOME", "/srv/settings");
    EnvironmentVariable const data("XDG_DATA_HOME", "/srv/data");
    EXPECT_EQ(configHome(), "/srv/settings");
    EXPECT_EQ(dataHome(), "/srv/data");
}

TEST(DesktopFolders, SettingsAndDataOfOneWithoutAHomeLieInTheUserDatabases) {
    EnvironmentVariable const configuration("XDG_CONFIG_HOME", std::nullopt);
    EnvironmentVariable const data("XDG_DATA_HOME", std::nullopt);
    EnvironmentVariable const home("HOME", std::nullopt);
    std::string const own = NSHomeDirectory().fileSystemRepresentation().value();
    EXPECT_EQ(configHome(), (own == "/" ? "" : own) + "/.config");
    EXPECT_EQ(dataHome(), (own == "/" ? "" : own) + "/.local/share");
}

TEST(DesktopFolders, ARootThatIsTheHomeHoldsSettingsAndData) {
    EnvironmentVariable const configuration("XDG_CONFIG_HOME", std::nullopt);
    EnvironmentVariable const data("XDG_DATA_HOME", std::nullopt);
    EnvironmentVariable const home("HOME", "/");
    EXPECT_EQ(configHome(), "/.config");
    EXPECT_EQ(dataHome(), "/.local/share");
}

TEST(DesktopFolders, AreListedBetweenColons) {
    using Parts = std::vector<std::string>;
    EnvironmentVariable const unset("LISTED", std::nullopt);
    EXPECT_EQ(listInEnvironment("LISTED", "/a:/b"), (Parts{"/a", "/b"}));
    EnvironmentVariable const empty("LISTED", "");
    EXPECT_EQ(listInEnvironment("LISTED", "/a:/b"), (Parts{"/a", "/b"}));
    EXPECT_EQ(listInEnvironment("LISTED", ""), Parts());
    EnvironmentVariable const set("LISTED", ":/c d::e:");
    EXPECT_EQ(listInEnvironment("LISTED", "/a"), (Parts{"/c d", "e"}));
    EnvironmentVariable const colons("LISTED", "::");
    EXPECT_EQ(listInEnvironment("LISTED", "/a"), Parts());
}

} // namespace
} // namespace mac::test
