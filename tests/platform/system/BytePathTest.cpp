#include "platform/system/BytePath.h"
#include <gtest/gtest.h>

using mac::BytePath;

namespace {

struct Split {
    char const* path;
    char const* parent;
    char const* leaf;
};

class BytePathSplit : public testing::TestWithParam<Split> {};

TEST_P(BytePathSplit, TellsParentAndLeaf) {
    EXPECT_EQ(BytePath(GetParam().path).parent(), GetParam().parent);
    EXPECT_EQ(BytePath(GetParam().path).leaf(), GetParam().leaf);
}

INSTANTIATE_TEST_SUITE_P(Paths, BytePathSplit,
                         testing::Values(Split{"/a/b/c", "/a/b", "c"}, Split{"/a", "/", "a"}, Split{"/", "/", ""},
                                         Split{"a", "", "a"}, Split{"a/b", "a", "b"}, Split{"", "", ""},
                                         Split{"/a/b/", "/a", "b"}, Split{"///", "/", ""}, Split{"/a//b", "/a", "b"},
                                         Split{"/a/..", "/a", ".."}, Split{"/\xFF/\x80", "/\xFF", "\x80"}));

TEST(BytePath, JoinsWithOneSlash) {
    EXPECT_EQ(BytePath("/a").joined("b"), "/a/b");
    EXPECT_EQ(BytePath("/a/").joined("b"), "/a/b");
    EXPECT_EQ(BytePath("/").joined("b"), "/b");
    EXPECT_EQ(BytePath("").joined("b"), "b");
}

TEST(BytePath, ComparesWholeComponents) {
    EXPECT_TRUE(BytePath("/a").isAtOrBelow("/a"));
    EXPECT_TRUE(BytePath("/a/").isAtOrBelow("/a"));
    EXPECT_TRUE(BytePath("/a/b").isAtOrBelow("/a/"));
    EXPECT_TRUE(BytePath("/a").isAtOrBelow("/"));
    EXPECT_TRUE(BytePath("/").isAtOrBelow("/"));
    EXPECT_FALSE(BytePath("/ab").isAtOrBelow("/a"));
    EXPECT_FALSE(BytePath("/a").isAtOrBelow("/a/b"));
    EXPECT_FALSE(BytePath("/a").isBelow("/a"));
    EXPECT_FALSE(BytePath("a").isAtOrBelow("/"));
    EXPECT_FALSE(BytePath("/a").isBelow(""));
}

TEST(BytePath, TellsWhatLiesBelowAFolder) {
    EXPECT_EQ(BytePath("/a/b/c").belowFolder("/a"), "b/c");
    EXPECT_EQ(BytePath("/a/b").belowFolder("/"), "a/b");
    EXPECT_EQ(BytePath("/a").belowFolder("/a"), "");
    EXPECT_EQ(BytePath("/ab/c").belowFolder("/a"), "");
}

} // namespace
