#include "platform/foundation/DesktopFolders.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <fstream>
#include <gtest/gtest.h>

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

} // namespace
} // namespace mac::test
