#include "platform/system/LongPath.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include "tests/support/Commands.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <system_error>
#include <vector>

// Property lists against another implementation: Python's plistlib. FRAMEKEEPER_TEST_DATA is the folder with its
// script.

namespace mac::test {
namespace {

constexpr int kLists = 150;

std::string outputOfPython(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"python3", FRAMEKEEPER_TEST_DATA "/plistlib_lists.py"});
    return outputOf(arguments);
}

std::string contents(std::string const& path) {
    Result<FileContents> const file = readFileAtPath(path, std::size_t{64} << 20);
    if (!file.hasValue()) return "cannot be read: " + file.problem().text();
    auto const& bytes = file.value().bytes;
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

std::vector<std::string> lines(std::string const& text) {
    std::vector<std::string> result;
    for (std::size_t start = 0; start < text.size(); start = text.find('\n', start) + 1)
        result.push_back(text.substr(start, text.find('\n', start) - start));
    return result;
}

// Where two texts part, with what stands around it; empty for equal texts.
std::string difference(std::string const& text, std::string const& expected) {
    if (text == expected) return "";
    auto const parted = std::ranges::mismatch(text, expected).in1 - text.begin();
    std::size_t const start = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, parted - 40));
    return text.substr(start, 80) + " is not " + expected.substr(std::min(start, expected.size()), 80);
}

class PropertyListsOfPlistlib : public testing::Test {
protected:
    void SetUp() override {
        try {
            outputOfPython({"make", "20010101", std::to_string(kLists), m_folder.path()});
        } catch (std::system_error const& error) {
            if (error.code() != std::errc::no_such_file_or_directory) throw;
            GTEST_SKIP() << "there is no python3 to compare with";
        }
    }

    std::string path(int index, std::string_view kind) const {
        return m_folder.path(std::to_string(index) + "." + std::string(kind));
    }

    TemporaryFolder m_folder;
};

TEST_F(PropertyListsOfPlistlib, AreReadAlike) {
    for (int index = 0; index < kLists; ++index) {
        std::string const expected = contents(path(index, "txt"));
        for (char const* kind : {"xml", "binary"}) {
            Reading const reading = readList(contents(path(index, kind)));
            EXPECT_EQ(reading.error, "");
            EXPECT_EQ(difference(dump(reading.list), expected), "") << kind << " list " << index;
        }
    }
}

TEST_F(PropertyListsOfPlistlib, AreWrittenSoThatItReadsThemAlike) {
    std::vector<std::string> arguments{"tell"};
    std::vector<std::string> expected;
    for (int index = 0; index < kLists; ++index) {
        id const list = readList(contents(path(index, "binary"))).list;
        for (auto const format : {NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0}) {
            std::string const name = std::to_string(index) + ".ours." + std::to_string(format);
            arguments.push_back(m_folder.makeFile(name, writeList(list, format).bytes));
            expected.push_back(contents(path(index, "txt")));
        }
    }
    std::vector<std::string> const told = lines(outputOfPython(arguments));
    ASSERT_EQ(told.size(), expected.size());
    for (std::size_t index = 0; index < told.size(); ++index)
        EXPECT_EQ(difference(told[index], expected[index]), "") << arguments[index + 1];
}

} // namespace
} // namespace mac::test
