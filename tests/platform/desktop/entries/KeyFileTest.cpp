#include "platform/desktop/entries/KeyFile.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(KeyFile, ReadsKeysInTheirGroups) {
    KeyFile const file =
        KeyFile::read("stray=1\n# no\n[A]\nkey = a value \r\nkey=b\nempty=\nline\n[B]\nkey=;x; y;\n[A]\nmore=c");
    EXPECT_EQ(file.value("A", "key"), "b");
    EXPECT_EQ(file.value("A", "empty"), "");
    EXPECT_EQ(file.value("A", "more"), "c");
    EXPECT_EQ(file.value("A", "stray"), std::nullopt);
    EXPECT_EQ(file.value("", "stray"), "1");
    EXPECT_EQ(file.value("C", "key"), std::nullopt);
    EXPECT_EQ(file.list("B", "key"), (std::vector<std::string>{"x", "y"}));
    EXPECT_TRUE(file.list("A", "none").empty());
    EXPECT_EQ(file.groups(), (std::vector<std::string>{"", "A", "B"}));
    EXPECT_EQ(KeyFile::read("[A][1]\nkey=x\n").groups(), (std::vector<std::string>{"", "A][1"}));
}

TEST(KeyFile, ResolvesEscapes) {
    KeyFile const file = KeyFile::read("[A]\nkey=a\\sb\\nc\\\\d\\\"e\\");
    EXPECT_EQ(file.text("A", "key"), "a b\nc\\d\\\"e\\");
    EXPECT_EQ(file.text("A", "none"), std::nullopt);
}

TEST(KeyFile, SplitsACommandLineIntoItsWords) {
    using Arguments = std::vector<std::string>;
    EXPECT_EQ(wordsOfCommandLine("thunar  --window %F"), (Arguments{"thunar", "--window", "%F"}));
    EXPECT_EQ(wordsOfCommandLine("\"/a b/c \\\"d\\\\\" x"), (Arguments{"/a b/c \"d\\", "x"}));
    EXPECT_EQ(wordsOfCommandLine(" \"\" "), (Arguments{""}));
    EXPECT_EQ(wordsOfCommandLine("  "), Arguments{});
    EXPECT_EQ(wordsOfCommandLine("\"a"), std::nullopt);
}

} // namespace mac::test
