#include "platform/desktop/places/Places.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/Commands.h"
#include "tests/support/DiskContents.h"
#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

namespace mac::test {
namespace {

// Lists, adds and removes places with the model that KDE's file browser and file dialogs show.
constexpr char PlacesProgram[] = R"(
#include <KFilePlacesModel>
#include <QApplication>
#include <cstdio>
int main(int argc, char** argv) {
    QApplication application(argc, argv);
    KFilePlacesModel places;
    QStringList const words = application.arguments();
    if (words.value(1) == "add") places.addPlace(words.value(3), QUrl(words.value(2)));
    for (int row = 0; row < places.rowCount(); ++row) {
        QModelIndex const index = places.index(row, 0);
        QString const url = places.url(index).toString(QUrl::FullyEncoded);
        if (words.value(1) == "remove" && url == words.value(2)) places.removePlace(index);
        else std::puts((url + " " + places.text(index)).toUtf8().constData());
    }
    QCoreApplication::processEvents();
}
)";

// KDE's places as its own library reads and writes them.
class PlacesOfKDE : public testing::Test {
protected:
    void SetUp() override {
        if (::access("/usr/include/KF5/KIOFileWidgets/KFilePlacesModel", R_OK) != 0)
            GTEST_SKIP() << "libkf5kio-dev (114 MB with what it brings along) is not installed";
        std::string const source = m_folder.makeFile("places.cpp", PlacesProgram);
        std::vector<std::string> command{"c++", "-std=c++17", "-fPIC", source, "-o", m_program};
        for (char const* const parent : {"/usr/include/KF5", "/usr/include/x86_64-linux-gnu/qt5"}) {
            command.push_back(std::string("-I") + parent);
            for (auto const& folder : std::filesystem::directory_iterator(parent))
                command.push_back("-I" + folder.path().string());
        }
        for (char const* const library : {"KF5KIOFileWidgets", "Qt5Widgets", "Qt5Gui", "Qt5Core"})
            command.push_back(std::string("-l") + library);
        outputOf(command);
        // Makes the list of a new user.
        ASSERT_TRUE(hasLine(run({"list"}), "trash:/ Trash"));
    }

    std::string run(std::vector<std::string> words) const {
        words.insert(words.begin(), m_program);
        return outputOf(words);
    }
    static bool hasLine(std::string const& lines, std::string const& line) {
        return ("\n" + lines).find("\n" + line + "\n") != std::string::npos;
    }
    static std::vector<Place> placesWith(std::string const& uri) {
        std::vector<Place> places = readPlaces().places;
        std::erase_if(places, [&](Place const& place) { return place.uri != uri; });
        return places;
    }

    TemporaryFolder const m_folder{};
    std::string const m_program{m_folder.path("places")};
    std::string const m_file{m_folder.path("data/user-places.xbel")};

private:
    EnvironmentVariable const m_locale{"LC_ALL", "C.UTF-8"};
    EnvironmentVariable const m_language{"LANGUAGE", ""};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.makeFolder("data")};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.makeFolder("config")};
    EnvironmentVariable const m_home{"HOME", m_folder.makeFolder("home")};
    EnvironmentVariable const m_desktop{"XDG_CURRENT_DESKTOP", "KDE"};
    EnvironmentVariable const m_platform{"QT_QPA_PLATFORM", "offscreen"};
    PrivateBus const m_bus{};
    EnvironmentVariable const m_address{"DBUS_SESSION_BUS_ADDRESS", m_bus.address()};
};

TEST_F(PlacesOfKDE, ReadWhatWeAdd) {
    struct Row {
        std::string uri;
        std::string label;
    };
    for (Row const& row : {Row{"file:///tmp/a%20b", "Own & <more>"}, Row{"file:///tmp/%C3%84%25", "\u00C4 %"},
                           Row{"sftp://example.org/x", "Far"}}) {
        EXPECT_TRUE(changePlaces({.added = {{PlacesList::KDE, row.uri, row.label}}}).problems.empty());
        EXPECT_TRUE(hasLine(run({"list"}), row.uri + " " + row.label)) << run({"list"});
    }
}

TEST_F(PlacesOfKDE, KeepWhatWeAddWhenTheyWriteTheirList) {
    ASSERT_TRUE(changePlaces({.added = {{PlacesList::KDE, "file:///tmp/ours", "Ours"}}}).problems.empty());
    run({"add", "file:///tmp/theirs", "Theirs"});
    EXPECT_EQ(placesWith("file:///tmp/ours").size(), 1U);
    ASSERT_EQ(placesWith("file:///tmp/theirs").size(), 1U);
    EXPECT_EQ(placesWith("file:///tmp/theirs").front().label, "Theirs");
    run({"remove", "file:///tmp/ours"});
    EXPECT_TRUE(placesWith("file:///tmp/ours").empty());
}

TEST_F(PlacesOfKDE, LackWhatWeRemoveAndHaveItAgainAfterwards) {
    run({"add", "file:///tmp/theirs", "Theirs"});
    std::string const before = run({"list"});
    std::string const bytes = textOf(m_file);
    PlacesOutcome const removed = changePlaces({.removed = placesWith("file:///tmp/theirs")});
    ASSERT_EQ(removed.removed.size(), 1U);
    EXPECT_FALSE(hasLine(run({"list"}), "file:///tmp/theirs Theirs"));
    EXPECT_TRUE(changePlaces({.restored = removed.removed}).problems.empty());
    EXPECT_EQ(textOf(m_file), bytes);
    EXPECT_EQ(run({"list"}), before);
}

} // namespace
} // namespace mac::test
