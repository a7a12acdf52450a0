#include "platform/preferences/ToolbarItemsStore.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/preferences/PreferenceHome.h"
#include "tests/support/DiskContents.h"
#include "tests/support/ObjectTexts.h"

namespace mac::test {
namespace {

using Texts = std::vector<std::string>;

constexpr char UserPlaces[] = "<!DOCTYPE xbel>\n<xbel>\n <bookmark href=\"file:///kde/Mirror%20Frame.app\">"
                              "<title>K</title></bookmark>\n <bookmark href=\"remote:/\"/>\n</xbel>\n";

NSDictionary itemOfType(NSString const& text, int type) {
    NSDictionary const data = NSDictionary::dictionaryWithObjectsAndKeys_(
        {text, "_CFURLString", NSNumber::numberWithInt_(type), "_CFURLStringType"});
    return NSDictionary::dictionaryWithObject_forKey_(data, "file-data");
}

class ToolbarItemsStoreTest : public PreferenceHome {
protected:
    std::string const& bookmarks(std::string_view contents) const {
        m_folder.makeFile("config/gtk-3.0/bookmarks", contents);
        return m_bookmarks;
    }
    NSMutableArray read(NSArray const& kept = NSArray::array()) {
        NativeItems const read = m_store.read(kept);
        EXPECT_FALSE(read.problem);
        return NSMutableArray::arrayWithArray_(read.items);
    }
    void write(NSArray const& items) { EXPECT_TRUE(m_store.write(items).isDone()); }

    static Texts urls(NSArray const& items) {
        Texts urls;
        for (id const& item : items)
            urls.push_back(text(item.valueForKeyPath_("file-data._CFURLString")));
        return urls;
    }

    std::string const m_bookmarks{m_folder.path("config/gtk-3.0/bookmarks")};
    std::string const m_userPlaces{m_folder.path("data/user-places.xbel")};
    ToolbarItemsStore m_store{};

private:
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_home{"HOME", m_folder.makeFolder("home")};
    EnvironmentVariable const m_desktop{"XDG_CURRENT_DESKTOP", "XFCE"};
};

TEST_F(ToolbarItemsStoreTest, AnswersThePlacesThatAreFilesHere) {
    bookmarks("file:///a/Mirror%20Frame.app Mirror\nsftp://host/Mirror%20Frame.app\nfile://host/a\n"
              "file://localhost/b;c\xC3\xBC%zz%41\n");
    m_folder.makeFile("data/user-places.xbel", UserPlaces);
    NSArray const items = read(NSArray::arrayWithObject_("kept"));
    ASSERT_EQ(items.count(), 4U);
    NSDictionary const first = as<NSDictionary>(items.objectAtIndex_(0));
    NSMutableDictionary const expected =
        NSMutableDictionary::dictionaryWithDictionary_(itemOfType("file:///a/Mirror%20Frame.app", 15));
    expected.setObject_forKey_("Mirror", "label");
    expected.setObject_forKey_("gtk", "store");
    EXPECT_TRUE(first.isEqual_(expected)) << text(first);
    EXPECT_EQ(text(items.objectAtIndex_(1).valueForKeyPath_("file-data._CFURLString")),
              "file://localhost/b%3Bc%C3%BC%25zz%41");
    EXPECT_TRUE(items.objectAtIndex_(1).valueForKey_("label") == nil);
    EXPECT_TRUE(items.objectAtIndex_(2).valueForKey_("store").isEqual_("kde"));
    EXPECT_TRUE(items.objectAtIndex_(3).isEqual_("kept"));
}

TEST_F(ToolbarItemsStoreTest, AnswersNewObjectsEachTime) {
    bookmarks("file:///a\n");
    NSArray const first = read();
    NSArray const second = read();
    EXPECT_TRUE(first.isEqual_(second));
    EXPECT_FALSE(isSame(first.objectAtIndex_(0), second.objectAtIndex_(0)));
}

TEST_F(ToolbarItemsStoreTest, AnswersWhatCanBeReadBesideAFileThatCannot) {
    bookmarks("file:///a\n");
    m_folder.makeFile("data/user-places.xbel", "<xbel>");
    NativeItems const read = m_store.read(NSArray::array());
    ASSERT_TRUE(read.problem);
    std::string const why = m_userPlaces + ": The places in it cannot be used as they are written: ";
    EXPECT_EQ(read.problem->reason, why + "Premature end of document.");
    m_folder.makeFile("data/user-places.xbel", "<html/>");
    NativeItems const other = m_store.read(NSArray::array());
    ASSERT_TRUE(other.problem);
    EXPECT_EQ(other.problem->reason, why + "it is not a list of bookmarks");
    m_folder.makeFile("data/user-places.xbel", "<xbel>");
    EXPECT_EQ(urls(read.items), Texts{"file:///a"});
    EXPECT_TRUE(m_store.write(NSArray::array()).isDone()) << "the file that cannot be read has nothing to change";
    EXPECT_EQ(textOf(m_userPlaces), "<xbel>");
    EXPECT_EQ(textOf(m_bookmarks), "");
}

TEST_F(ToolbarItemsStoreTest, RemovesWhatTheArrayLacksAndNothingElse) {
    bookmarks("file:///a\nsftp://host/\nfile:///b B\nfile:///b B\n");
    m_folder.makeFile("data/user-places.xbel", UserPlaces);
    NSMutableArray const items = read();
    ASSERT_EQ(items.count(), 4U);
    items.removeObjectAtIndex_(3);
    items.removeObjectAtIndex_(1);
    write(items);
    EXPECT_EQ(textOf(m_bookmarks), "file:///a\nsftp://host/\nfile:///b B\n");
    EXPECT_EQ(textOf(m_userPlaces), "<!DOCTYPE xbel>\n<xbel>\n <bookmark href=\"remote:/\"/>\n</xbel>\n");
}

TEST_F(ToolbarItemsStoreTest, LeavesPlacesThatItHasNotRead) {
    bookmarks("file:///a\nfile:///b\n");
    NSMutableArray const items = read();
    bookmarks("file:///new\nfile:///a\nfile:///b\n");
    items.removeObjectAtIndex_(0);
    write(items);
    EXPECT_EQ(textOf(m_bookmarks), "file:///new\nfile:///b\n");
    write(NSArray::array());
    EXPECT_EQ(textOf(m_bookmarks), "file:///new\n");
    write(NSArray::array());
    EXPECT_EQ(textOf(m_bookmarks), "file:///new\n") << "not read to this day";
}

TEST_F(ToolbarItemsStoreTest, PutsBackWhatItRemovedAsItWas) {
    std::string const lines = "file:///a\r\nfile:///b \xC3\xBC\r\nfile:///c\r\n";
    bookmarks(lines);
    m_folder.makeFile("data/user-places.xbel", UserPlaces);
    NSArray const all = read();
    NSMutableArray const items = NSMutableArray::arrayWithArray_(all);
    items.removeObjectAtIndex_(3);
    items.removeObjectAtIndex_(1);
    write(items);
    NSMutableArray const now = read();
    ASSERT_EQ(now.count(), 2U);
    now.addObject_(all.objectAtIndex_(1));
    now.addObject_(all.objectAtIndex_(3));
    write(now);
    EXPECT_EQ(textOf(m_bookmarks), lines);
    EXPECT_EQ(textOf(m_userPlaces), UserPlaces);
    EXPECT_TRUE(read().isEqual_(all));
}

TEST_F(ToolbarItemsStoreTest, PutsBackWithoutReadingInBetween) {
    bookmarks("file:///a\nfile:///b\n");
    NSArray const all = read();
    write(NSArray::array());
    EXPECT_EQ(textOf(m_bookmarks), "");
    write(all);
    EXPECT_EQ(textOf(m_bookmarks), "file:///a\nfile:///b\n");
    write(all);
    EXPECT_EQ(textOf(m_bookmarks), "file:///a\nfile:///b\n") << "there is nothing to change";
}

TEST_F(ToolbarItemsStoreTest, AddsFileURLsToTheDesktopsOwnList) {
    write(NSArray::arrayWithObject_(itemOfType("file:///a%20b", 15)));
    EXPECT_EQ(textOf(m_bookmarks), "file:///a%20b\n");
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "KDE");
    NSMutableArray const items = read();
    items.addObject_(itemOfType("file:///k", 15));
    write(items);
    NSArray const now = read();
    EXPECT_EQ(urls(now), (Texts{"file:///a%20b", "file:///k"}));
    EXPECT_TRUE(now.objectAtIndex_(1).valueForKey_("store").isEqual_("kde"));
    EXPECT_TRUE(isThere(m_userPlaces));
}

TEST_F(ToolbarItemsStoreTest, KeepsWhatHasNoNativeForm) {
    NSMutableDictionary const withMore = NSMutableDictionary::dictionaryWithDictionary_(itemOfType("file:///a", 15));
    withMore.setObject_forKey_("x", "other");
    NSMutableDictionary const elsewhere = NSMutableDictionary::dictionaryWithDictionary_(itemOfType("file:///a", 15));
    elsewhere.setObject_forKey_("none", "store");
    NSMutableDictionary const oddLabel = NSMutableDictionary::dictionaryWithDictionary_(itemOfType("file:///a", 15));
    oddLabel.setObject_forKey_(NSNumber::numberWithInt_(1), "label");
    NSArray const items = NSArray::arrayWithObjects_({"text", itemOfType("/a", 0), itemOfType("sftp://a/b", 15),
                                                      itemOfType("file:///a b", 15), NSDictionary::dictionary(),
                                                      withMore, elsewhere, oddLabel});
    NativeWriting const written = m_store.write(items);
    EXPECT_TRUE(written.isDone());
    EXPECT_TRUE(written.kept.isEqual_(items)) << text(written.kept);
    EXPECT_FALSE(isThere(m_bookmarks));
}

TEST_F(ToolbarItemsStoreTest, SaysWhereItCouldNotWrite) {
    bookmarks("file:///a first\n");
    read();
    bookmarks("file:///a second\n");
    EXPECT_FALSE(m_store.write(NSArray::array()).isDone());
    EXPECT_EQ(textOf(m_bookmarks), "file:///a second\n");
}

TEST_F(ToolbarItemsStoreTest, IsTheValueOfTheFindersKey) {
    bookmarks("file:///a\nfile:///b\n");
    ASSERT_TRUE(synchronize("com.apple.finder"));
    NSMutableArray const items =
        NSMutableArray::arrayWithArray_(as<NSArray>(valueIn("com.apple.finder", "FXToolbarItems")));
    ASSERT_EQ(items.count(), 2U);
    items.removeObjectAtIndex_(0);
    items.addObject_(itemOfType("/plain", 0));
    setValueIn("com.apple.finder", "FXToolbarItems", items);
    EXPECT_TRUE(synchronize("com.apple.finder"));
    EXPECT_EQ(textOf(m_bookmarks), "file:///b\n");
    EXPECT_TRUE(as<NSArray>(valueIn("com.apple.finder", "FXToolbarItems")).isEqual_(items));
    EXPECT_NE(contentsOf(file("com.apple.finder")).find("/plain"), std::string::npos);
    m_folder.makeFile("data/user-places.xbel", "<xbel>");
    EXPECT_FALSE(synchronize("com.apple.finder"));
    EXPECT_TRUE(as<NSArray>(valueIn("com.apple.finder", "FXToolbarItems")).isEqual_(items));
}

} // namespace
} // namespace mac::test
