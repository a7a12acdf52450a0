#include "platform/files/aliases/AliasRecord.h"
#include "tests/support/Environment.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/ServedFolder.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <sys/mount.h>
#include <thread>
#include <unistd.h>

namespace mac::test {
namespace {

AliasRecord recordAt(std::string const& path) {
    return aliasRecordOf(openItemAtPath(path, LinkAtEnd::IsNotFollowed).value()).value();
}

std::string found(AliasRecord const& record) {
    Result<FoundAlias> const found = findAlias(record);
    return found.hasValue() ? found.value().path : "-";
}

// The path that is found, with a record that has to be renewed.
std::string foundAndRenewed(AliasRecord const& record) {
    Result<FoundAlias> const found = findAlias(record);
    if (!found.hasValue()) return "-";
    if (!found.value().renewed) return "as it was: " + found.value().path;
    EXPECT_FALSE(findAlias(*found.value().renewed).value().renewed);
    return found.value().path;
}

class AliasSearch : public PrivateMounts {
protected:
    // A volume of its own, so that searching all of it is quick.
    void SetUp() override {
        PrivateMounts::SetUp();
        if (!IsSkipped()) mountMemory(m_point);
    }
    std::string at(std::string_view name) const { return m_point + "/" + std::string(name); }
    std::string makeFile(std::string const& name) const { return m_folder.makeFile("volume/" + name, ""); }
    std::string makeFolder(std::string const& name) const { return m_folder.makeFolder("volume/" + name); }
    void move(std::string_view from, std::string_view to) const {
        ASSERT_EQ(::rename(at(from).c_str(), at(to).c_str()), 0);
    }

    TemporaryFolder const m_folder{};
    std::string const m_point{m_folder.makeFolder("volume")};
};

TEST_F(AliasSearch, TakesWhatHasThePath) {
    AliasRecord const record = recordAt(makeFile("file"));
    EXPECT_EQ(found(record), at("file"));
    EXPECT_FALSE(findAlias(record).value().renewed);
    // The item at the path counts even if the recorded item lies elsewhere.
    move("file", "moved");
    makeFile("file");
    EXPECT_EQ(foundAndRenewed(record), at("file"));
}

TEST_F(AliasSearch, TakesNoItemOfAnotherKindAtThePath) {
    AliasRecord const record = recordAt(makeFile("item"));
    move("item", "moved");
    makeFolder("item");
    EXPECT_EQ(foundAndRenewed(record), at("moved"));
    ASSERT_EQ(::rmdir(at("item").c_str()), 0);
    ASSERT_EQ(::symlink("moved", at("item").c_str()), 0);
    EXPECT_EQ(foundAndRenewed(record), at("moved"));
}

TEST_F(AliasSearch, FindsTheItemInItsFolder) {
    AliasRecord const record = recordAt(makeFile("a/file"));
    makeFile("a/another");
    move("a/file", "a/renamed");
    EXPECT_EQ(foundAndRenewed(record), at("a/renamed"));
}

TEST_F(AliasSearch, FindsTheItemAnywhereOnItsVolume) {
    makeFile("deep/folders/Package.app/Contents/x");
    makeFile("many/others/file");
    AliasRecord const file = recordAt(makeFile("a/file"));
    AliasRecord const folder = recordAt(makeFolder("b/Folder.app"));
    AliasRecord const link = [&] {
        EXPECT_EQ(::symlink("nowhere", at("a/link").c_str()), 0);
        return recordAt(at("a/link"));
    }();
    move("a/file", "deep/folders/Package.app/Contents/file");
    move("a/link", "deep/folders/link");
    move("b/Folder.app", "deep/folders/Package.app/Renamed");
    EXPECT_EQ(foundAndRenewed(file), at("deep/folders/Package.app/Contents/file"));
    EXPECT_EQ(foundAndRenewed(folder), at("deep/folders/Package.app/Renamed"));
    EXPECT_EQ(foundAndRenewed(link), at("deep/folders/link"));
}

TEST_F(AliasSearch, FindsNothingWhereTheItemIsGone) {
    AliasRecord const record = recordAt(makeFile("a/file"));
    ASSERT_EQ(::unlink(at("a/file").c_str()), 0);
    for (int index = 0; index < 50; ++index)
        makeFile("a/other" + std::to_string(index));
    EXPECT_EQ(findAlias(record).problem().code, ENOENT);
}

TEST_F(AliasSearch, EndsWhenItsTimeIsUp) {
    AliasRecord const record = recordAt(makeFile("a/file"));
    makeFolder("b");
    move("a/file", "b/file");
    auto now = std::chrono::steady_clock::time_point();
    AliasSearchLimits limits;
    limits.now = [&] { return now += std::chrono::seconds(11); };
    EXPECT_EQ(findAlias(record, limits).problem().code, ETIMEDOUT);
    limits.now = [&] { return now += std::chrono::nanoseconds(1); };
    EXPECT_EQ(findAlias(record, limits).value().path, at("b/file"));
    // What need not be searched for takes no time.
    AliasRecord const there = recordAt(at("b/file"));
    limits.now = [&] { return now += std::chrono::seconds(11); };
    EXPECT_EQ(findAlias(there, limits).value().path, at("b/file"));
}

TEST_F(AliasSearch, SearchesNoOtherVolume) {
    AliasRecord const record = recordAt(makeFile("a/file"));
    ASSERT_EQ(::unlink(at("a/file").c_str()), 0);
    std::string const inner = makeFolder("inner");
    mountMemory(inner);
    // Numbers on volumes in memory begin anew, so that some file there has the number of the removed one.
    for (int index = 0; index < 20; ++index)
        makeFile("inner/" + std::to_string(index));
    EXPECT_EQ(findAlias(record).problem().code, ENOENT);
}

TEST_F(AliasSearch, FindsTheVolumeWhereverItIsMounted) {
    std::string const image = m_folder.path("image");
    std::string const first = m_folder.makeFolder("first");
    std::string const second = m_folder.makeFolder("second");
    mountImage(image, first);
    if (IsSkipped()) return;
    AliasRecord const same = recordAt(m_folder.makeFile("first/a/same", ""));
    AliasRecord const renamed = recordAt(m_folder.makeFile("first/a/old", ""));
    AliasRecord const moved = recordAt(m_folder.makeFile("first/a/moved", ""));
    AliasRecord const top = recordAt(first);
    ASSERT_EQ(::rename((first + "/a/old").c_str(), (first + "/a/new").c_str()), 0);
    ASSERT_EQ(::rename((first + "/a/moved").c_str(), (first + "/moved").c_str()), 0);
    ASSERT_EQ(::mount(first.c_str(), second.c_str(), nullptr, MS_MOVE, nullptr), 0);
    EXPECT_EQ(foundAndRenewed(same), second + "/a/same");
    EXPECT_EQ(foundAndRenewed(renamed), second + "/a/new");
    EXPECT_EQ(foundAndRenewed(moved), second + "/moved");
    // The folder of the mount point is there still.
    EXPECT_EQ(foundAndRenewed(top), first);
    ASSERT_EQ(::umount(second.c_str()), 0);
    EXPECT_EQ(found(same), "-");
    EXPECT_EQ(found(moved), "-");
}

// Layers list the numbers of the file systems below them, which are not the items' own.
TEST_F(AliasSearch, AsksForTheNumbersThatAreNotListed) {
    std::string const below = m_folder.makeFolder("below");
    m_folder.makeFile("below/a/file", "");
    makeFolder("changes/above");
    makeFolder("changes/work");
    std::string const layers = m_folder.makeFolder("layers");
    mountLayers(below, at("changes"), layers);
    if (IsSkipped()) return;
    AliasRecord const lower = recordAt(layers + "/a/file");
    AliasRecord const upper = recordAt(m_folder.makeFile("layers/a/upper", ""));
    m_folder.makeFolder("layers/b");
    ASSERT_EQ(::rename((layers + "/a/upper").c_str(), (layers + "/b/upper").c_str()), 0);
    EXPECT_EQ(found(lower), layers + "/a/file");
    EXPECT_EQ(foundAndRenewed(upper), layers + "/b/upper");
    ASSERT_EQ(::rename((layers + "/b/upper").c_str(), (layers + "/b/renamed").c_str()), 0);
    AliasRecord again = upper;
    again.path = layers + "/b/upper";
    EXPECT_EQ(found(again), layers + "/b/renamed");
}

// Without birth times an item that has got the number is told by its name.
TEST_F(AliasSearch, IsCarefulWhereNoBirthTimesAreKnown) {
    std::string const plain = m_folder.makeFolder("plain");
    mountWithoutAttributes(plain);
    AliasRecord const record = recordAt(m_folder.makeFile("plain/a/file", ""));
    ASSERT_EQ(record.birth, 0);
    m_folder.makeFolder("plain/b");
    ASSERT_EQ(::rename((plain + "/a/file").c_str(), (plain + "/b/file").c_str()), 0);
    std::string const expected = record.volume.empty() ? "-" : plain + "/b/file";
    EXPECT_EQ(found(record), expected);
    ASSERT_EQ(::rename((plain + "/b/file").c_str(), (plain + "/b/other").c_str()), 0);
    EXPECT_EQ(found(record), "-");
}

std::vector<int> threadsOfThisProcess() {
    std::vector<int> threads;
    for (std::filesystem::directory_entry const& task : std::filesystem::directory_iterator("/proc/self/task"))
        threads.push_back(std::stoi(task.path().filename()));
    return threads;
}

// The volume's server hangs once the search has begun. The thread that waits for it ends by itself when it answers.
TEST_F(AliasSearch, LeavesAThreadBehindOnAVolumeThatHangs) {
    if (!ServedFolder::whyNone().empty()) GTEST_SKIP() << ServedFolder::whyNone();
    m_folder.makeFile("served/a/file", "");
    std::string const point = m_folder.makeFolder("point");
    ServedFolder const volume(m_folder.path("served"), point);
    volume.waitUntilMounted();
    auto record = std::make_unique<AliasRecord>(recordAt(point + "/a/file"));
    m_folder.makeFolder("point/b");
    ASSERT_EQ(::rename((point + "/a/file").c_str(), (point + "/b/file").c_str()), 0);
    std::size_t const threadsBefore = threadsOfThisProcess().size();

    AliasSearchLimits limits;
    bool hangs = false;
    int looks = 0;
    limits.now = [&]() -> std::chrono::steady_clock::time_point {
        ++looks;
        // The first look is for the end of the time, the second is right before the volume is searched.
        if (looks == 2) volume.stop();
        if (looks <= 2) return {};
        while (!hangs)
            hangs = std::ranges::any_of(threadsOfThisProcess(), &ServedFolder::isWaitedForBy);
        return std::chrono::steady_clock::time_point(std::chrono::seconds(11));
    };
    EXPECT_EQ(findAlias(*record, limits).problem().code, ETIMEDOUT);
    EXPECT_TRUE(hangs);
    EXPECT_GT(threadsOfThisProcess().size(), threadsBefore);
    record.reset();
    volume.goOn();
    while (threadsOfThisProcess().size() > threadsBefore)
        std::this_thread::yield();
}

TEST(AliasSearchBelowHome, FindsTheItemInTheHomeFolderOfNow) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("old home/a/file", "");
    AliasRecord record;
    {
        EnvironmentVariable const home("HOME", folder.path("old home"));
        record = recordAt(file);
        EXPECT_EQ(record.pathBelowHome, "a/file");
    }
    ASSERT_EQ(::rename(folder.path("old home").c_str(), folder.path("new home").c_str()), 0);
    EnvironmentVariable const home("HOME", folder.path("new home"));
    EXPECT_EQ(foundAndRenewed(record), folder.path("new home/a/file"));
}

} // namespace
} // namespace mac::test
