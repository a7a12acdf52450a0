#include "platform/files/trash/TrashInformation.h"
#include "tests/support/Environment.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

std::string pathIn(std::string_view text) {
    std::optional<TrashInformation> const information = TrashInformation::read(text);
    return information ? information->path : "-";
}

TEST(TrashInformation, IsWrittenAsItIsRead) {
    TrashInformation const information{"/a b/\xC3\xA9\xFF%\n=;#", "2026-02-28T23:59:59"};
    EXPECT_EQ(information.text(), "[Trash Info]\nPath=/a%20b/%C3%A9%FF%25%0A%3D%3B%23\n"
                                  "DeletionDate=2026-02-28T23:59:59\n");
    EXPECT_EQ(TrashInformation::read(information.text()), information);
    EXPECT_EQ((TrashInformation{"a", ""}).text(), "[Trash Info]\nPath=a\n");
}

TEST(TrashInformation, IsReadAsOthersWriteIt) {
    EXPECT_EQ(pathIn("[Trash Info]\r\nDeletionDate=20010203\r\nPath=/a\r\n"), "/a");
    EXPECT_EQ(pathIn("# a remark\n\n[Trash Info]\nOther=x\nPath=caf\xC3\xA9"), "caf\xC3\xA9");
    EXPECT_EQ(pathIn("[Trash Info]\nPath=/a%2fb/\nPath=/second\n"), "/a/b");
    EXPECT_EQ(pathIn("[Trash Info]\nPath=/%e9\n"), "/\xE9");
    EXPECT_EQ(TrashInformation::read("[Trash Info]\nPath=/a\nDeletionDate=now\n")->date, "");
}

TEST(TrashInformation, IsNoneWithoutAPathThatCanBeUsed) {
    for (std::string_view const text :
         {"", "Path=/a\n", "[Trash Info]\n", "[Trash Info]\nPath=\n", "[Trash Info]\nPath=/\n",
          "[Trash Info]\nPath=/a/..\n", "[Trash Info]\nPath=/a/../b\n", "[Trash Info]\nPath=..\n",
          "[Trash Info]\nPath=/a/.\n", "[Trash Info]\nPath=/a%\n", "[Trash Info]\nPath=/a%4\n",
          "[Trash Info]\nPath=/a%zz\n", "[Trash Info]\nPath=/a%00b\n", "[Trash Info]\n[Other]\nPath=/a\n",
          "[Trash Info]\nPath=/a%-1\n", "[Trash Info]\npath=/a\n"})
        EXPECT_EQ(pathIn(text), "-") << text;
}

TEST(TrashInformation, TellsTimesOnTheWall) {
    EnvironmentVariable const zone("TZ", "Europe/Berlin");
    ::tzset();
    EXPECT_EQ(localTimeText(1782900000), "2026-07-01T12:00:00");
    EXPECT_EQ(secondsOfLocalTimeText("2026-07-01T12:00:00"), 1782900000);
    EXPECT_EQ(secondsOfLocalTimeText("2026-02-30T12:00:00"), std::nullopt);
    EXPECT_EQ(secondsOfLocalTimeText("2026-13-01T12:00:00"), std::nullopt);
    EXPECT_EQ(secondsOfLocalTimeText("2026-07-01 12:00:00"), std::nullopt);
    EXPECT_EQ(secondsOfLocalTimeText(""), std::nullopt);
    EXPECT_EQ(localTimeText(std::int64_t{1} << 60), "");
}

TEST(DirectorySize, IsReadLineByLine) {
    std::vector<DirectorySize> const sizes =
        DirectorySize::read("16384 15803468 My%20Documents\n-1 2 a\n1 2\n1  2 b\nx\n5 6 %ff\n7 8 a/b\n9 10 c d\n");
    EXPECT_EQ(sizes, (std::vector<DirectorySize>{{16384, 15803468, "My Documents"}, {5, 6, "\xFF"}, {9, 10, "c d"}}));
    EXPECT_EQ(DirectorySize::text(sizes), "16384 15803468 My%20Documents\n5 6 %FF\n9 10 c%20d\n");
}

std::string secondName(std::string_view name, std::size_t longest = 245) {
    return TrashNames(name, "14-05-22", longest).name(1);
}

TEST(TrashNames, HaveTheTimeOfDayBeforeTheExtension) {
    TrashNames const names("a.b.txt", "14-05-22", 245);
    EXPECT_EQ(names.name(0), "a.b.txt");
    EXPECT_EQ(names.name(1), "a.b 14-05-22.txt");
    EXPECT_EQ(names.name(2), "a.b 14-05-22 2.txt");
    EXPECT_EQ(secondName("Mirror Frame.app"), "Mirror Frame 14-05-22.app");
    EXPECT_EQ(secondName("none"), "none 14-05-22");
    EXPECT_EQ(secondName(".hidden"), ".hidden 14-05-22");
    EXPECT_EQ(secondName("Notes v1.2"), "Notes v1.2 14-05-22");
    EXPECT_EQ(secondName("Dr. No"), "Dr. No 14-05-22");
    EXPECT_EQ(secondName("a."), "a. 14-05-22");
}

TEST(TrashNames, LoseWholeCharactersWhenTheyAreTooLong) {
    EXPECT_EQ(secondName("aaaaaaaaaaaaaaaaaaaa.txt", 20), "aaaaaaa 14-05-22.txt");
    EXPECT_EQ(TrashNames("aa\xC3\xA9.txt", "", 7).name(0), "aa.txt");
    EXPECT_EQ(TrashNames("aa\xC3\xA9.txt", "", 8).name(0), "aa\xC3\xA9.txt");
    EXPECT_EQ(TrashNames("a\xF0\x9F\x98\x80", "", 4).name(0), "a");
    EXPECT_EQ(TrashNames("\x80\x80\x80\x80\x80\x80\x80\x80", "", 6).name(0), "\x80\x80\x80\x80\x80\x80");
}

} // namespace
} // namespace mac::test
