#include "command/CommandLine.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

using Words = std::vector<std::string>;

TEST(CommandLine, ReadsAVerbWithItsPathsAndOptions) {
    auto const line = readCommandLine({"delete", "--json", "/a", "-y", "--", "-b"});
    ASSERT_TRUE(line.hasValue());
    EXPECT_EQ(line.value().verb, Verb::Delete);
    EXPECT_EQ(line.value().form, OutputForm::JSON);
    EXPECT_EQ(line.value().confirmation, Confirmation::IsGiven);
    EXPECT_EQ(line.value().paths, (Words{"/a", "-b"}));
}

TEST(CommandLine, TakesASingleDashForAPath) {
    auto const line = readCommandLine({"info", "-"});
    ASSERT_TRUE(line.hasValue());
    EXPECT_EQ(line.value().paths, Words{"-"});
}

TEST(CommandLine, ReadsTheListsAndWhatIsDoneToThem) {
    auto const shown = readCommandLine({"login"});
    ASSERT_TRUE(shown.hasValue());
    EXPECT_EQ(shown.value().edit, ListEdit::Show);
    auto const added = readCommandLine({"login", "add", "/a"});
    ASSERT_TRUE(added.hasValue());
    EXPECT_EQ(added.value().edit, ListEdit::Add);
    auto const removed = readCommandLine({"places", "remove", "/a"});
    ASSERT_TRUE(removed.hasValue());
    EXPECT_EQ(removed.value().verb, Verb::Places);
    EXPECT_EQ(removed.value().edit, ListEdit::Remove);
}

TEST(CommandLine, RefusesWhatItDoesNotKnow) {
    for (Words const& words :
         {Words{}, Words{"frobnicate"}, Words{"list", "--all"}, Words{"list", "/a"}, Words{"trash"}, Words{"trash", ""},
          Words{"login", "/a"}, Words{"login", "add"}, Words{"places", "add", "/a"}, Words{"login", "add", "/a", "/b"},
          Words{"trash", "--yes", "/a"}, Words{"report"}, Words{"report", "--json", "/a"}, Words{"report", "-0", "/a"},
          Words{"list", "--csv"}}) {
        auto const line = readCommandLine(words);
        ASSERT_FALSE(line.hasValue());
        EXPECT_FALSE(line.problem().reason.empty());
    }
}

TEST(CommandLine, ReadsTheFormsOfAReport) {
    EXPECT_EQ(readCommandLine({"report", "/a", "/b"}).value().form, OutputForm::Table);
    EXPECT_EQ(readCommandLine({"report", "--csv", "/a"}).value().form, OutputForm::CSV);
}

TEST(CommandLine, AnswersHelpAndVersionWhateverElseIsGiven) {
    EXPECT_EQ(readCommandLine({"trash", "--help"}).value().verb, Verb::Help);
    EXPECT_EQ(readCommandLine({"--version"}).value().verb, Verb::Version);
}

} // namespace
} // namespace framekeeper::test
