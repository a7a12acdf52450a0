#include "platform/system/items/TreeSize.h"
#include "platform/system/FolderContents.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

void write(std::string const& path, std::size_t size) {
    std::ofstream(path, std::ios::binary) << std::string(size, 'x');
}

TEST(TreeSize, AddsUpFilesAndFoldersAndCountsAFileOfTwoNamesOnce) {
    TemporaryFolder const folder;
    folder.makeFolder("tree/below");
    write(folder.path("tree/one"), 10'000);
    write(folder.path("tree/below/two"), 500);
    std::filesystem::create_hard_link(folder.path("tree/one"), folder.path("tree/below/again"));
    // A link counts itself, wherever it leads.
    std::filesystem::create_symlink(folder.path(), folder.path("tree/link"));
    Result<TreeSize> const size = sizeOfTree(folder.path("tree"), {});
    ASSERT_TRUE(size.hasValue());
    EXPECT_EQ(size.value().contents, 10'500U);
    EXPECT_GE(size.value().allocated, 10'500U);
    EXPECT_LT(size.value().allocated, 60'000U);
    EXPECT_EQ(size.value().items, 6U);
    EXPECT_EQ(size.value().unreadable, 0U);
}

TEST(TreeSize, IsThatOfASingleFile) {
    TemporaryFolder const folder;
    write(folder.path("one"), 7);
    Result<TreeSize> const size = sizeOfTree(folder.path("one"), {});
    ASSERT_TRUE(size.hasValue());
    EXPECT_EQ(size.value().contents, 7U);
    EXPECT_EQ(size.value().items, 1U);
}

TEST(TreeSize, FailsForWhatIsNotThereAndWhenItIsStopped) {
    TemporaryFolder const folder;
    EXPECT_TRUE(sizeOfTree(folder.path("missing"), {}).problem().is(ENOENT));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(sizeOfTree(folder.path(), stop.get_token()).problem().is(ECANCELED));
}

TEST(ContentsComparison, TellsOneItemAndIsUnreadableOnceItIsStopped) {
    TemporaryFolder const folder;
    write(folder.path("one"), 7);
    write(folder.path("other"), 7);
    std::stop_source stop;
    EXPECT_EQ(compareContents(folder.path("one"), folder.path("other"), stop.get_token()), ContentsLikeness::Equal);
    stop.request_stop();
    EXPECT_EQ(compareContents(folder.path("one"), folder.path("other"), stop.get_token()),
              ContentsLikeness::Unreadable);
    EXPECT_EQ(compareContents(folder.path(), folder.path(), stop.get_token()), ContentsLikeness::OneItem);
}

} // namespace
} // namespace mac::test
