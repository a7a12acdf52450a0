#include "platform/desktop/places/PlacesFormat.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

using Texts = std::vector<std::string>;

// "URI|label" of each entry; the reason of a refusal behind an exclamation mark.
Texts entriesIn(PlacesFormat const& format, std::string_view text) {
    Result<PlaceEntries, Failure> const read = format.read(text);
    if (!read.hasValue()) return {"!" + read.problem().reason};
    Texts entries;
    for (PlaceEntry const& entry : read.value().entries)
        entries.push_back(entry.uri + "|" + entry.label);
    return entries;
}

RemovedEntry remove(PlacesFormat const& format, std::string& text, std::size_t index) {
    Result<RemovedEntry, Failure> removed = removeEntry(format, text, index);
    EXPECT_TRUE(removed.hasValue());
    return removed.hasValue() ? removed.takeValue() : RemovedEntry();
}

std::string restored(PlacesFormat const& format, std::string text, RemovedEntry const& entry) {
    Result<void, Failure> const outcome = restoreEntry(format, text, entry);
    return outcome.isDone() ? text : "!" + outcome.problem().reason;
}

std::string withNew(PlacesFormat const& format, std::string text, std::string_view uri, std::string_view label) {
    Result<void, Failure> const outcome = addEntry(format, text, uri, label);
    return outcome.isDone() ? text : "!" + outcome.problem().reason;
}

std::string document(std::string const& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE xbel>\n<xbel>" + body + "</xbel>\n";
}

TEST(Bookmarks, AreLinesOfAURIAndALabel) {
    EXPECT_EQ(entriesIn(BookmarksFormat, "file:///a\nfile:///b%20c Two words \nsftp://host/\xC3\xBC \xC3\xBC"),
              (Texts{"file:///a|", "file:///b%20c|Two words ", "sftp://host/\xC3\xBC|\xC3\xBC"}));
    EXPECT_EQ(entriesIn(BookmarksFormat, ""), Texts{});
}

TEST(Bookmarks, MayHaveTheLineEndsOfOtherSystems) {
    EXPECT_EQ(entriesIn(BookmarksFormat, "file:///a\r\nfile:///b b\r\n"), (Texts{"file:///a|", "file:///b|b"}));
}

TEST(Bookmarks, AreNoOtherLines) {
    constexpr char text[] = "\n# a\n/path\n:\n1:a\nfile:///caf\xE9\nfile:///a \0b\n file:///a\n";
    EXPECT_EQ(entriesIn(BookmarksFormat, std::string_view(text, sizeof text - 1)), Texts{});
}

TEST(Bookmarks, KeepEveryOtherByteWhenOneGoes) {
    std::string text = "# a\r\nfile:///a\nfile:///caf\xE9\nfile:///b b\r\n\n\nfile:///c";
    RemovedEntry const entry = remove(BookmarksFormat, text, 1);
    EXPECT_EQ(entry.text, "file:///b b\r\n");
    EXPECT_EQ(text, "# a\r\nfile:///a\nfile:///caf\xE9\n\n\nfile:///c");
}

TEST(Bookmarks, ComeBackWhereTheyWere) {
    std::string const before = "file:///a\nfile:///b\nfile:///c";
    for (std::size_t const index : {0U, 1U, 2U}) {
        std::string text = before;
        RemovedEntry const entry = remove(BookmarksFormat, text, index);
        EXPECT_EQ(restored(BookmarksFormat, text, entry), before);
    }
}

TEST(Bookmarks, ComeBackBesideTheirNeighbours) {
    std::string text = "file:///a\nfile:///b\nfile:///c c\nfile:///d\n";
    RemovedEntry const entry = remove(BookmarksFormat, text, 2);
    EXPECT_EQ(restored(BookmarksFormat, "file:///new\nfile:///a\nfile:///d\n", entry),
              "file:///new\nfile:///a\nfile:///c c\nfile:///d\n")
        << "before what followed";
    EXPECT_EQ(restored(BookmarksFormat, "file:///x\nfile:///b\nfile:///y", entry),
              "file:///x\nfile:///b\nfile:///c c\nfile:///y");
    EXPECT_EQ(restored(BookmarksFormat, "file:///x\nfile:///d", entry), "file:///x\nfile:///c c\nfile:///d");
    EXPECT_EQ(restored(BookmarksFormat, "file:///x", entry), "file:///x\nfile:///c c\n");
    EXPECT_EQ(restored(BookmarksFormat, "", entry), "file:///c c\n");
}

TEST(Bookmarks, AreAddedAtTheEnd) {
    EXPECT_EQ(withNew(BookmarksFormat, "", "file:///a", ""), "file:///a\n");
    EXPECT_EQ(withNew(BookmarksFormat, "file:///a", "file:///b", "b\nc"), "file:///a\nfile:///b b c\n");
    EXPECT_EQ(withNew(BookmarksFormat, "x\n", "no URI", ""), "!there is no such place");
}

TEST(Bookmarks, AreOnlySoMany) {
    std::string text;
    for (std::size_t count = 0; count < MostPlaces; ++count)
        text += "a:\n";
    EXPECT_EQ(entriesIn(BookmarksFormat, text).size(), MostPlaces);
    EXPECT_EQ(entriesIn(BookmarksFormat, text + "a:\n"), Texts{"!there are too many places"});
    EXPECT_EQ(entriesIn(BookmarksFormat, std::string(1U << 20U, 'a')), Texts{});
}

TEST(XBELPlaces, AreTheBookmarksBelowTheRoot) {
    EXPECT_EQ(
        entriesIn(XBELFormat, document("<bookmark href=\"file:///a&amp;b\"><title>A &lt;<![CDATA[>]]>&#xFC;</title>"
                                       "<desc>no</desc></bookmark><folder><bookmark href=\"file:///in\"/></folder>"
                                       "<!-- <bookmark href=\"file:///no\"/> --><separator/>"
                                       "<bookmark href='trash:/'/><bookmarks href='file:///no'/><bookmark/>")),
        (Texts{"file:///a&b|A <>\xC3\xBC", "trash:/|"}));
}

TEST(XBELPlaces, AreNotThoseThatTheUserHasHidden) {
    char const* const hidden = "<bookmark href=\"file:///a\"><info><metadata owner=\"http://www.kde.org\">\n"
                               "<ID>1/0</ID>\n<IsHidden>true</IsHidden></metadata></info></bookmark>";
    char const* const shown = "<bookmark href=\"file:///b\"><info><metadata owner=\"http://www.kde.org\">"
                              "<IsHidden>false</IsHidden></metadata></info></bookmark>";
    EXPECT_EQ(entriesIn(XBELFormat, document(std::string(hidden) + shown)), Texts{"file:///b|"});
}

TEST(XBELPlaces, KeepEveryOtherByteWhenOneGoes) {
    std::string const before = "\n <info>\r\n<x:y z='1'/></info>\n";
    std::string const entry = "  <bookmark href=\"file:///a>b\" >\n <title>a</title><x><bookmark/></x></bookmark\n>";
    std::string const after = "\n <separator/><!--c--><bookmark href=\"file:///b\"/>\n\n";
    std::string text = document(before + entry + after);
    RemovedEntry const removed = remove(XBELFormat, text, 0);
    EXPECT_EQ(removed.text, "\n" + entry) << "with the blanks before it";
    EXPECT_EQ(text, document(before.substr(0, before.size() - 1) + after));
    EXPECT_EQ(restored(XBELFormat, text, removed), document(before + entry + after));
}

// XML forbids "]]>" in text: a document that held it could no longer be read.
TEST(XBELPlaces, LeaveABlankWhereTheTextsAroundThemMustNotMeet) {
    for (auto const& [before, after] : {std::pair("]]", ">"), std::pair("]", "]>")}) {
        std::string const old = document(before + std::string("\n<bookmark href='a:'/>") + after);
        std::string text = old;
        RemovedEntry const entry = remove(XBELFormat, text, 0);
        EXPECT_EQ(text, document(before + std::string(" ") + after));
        EXPECT_EQ(restored(XBELFormat, text, entry), old);
        EXPECT_EQ(entriesIn(XBELFormat, restored(XBELFormat, text + " ", entry)), Texts{"a:|"}) << "changed meanwhile";
    }
}

TEST(XBELPlaces, LeaveNoBlankElsewhere) {
    for (auto const& [before, after] : {std::pair("]", ">"), std::pair("]]", " >"), std::pair("<![CDATA[]]>", ">")}) {
        std::string text = document(before + std::string("<bookmark href='a:'/>") + after);
        remove(XBELFormat, text, 0);
        EXPECT_EQ(text, document(std::string(before) + after));
    }
}

TEST(XBELPlaces, ComeBackBesideTheirNeighbours) {
    auto const bookmark = [](std::string const& name) { return "\n <bookmark href=\"file:///" + name + "\"/>"; };
    std::string text = document(bookmark("a") + bookmark("b") + bookmark("c") + "\n");
    RemovedEntry const entry = remove(XBELFormat, text, 1);
    EXPECT_EQ(restored(XBELFormat, document(bookmark("x") + bookmark("a") + bookmark("y")), entry),
              document(bookmark("x") + bookmark("a") + bookmark("b") + bookmark("y")));
    EXPECT_EQ(restored(XBELFormat, document(bookmark("x") + bookmark("c") + bookmark("y")), entry),
              document(bookmark("x") + bookmark("b") + bookmark("c") + bookmark("y")));
    EXPECT_EQ(restored(XBELFormat, document(bookmark("x") + "\n"), entry),
              document(bookmark("x") + bookmark("b") + "\n"));
    EXPECT_EQ(restored(XBELFormat, document(bookmark("x") + "<!--\n"), entry).front(), '!') << "not well-formed";
}

TEST(XBELPlaces, AreAddedAtTheEnd) {
    std::string const text = withNew(XBELFormat, std::string(XBELFormat.emptyFile), "file:///a&b", "\"<A>\"\n");
    EXPECT_EQ(entriesIn(XBELFormat, text), Texts{"file:///a&b|\"<A>\" "});
    EXPECT_TRUE(text.ends_with("\n <bookmark href=\"file:///a&amp;b\">\n  <title>&quot;&lt;A&gt;&quot; </title>\n"
                               " </bookmark>\n</xbel>\n"))
        << text;
    EXPECT_EQ(withNew(XBELFormat, "<xbel/>", "file:///a", ""), "!the entry cannot be put back");
}

TEST(XBELPlaces, AreNotReadFromOtherDocuments) {
    std::string const withNUL = document(std::string("a\0b", 3));
    std::vector<std::string> const texts{"",
                                         "<xbel>",
                                         "<xbel></xbel",
                                         "<html/>",
                                         "<xbel/><xbel/>",
                                         document("<bookmark>"),
                                         document("&no;"),
                                         document("<bookmark href=\"file:///caf\xE9\"/>"),
                                         withNUL,
                                         document("<a></b>"),
                                         document("<bookmark href=\"a\" href=\"b\"/>")};
    for (std::string const& text : texts)
        EXPECT_EQ(entriesIn(XBELFormat, text).front().front(), '!') << text;
}

TEST(XBELPlaces, AreNotReadFromOtherEncodings) {
    std::string const latin = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><xbel><bookmark href=\"a:\"/></xbel>";
    EXPECT_EQ(entriesIn(XBELFormat, latin), Texts{"!it is not in UTF-8"});
    std::string wide = "\xFF\xFE";
    for (char const byte : std::string_view("<xbel></xbel>"))
        wide.append({byte, '\0'});
    EXPECT_EQ(entriesIn(XBELFormat, wide), Texts{"!it is not in UTF-8"});
    EXPECT_EQ(entriesIn(XBELFormat, "\xEF\xBB\xBF" + document("<bookmark href=\"a:\"/>")), Texts{"a:|"});
}

TEST(XBELPlaces, AreNotReadWhereEntitiesAreDefined) {
    EXPECT_EQ(entriesIn(XBELFormat, "<!DOCTYPE xbel [<!ENTITY a \"b\">]><xbel><bookmark href=\"file:///&a;\"/></xbel>"),
              Texts{"!it defines entities"});
    EXPECT_EQ(entriesIn(XBELFormat, "<!DOCTYPE xbel PUBLIC \"+//X//DTD a//EN\" \"http://x/?a>b\"><xbel>"
                                    "<bookmark href=\"a:\"/></xbel>"),
              Texts{"a:|"});
}

TEST(XBELPlaces, AreOnlySoManyAndSoDeep) {
    std::string many;
    for (std::size_t count = 0; count < MostPlaces; ++count)
        many += "<bookmark href='a:'/>";
    EXPECT_EQ(entriesIn(XBELFormat, document(many)).size(), MostPlaces);
    EXPECT_EQ(entriesIn(XBELFormat, document(many + "<bookmark/>")), Texts{"!there are too many places"});
    std::string crowded = "<bookmark href='a:'";
    for (int number = 1; number < 100; ++number)
        crowded += " a" + std::to_string(number) + "=''";
    EXPECT_EQ(entriesIn(XBELFormat, document(crowded + "/>")), Texts{"a:|"});
    EXPECT_EQ(entriesIn(XBELFormat, document(crowded + " b=''/>")), Texts{"!a tag has too many attributes"});
    // The parser's time would grow with the square of their number.
    for (int number = 100; number < 300'000; ++number)
        crowded += " a" + std::to_string(number) + "=''";
    EXPECT_EQ(entriesIn(XBELFormat, document(crowded + "/>")), Texts{"!a tag has too many attributes"});
    std::string deep;
    for (int depth = 0; depth < 100'000; ++depth)
        deep += "<a>";
    EXPECT_EQ(entriesIn(XBELFormat, document(deep)), Texts{"!elements are nested too deep"});
}

} // namespace
} // namespace mac::test
