#include "fuzz/FormatArguments.h"
#include "fuzz/NumberReading.h"
#include "fuzz/URLComponents.h"
#include "platform/foundation/LongPath.h"
#include <dirent.h>
#include <gtest/gtest.h>
#include <memory>

// Replays what the fuzz targets of texts found worth keeping. FRAMEKEEPER_CORPUS is the folder with a folder for each.

namespace mac::test {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

void replay(std::string const& target, std::string (*complaintAbout)(std::string_view)) {
    std::string const path = FRAMEKEEPER_CORPUS "/" + target;
    std::unique_ptr<DIR, CloseFolder> const folder(::opendir(path.c_str()));
    int count = 0;
    while (dirent const* const entry = folder ? ::readdir(folder.get()) : nullptr) {
        if (entry->d_name[0] == '.') continue;
        Result<FileContents> const contents = readFileAtPath(path + "/" + entry->d_name, std::size_t{1} << 20);
        ASSERT_TRUE(contents.hasValue()) << entry->d_name << ": " << contents.reason();
        auto const* const bytes = reinterpret_cast<char const*>(contents.value().bytes.data());
        EXPECT_EQ(complaintAbout({bytes, contents.value().bytes.size()}), "") << entry->d_name;
        ++count;
    }
    EXPECT_GT(count, 0);
}

TEST(TextCorpus, OfFormatsHolds) { replay("FormatFuzz", fuzz::complaintAboutFormat); }
TEST(TextCorpus, OfNumbersHolds) { replay("NumberReadingFuzz", fuzz::complaintAboutNumbers); }
TEST(TextCorpus, OfURLsHolds) { replay("URLComponentsFuzz", fuzz::complaintAboutURL); }

} // namespace
} // namespace mac::test
