#include "platform/desktop/places/Places.h"
#include "platform/system/FileWriting.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::test {
namespace {

using Texts = std::vector<std::string>;

constexpr char UserPlaces[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE xbel>\n<xbel>\n"
                              " <bookmark href=\"file:///kde\">\n  <title>K</title>\n </bookmark>\n"
                              " <separator/>\n <bookmark href=\"trash:/\"/>\n</xbel>\n";

std::string textsOf(std::vector<PlacesProblem> const& problems) {
    std::string texts;
    for (PlacesProblem const& problem : problems)
        texts += problem.file + ": " + (problem.cause ? problem.cause->text() : problem.reason) + "\n";
    return texts;
}

class Places : public testing::Test {
protected:
    std::string const& bookmarks(std::string_view text) const {
        m_folder.makeFile("config/gtk-3.0/bookmarks", text);
        return m_bookmarks;
    }
    std::string const& userPlaces(std::string_view text = UserPlaces) const {
        m_folder.makeFile("data/user-places.xbel", text);
        return m_userPlaces;
    }
    static Texts uris() {
        Texts uris;
        for (Place const& place : readPlaces().places)
            uris.push_back(place.uri);
        return uris;
    }
    // REQUIRES: there is such a place.
    static Place placeOf(std::string const& uri) {
        std::vector<Place> const places = readPlaces().places;
        return *std::ranges::find(places, uri, &Place::uri);
    }
    // The problems' texts.
    static std::string change(PlacesChange const& change, PlacesSteps const& steps = {}) {
        return textsOf(changePlaces(change, steps).problems);
    }

    TemporaryFolder const m_folder{};
    std::string const m_bookmarks{m_folder.path("config/gtk-3.0/bookmarks")};
    std::string const m_former{m_folder.path("home/.gtk-bookmarks")};
    std::string const m_userPlaces{m_folder.path("data/user-places.xbel")};

private:
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_home{"HOME", m_folder.makeFolder("home")};
};

TEST_F(Places, AreNoneWithoutFiles) {
    KnownPlaces const known = readPlaces();
    EXPECT_TRUE(known.places.empty());
    EXPECT_TRUE(known.problems.empty());
}

TEST_F(Places, AreReadFromBothLists) {
    bookmarks("file:///gtk%20a A label\nfile:///b\n");
    userPlaces();
    KnownPlaces const known = readPlaces();
    EXPECT_EQ(textsOf(known.problems), "");
    ASSERT_EQ(uris(), (Texts{"file:///gtk%20a", "file:///b", "file:///kde", "trash:/"}));
    Place const& first = known.places[0];
    EXPECT_EQ(first.list, PlacesList::GTK);
    EXPECT_EQ(first.label, "A label");
    EXPECT_EQ(first.file, m_bookmarks);
    EXPECT_EQ(first.text, "file:///gtk%20a A label\n");
    EXPECT_EQ(known.places[2].list, PlacesList::KDE);
    EXPECT_EQ(known.places[2].file, m_userPlaces);
}

TEST_F(Places, AreReadFromTheFormerFileWhileTheOtherIsMissingOrEmpty) {
    m_folder.makeFile("home/.gtk-bookmarks", "file:///former\n");
    EXPECT_EQ(uris(), Texts{"file:///former"});
    bookmarks("");
    EXPECT_EQ(uris(), Texts{"file:///former"});
    bookmarks("file:///new\n");
    EXPECT_EQ(uris(), Texts{"file:///new"});
}

TEST_F(Places, AreRemovedFromTheFileThatHoldsThem) {
    bookmarks("file:///a\nfile:///b\n");
    userPlaces();
    EXPECT_EQ(change({.removed = {placeOf("file:///b"), placeOf("file:///kde")}}), "");
    EXPECT_EQ(textOf(m_bookmarks), "file:///a\n");
    EXPECT_EQ(textOf(m_userPlaces), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE xbel>\n<xbel>\n"
                                    " <separator/>\n <bookmark href=\"trash:/\"/>\n</xbel>\n");
    m_folder.makeFile("config/gtk-3.0/bookmarks", "");
    m_folder.makeFile("home/.gtk-bookmarks", "file:///former\nfile:///x\n");
    EXPECT_EQ(change({.removed = {placeOf("file:///former")}}), "");
    EXPECT_EQ(textOf(m_former), "file:///x\n");
}

TEST_F(Places, ComeBackAsTheyWere) {
    std::string const lines = "file:///a\r\n\nfile:///b b\nfile:///b b\nfile:///c";
    bookmarks(lines);
    userPlaces();
    PlacesOutcome const outcome =
        changePlaces({.removed = {placeOf("file:///a"), placeOf("file:///b"), placeOf("file:///c"), placeOf("trash:/"),
                                  placeOf("file:///kde")}});
    ASSERT_EQ(outcome.removed.size(), 5U);
    EXPECT_EQ(textOf(m_bookmarks), "\nfile:///b b\n");
    EXPECT_EQ(change({.restored = outcome.removed}), "");
    EXPECT_EQ(textOf(m_bookmarks), lines);
    EXPECT_EQ(textOf(m_userPlaces), UserPlaces);
}

TEST_F(Places, ComeBackWhereTheFileIsGone) {
    bookmarks("file:///a a\n");
    userPlaces();
    PlacesOutcome const outcome = changePlaces({.removed = {placeOf("file:///a"), placeOf("file:///kde")}});
    ASSERT_EQ(::unlink(m_bookmarks.c_str()), 0);
    ASSERT_EQ(::unlink(m_userPlaces.c_str()), 0);
    EXPECT_EQ(change({.restored = outcome.removed}), "");
    EXPECT_EQ(textOf(m_bookmarks), "file:///a a\n");
    EXPECT_EQ(uris(), (Texts{"file:///a", "file:///kde"}));
}

TEST_F(Places, AreAddedToTheirList) {
    EXPECT_EQ(change({.added = {{PlacesList::GTK, "file:///a", "A"}, {PlacesList::KDE, "file:///k", "K & K"}}}), "");
    EXPECT_EQ(textOf(m_bookmarks), "file:///a A\n");
    EXPECT_EQ(uris(), (Texts{"file:///a", "file:///k"}));
    EXPECT_EQ(placeOf("file:///k").label, "K & K");
}

TEST_F(Places, AreAddedToTheFormerFileWhileThatIsTheOneInUse) {
    m_folder.makeFile("home/.gtk-bookmarks", "file:///former\n");
    EXPECT_EQ(change({.added = {{PlacesList::GTK, "file:///a", ""}}}), "");
    EXPECT_EQ(textOf(m_former), "file:///former\nfile:///a\n");
    EXPECT_FALSE(isThere(m_bookmarks)) << "it would hide the others";
}

TEST_F(Places, ThatAreGoneAlreadyCountAsRemoved) {
    bookmarks("file:///a\nfile:///b\n");
    Place const place = placeOf("file:///a");
    bookmarks("file:///b\n");
    FileStatus const before = fileStatusAtPath(m_bookmarks).value();
    PlacesOutcome const outcome = changePlaces({.removed = {place}});
    EXPECT_TRUE(outcome.problems.empty());
    EXPECT_TRUE(outcome.removed.empty());
    EXPECT_EQ(fileStatusAtPath(m_bookmarks).value(), before) << "nothing is written";
    ASSERT_EQ(::unlink(m_bookmarks.c_str()), 0);
    EXPECT_EQ(change({.removed = {place}}), "");
    EXPECT_FALSE(isThere(m_bookmarks));
}

TEST_F(Places, AreFoundAgainAfterABrowserHasWrittenItsListAnew) {
    userPlaces();
    Place const place = placeOf("file:///kde");
    userPlaces("<xbel><bookmark href='file:///kde'><title>K</title><info/></bookmark></xbel>");
    EXPECT_EQ(change({.removed = {place}}), "");
    EXPECT_EQ(textOf(m_userPlaces), "<xbel></xbel>");
}

TEST_F(Places, AreLeftAloneWhereTheirLabelChanged) {
    bookmarks("file:///a first\n");
    Place const place = placeOf("file:///a");
    bookmarks("file:///a second\n");
    PlacesOutcome const outcome = changePlaces({.removed = {place}});
    ASSERT_EQ(outcome.problems.size(), 1U);
    EXPECT_EQ(outcome.problems[0].kind, PlacesProblem::Kind::Changed);
    EXPECT_EQ(textOf(m_bookmarks), "file:///a second\n");
}

TEST_F(Places, OfOneURIAreToldApartByTheirLabels) {
    bookmarks("file:///a\nfile:///a second\nfile:///a third\n");
    Place place = placeOf("file:///a");
    place.label = "second";
    place.text = "file:///a second\n";
    EXPECT_EQ(change({.removed = {place}}), "");
    EXPECT_EQ(textOf(m_bookmarks), "file:///a\nfile:///a third\n");
}

TEST_F(Places, ThatOthersAddMeanwhileStay) {
    bookmarks("file:///a\nfile:///b\n");
    int calls = 0;
    std::string const others = "file:///a\nfile:///c\n";
    PlacesSteps const steps{[&](std::string const& file) {
        EXPECT_EQ(file, m_bookmarks);
        // By a rename, as browsers do, and the same number of bytes.
        bool const isReplaced = ++calls > 1 || replaceFileAtPath(file, std::as_bytes(std::span(others))).isDone();
        EXPECT_TRUE(isReplaced);
    }};
    EXPECT_EQ(change({.removed = {placeOf("file:///a")}}, steps), "");
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(textOf(m_bookmarks), "file:///c\n");
}

TEST_F(Places, ThatChangeAllTheTimeAreLeftToWhoChangesThem) {
    bookmarks("file:///a\n");
    std::string text = "file:///a\n";
    PlacesSteps const steps{[&](std::string const&) { bookmarks(text += "file:///b\n"); }};
    PlacesOutcome const outcome = changePlaces({.removed = {placeOf("file:///a")}}, steps);
    ASSERT_EQ(outcome.problems.size(), 1U);
    EXPECT_EQ(outcome.problems[0].kind, PlacesProblem::Kind::Changed);
    EXPECT_TRUE(outcome.removed.empty());
    EXPECT_EQ(textOf(m_bookmarks), text);
}

TEST_F(Places, OfAFileThatAppearsMeanwhileStay) {
    int calls = 0;
    PlacesSteps const steps{[&](std::string const&) {
        if (++calls == 1) bookmarks("file:///b\n");
    }};
    EXPECT_EQ(change({.added = {{PlacesList::GTK, "file:///a", ""}}}, steps), "");
    EXPECT_EQ(textOf(m_bookmarks), "file:///b\nfile:///a\n");
}

TEST_F(Places, AreNotWrittenWhereTheFileCannotBeRead) {
    std::string const cut = "<xbel><bookmark href=\"file:///kde\">";
    userPlaces();
    bookmarks("file:///a\n");
    Place const place = placeOf("file:///kde");
    userPlaces(cut);
    KnownPlaces const known = readPlaces();
    EXPECT_EQ(uris(), Texts{"file:///a"}) << "the other list is";
    ASSERT_EQ(known.problems.size(), 1U);
    EXPECT_EQ(known.problems[0].kind, PlacesProblem::Kind::Form);
    EXPECT_EQ(known.problems[0].file, m_userPlaces);
    EXPECT_FALSE(known.problems[0].reason.empty());
    PlacesOutcome const outcome =
        changePlaces({.removed = {placeOf("file:///a"), place}, .added = {{PlacesList::KDE, "file:///b", ""}}});
    EXPECT_TRUE(outcome.removed.empty());
    EXPECT_EQ(outcome.problems.size(), 1U);
    EXPECT_EQ(textOf(m_userPlaces), cut);
    EXPECT_EQ(textOf(m_bookmarks), "file:///a\n") << "a change is made in all files or in none";
}

// The second list is damaged once the first one has been written.
TEST_F(Places, AreAsBeforeWhereALaterListRefuses) {
    std::string const cut = "<xbel><bookmark href=\"file:///kde\">";
    for (bool const isNew : {false, true}) {
        bookmarks("file:///a\n");
        userPlaces();
        PlacesChange const both{.removed = {placeOf("file:///a"), placeOf("file:///kde")},
                                .added = {{PlacesList::GTK, "file:///b", ""}}};
        ASSERT_TRUE(!isNew || ::unlink(m_bookmarks.c_str()) == 0);
        PlacesOutcome const outcome = changePlaces(both, {[&](std::string const& file) {
                                                       if (file == m_userPlaces) userPlaces(cut);
                                                   }});
        EXPECT_TRUE(outcome.removed.empty());
        ASSERT_EQ(outcome.problems.size(), 1U);
        EXPECT_EQ(outcome.problems[0].kind, PlacesProblem::Kind::Form);
        EXPECT_EQ(isThere(m_bookmarks), !isNew);
        EXPECT_TRUE(isNew || textOf(m_bookmarks) == "file:///a\n") << textOf(m_bookmarks);
        EXPECT_EQ(textOf(m_userPlaces), cut);
    }
}

// A browser has written the first list when the second one refuses.
TEST_F(Places, ThatABrowserWroteMeanwhileAreNotTakenBack) {
    bookmarks("file:///a\n");
    userPlaces();
    PlacesChange const both{.removed = {placeOf("file:///a"), placeOf("file:///kde")}};
    PlacesOutcome const outcome = changePlaces(both, {[&](std::string const& file) {
                                                   if (file != m_userPlaces) return;
                                                   bookmarks("file:///c\n");
                                                   userPlaces("<xbel>");
                                               }});
    ASSERT_EQ(outcome.removed.size(), 1U) << "it can still be put back";
    EXPECT_EQ(outcome.removed[0].place.uri, "file:///a");
    EXPECT_EQ(outcome.problems.size(), 2U);
    EXPECT_EQ(textOf(m_bookmarks), "file:///c\n");
}

TEST_F(Places, AreNotReadFromHugeFiles) {
    bookmarks("");
    ASSERT_EQ(::truncate(m_bookmarks.c_str(), off_t{1} << 40), 0);
    KnownPlaces const known = readPlaces();
    ASSERT_EQ(known.problems.size(), 1U);
    EXPECT_EQ(known.problems[0].kind, PlacesProblem::Kind::System);
    EXPECT_TRUE(known.problems[0].cause->is(EFBIG));
    EXPECT_EQ(changePlaces({.added = {{PlacesList::GTK, "file:///a", ""}}}).problems.size(), 1U);
    EXPECT_EQ(fileStatusAtPath(m_bookmarks).value().size, std::uint64_t{1} << 40);
}

TEST_F(Places, AreNotReadFromPipesAndFolders) {
    m_folder.makeFolder("config/gtk-3.0/bookmarks");
    m_folder.makeFolder("data");
    ASSERT_EQ(::mkfifo(m_userPlaces.c_str(), 0600), 0);
    EXPECT_EQ(readPlaces().problems.size(), 2U);
}

TEST_F(Places, KeepTheLinkToTheirFileAndItsPermissions) {
    std::string const real = m_folder.makeFile("dotfiles/bookmarks", "file:///a\nfile:///b\n");
    ASSERT_EQ(::chmod(real.c_str(), 0640), 0);
    m_folder.makeFolder("config/gtk-3.0");
    ASSERT_EQ(::symlink("../../dotfiles/bookmarks", m_bookmarks.c_str()), 0);
    EXPECT_EQ(change({.removed = {placeOf("file:///a")}}), "");
    struct stat status {};
    ASSERT_EQ(::lstat(m_bookmarks.c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    ASSERT_EQ(::lstat(real.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
    EXPECT_EQ(textOf(real), "file:///b\n");
    EXPECT_EQ(namesIn(m_folder.path("dotfiles")), Texts{"bookmarks"});
}

TEST_F(Places, StayWhereTheyMayNotBeWritten) {
    bookmarks("file:///a\n");
    Place const place = placeOf("file:///a");
    OrdinaryUser::own(m_folder.path("config/gtk-3.0"));
    OrdinaryUser::own(m_bookmarks);
    OrdinaryUser::own(m_folder.path("config"));
    OrdinaryUser::own(m_folder.path());
    ASSERT_EQ(::chmod(m_folder.path("config/gtk-3.0").c_str(), 0500), 0);
    PlacesOutcome outcome;
    {
        OrdinaryUser const user;
        outcome = changePlaces({.removed = {place}});
    }
    ASSERT_EQ(::chmod(m_folder.path("config/gtk-3.0").c_str(), 0700), 0);
    ASSERT_EQ(outcome.problems.size(), 1U);
    EXPECT_EQ(outcome.problems[0].kind, PlacesProblem::Kind::System);
    EXPECT_TRUE(outcome.problems[0].cause->is(EACCES));
    EXPECT_EQ(textOf(m_bookmarks), "file:///a\n");
}

} // namespace
} // namespace mac::test
