#include "fuzz/BundleTrial.h"
#include "fuzz/ContentTypeTrial.h"
#include "fuzz/FinderInformationTrial.h"
#include "platform/foundation/FolderContents.h"
#include "platform/foundation/LongPath.h"
#include <gtest/gtest.h>

// Replays what the fuzz targets found worth keeping. FRAMEKEEPER_CORPUS is the folder with a folder for each target.

namespace mac::test {
namespace {

struct Target {
    char const* folder;
    std::string (*complaint)(std::span<std::byte const> bytes);
};

class ItemCorpus : public testing::TestWithParam<Target> {};

TEST_P(ItemCorpus, Holds) {
    std::string const folder = std::string(FRAMEKEEPER_CORPUS "/").append(GetParam().folder);
    std::optional<std::vector<std::string>> const names = namesInFolder(folder, LinkAtEnd::IsFollowed);
    ASSERT_TRUE(names && !names->empty());
    for (std::string const& name : *names) {
        Result<FileContents> const contents =
            readFileAtPath(std::string(folder).append("/").append(name), std::size_t{1} << 20);
        ASSERT_TRUE(contents.hasValue()) << name << ": " << contents.reason();
        EXPECT_EQ(GetParam().complaint(contents.value().bytes), "") << name;
    }
}

INSTANTIATE_TEST_SUITE_P(All, ItemCorpus,
                         testing::Values(Target{"BundleFuzz", &fuzz::complaintAboutBundle},
                                         Target{"ContentTypeFuzz", &fuzz::complaintAboutContentType},
                                         Target{"FinderInformationFuzz", &fuzz::complaintAboutFinderInformation}),
                         [](testing::TestParamInfo<Target> const& target) { return target.param.folder; });

} // namespace
} // namespace mac::test
