#include "platform/system/walker/VolumeVisit.h"
#include "platform/system/walker/VolumeWalker.h"
#include "tests/platform/system/walker/Walk.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/ServedFolder.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <chrono>
#include <deque>
#include <memory>
#include <thread>

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

TEST_F(SilentRoots, LetAPackageThatIsARootBeTold) {
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

} // namespace mac::test
