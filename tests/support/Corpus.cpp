#include "tests/support/Corpus.h"
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

} // namespace

void expectNoComplaints(std::string const& target,
                        std::function<std::string(std::string_view bytes)> const& complaint) {
    std::string const path = FRAMEKEEPER_CORPUS "/" + target;
    std::unique_ptr<DIR, CloseFolder> const folder(::opendir(path.c_str()));
    int count = 0;
    while (dirent const* const entry = folder ? ::readdir(folder.get()) : nullptr) {
        if (entry->d_name[0] == '.') continue;
        std::ifstream file(path + "/" + entry->d_name, std::ios::binary);
        std::string const bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        EXPECT_TRUE(file.good() || file.eof()) << path << "/" << entry->d_name;
        EXPECT_EQ(complaint(bytes), "") << path << "/" << entry->d_name;
        ++count;
    }
    EXPECT_GT(count, 0) << path;
}

void expectNoComplaints(std::string const& target,
                        std::function<std::string(std::span<std::byte const> bytes)> const& complaint) {
    expectNoComplaints(target, [&](std::string_view bytes) { return complaint(std::as_bytes(std::span(bytes))); });
}

} // namespace mac::test
