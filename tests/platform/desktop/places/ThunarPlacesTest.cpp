#include "platform/desktop/places/Places.h"
#include "tests/platform/desktop/ThunarDesktop.h"
#include "tests/support/Commands.h"
#include "tests/support/DiskContents.h"
#include <algorithm>

// Places as the programs read and write them that they are meant for.

namespace mac::test {
namespace {

class PlacesOfThunar : public ThunarDesktop {
protected:
    static std::vector<std::string> uris() {
        std::vector<std::string> uris;
        for (Place const& place : readPlaces().places)
            uris.push_back(place.uri);
        return uris;
    }
    static bool isDone(PlacesChange const& change) { return changePlaces(change).problems.empty(); }
};

TEST_F(PlacesOfThunar, AreShownAsTheyAreWritten) {
    Place const place{PlacesList::GTK, fileURIOfPath(m_folder.makeFolder("a folder/\xC3\xBC")), "Mirror Frame 2.1"};
    ASSERT_TRUE(isDone({.added = {place}}));
    ASSERT_TRUE(m_browser.openFolders({m_folder.makeFolder("shown")}).isDone());
    EXPECT_TRUE(showsElement("table cell Mirror Frame 2.1"));
    PlacesOutcome const removed = changePlaces({.removed = readPlaces().places});
    EXPECT_EQ(removed.removed.size(), 1U);
    EXPECT_TRUE(VirtualSession::hidesElement("table cell Mirror Frame 2.1")) << "Thunar watches the file";
    EXPECT_TRUE(isDone({.restored = removed.removed}));
    EXPECT_TRUE(showsElement("table cell Mirror Frame 2.1"));
}

TEST_F(PlacesOfThunar, AreReadAsThunarWritesThem) {
    ASSERT_TRUE(isDone({.added = {{PlacesList::GTK, "file:///tmp", "before"}}}));
    std::string const item = m_folder.makeFolder("shown/caf\xC3\xA9 & \"b\"");
    ASSERT_TRUE(m_browser.revealItems({item}).isDone());
    ASSERT_TRUE(showsElement("status bar \"caf\xC3\xA9 & \"b\"\""));
    // Control-D makes a place of the selected folder; 40 is the key D.
    outputOf({PRESS_KEY, "40", "300", "200"});
    EXPECT_TRUE(waitUntil([] { return uris().size() == 2; }));
    EXPECT_EQ(uris().back(), "file://" + m_folder.path("shown") + "/caf%C3%A9%20&%20%22b%22");
    EXPECT_TRUE(isDone({.removed = {readPlaces().places.at(1)}}));
    EXPECT_EQ(textOf(m_folder.path("config/gtk-3.0/bookmarks")), "file:///tmp before\n");
    // For some seconds after it has written the file, Thunar takes no notice of what others write.
    ASSERT_TRUE(m_browser.quit().isDone());
    ASSERT_TRUE(m_browser.openFolders({m_folder.makeFolder("others")}).isDone());
    EXPECT_TRUE(showsElement("table cell before"));
    EXPECT_TRUE(VirtualSession::hidesElement("table cell caf\xC3\xA9"));
    EXPECT_EQ(textOf(m_folder.path("config/gtk-3.0/bookmarks")), "file:///tmp before\n");
}

TEST_F(PlacesOfThunar, AreShownByGTKsOwnList) {
    std::string const folder = fileURIOfPath(m_folder.makeFolder("a folder/\xC3\xBC"));
    ASSERT_TRUE(isDone({.added = {{PlacesList::GTK, folder, "Mirror Frame 2.1"},
                                  {PlacesList::GTK, "file:///tmp", ""},
                                  {PlacesList::GTK, "file:///usr", "U & <V>"}}}));
    EXPECT_EQ(outputOf({LIST_GTK_PLACES, "3"}), folder + " Mirror Frame 2.1\nfile:///tmp tmp\nfile:///usr U & <V>\n");
}

} // namespace
} // namespace mac::test
