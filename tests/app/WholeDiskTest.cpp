#include "app/AppControllerBody.h"
#include "tests/app/Controller.h"
#include "tests/support/Commands.h"
#include "tests/support/SeededRandom.h"
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <set>
#include <sys/mount.h>

namespace framekeeper::test {
namespace {

using Paths = std::set<std::string>;

Paths listedByFind() {
    std::string const all = mac::test::outputOf({LIST_COPIES});
    Paths paths;
    for (std::size_t start = 0; start < all.size();) {
        std::size_t const end = all.find('\0', start);
        paths.insert(all.substr(start, end - start));
        start = end + 1;
    }
    return paths;
}

Paths listedByTheProgram() {
    AppController const controller = makeController();
    controller.scanAction_(nil);
    // Many finds are taken into the inventory in steps, which go on after the search.
    EXPECT_TRUE(runUntil([&] { return !controller.query().isGathering() && !bodyOf(controller)->_sync; }, 600));
    Paths paths;
    for (id const& record : controller.paths().allObjects())
        paths.insert(as<NSString>(record.valueForKey_("path")).fileSystemRepresentation().value_or(std::string()));
    controller.query().stopQuery();
    return paths;
}

// Copies, bundles of other identifiers and bundles within bundles, at random places below the folder; answers the
// copies.
Paths scatter(TemporaryFolder const& folder, std::string const& below, std::mt19937& random) {
    Paths copies;
    std::string const companion = mac::test::informationFile("com.tidelark.mirrorframe", "2.1", "210");
    std::string const stranger = mac::test::informationFile("com.example.other", "1", "1");
    for (int index = 0; index < 60; ++index) {
        std::string place = below;
        for (auto depth = random() % 7; depth > 0; --depth)
            place += "/" + std::to_string(random() % 5) + (random() % 9 == 0 ? "\xFF name\n" : "");
        switch (random() % 4) {
        case 0:
            folder.makeBundle(place + "/Other.app/Mirror Frame.app", companion);
            break;
        case 1:
            folder.makeBundle(place + "/x" + std::to_string(index) + "/Mirror Frame.app", stranger);
            break;
        default:
            copies.insert(folder.makeBundle(place + "/c" + std::to_string(index) + "/Mirror Frame.app", companion));
        }
    }
    return copies;
}

// A second volume in memory, where the system lets us mount one.
class MountedVolume {
public:
    explicit MountedVolume(std::string const& path) : m_path(path) {
        m_isMounted = ::mount("framekeeper-test", path.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, "size=32m") == 0;
    }
    ~MountedVolume() {
        if (m_isMounted) ::umount2(m_path.c_str(), MNT_DETACH);
    }
    MountedVolume(MountedVolume const&) = delete;
    MountedVolume& operator=(MountedVolume const&) = delete;
    bool isMounted() const { return m_isMounted; }

private:
    std::string m_path;
    bool m_isMounted;
};

using WholeDisk = OnlyOwnCopies;

TEST_F(WholeDisk, ListsExactlyWhatFindListsAndTheIdentifierKeeps) {
    TemporaryFolder const folder;
    MountedVolume const volume(folder.makeFolder("volume"));
    if (!volume.isMounted()) std::puts("No second volume could be mounted; its folder lies on the first one instead.");
    std::mt19937 random = mac::test::seededRandom(20260);
    Paths scattered = scatter(folder, "disk", random);
    scattered.merge(scatter(folder, "volume", random));

    // Other programs may change the disk during the test: copies listed both before and after must be found, and none
    // that is in neither list, unless it came and went between the two. Below the test's own folder nothing changes.
    Paths const before = listedByFind();
    Paths const found = listedByTheProgram();
    Paths const after = listedByFind();

    Paths own;
    std::ranges::copy_if(found, std::inserter(own, own.end()),
                         [&](std::string const& path) { return path.starts_with(folder.path() + "/"); });
    EXPECT_EQ(own, scattered);
    Paths lasting;
    std::ranges::set_intersection(before, after, std::inserter(lasting, lasting.end()));
    Paths missed;
    std::ranges::set_difference(lasting, found, std::inserter(missed, missed.end()));
    EXPECT_EQ(missed, Paths());
    Paths listed = before;
    listed.insert(after.begin(), after.end());
    Paths invented;
    std::ranges::set_difference(found, listed, std::inserter(invented, invented.end()));
    // What came and went is not found again, what is made up is.
    Paths const again = invented.empty() ? Paths() : listedByTheProgram();
    std::erase_if(invented, [&](std::string const& path) { return !again.contains(path); });
    EXPECT_EQ(invented, Paths());
    EXPECT_TRUE(std::ranges::includes(lasting, scattered));
}

} // namespace
} // namespace framekeeper::test
