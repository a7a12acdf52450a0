#include "platform/desktop/places/Places.h"
#include "tests/platform/desktop/VirtualSession.h"
#include "tests/support/DiskContents.h"
#include <algorithm>
#include <csignal>
#include <memory>
#include <sys/stat.h>

namespace mac::test {
namespace {

// KDE's places as its file browser writes them. Skipped if that is not installed: it takes 266 MB. KDEPlacesTest.cpp
// tests them with the library alone.
class PlacesOfDolphin : public testing::Test {
protected:
    void SetUp() override {
        std::optional<std::string> const obstacle = VirtualSession::obstacle();
        if (obstacle) GTEST_SKIP() << *obstacle;
        if (::access("/usr/bin/dolphin", X_OK) != 0) GTEST_SKIP() << "dolphin is not installed";
        std::string const runtime = m_folder.makeFolder("runtime");
        ASSERT_EQ(::chmod(runtime.c_str(), 0700), 0);
        m_session = std::make_unique<VirtualSession>(runtime);
        m_dolphin =
            std::make_unique<ChildProcess>(endingWithThisProcess({"/usr/bin/dolphin", m_folder.makeFolder("shown")}));
        ASSERT_TRUE(waitUntil([&] { return hasPlace("trash:/", "Trash"); }));
        // It writes its list several times while it starts.
        m_dolphin->sendSignal(SIGKILL);
        m_dolphin->wait();
    }

    static bool hasPlace(std::string const& uri, std::string const& label) {
        std::vector<Place> const places = readPlaces().places;
        return std::ranges::any_of(places, [&](Place const& place) {
            return place.list == PlacesList::KDE && place.uri == uri && place.label == label;
        });
    }

    TemporaryFolder const m_folder{};
    std::string const m_file{m_folder.path("data/user-places.xbel")};

private:
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.makeFolder("data")};
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", "/usr/share"};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.makeFolder("config")};
    EnvironmentVariable const m_home{"HOME", m_folder.makeFolder("home")};
    EnvironmentVariable const m_desktop{"XDG_CURRENT_DESKTOP", "KDE"};
    EnvironmentVariable const m_display{"QT_QPA_PLATFORM", "xcb"};
    std::unique_ptr<VirtualSession> m_session{};
    std::unique_ptr<ChildProcess> m_dolphin{};
};

TEST_F(PlacesOfDolphin, AreReadAsItWritesThem) {
    KnownPlaces const known = readPlaces();
    EXPECT_TRUE(known.problems.empty());
    EXPECT_TRUE(hasPlace("file://" + m_folder.path("home"), "Home"));
    EXPECT_TRUE(hasPlace("trash:/", "Trash"));
    std::string const before = textOf(m_file);
    PlacesOutcome const removed = changePlaces({.removed = known.places});
    EXPECT_EQ(removed.removed.size(), known.places.size());
    EXPECT_TRUE(readPlaces().places.empty());
    EXPECT_TRUE(changePlaces({.restored = removed.removed}).problems.empty());
    EXPECT_EQ(textOf(m_file), before);
}

} // namespace
} // namespace mac::test
