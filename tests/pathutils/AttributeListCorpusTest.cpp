#include "fuzz/AttributeListRoundTrip.h"
#include "platform/foundation/LongPath.h"
#include "tests/support/TemporaryFolder.h"
#include <dirent.h>
#include <gtest/gtest.h>
#include <memory>

// Replays what the fuzz target found worth keeping. FRAMEKEEPER_CORPUS is the folder with a folder for each target.

namespace mac::test {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

TEST(AttributeListCorpus, Holds) {
    TemporaryFolder const home;
    std::string const item = home.makeFile("item", "");
    std::string const path = FRAMEKEEPER_CORPUS "/AttributeListFuzz";
    std::unique_ptr<DIR, CloseFolder> const folder(::opendir(path.c_str()));
    unsigned count = 0;
    while (dirent const* const entry = folder ? ::readdir(folder.get()) : nullptr) {
        if (entry->d_name[0] == '.') continue;
        ++count;
        Result<FileContents> const contents = readFileAtPath(path + "/" + entry->d_name, std::size_t{1} << 20);
        ASSERT_TRUE(contents.hasValue()) << entry->d_name << ": " << contents.reason();
        EXPECT_EQ(fuzz::complaintAboutAttributeList(item, contents.value().bytes), "") << entry->d_name;
    }
    EXPECT_GT(count, 0U);
}

} // namespace
} // namespace mac::test
