#include "app/SessionLists.h"
#include "tests/app/SelectedCopies.h"

namespace framekeeper::test {
namespace {

class SessionLists : public SelectedCopies {
protected:
    // Puts files where the login items and the places cannot be read.
    void spoilBoth() const {
        m_desktop.folder.makeFile("data/user-places.xbel", "<xbel>");
        m_desktop.folder.makeFile("config/autostart", "no folder");
    }
};

TEST_F(SessionLists, AreReadWithWhatPreventsIt) {
    for (SessionList const list : {SessionList::LoginItems, SessionList::ToolbarItems}) {
        ListRead const read = accessTo(list).read();
        EXPECT_EQ(read.items.count(), 0U);
        EXPECT_TRUE(read.problem == nil);
    }
    spoilBoth();
    EXPECT_TRUE(text(loginItemsReadAnew().problem).ends_with("config/autostart: Not a directory"));
    EXPECT_NE(text(toolbarItemsReadAnew().problem).find("data/user-places.xbel: "), std::string::npos);
}

TEST_F(SessionLists, AreToldTogetherIfNeitherCanBeRead) {
    spoilBoth();
    for (SessionList const list : {SessionList::LoginItems, SessionList::ToolbarItems})
        (m_controller.*accessTo(list).sync)();
    EXPECT_EQ(notice(), "The login items could not be read: " + text(m_controller.loginItemsProblem()) +
                            "; The places could not be read: " + text(m_controller.placesProblem()));
    keepReadingProblem(m_controller, SessionList::LoginItems, nil);
    EXPECT_TRUE(m_controller.loginItemsProblem() == nil);
    EXPECT_FALSE(m_controller.placesProblem() == nil);
}

TEST_F(SessionLists, TellWhyTheyCouldNotBeWritten) {
    tellWritingProblem(m_controller, SessionList::LoginItems);
    EXPECT_EQ(notice(), "") << "nothing failed";
    m_desktop.folder.makeFile("config/autostart", "no folder");
    NSString const path = makeCopy(m_desktop.folder, "a");
    NSArray const items = NSArray::arrayWithObject_(NSDictionary::dictionaryWithObjectsAndKeys_({path, "Path"}));
    EXPECT_FALSE((m_controller.*accessTo(SessionList::LoginItems).write)(items));
    EXPECT_NE(text(m_controller.writingProblem()).find("Not a directory"), std::string::npos);
    tellWritingProblem(m_controller, SessionList::LoginItems);
    EXPECT_EQ(notice(), "The login items could not be changed: " + text(m_controller.writingProblem()));
    EXPECT_FALSE(m_controller.noticeOffersUndo());
    tellWritingProblem(m_controller, SessionList::ToolbarItems);
    EXPECT_EQ(notice(), "The places could not be changed: " + text(m_controller.writingProblem()));
}

} // namespace
} // namespace framekeeper::test
