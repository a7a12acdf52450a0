#include "platform/system/TemporaryName.h"
#include "platform/system/items/ItemAttributes.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/ItemLock.h"
#include "platform/system/items/ItemRemoval.h"
#include "platform/system/items/ItemStatus.h"
#include "platform/system/items/OverwritingCopy.h"
#include "tests/platform/system/items/ItemTransfers.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Failures.h"
#include "tests/support/PrivateMounts.h"
#include <algorithm>
#include <fstream>
#include <sys/syscall.h>
#include <thread>

namespace mac::test {

namespace {

// Items on a volume that a server shows (FUSE), which answers otherwise than the file systems of the kernel: an open
// item is lost when the name goes by which it was opened, a name goes only once its file is closed, and a date that
// comes without the other is lost.
class ServedVolume : public PrivateMounts {
protected:
    void SetUp() override {
        PrivateMounts::SetUp();
        if (IsSkipped()) return;
        m_folder.makeFolder("served");
        m_folder.makeFolder("volume");
        mountServed(m_folder.path("served"), m_folder.path("volume"));
    }

    std::string path(std::string const& name) const { return m_folder.path("volume/" + name); }

    TemporaryFolder const m_folder{};
};

TEST_F(ServedVolume, TakesOneDateAlone) {
    OpenItem const item = itemAt(m_folder.makeFile("volume/file", "x"));
    ASSERT_TRUE(setDates(item.item, {.access = timespec{3000, 7}, .modified = timespec{4000, 9}}).isDone());
    ASSERT_TRUE(setDates(item.item, {.modified = timespec{2000, 5}}).isDone());
    EXPECT_EQ(statusOf(path("file")).st_mtim.tv_sec, 2000);
    EXPECT_EQ(statusOf(path("file")).st_mtim.tv_nsec, 5);
    EXPECT_EQ(statusOf(path("file")).st_atim.tv_sec, 3000);
    ASSERT_TRUE(setDates(item.item, {.access = timespec{1000, 6}}).isDone());
    EXPECT_EQ(statusOf(path("file")).st_atim.tv_sec, 1000);
    EXPECT_EQ(statusOf(path("file")).st_mtim.tv_sec, 2000);
    EXPECT_TRUE(setDates(item.item, {}).isDone());
    EXPECT_EQ(statusOf(path("file")).st_atim.tv_sec, 1000);
}

// The new value is in the sidecar when the old one turns out to stay.
TEST_F(ServedVolume, LosesALargeValueWhereTheOldOneStays) {
    AttributeName const name{"colour"};
    OpenItem const item = itemAt(m_folder.makeFile("volume/file", "x"));
    std::vector<std::byte> const old(3);
    ASSERT_TRUE(writeAttribute(item, name, old).isDone());
    OpenItem const served = itemAt(m_folder.path("served/file"));
    if (!setLock(served, ItemLock::Locked).isDone()) GTEST_SKIP() << "no file can be locked here";
    EXPECT_FALSE(writeAttribute(item, name, std::vector<std::byte>(100'000)).isDone());
    ASSERT_TRUE(setLock(served, ItemLock::Unlocked).isDone());
    EXPECT_EQ(readAttribute(item, name).valueOr({}), old);
    EXPECT_EQ(namesIn(m_folder.path("served")), std::vector<std::string>{"file"});
}

// The copy goes with the leftovers of this process, and the old item, which could not get its name back, stays.
TEST_F(ServedVolume, MarksACopyThatDoesNotGetItsName) {
    m_folder.makeFile("file", "new");
    m_folder.makeFile("volume/file", "old");
    OpenItem const item = itemAt(m_folder.path("file"));
    FileDescriptor const target = folderAt(m_folder.path("volume"));
    std::thread([&] {
        Result<void, TransferProblem> const copied =
            copyItemOver({.item = item, .folder = target, .name = "file"}, [](OverwritingStep step) {
                if (step == OverwritingStep::Exchanged) refuseCallOnThisThread(SYS_openat, EACCES);
            });
        EXPECT_FALSE(copied.isDone());
    }).join();
    std::vector<std::string> const names = namesIn(m_folder.path("served"));
    ASSERT_EQ(names.size(), 2U);
    for (std::string const& name : names) {
        std::optional<ParsedTemporaryName> const parsed = parseTemporaryName(name);
        Result<ItemStatus> const status = mac::statusOf(target, name);
        ASSERT_TRUE(parsed && status.hasValue()) << name;
        bool const isCopy = textOf(m_folder.path("served/" + name)) == "new";
        EXPECT_EQ(parsed->accepts(markOf(status.value())), isCopy) << name;
    }
}

// Removes a file and gives its name to another one that says "another" and has got its inode number.
void replaceByItemOfSameNumber(std::string const& folder, std::string const& name) {
    constexpr unsigned most = 1000;
    std::string const file = folder + "/" + name;
    ino_t const number = statusOf(file).st_ino;
    ASSERT_EQ(::unlink(file.c_str()), 0);
    std::vector<std::string> others;
    for (unsigned tries = 0; tries < most && !isThere(file); ++tries) {
        others.push_back(folder + "/other" + std::to_string(tries));
        std::ofstream(others.back()) << "another";
        if (statusOf(others.back()).st_ino != number) continue;
        ASSERT_EQ(::rename(others.back().c_str(), file.c_str()), 0);
    }
    for (std::string const& other : others)
        ::unlink(other.c_str());
    ASSERT_TRUE(isThere(file));
}

// What tells items apart there is told by the server: its inode numbers come again, and it has no time of birth.
TEST_F(ServedVolume, KeepsAnotherItemThatGotTheInodeNumberOfTheCopy) {
    m_folder.makeFolder("disk");
    m_folder.makeFolder("shown");
    mountImage(m_folder.path("image"), m_folder.path("disk"));
    if (IsSkipped()) return;
    mountServed(m_folder.path("disk"), m_folder.path("shown"));
    if (IsSkipped()) return;
    m_folder.makeFile("file", "new");
    m_folder.makeFile("shown/folder/file", "old");
    std::string const folder = m_folder.path("shown/folder");
    std::string const file = folder + "/file";
    OpenItem const item = itemAt(m_folder.path("file"));
    FileDescriptor const target = folderAt(folder);
    std::thread([&] {
        Result<void, TransferProblem> const copied =
            copyItemOver({.item = item, .folder = target, .name = "file"}, [&](OverwritingStep step) {
                if (step == OverwritingStep::NamesExchanged) replaceByItemOfSameNumber(folder, "file");
                if (step == OverwritingStep::Exchanged) refuseCallOnThisThread(SYS_openat, EACCES);
            });
        EXPECT_FALSE(copied.isDone());
    }).join();
    EXPECT_EQ(textOf(file), "another");
    std::vector<std::string> const names = namesIn(folder);
    ASSERT_EQ(names.size(), 2U);
    for (std::string const& name : names)
        EXPECT_EQ(textOf(folder + "/" + name), name == "file" ? "another" : "old");
}

} // namespace

} // namespace mac::test
