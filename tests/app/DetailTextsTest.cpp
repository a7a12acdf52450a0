#include "app/DetailFacts.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/app/Controller.h"
#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

std::string shownOf(DetailFacts const& facts, char const* key) {
    return text(detailValues(facts).objectForKey_(NSString::stringWithUTF8String_(key)));
}

DetailFacts factsOfACopy() {
    return {.record = NSDictionary::dictionaryWithObjectsAndKeys_(
                {"/a/Mirror Frame.app", "path", "2.1 (210)", "versionString", NSNumber::numberWithBool_(YES), "exists",
                 NSNumber::numberWithBool_(YES), "isAutolaunched", NSNumber::numberWithBool_(YES), "isInToolbar"})};
}

TEST(DetailTexts, AreNoneWithoutACopy) {
    NSDictionary const values = detailValues({});
    EXPECT_FALSE(flag(values, "hasCopy"));
    EXPECT_EQ(values.count(), 1U);
}

TEST(DetailTexts, SayWhatIsNotKnownYet) {
    DetailFacts const facts = factsOfACopy();
    EXPECT_EQ(shownOf(facts, "size"), "Adding up…");
    EXPECT_EQ(shownOf(facts, "created"), "–");
    EXPECT_EQ(shownOf(facts, "volume"), "–");
    EXPECT_EQ(shownOf(facts, "process"), "Not running");
    EXPECT_EQ(shownOf(facts, "loginItem"), "Starts at login");
    EXPECT_EQ(shownOf(facts, "place"), "In the places");
    EXPECT_TRUE(flag(detailValues(facts), "canCompare"));
}

TEST(DetailTexts, TellTheFoldersPathWithoutTheSlashAtItsEnd) {
    EXPECT_EQ(shownOf(factsOfACopy(), "path"), "/a/Mirror Frame.app");
    for (char const* const path : {"/a/Mirror Frame.app/", "/a/Mirror Frame.app//"})
        EXPECT_EQ(shownOf({.record = NSDictionary::dictionaryWithObjectsAndKeys_(
                               {NSString::stringWithUTF8String_(path), "path"})},
                          "path"),
                  "/a/Mirror Frame.app");
    EXPECT_EQ(shownOf({.record = NSDictionary::dictionaryWithObjectsAndKeys_({"/", "path"})}, "path"), "/");
}

TEST(DetailTexts, CountItemsAndWhatCouldNotBeRead) {
    DetailFacts facts = factsOfACopy();
    facts.size = TreeSize{.allocated = 4096, .contents = 10, .items = 1};
    EXPECT_NE(shownOf(facts, "size").find("(1 item)"), std::string::npos) << shownOf(facts, "size");
    facts.size = TreeSize{.allocated = 4096, .contents = 10, .items = 7, .unreadable = 2};
    EXPECT_NE(shownOf(facts, "size").find("(7 items), 2 items could not be read"), std::string::npos);
    facts.size = SystemError{.code = EACCES, .operation = "open"};
    EXPECT_EQ(shownOf(facts, "size"), "–");
}

TEST(DetailTexts, TellTheProcessAndTheLoginItemsFile) {
    DetailFacts facts = factsOfACopy();
    facts.session.process = 41;
    facts.session.loginItemFile = "/home/anna/.config/autostart/mirror.desktop";
    EXPECT_EQ(shownOf(facts, "process"), "Process 41");
    EXPECT_EQ(shownOf(facts, "loginItem"), "mirror.desktop");
    EXPECT_TRUE(flag(detailValues(facts), "hasLoginItem"));
    EXPECT_FALSE(flag(detailValues(facts), "hasProcess")) << "the program is not known";
}

TEST(DetailTexts, SayOfAListThatCouldNotBeReadOnlyWhatIsKnown) {
    DetailFacts facts = factsOfACopy();
    facts.loginItemsProblem = "/a: Permission denied";
    facts.placesProblem = "/b: The file is damaged";
    EXPECT_EQ(shownOf(facts, "loginItem"), "Starts at login");
    EXPECT_EQ(shownOf(facts, "place"), "In the places");
    facts.record = NSDictionary::dictionaryWithObjectsAndKeys_({"/a/Mirror Frame.app", "path"});
    EXPECT_EQ(shownOf(facts, "loginItem"), "Not known: /a: Permission denied");
    EXPECT_EQ(shownOf(facts, "place"), "Not known: /b: The file is damaged");
}

TEST(DetailTexts, TellHowFarCopiesWereCompared) {
    DetailFacts facts = factsOfACopy();
    facts.comparison = {.stage = Comparison::Stage::UnderWay, .compared = 3, .others = 10};
    EXPECT_EQ(shownOf(facts, "equalCopies"), "Compared 3 of 10");
    EXPECT_TRUE(flag(detailValues(facts), "isComparing"));
    facts.comparison.stage = Comparison::Stage::Done;
    EXPECT_EQ(shownOf(facts, "equalCopies"), "No other copy is the same");
    facts.comparison.equal = {"/b", "/c"};
    EXPECT_EQ(shownOf(facts, "equalCopies"), "/b\n/c");
}

TEST(DetailTexts, TellTheCopiesThatCouldNotBeCompared) {
    DetailFacts facts = factsOfACopy();
    facts.comparison = {.stage = Comparison::Stage::Done, .compared = 3, .others = 3, .unreadable = 1};
    EXPECT_EQ(shownOf(facts, "equalCopies"), "No other copy that could be read is the same\n1 copy could not be read");
    facts.comparison.unreadable = 3;
    EXPECT_EQ(shownOf(facts, "equalCopies"), "3 copies could not be read");
    facts.comparison.unreadable = 2;
    facts.comparison.equal = {"/b"};
    EXPECT_EQ(shownOf(facts, "equalCopies"), "/b\n2 copies could not be read");
}

TEST(DetailTexts, ListTheFirstOfVeryManyEqualCopies) {
    DetailFacts facts = factsOfACopy();
    facts.comparison = {.stage = Comparison::Stage::Done, .compared = 50, .others = 50};
    facts.comparison.equal.assign(20, "/b");
    EXPECT_EQ(shownOf(facts, "equalCopies").find("more"), std::string::npos);
    facts.comparison.equal.assign(50, "/b");
    std::string const shown = shownOf(facts, "equalCopies");
    EXPECT_EQ(std::ranges::count(shown, '\n'), 20);
    EXPECT_EQ(shown.substr(shown.rfind('\n')), "\nand 30 more");
}

} // namespace
} // namespace framekeeper::test
