#include "fuzz/ScriptTrial.h"
#include <dirent.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>

// FRAMEKEEPER_CORPUS is the folder with a folder for each fuzz target.

namespace mac::test {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

TEST(ScriptCorpus, Holds) {
    std::string const path = FRAMEKEEPER_CORPUS "/ScriptFuzz";
    std::unique_ptr<DIR, CloseFolder> const folder(::opendir(path.c_str()));
    ASSERT_TRUE(folder);
    int count = 0;
    while (dirent const* const entry = ::readdir(folder.get())) {
        if (entry->d_name[0] == '.') continue;
        std::ifstream file(path + "/" + entry->d_name, std::ios::binary);
        std::string const bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        EXPECT_EQ(fuzz::complaintAboutScript(bytes), "") << entry->d_name;
        ++count;
    }
    EXPECT_GT(count, 0);
}

} // namespace

} // namespace mac::test
