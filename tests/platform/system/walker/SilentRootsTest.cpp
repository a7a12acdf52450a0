#include "platform/system/walker/RootLocator.h"
#include "platform/system/walker/VolumeVisit.h"
#include "platform/system/walker/VolumeWalker.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/ServedFolder.h"
#include "tests/support/TemporaryFolder.h"
#include <atomic>
#include <cerrno>
#include <chrono>
#include <deque>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// Roots on volumes whose server does not answer.

namespace mac::test {

namespace {

using Paths = std::vector<std::string>;

class SilentRoots : public PrivateMounts {
protected:
    void SetUp() override {
        PrivateMounts::SetUp();
        if (!IsSkipped() && !ServedFolder::whyNone().empty()) GTEST_SKIP() << ServedFolder::whyNone();
    }

    // The root of a volume with a package, whose server has stopped.
    std::string silentRoot(std::string const& name, std::string const& package) {
        m_folder.makeFolder("served/" + name + "/" + package);
        std::string const point = m_folder.makeFolder(name);
        m_servers.emplace_back(m_folder.path("served/" + name), point).waitUntilMounted();
        m_servers.back().stop();
        return point;
    }
    void goOn() const {
        for (ServedFolder const& server : m_servers)
            server.goOn();
    }
    void stop() const {
        for (ServedFolder const& server : m_servers)
            server.stop();
    }

    TemporaryFolder const m_folder{};

private:
    std::deque<ServedFolder> m_servers{};
};

// What a walk finds until it has found so many.
Paths foundUntil(VolumeWalker& walker, std::size_t count) {
    Paths found;
    while (found.size() < count) {
        for (std::string& path : walker.takeFound())
            found.push_back(std::move(path));
        std::this_thread::yield();
    }
    return sorted(found);
}

} // namespace

TEST_F(SilentRoots, HoldUpNoOtherRoot) {
    std::string const first = silentRoot("first", "A.app");
    std::string const second = silentRoot("second", "B.app");
    Paths const free{m_folder.makeFolder("free/C.app"), m_folder.makeFolder("last/D.app")};
    VolumeWalker walker({.roots = {first, m_folder.path("free"), second, m_folder.path("last")}}, nullptr);
    ASSERT_TRUE(walker.start());
    EXPECT_EQ(foundUntil(walker, 2), free);
    EXPECT_FALSE(walker.progress().isFinished);
    goOn();
    EXPECT_EQ(foundUntil(walker, 2), (Paths{first + "/A.app", second + "/B.app"}));
    while (!walker.progress().isFinished)
        std::this_thread::yield();
    EXPECT_EQ(walker.progress().unreadableFolders, 0U);
}

// The folder may hold the package, and does.
TEST_F(SilentRoots, HoldUpAPackageThatIsARootSoThatItIsFoundOnce) {
    std::string const silent = silentRoot("silent", "A.app");
    std::string const free = m_folder.makeFolder("B.app");
    VolumeWalkRequest request{.roots = {silent, silent + "/A.app", free}};
    VolumeWalker walker(request, nullptr);
    ASSERT_TRUE(walker.start());
    goOn();
    Paths found = foundUntil(walker, 2);
    while (!walker.progress().isFinished)
        std::this_thread::yield();
    for (std::string& path : walker.takeFound())
        found.push_back(std::move(path));
    EXPECT_EQ(sorted(found), (Paths{free, silent + "/A.app"}));
}

TEST_F(SilentRoots, LetAPackageThatIsARootBeToldBesideAnother) {
    std::string const silent = silentRoot("A.app", "Contents");
    std::string const package = m_folder.makeFolder("B.app");
    VolumeWalker walker({.roots = {silent, package}}, nullptr);
    ASSERT_TRUE(walker.start());
    EXPECT_EQ(foundUntil(walker, 1), Paths{package});
    goOn();
    EXPECT_EQ(foundUntil(walker, 1), Paths{silent});
}

TEST_F(SilentRoots, AreLookedAtByAFewWalksThatAreGivenUp) {
    std::string const silent = silentRoot("silent", "A.app");
    Paths const free{m_folder.makeFolder("free/B.app")};
    VolumeWalkRequest impatient{.roots = {silent, m_folder.path("free")}};
    impatient.patience = std::chrono::milliseconds(1);
    for (std::size_t walks = 0; walks < VolumeVisit::MostLeft; ++walks) {
        VolumeWalker walker(impatient, nullptr);
        ASSERT_TRUE(walker.start());
        EXPECT_EQ(foundUntil(walker, 1), free);
        walker.stopWithin(std::chrono::milliseconds(1));
    }
    WalkResult const leftOut = walk(impatient);
    EXPECT_EQ(leftOut.paths, free);
    ASSERT_EQ(leftOut.progress.firstUnreadable.size(), 1U);
    EXPECT_EQ(leftOut.progress.firstUnreadable.front().item, silent);
    EXPECT_EQ(leftOut.progress.firstUnreadable.front().code, ETIMEDOUT);
    goOn();
    VolumeWalkRequest patient{.roots = {silent}};
    patient.patience = std::chrono::hours(1);
    EXPECT_EQ(pathsOfWalk(patient), Paths{silent + "/A.app"});
}

// Roots that answer at any moment after the look at them began.
TEST_F(SilentRoots, AreEachTakenOnceHoweverLateTheyAnswer) {
    std::string const first = silentRoot("first", "A.app");
    std::string const second = silentRoot("second", "B.app");
    std::string const free = m_folder.makeFolder("free");
    std::atomic<bool> const no = false;
    for (int round = 0; round < 300; ++round) {
        stop();
        RootLocator locator({first, free, second}, {.wasStopped = no, .wasLeft = no}, std::chrono::milliseconds(1));
        Paths found;
        std::vector<std::string> left;
        do {
            RootLocator::Taken const taken = locator.take();
            for (Result<WalkRoot> const& root : taken.found)
                found.push_back(root.value().path);
            left = taken.left;
            ASSERT_EQ(found.size() + left.size(), 3U);
            if (!found.empty()) goOn();
        } while (!left.empty());
        EXPECT_EQ(sorted(found), (Paths{first, free, second}));
    }
}

TEST_F(SilentRoots, EndTheWaitOfALocatorWhoseWalkIsStopped) {
    std::string const silent = silentRoot("silent", "A.app");
    std::atomic<bool> wasStopped = false;
    RootLocator locator({silent}, {.wasStopped = wasStopped, .wasLeft = wasStopped}, std::chrono::hours(1));
    std::thread stopper([&wasStopped] { wasStopped = true; });
    EXPECT_EQ(locator.take().left, Paths{silent});
    stopper.join();
    goOn();
}

} // namespace mac::test
