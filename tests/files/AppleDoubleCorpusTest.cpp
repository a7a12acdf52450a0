#include "fuzz/AppleDoubleRoundTrip.h"
#include "platform/foundation/LongPath.h"
#include <dirent.h>
#include <gtest/gtest.h>
#include <memory>

// Replays what the fuzz target found worth keeping. FRAMEKEEPER_CORPUS is the folder with a folder for each target.

namespace mac::test {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

TEST(AppleDoubleCorpus, Holds) {
    std::string const path = FRAMEKEEPER_CORPUS "/AppleDoubleFuzz";
    std::unique_ptr<DIR, CloseFolder> const folder(::opendir(path.c_str()));
    unsigned count = 0;
    while (dirent const* const entry = folder ? ::readdir(folder.get()) : nullptr) {
        if (entry->d_name[0] == '.') continue;
        ++count;
        std::string const file = path + "/" + entry->d_name;
        Result<FileContents> const contents = readFileAtPath(file, std::size_t{1} << 20);
        ASSERT_TRUE(contents.hasValue()) << file << ": " << contents.reason();
        EXPECT_EQ(fuzz::complaintAboutAppleDouble(contents.value().bytes), "") << file;
    }
    EXPECT_GT(count, 0U);
}

} // namespace
} // namespace mac::test
