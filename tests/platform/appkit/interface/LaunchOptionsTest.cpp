#include "platform/appkit/interface/NSApplicationMain.h"
#include "tests/support/ChildProcess.h"
#include <gtest/gtest.h>
#include <vector>

namespace mac::test {
namespace {

std::optional<int> answerTo(std::vector<std::string> words) {
    words.insert(words.begin(), "program");
    return answerOptions(words, {.command = "program", .version = "3.1"});
}

// What is printed on a stream while the words are answered.
struct Said {
    std::optional<int> status;
    std::string output{};
    std::string errors{};
};

Said saidTo(std::vector<std::string> const& words) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Said said{.status = answerTo(words)};
    said.output = testing::internal::GetCapturedStdout();
    said.errors = testing::internal::GetCapturedStderr();
    return said;
}

TEST(LaunchOptions, LetsAStartWithoutWordsThrough) {
    EXPECT_EQ(answerTo({}), std::nullopt);
    EXPECT_EQ(answerOptions({}, {}), std::nullopt);
}

TEST(LaunchOptions, LetsSettingsAndTheToolkitsOptionsThrough) {
    EXPECT_EQ(answerTo({"-ShowsDetails", "YES"}), std::nullopt);
    EXPECT_EQ(answerTo({"-Level", "-3.5"}), std::nullopt);
    EXPECT_EQ(answerTo({"-platform", "offscreen", "-reverse"}), std::nullopt);
    EXPECT_EQ(answerTo({"--style=fusion", "--geometry", "800x600"}), std::nullopt);
    EXPECT_EQ(answerTo({"-Name", "a\xFF z"}), std::nullopt);
}

TEST(LaunchOptions, TellsItsUsageAndItsVersion) {
    Said const help = saidTo({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.output.find("usage: program [OPTION]"), 0U) << help.output;
    EXPECT_EQ(help.errors, "");
    EXPECT_EQ(saidTo({"-h"}).output, help.output);
    Said const version = saidTo({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "program 3.1\n");
}

TEST(LaunchOptions, RefusesUnknownOptions) {
    for (std::vector<std::string> const& words : std::vector<std::vector<std::string>>{
             {"--colour"}, {"-x"}, {"-x", "--colour"}, {"letter.txt"}, {""}, {"-"}, {"--"}, {"-platform", "x", "y"}}) {
        Said const said = saidTo(words);
        EXPECT_EQ(said.status, 2) << words.front();
        EXPECT_EQ(said.output, "");
        EXPECT_NE(said.errors.find("usage: program"), std::string::npos) << said.errors;
    }
    EXPECT_EQ(saidTo({"--colour"}).errors.find("program: There is no option “--colour”\n"), 0U);
}

TEST(LaunchOptions, ShowsAWordThatIsNoTextOnOneLine) {
    std::string const errors = saidTo({"--a\xFF\x1B[31m\nb"}).errors;
    std::string const line = errors.substr(0, errors.find("usage"));
    EXPECT_EQ(line.find('\x1B'), std::string::npos);
    EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
}

} // namespace
} // namespace mac::test
