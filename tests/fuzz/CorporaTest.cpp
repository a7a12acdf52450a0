#include "fuzz/Input.h"
#include "tests/support/TemporaryFolder.h"
#include <dirent.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <ostream>
#include <vector>

// What fuzzing found stays mended. FRAMEKEEPER_CORPUS is the folder with a folder of inputs for each fuzz target.

namespace mac::fuzz {

static void PrintTo(Target const& target, std::ostream* stream) { *stream << target.name; }

} // namespace mac::fuzz

namespace mac::test {

namespace {

struct CloseCorpus {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

// The paths of the inputs; none if the corpus cannot be read.
std::vector<std::string> inputsIn(std::string const& corpus) {
    std::vector<std::string> paths;
    std::unique_ptr<DIR, CloseCorpus> const folder(::opendir(corpus.c_str()));
    while (dirent const* const entry = folder ? ::readdir(folder.get()) : nullptr) {
        if (entry->d_name[0] != '.') paths.push_back(corpus + "/" + entry->d_name);
    }
    return paths;
}

std::string nameOfTarget(testing::TestParamInfo<fuzz::Target> const& info) { return std::string(info.param.name); }

class Corpora : public testing::TestWithParam<fuzz::Target> {};

TEST_P(Corpora, HoldNoInputWithAComplaint) {
    std::vector<std::string> const inputs = inputsIn(FRAMEKEEPER_CORPUS "/" + std::string(GetParam().name));
    EXPECT_FALSE(inputs.empty());
    for (std::string const& path : inputs) {
        std::ifstream file(path, std::ios::binary);
        std::string const bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        EXPECT_TRUE(file.good() || file.eof()) << path;
        fuzz::Input const input{reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size()};
        EXPECT_EQ(GetParam().complaint(input), "") << path;
    }
}

INSTANTIATE_TEST_SUITE_P(All, Corpora, testing::ValuesIn(fuzz::allTargets().begin(), fuzz::allTargets().end()),
                         nameOfTarget);

} // namespace

} // namespace mac::test
