#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <optional>
#include <pwd.h>
#include <unistd.h>

namespace mac::test {

namespace {

struct PathResult {
    std::string_view path;
    std::string_view result;
};

std::string bracketedBytes(NSArray const& components) {
    std::string text;
    for (id const& component : components)
        text += "[" + fileSystemBytes(as<NSString>(component)) + "]";
    return text;
}

TEST(NSStringPaths, AreJoinedFromTheirComponents) {
    auto const bracketedBytes = [](std::initializer_list<id> components) {
        return NSString::pathWithComponents_(NSArray::arrayWithObjects_(components));
    };
    EXPECT_TRUE(bracketedBytes({"/", "a", "b"}).isEqualToString_("/a/b"));
    EXPECT_TRUE(bracketedBytes({"a", "b/", "/c"}).isEqualToString_("a/b/c"));
    EXPECT_TRUE(bracketedBytes({"/"}).isEqualToString_("/"));
    EXPECT_TRUE(bracketedBytes({"a", NSNull::null(), "b"}).isEqualToString_("a/b"));
    EXPECT_TRUE(bracketedBytes({}).isEqualToString_(""));
    EXPECT_TRUE(NSString::pathWithComponents_(nil) == nil);
}

} // namespace

TEST(NSStringPaths, GiveTheLastComponent) {
    for (PathResult const& row :
         {PathResult{"/tmp/scratch.tiff", "scratch.tiff"}, PathResult{"/tmp/scratch", "scratch"},
          PathResult{"/tmp/", "tmp"}, PathResult{"scratch///", "scratch"}, PathResult{"/", "/"}, PathResult{"//", "/"},
          PathResult{"", ""}, PathResult{"a", "a"}, PathResult{"/a/caf\xE9", "caf\xE9"}, PathResult{"/a/.", "."}})
        EXPECT_EQ(row.result, fileSystemBytes(path(row.path).lastPathComponent())) << row.path;
}

TEST(NSStringPaths, GiveTheExtension) {
    for (PathResult const& row :
         {PathResult{"/tmp/scratch.tiff", "tiff"}, PathResult{".scratch.tiff", "tiff"}, PathResult{"/tmp/scratch", ""},
          PathResult{"/tmp/", ""}, PathResult{"/tmp/scratch..tiff", "tiff"}, PathResult{".hidden", ""},
          PathResult{"/a/.hidden", ""}, PathResult{"a.", ""}, PathResult{"/a.b/c", ""}, PathResult{"/a/b.app/", "app"},
          PathResult{"a.tar.gz", "gz"}, PathResult{"", ""}, PathResult{".", ""}, PathResult{"/", ""},
          PathResult{"a.b c", "b c"}})
        EXPECT_EQ(row.result, fileSystemBytes(path(row.path).pathExtension())) << row.path;
}

TEST(NSStringPaths, LoseTheExtension) {
    for (PathResult const& row :
         {PathResult{"/tmp/scratch.tiff", "/tmp/scratch"}, PathResult{"/tmp/", "/tmp"},
          PathResult{"scratch.bundle/", "scratch"}, PathResult{"scratch..tiff", "scratch."},
          PathResult{".tiff", ".tiff"}, PathResult{"/a/.hidden", "/a/.hidden"}, PathResult{"/", "/"},
          PathResult{"", ""}, PathResult{"a.", "a"}, PathResult{"/a.b/c", "/a.b/c"}, PathResult{"a.tar.gz", "a.tar"}})
        EXPECT_EQ(row.result, fileSystemBytes(path(row.path).stringByDeletingPathExtension())) << row.path;
}

TEST(NSStringPaths, LoseTheLastComponent) {
    for (PathResult const& row :
         {PathResult{"/tmp/scratch.tiff", "/tmp"}, PathResult{"/tmp/lock/", "/tmp"}, PathResult{"/tmp/", "/"},
          PathResult{"/tmp", "/"}, PathResult{"/", "/"}, PathResult{"scratch.tiff", ""}, PathResult{"", ""},
          PathResult{"a//b", "a"}, PathResult{"//a", "/"}, PathResult{"a/b", "a"}})
        EXPECT_EQ(row.result, fileSystemBytes(path(row.path).stringByDeletingLastPathComponent())) << row.path;
}

TEST(NSStringPaths, GainAComponent) {
    struct Row {
        std::string_view path;
        std::string_view component;
        std::string_view result;
    };
    for (Row const& row : {Row{"/tmp", "scratch.tiff", "/tmp/scratch.tiff"}, Row{"/tmp/", "a", "/tmp/a"},
                           Row{"/", "a", "/a"}, Row{"", "a", "a"}, Row{"/tmp", "/a", "/tmp/a"}, Row{"/tmp", "", "/tmp"},
                           Row{"/tmp//x/", "a//b/", "/tmp/x/a/b"}, Row{"/", "", "/"}, Row{"", "", ""},
                           Row{"/a", "..", "/a/.."}, Row{"/a", "\xE9", "/a/\xE9"}})
        EXPECT_EQ(row.result, fileSystemBytes(path(row.path).stringByAppendingPathComponent_(path(row.component))))
            << row.path << " + " << row.component;
    EXPECT_EQ("/a", fileSystemBytes(path("/a").stringByAppendingPathComponent_(nil)));
}

TEST(NSStringPaths, GainAnExtension) {
    EXPECT_EQ("/tmp/scratch.old.tiff",
              fileSystemBytes(path("/tmp/scratch.old").stringByAppendingPathExtension_("tiff")));
    EXPECT_EQ("a.", fileSystemBytes(path("a").stringByAppendingPathExtension_("")));
    EXPECT_EQ("/tmp.tiff", fileSystemBytes(path("/tmp/").stringByAppendingPathExtension_("tiff")));
    EXPECT_TRUE(path("/").stringByAppendingPathExtension_("tiff") == nil);
    EXPECT_TRUE(path("").stringByAppendingPathExtension_("tiff") == nil);
    EXPECT_TRUE(path("a").stringByAppendingPathExtension_("/b") == nil);
}

TEST(NSStringPaths, FallIntoComponents) {
    for (PathResult const& row :
         {PathResult{"tmp/scratch", "[tmp][scratch]"}, PathResult{"/tmp/scratch", "[/][tmp][scratch]"},
          PathResult{"/", "[/]"}, PathResult{"//", "[/]"}, PathResult{"", ""}, PathResult{"/tmp//a/", "[/][tmp][a][/]"},
          PathResult{"a/", "[a][/]"}})
        EXPECT_EQ(row.result, bracketedBytes(path(row.path).pathComponents())) << row.path;
}

TEST(NSStringPaths, AreAbsoluteWithASlashOrATilde) {
    EXPECT_TRUE(path("/a").isAbsolutePath());
    EXPECT_TRUE(path("~/a").isAbsolutePath());
    EXPECT_FALSE(path("a/b").isAbsolutePath());
    EXPECT_FALSE(path("").isAbsolutePath());
}

TEST(NSStringPaths, ExpandTheTilde) {
    EnvironmentVariable const home("HOME", "/home/ann");
    for (PathResult const& row : {PathResult{"~", "/home/ann"}, PathResult{"~/", "/home/ann"},
                                  PathResult{"~/a/b/", "/home/ann/a/b"}, PathResult{"/~/a", "/~/a"},
                                  PathResult{"a~", "a~"}, PathResult{"~no-such-user-here/a", "~no-such-user-here/a"},
                                  PathResult{"~\xFF/a", "~\xFF/a"}, PathResult{"", ""}})
        EXPECT_EQ(row.result, fileSystemBytes(path(row.path).stringByExpandingTildeInPath())) << row.path;
}

TEST(NSStringPaths, ExpandTheTildeOfAUser) {
    passwd const* const entry = ::getpwnam("root");
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(std::string(entry->pw_dir) + "/a", fileSystemBytes(path("~root/a").stringByExpandingTildeInPath()));
}

TEST(NSStringPaths, AbbreviateTheHomeByWholeComponents) {
    EnvironmentVariable const home("HOME", "/home/ann/");
    for (PathResult const& row : {PathResult{"/home/ann", "~"}, PathResult{"/home/ann/", "~"},
                                  PathResult{"/home/ann/a", "~/a"}, PathResult{"/home/annex", "/home/annex"},
                                  PathResult{"/home", "/home"}, PathResult{"home/ann", "home/ann"}, PathResult{"", ""}})
        EXPECT_EQ(row.result, fileSystemBytes(path(row.path).stringByAbbreviatingWithTildeInPath())) << row.path;
}

TEST(NSStringPaths, DoNotAbbreviateTheRootAsAHome) {
    EnvironmentVariable const home("HOME", "/");
    EXPECT_EQ("/a", fileSystemBytes(path("/a").stringByAbbreviatingWithTildeInPath()));
    EXPECT_EQ("/a", fileSystemBytes(path("~/a").stringByExpandingTildeInPath()));
}

TEST(NSStringPaths, TakeTheHomeFromTheUserDatabaseWhereTheVariableIsNone) {
    passwd const* const entry = ::getpwuid(::geteuid());
    ASSERT_NE(nullptr, entry);
    for (std::optional<std::string> const& value : {std::optional<std::string>(), {""}, {"relative/home"}}) {
        EnvironmentVariable const home("HOME", value);
        EXPECT_EQ(entry->pw_dir, fileSystemBytes(NSHomeDirectory()));
    }
    EXPECT_EQ(entry->pw_name, fileSystemBytes(NSUserName()));
}

TEST(NSStringPaths, AreStandardizedByName) {
    EnvironmentVariable const home("HOME", "/home/ann");
    for (PathResult const& row :
         {PathResult{"/a/b/..", "/a"}, PathResult{"/a/../b", "/b"}, PathResult{"/..", "/"},
          PathResult{"/../../a", "/a"}, PathResult{"/a//b/./c/", "/a/b/c"}, PathResult{"a/../b", "a/../b"},
          PathResult{"../a", "../a"}, PathResult{"./a", "a"}, PathResult{".", "."}, PathResult{"a/.", "a"},
          PathResult{"~/a/..", "/home/ann"}, PathResult{"/", "/"}, PathResult{"//", "/"}, PathResult{"", ""},
          PathResult{"/a/...", "/a/..."}, PathResult{"/caf\xE9/.", "/caf\xE9"}})
        EXPECT_EQ(row.result, fileSystemBytes(path(row.path).stringByStandardizingPath())) << row.path;
}

TEST(NSStringPaths, LosePrivateOnlyWhereTheRestExists) {
    EXPECT_EQ("/tmp", fileSystemBytes(path("/private/tmp").stringByStandardizingPath()));
    EXPECT_EQ("/private/no-such-folder", fileSystemBytes(path("/private/no-such-folder").stringByStandardizingPath()));
    EXPECT_EQ("/private", fileSystemBytes(path("/private").stringByStandardizingPath()));
    EXPECT_EQ("/privateer/tmp", fileSystemBytes(path("/privateer/tmp").stringByStandardizingPath()));
}

class SymbolicLinks : public testing::Test {
protected:
    // The temporary folder may lie behind a link itself.
    SymbolicLinks() : m_root(fileSystemBytes(path(m_folder.path()).stringByResolvingSymlinksInPath())) {}

    void link(std::string const& target, std::string_view name) const {
        ASSERT_EQ(0, ::symlink(target.c_str(), m_folder.path(name).c_str()));
    }
    std::string resolved(std::string_view relative) const {
        return fileSystemBytes(path(m_folder.path(relative)).stringByResolvingSymlinksInPath());
    }

    TemporaryFolder m_folder;
    std::string m_root;
};

TEST_F(SymbolicLinks, AreFollowed) {
    m_folder.makeFolder("real/inner");
    link("real", "short");
    link(m_folder.path("short"), "absolute");
    link("../short/inner", "real/up");
    EXPECT_EQ(m_root + "/real/inner", resolved("short/inner"));
    EXPECT_EQ(m_root + "/real/inner", resolved("absolute/inner/"));
    EXPECT_EQ(m_root + "/real/inner", resolved("short/up"));
}

TEST_F(SymbolicLinks, AreFollowedBeforeTheParentIsTaken) {
    m_folder.makeFolder("real/inner");
    link("real/inner", "short");
    EXPECT_EQ(m_root + "/real", resolved("short/.."));
}

TEST_F(SymbolicLinks, AreFollowedAsFarAsTheyExist) {
    link("nowhere/at/all", "dangling");
    EXPECT_EQ(m_root + "/nowhere/at/all/a", resolved("dangling/a"));
    EXPECT_EQ(m_root + "/b", resolved("missing/../b"));
}

TEST_F(SymbolicLinks, InACircleLeaveThePathAsItIsNamed) {
    link("second", "first");
    link("first", "second");
    EXPECT_EQ(m_folder.path("first/a"), resolved("first/./a"));
}

TEST_F(SymbolicLinks, OfOtherBytesThanUTF8AreFollowed) {
    m_folder.makeFolder("caf\xE9");
    link("caf\xE9", "short");
    EXPECT_EQ(m_root + "/caf\xE9/a", resolved("short/a"));
}

TEST_F(SymbolicLinks, AreNotFollowedInRelativePaths) {
    EXPECT_EQ("a/../b", fileSystemBytes(path("./a/../b").stringByResolvingSymlinksInPath()));
}

TEST_F(SymbolicLinks, AreNotFollowedByStandardizing) {
    m_folder.makeFolder("real/inner");
    link("real/inner", "short");
    EXPECT_EQ(m_folder.path(), fileSystemBytes(path(m_folder.path("short/..")).stringByStandardizingPath()));
}

TEST_F(SymbolicLinks, AreLeftInPathsTooLongForTheSystem) {
    std::string deep;
    for (int depth = 0; depth < 3000; ++depth)
        deep += "/abc";
    EXPECT_EQ(m_root + deep, resolved(deep.substr(1)));
}

} // namespace mac::test
