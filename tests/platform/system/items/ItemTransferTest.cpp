#include "tests/platform/system/items/ItemTransfers.h"
#include <sys/xattr.h>

namespace mac::test {

namespace {

TEST(ItemTransfer, CopiesAFolderWithAllThatIsInIt) {
    TemporaryFolder const folder;
    makeTree(folder, "tree");
    folder.makeFolder("there");
    EXPECT_EQ(errorOf(copy, folder.path("tree"), folder.path("there"), "copy"), 0);
    expectTree(folder.path("there/copy"));
    expectTree(folder.path("tree"));
    EXPECT_EQ(namesIn(folder.path("there")), (std::vector<std::string>{"copy"}));
}

TEST(ItemTransfer, CopiesAttributes) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "x");
    if (::setxattr(file.c_str(), "user.colour", "blue", 4, 0) != 0) GTEST_SKIP() << "no attributes on this volume";
    EXPECT_EQ(errorOf(copy, file, folder.path(), "copy"), 0);
    std::array<char, 8> value{};
    EXPECT_EQ(::getxattr(folder.path("copy").c_str(), "user.colour", value.data(), value.size()), 4);
    EXPECT_STREQ(value.data(), "blue");
}

TEST(ItemTransfer, KeepsTheHolesOfAFile) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "begin");
    constexpr off_t size = off_t{1} << 30U;
    ASSERT_EQ(::truncate(file.c_str(), size), 0);
    EXPECT_EQ(errorOf(copy, file, folder.path(), "copy"), 0);
    struct stat const copied = statusOf(folder.path("copy"));
    EXPECT_EQ(copied.st_size, size);
    EXPECT_LT(copied.st_blocks, 1000);
}

TEST(ItemTransfer, KeepsTheSeveralNamesOfAFileInAFolder) {
    TemporaryFolder const folder;
    folder.makeFile("tree/a", "x");
    folder.makeFolder("tree/inner");
    ASSERT_EQ(::link(folder.path("tree/a").c_str(), folder.path("tree/inner/b").c_str()), 0);
    ASSERT_EQ(::link(folder.path("tree/a").c_str(), folder.path("outside").c_str()), 0);
    ASSERT_EQ(::mkfifo(folder.path("tree/pipe").c_str(), 0600), 0);
    ASSERT_EQ(::link(folder.path("tree/pipe").c_str(), folder.path("tree/inner/pipe").c_str()), 0);
    EXPECT_EQ(errorOf(copy, folder.path("tree"), folder.path(), "copy"), 0);
    EXPECT_EQ(statusOf(folder.path("copy/a")).st_ino, statusOf(folder.path("copy/inner/b")).st_ino);
    EXPECT_EQ(statusOf(folder.path("copy/a")).st_nlink, 2U) << "the name outside is none of the copy";
    EXPECT_EQ(textOf(folder.path("copy/inner/b")), "x");
    EXPECT_EQ(statusOf(folder.path("copy/pipe")).st_ino, statusOf(folder.path("copy/inner/pipe")).st_ino);
    EXPECT_EQ(statusOf(folder.path("outside")).st_nlink, 3U) << "the original is as it was";
}

TEST(ItemTransfer, RefusesANameThatIsTaken) {
    TemporaryFolder const folder;
    folder.makeFile("a", "a");
    folder.makeFile("b", "b");
    EXPECT_EQ(errorOf(copy, folder.path("a"), folder.path(), "b"), EEXIST);
    EXPECT_EQ(errorOf(move, folder.path("a"), folder.path(), "b"), EEXIST);
    EXPECT_EQ(textOf(folder.path("a")), "a");
    EXPECT_EQ(textOf(folder.path("b")), "b");
    EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"a", "b"}));
}

TEST(ItemTransfer, DoesNotPutAFolderIntoItself) {
    TemporaryFolder const folder;
    makeTree(folder, "tree");
    EXPECT_EQ(errorOf(copy, folder.path("tree"), folder.path("tree/inner"), "copy"), EINVAL);
    EXPECT_EQ(errorOf(move, folder.path("tree"), folder.path("tree/inner"), "tree"), EINVAL);
    expectTree(folder.path("tree"));
}

TEST(ItemTransfer, CopiesWhatAVolumeTellsNoSizeOf) {
    TemporaryFolder const folder;
    ASSERT_EQ(statusOf("/proc/version").st_size, 0);
    EXPECT_EQ(errorOf(copy, "/proc/version", folder.path(), "copy"), 0);
    EXPECT_FALSE(textOf("/proc/version").empty());
    EXPECT_EQ(textOf(folder.path("copy")), textOf("/proc/version"));
}

TEST(ItemTransfer, CopiesNoMoreThanThereIsWhereAVolumeTellsTooLargeASize) {
    std::string const file = "/sys/devices/system/cpu/online";
    if (!isThere(file)) GTEST_SKIP() << "the system does not show its processors";
    TemporaryFolder const folder;
    ASSERT_GT(statusOf(file).st_size, static_cast<off_t>(textOf(file).size()));
    EXPECT_EQ(errorOf(copy, file, folder.path(), "copy"), 0);
    EXPECT_EQ(textOf(folder.path("copy")), textOf(file));
}

TEST(ItemTransfer, GivesAnAppleDoubleFileTheNameItIsFor) {
    TemporaryFolder const folder;
    folder.makeFile("._file", AppleDouble);
    EXPECT_EQ(errorOf(move, folder.path("._file"), folder.path(), "file"), 0);
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"file"});
    folder.makeFile("._other", AppleDouble);
    EXPECT_EQ(errorOf(move, folder.path("file"), folder.path(), "other"), EEXIST)
        << "of another item it is a stray one";
}

TEST(ItemTransfer, LeavesNothingOfACopyThatIsGivenUp) {
    TemporaryFolder const folder;
    makeTree(folder, "tree");
    folder.makeFolder("there");
    for (int most = 0; most < 6; ++most) {
        int asked = 0;
        EXPECT_EQ(errorOf(copy, folder.path("tree"), folder.path("there"), "copy", [&] { return asked++ < most; }),
                  ECANCELED);
        EXPECT_EQ(namesIn(folder.path("there")), std::vector<std::string>());
    }
    expectTree(folder.path("tree"));
}

TEST(ItemTransfer, LeavesAnotherItemThatTookThePlaceAlone) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "old");
    Result<OpenItem> const item = openItemAtPath(file, LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(item.hasValue());
    ASSERT_EQ(::rename(file.c_str(), folder.path("elsewhere").c_str()), 0);
    folder.makeFile("file", "new");
    for (Transfer const transfer : {copy, move}) {
        FileDescriptor const target = folderAt(folder.path());
        Result<void, TransferProblem> const done = transfer({.item = item.value(), .folder = target, .name = "copy"});
        ASSERT_FALSE(done.isDone());
        EXPECT_EQ(done.problem().kind, TransferProblem::Kind::NotDone);
        EXPECT_EQ(done.problem().error.code, ESTALE);
        EXPECT_EQ(done.problem().error.item, "file");
    }
    EXPECT_EQ(textOf(file), "new");
}

} // namespace

} // namespace mac::test
