#include "platform/files/ItemTransfer.h"
#include "platform/files/ItemReferences.h"
#include "platform/files/TrashSteps.h"
#include "tests/files/Attributes.h"
#include "tests/files/TrashHome.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/Refusals.h"
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <utility>

namespace mac::test {

namespace {

TransferGoesOn const always = [] { return true; };
std::string const AppleDouble("\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x00", 26);

FileDescriptor folderAt(std::string const& path) {
    return FileDescriptor(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

using Transfer = bool (*)(OpenItem const&, FileDescriptor const&, std::string const&, NameClash, TransferGoesOn const&);
constexpr Transfer copy = copyItem;
constexpr Transfer move = [](OpenItem const& item, FileDescriptor const& folder, std::string const& name,
                             NameClash clash, TransferGoesOn const& goesOn) {
    return moveItem(item, folder, name, clash, goesOn) == ItemMove::Done;
};

// 0, or errno.
int errorOf(Transfer transfer, std::string const& path, std::string const& folder, std::string const& name,
            NameClash clash = NameClash::IsRefused, TransferGoesOn const& goesOn = always) {
    std::optional<OpenItem> const item = openItemAtPath(path, false);
    if (!item) return errno;
    return transfer(*item, folderAt(folder), name, clash, goesOn) ? 0 : errno;
}

struct stat statusOf(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

// A folder with one of each in it.
void makeTree(TemporaryFolder const& folder, std::string const& name) {
    folder.makeFile(name + "/inner/deep.txt", "deep");
    std::string const file = folder.makeFile(name + "/file \xFF", "contents");
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    std::array<timespec, 2> const times{timespec{1000, 0}, timespec{2000, 5}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times.data(), 0), 0);
    ASSERT_EQ(::symlink("nowhere", folder.path(name + "/link").c_str()), 0);
    ASSERT_EQ(::mkfifo(folder.path(name + "/pipe").c_str(), 0600), 0);
    ASSERT_EQ(::utimensat(AT_FDCWD, folder.path(name).c_str(), times.data(), 0), 0);
}

void expectTree(std::string const& path) {
    EXPECT_EQ(namesIn(path), (std::vector<std::string>{"file \xFF", "inner", "link", "pipe"}));
    EXPECT_EQ(textOf(path + "/inner/deep.txt"), "deep");
    EXPECT_EQ(textOf(path + "/file \xFF"), "contents");
    struct stat const file = statusOf(path + "/file \xFF");
    EXPECT_EQ(file.st_mode & 07777U, 0640U);
    EXPECT_EQ(file.st_mtim.tv_sec, 2000);
    EXPECT_EQ(file.st_mtim.tv_nsec, 5);
    EXPECT_TRUE(S_ISLNK(statusOf(path + "/link").st_mode));
    EXPECT_TRUE(S_ISFIFO(statusOf(path + "/pipe").st_mode));
    EXPECT_EQ(statusOf(path).st_mtim.tv_sec, 2000);
}

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

class ItemTransferOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
    TemporaryFolder const m_point{};
};

TEST_F(ItemTransferOnVolumes, MovesAFolderToAnotherVolume) {
    mountMemory(m_point.path());
    makeTree(m_folder, "tree");
    EXPECT_EQ(errorOf(move, m_folder.path("tree"), m_point.path(), "tree"), 0);
    expectTree(m_point.path("tree"));
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, MovesFilesOfSeveralNamesAndTheirAppleDoubleFile) {
    mountMemory(m_point.path());
    m_folder.makeFile("tree/a", "x");
    ASSERT_EQ(::link(m_folder.path("tree/a").c_str(), m_folder.path("tree/b").c_str()), 0);
    ASSERT_EQ(::link(m_folder.path("tree/a").c_str(), m_folder.path("tree/c").c_str()), 0);
    m_folder.makeFile("._tree", AppleDouble);
    EXPECT_EQ(errorOf(move, m_folder.path("tree"), m_point.path(), "tree"), 0);
    EXPECT_EQ(namesIn(m_point.path("tree")), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(textOf(m_point.path("._tree")), AppleDouble);
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, MovesAFolderThatNobodyMayChange) {
    mountMemory(m_point.path(), "mode=777");
    m_folder.makeFile("tree/inner/file", "x");
    for (char const* const name : {"", "tree", "tree/inner", "tree/inner/file"})
        OrdinaryUser::own(m_folder.path(name));
    OrdinaryUser const user;
    ASSERT_EQ(::chmod(m_folder.path("tree/inner").c_str(), 0555), 0);
    EXPECT_EQ(errorOf(move, m_folder.path("tree"), m_point.path(), "tree"), 0);
    EXPECT_EQ(textOf(m_point.path("tree/inner/file")), "x");
    EXPECT_EQ(statusOf(m_point.path("tree/inner")).st_mode & 0777U, 0555U);
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
    ::chmod(m_point.path("tree/inner").c_str(), 0755);
}

TEST_F(ItemTransferOnVolumes, DoesNotKeepTheSpaceOfTheOriginal) {
    mountMemory(m_point.path());
    std::string const file = m_folder.makeFile("file", "x");
    ASSERT_TRUE(referenceToPath(file, false));
    std::size_t const before = namesIn("/proc/self/fd").size();
    EXPECT_EQ(errorOf(move, file, m_point.path(), "file"), 0);
    EXPECT_EQ(namesIn("/proc/self/fd").size(), before - 1);
}

TEST_F(ItemTransferOnVolumes, SaysThatTheCopyIsWholeWhenTheOriginalCannotGo) {
    mountMemory(m_point.path(), "mode=777");
    std::string const file = m_folder.makeFile("closed/file", "x");
    OrdinaryUser::own(file);
    OrdinaryUser::own(m_folder.path());
    OrdinaryUser::own(m_folder.path("closed"));
    ASSERT_EQ(::chmod(m_folder.path("closed").c_str(), 0555), 0);
    OrdinaryUser const user;
    ASSERT_NE(::faccessat(AT_FDCWD, m_folder.path("closed").c_str(), W_OK, AT_EACCESS), 0);
    std::optional<OpenItem> const item = openItemAtPath(file, false);
    ASSERT_TRUE(item);
    EXPECT_EQ(moveItem(*item, folderAt(m_point.path()), "file", NameClash::IsRefused, always), ItemMove::OriginalStays);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(textOf(m_point.path("file")), "x");
    EXPECT_EQ(textOf(file), "x");
}

TEST_F(ItemTransferOnVolumes, LeavesTheOriginalWhereTheNameOfTheCopyIsNotOnTheDisk) {
    mountMemory(m_point.path());
    std::string const file = m_folder.makeFile("file", "x");
    std::optional<OpenItem> const item = openItemAtPath(file, false);
    ASSERT_TRUE(item);
    withRefusedCall(SYS_fsync, EIO, [&] {
        ItemMove const moved = moveItem(*item, folderAt(m_point.path()), "file", NameClash::IsRefused, always);
        EXPECT_EQ(moved, ItemMove::OriginalStays);
        EXPECT_EQ(errno, EIO);
    });
    EXPECT_EQ(textOf(file), "x");
    ASSERT_EQ(::unlink(m_point.path("file").c_str()), 0);
    // Some file systems cannot flush folders.
    withRefusedCall(SYS_fsync, EINVAL, [&] { EXPECT_EQ(errorOf(move, file, m_point.path(), "file"), 0); });
    EXPECT_FALSE(isThere(file));
}

TEST_F(ItemTransferOnVolumes, LeavesTheOriginalWhenTheOtherVolumeIsFull) {
    mountMemory(m_point.path(), "size=64k");
    m_folder.makeFile("tree/large", std::string(std::size_t{1} << 20U, 'x'));
    EXPECT_EQ(errorOf(move, m_folder.path("tree"), m_point.path(), "tree"), ENOSPC);
    EXPECT_EQ(textOf(m_folder.path("tree/large")).size(), std::size_t{1} << 20U);
    EXPECT_EQ(namesIn(m_point.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, ReplacesNothingBeforeTheCopyIsWhole) {
    mountMemory(m_point.path());
    m_folder.makeFile("file", "new");
    m_point.makeFile("file", "old");
    m_point.makeFile("._file", AppleDouble + "old");
    int steps = 0;
    int questions = 0;
    TrashStepListener const listener([&](TrashStep) { ++steps; });
    EXPECT_EQ(errorOf(move, m_folder.path("file"), m_point.path(), "file", NameClash::IsReplaced,
                      [&] {
                          ++questions;
                          return false;
                      }),
              ECANCELED);
    EXPECT_EQ(questions, 1);
    EXPECT_EQ(steps, 0) << "nothing was away for a while";
    EXPECT_EQ(textOf(m_point.path("file")), "old");
    EXPECT_EQ(textOf(m_point.path("._file")), AppleDouble + "old");
    EXPECT_EQ(textOf(m_folder.path("file")), "new");
    EXPECT_EQ(errorOf(move, m_folder.path("file"), m_point.path(), "file", NameClash::IsReplaced), 0);
    EXPECT_GT(steps, 0);
    EXPECT_EQ(textOf(m_point.path("file")), "new");
    EXPECT_FALSE(isThere(m_point.path("._file")));
}

TEST_F(ItemTransferOnVolumes, RefusesAStrayAppleDoubleFileBeforeItCopies) {
    mountMemory(m_point.path());
    m_folder.makeFile("file", "x");
    m_point.makeFile("._file", AppleDouble);
    int questions = 0;
    EXPECT_EQ(errorOf(move, m_folder.path("file"), m_point.path(), "file", NameClash::IsRefused,
                      [&] { return ++questions > 0; }),
              EEXIST);
    EXPECT_EQ(questions, 0);
    EXPECT_EQ(namesIn(m_point.path()), std::vector<std::string>{"._file"});
}

TEST_F(ItemTransferOnVolumes, KeepsAttributesThatTheOtherVolumeHasNoPlaceFor) {
    mountWithoutAttributes(m_point.path());
    std::string const file = m_folder.makeFile("file", "x");
    if (::setxattr(file.c_str(), "user.colour", "blue", 4, 0) != 0) GTEST_SKIP() << "no attributes on this volume";
    EXPECT_EQ(errorOf(move, file, m_point.path(), "file"), 0);
    EXPECT_EQ(namesIn(m_point.path()), (std::vector<std::string>{"._file", "file"}));
    EXPECT_EQ(errorOf(move, m_point.path("file"), m_folder.path(), "back"), 0);
    EXPECT_EQ(namesIn(m_point.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, JoinsAttributesOfItemsInAFolderWithThoseBesideThem) {
    mountWithoutAttributes(m_point.path());
    ASSERT_EQ(set(m_point.makeFile("model", "x"), "shape", "round"), 0);
    std::string const beside = textOf(m_point.path("._model"));
    // So many that no order of theirs is the right one by chance.
    std::string const names = "abcdefghijklmnopqrst";
    for (char const name : names) {
        std::string const file = m_folder.makeFile(std::string("tree/") + name, "x");
        m_folder.makeFile(std::string("tree/._") + name, beside);
        if (::setxattr(file.c_str(), "user.colour", "blue", 4, 0) != 0) GTEST_SKIP() << "no attributes on this volume";
    }
    for (Transfer const transfer : {copy, move}) {
        std::string const target = transfer == copy ? "copied" : "moved";
        EXPECT_EQ(errorOf(transfer, m_folder.path("tree"), m_point.path(), target), 0);
        for (char const name : names) {
            std::string const file = m_point.path(target + "/") + name;
            EXPECT_EQ(get(file, "colour"), "blue");
            EXPECT_EQ(get(file, "shape"), "round");
        }
    }
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string>());
}

TEST_F(ItemTransferOnVolumes, DoesNotEnterWhatIsMountedInside) {
    m_folder.makeFile("tree/file", "x");
    m_folder.makeFolder("tree/mount");
    mountMemory(m_folder.path("tree/mount"));
    m_folder.makeFolder("there");
    EXPECT_EQ(errorOf(copy, m_folder.path("tree"), m_folder.path("there"), "copy"), EBUSY);
    EXPECT_EQ(namesIn(m_folder.path("there")), std::vector<std::string>());
}

} // namespace

} // namespace mac::test
