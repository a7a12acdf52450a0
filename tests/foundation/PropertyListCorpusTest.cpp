#include "fuzz/PropertyListRoundTrip.h"
#include "platform/foundation/LongPath.h"
#include <dirent.h>
#include <gtest/gtest.h>
#include <memory>

// Replays what the fuzz targets found worth keeping. FRAMEKEEPER_CORPUS is the folder with a folder for each target.

namespace mac::test {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

std::vector<std::string> filesIn(std::string const& path) {
    std::vector<std::string> files;
    std::unique_ptr<DIR, CloseFolder> const folder(::opendir(path.c_str()));
    while (dirent const* const entry = folder ? ::readdir(folder.get()) : nullptr) {
        if (entry->d_name[0] != '.') files.push_back(path + "/" + entry->d_name);
    }
    return files;
}

void replay(std::string const& target, std::string (*complaintAbout)(std::span<std::byte const>)) {
    std::vector<std::string> const files = filesIn(FRAMEKEEPER_CORPUS "/" + target);
    EXPECT_FALSE(files.empty());
    for (std::string const& file : files) {
        Result<FileContents> const contents = readFileAtPath(file, std::size_t{1} << 20);
        ASSERT_TRUE(contents.hasValue()) << file << ": " << contents.reason();
        EXPECT_EQ(complaintAbout(contents.value().bytes), "") << file;
    }
}

TEST(PropertyListCorpus, OfXMLHolds) { replay("PropertyListXMLFuzz", fuzz::complaintAboutXML); }
TEST(PropertyListCorpus, OfBinaryHolds) { replay("PropertyListBinaryFuzz", fuzz::complaintAboutBinary); }
TEST(PropertyListCorpus, OfOldStyleHolds) { replay("PropertyListOldStyleFuzz", fuzz::complaintAboutOldStyle); }

} // namespace
} // namespace mac::test
