#include "platform/files/TrashSteps.h"
#include "tests/platform/files/ItemTransfers.h"
#include <sys/xattr.h>
#include <utility>

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

TEST(ItemTransfer, ReplacesWhatHasTheNameWhichGoesToTheTrash) {
    TrashHome const home;
    TemporaryFolder const& folder = home.folder;
    folder.makeFile("a", "a");
    folder.makeFile("there/b/inner", "b");
    EXPECT_EQ(errorOf(copy, folder.path("a"), folder.path("there"), "b", NameClash::IsReplaced), 0);
    EXPECT_EQ(textOf(folder.path("there/b")), "a");
    EXPECT_EQ(textOf(home.files("b/inner")), "b");
    folder.makeFile("c", "c");
    EXPECT_EQ(errorOf(move, folder.path("c"), folder.path("there"), "b", NameClash::IsReplaced), 0);
    EXPECT_EQ(textOf(folder.path("there/b")), "c");
    EXPECT_EQ(trashedItems().size(), 2U);
    EXPECT_EQ(namesIn(folder.path("there")), (std::vector<std::string>{"b"}));
    EXPECT_EQ(errorOf(move, folder.path("there/b"), folder.path("there"), "b", NameClash::IsReplaced), 0);
    EXPECT_EQ(textOf(folder.path("there/b")), "c") << "it takes its own place";
}

TEST(ItemTransfer, DoesNotPutAFolderIntoItself) {
    TemporaryFolder const folder;
    makeTree(folder, "tree");
    EXPECT_EQ(errorOf(copy, folder.path("tree"), folder.path("tree/inner"), "copy"), EINVAL);
    EXPECT_EQ(errorOf(move, folder.path("tree"), folder.path("tree/inner"), "tree"), EINVAL);
    expectTree(folder.path("tree"));
}

TEST(ItemTransfer, DoesNotReplaceTheFolderThatHoldsTheItem) {
    TrashHome const home;
    TemporaryFolder const& folder = home.folder;
    folder.makeFile("a/a", "x");
    folder.makeFile("a/sibling", "y");
    EXPECT_EQ(errorOf(move, folder.path("a/a"), folder.path(), "a", NameClash::IsReplaced), EINVAL);
    EXPECT_EQ(errorOf(copy, folder.path("a/a"), folder.path(), "a", NameClash::IsReplaced), EINVAL);
    EXPECT_EQ(textOf(folder.path("a/a")), "x");
    EXPECT_EQ(textOf(folder.path("a/sibling")), "y");
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"a"}) << "no copy is left";
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

TEST(ItemTransfer, DoesNotPartAnItemFromItsAppleDoubleFile) {
    TemporaryFolder const folder;
    folder.makeFile("file", "x");
    folder.makeFile("._file", AppleDouble + "own");
    folder.makeFile("there/._file", AppleDouble + "stray");
    for (Transfer const transfer : {copy, move}) {
        for (NameClash const clash : {NameClash::IsRefused, NameClash::IsReplaced}) {
            EXPECT_EQ(errorOf(transfer, folder.path("file"), folder.path("there"), "file", clash), EEXIST);
            EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"._file", "file", "there"}));
            EXPECT_EQ(namesIn(folder.path("there")), std::vector<std::string>{"._file"});
            EXPECT_EQ(textOf(folder.path("there/._file")), AppleDouble + "stray");
        }
    }
    EXPECT_EQ(errorOf(copy, folder.path("file"), folder.path("there"), "copy"), 0);
    EXPECT_EQ(textOf(folder.path("there/._copy")), AppleDouble + "own");
    EXPECT_EQ(errorOf(move, folder.path("file"), folder.path("there"), "moved"), 0);
    EXPECT_EQ(textOf(folder.path("there/._moved")), AppleDouble + "own");
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"there"});
}

TEST(ItemTransfer, GivesNoItemTheAttributesOfAStrayAppleDoubleFile) {
    TrashHome const home;
    TemporaryFolder const& folder = home.folder;
    folder.makeFile("file", "x");
    folder.makeFile("there/._file", AppleDouble + "stray");
    for (Transfer const transfer : {copy, move}) {
        for (NameClash const clash : {NameClash::IsRefused, NameClash::IsReplaced}) {
            EXPECT_EQ(errorOf(transfer, folder.path("file"), folder.path("there"), "file", clash), EEXIST);
            EXPECT_EQ(textOf(folder.path("file")), "x");
            EXPECT_EQ(namesIn(folder.path("there")), std::vector<std::string>{"._file"});
        }
    }
    // It goes with the item that it belongs to.
    folder.makeFile("there/file", "old");
    EXPECT_EQ(errorOf(copy, folder.path("file"), folder.path("there"), "file", NameClash::IsReplaced), 0);
    EXPECT_EQ(namesIn(folder.path("there")), std::vector<std::string>{"file"});
    EXPECT_EQ(textOf(home.files("._file")), AppleDouble + "stray");
    // Somebody else's file gives no attributes.
    folder.makeFile("there/._other", "somebody else's");
    EXPECT_EQ(errorOf(copy, folder.path("file"), folder.path("there"), "other"), 0);
    EXPECT_EQ(errorOf(move, folder.path("there/other"), folder.path(), "moved"), 0);
    EXPECT_EQ(namesIn(folder.path("there")), (std::vector<std::string>{"._other", "file"}));
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

TEST(ItemTransfer, DoesNotTrashTheItemThatCannotGoBack) {
    TrashHome const home;
    TemporaryFolder const& folder = home.folder;
    std::string const file = folder.makeFile("file", "x");
    folder.makeFile("._file", AppleDouble + "own");
    folder.makeFile("there/._file", AppleDouble + "stray");
    for (NameClash const clash : {NameClash::IsReplaced, NameClash::IsRefused}) {
        bool isFirst = true;
        TrashStepListener const listener([&](TrashStep step) {
            if (step == TrashStep::Renamed && std::exchange(isFirst, false)) folder.makeFile("file", "another's");
            EXPECT_NE(step, TrashStep::InformationWritten) << "it is about to go to the trash";
        });
        EXPECT_EQ(errorOf(move, file, folder.path("there"), "file", clash), ESTALE);
        EXPECT_EQ(textOf(folder.path("there/file")), "x");
        EXPECT_EQ(textOf(folder.path("there/._file")), AppleDouble + "stray");
        EXPECT_EQ(textOf(file), "another's");
        EXPECT_TRUE(trashedItems().empty());
        ASSERT_EQ(::rename(folder.path("there/file").c_str(), file.c_str()), 0);
    }
}

TEST(ItemTransfer, LeavesNothingOfACopyThatIsGivenUp) {
    TemporaryFolder const folder;
    makeTree(folder, "tree");
    folder.makeFolder("there");
    for (int most = 0; most < 6; ++most) {
        int asked = 0;
        EXPECT_EQ(errorOf(copy, folder.path("tree"), folder.path("there"), "copy", NameClash::IsRefused,
                          [&] { return asked++ < most; }),
                  ECANCELED);
        EXPECT_EQ(namesIn(folder.path("there")), std::vector<std::string>());
    }
    expectTree(folder.path("tree"));
}

TEST(ItemTransfer, LeavesAnotherItemThatTookThePlaceAlone) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "old");
    std::optional<OpenItem> const item = openItemAtPath(file, false);
    ASSERT_TRUE(item);
    ASSERT_EQ(::rename(file.c_str(), folder.path("elsewhere").c_str()), 0);
    folder.makeFile("file", "new");
    EXPECT_FALSE(copyItem(*item, folderAt(folder.path()), "copy", NameClash::IsRefused, always));
    EXPECT_EQ(errno, ESTALE);
    EXPECT_EQ(moveItem(*item, folderAt(folder.path()), "copy", NameClash::IsRefused, always), ItemMove::NotDone);
    EXPECT_EQ(errno, ESTALE);
    EXPECT_EQ(textOf(file), "new");
}

} // namespace

} // namespace mac::test
