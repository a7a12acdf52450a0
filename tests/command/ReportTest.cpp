#include "command/Report.h"
#include "tests/app/Controller.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

NSDictionary recordWith(NSString const& path, NSString const& version) {
    NSNumber const yes = NSNumber::numberWithBool_(YES);
    return NSDictionary::dictionaryWithObjectsAndKeys_(
        {path, "path", yes, "exists", yes, "isAutolaunched", version, "version", version, "versionString"});
}

NSArray someRecords() {
    return NSArray::arrayWithObjects_(
        {recordWith("/ä/Mirror Frame.app", "2.1"), recordWith(pathString("/\xff\""), nil)});
}

TEST(CommandReport, ShowsATableWhoseColumnsStandBelowEachOther) {
    EXPECT_EQ(listing(someRecords(), OutputForm::Table), "VERSION  EXISTS  RUNS  LOGIN  PLACES  PATH\n"
                                                         "2.1      yes     –     yes    –       /ä/Mirror Frame.app\n"
                                                         "–        yes     –     yes    –       /\\xff\"\n");
    EXPECT_EQ(listing(nil, OutputForm::Table), "No copies.\n");
}

TEST(CommandReport, WritesJSONFromWhichEveryByteComesBack) {
    std::string const json = listing(someRecords(), OutputForm::JSON);
    EXPECT_TRUE(json.starts_with("{\"framekeeper\": 1, \"copies\": [\n  {\"path\": \"/ä/Mirror Frame.app\", ")) << json;
    EXPECT_NE(json.find("{\"path\": \"/\xEF\xBF\xBD\\\"\", \"uri\": \"file:///%FF%22\", \"version\": null"),
              std::string::npos)
        << json;
    EXPECT_EQ(listing(NSArray::array(), OutputForm::JSON), "{\"framekeeper\": 1, \"copies\": []}\n");
}

TEST(CommandReport, WritesPathsWithANulBehindEach) {
    EXPECT_EQ(listing(someRecords(), OutputForm::NullSeparated), std::string("/ä/Mirror Frame.app\0/\xff\"\0", 25));
}

TEST(CommandReport, TellsWhereACopyIsNow) {
    std::vector<Outcome> const outcomes{{"/a", Status::Done, "/trash/a", nil},
                                        {"/b", Status::NoSuchCopy, nil, "not there"},
                                        {"/c\x1b", Status::Failed, nil, nil}};
    EXPECT_EQ(results(outcomes, OutputForm::Table), "/trash/a\n");
    EXPECT_EQ(results(outcomes, OutputForm::NullSeparated), std::string("/trash/a\0", 9));
    std::string const json = results(outcomes, OutputForm::JSON);
    EXPECT_NE(json.find("\"newPath\": \"/trash/a\", \"newUri\": \"file:///trash/a\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"path\": \"/c\\u001b\""), std::string::npos) << json;
    EXPECT_EQ(complaints(outcomes), "framekeeper-cli: /b: not there\nframekeeper-cli: /c\\x1b: failed\n");
}

} // namespace
} // namespace framekeeper::test
