#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/dates/UTCDateTime.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/system/items/AppleDouble.h"
#include "platform/system/items/KeptCreationDate.h"
#include "tests/platform/files/Attributes.h"
#include "tests/support/Commands.h"
#include "tests/support/DiskContents.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace mac::test {
namespace {

using Names = std::vector<std::string>;

// The folder for temporary files, and one in memory.
class AttributesIn : public testing::TestWithParam<char const*> {
protected:
    void SetUp() override {
        std::string const base = GetParam();
        if (::access(base.c_str(), W_OK) != 0) GTEST_SKIP() << base << " cannot be written to";
        m_folder = std::make_unique<TemporaryFolder>(base);
    }

    std::unique_ptr<TemporaryFolder> m_folder{};
};

TEST_P(AttributesIn, AreOfAnySize) {
    for (std::size_t const size : {0, 1, 4'040, 65'536, 65'537}) {
        std::string const file = m_folder->makeFile("file " + std::to_string(size), "");
        std::string const value = bytesOfLength(size);
        ASSERT_EQ(set(file, "value", value), 0) << size;
        EXPECT_TRUE(get(file, "value") == value) << size;
        EXPECT_EQ(list(file), Names{"value"});
        EXPECT_EQ(removeAttribute(file, "value"), 0);
        EXPECT_TRUE(list(file).empty());
        EXPECT_FALSE(isThere(m_folder->path("._file " + std::to_string(size))));
    }
}

TEST_P(AttributesIn, HoldALargeResourceFork) {
    std::string const file = m_folder->makeFile("file", "");
    std::string const fork = bytesOfLength(std::size_t{100} << 10);
    ASSERT_EQ(set(file, XATTR_RESOURCEFORK_NAME, "small"), 0);
    ASSERT_EQ(set(file, XATTR_RESOURCEFORK_NAME, fork), 0);
    EXPECT_TRUE(get(file, XATTR_RESOURCEFORK_NAME) == fork);
    EXPECT_EQ(list(file), Names{XATTR_RESOURCEFORK_NAME});
    std::string const beside = outputOf({"cat", m_folder->path("._file")});
    Result<AppleDouble, Failure> const read = AppleDouble::read(std::as_bytes(std::span(beside)));
    ASSERT_TRUE(read.hasValue()) << read.problem().reason;
    EXPECT_TRUE(std::ranges::equal(read.value().resourceFork, std::as_bytes(std::span(fork))));
    ASSERT_EQ(set(file, XATTR_RESOURCEFORK_NAME, "small"), 0);
    EXPECT_EQ(get(file, XATTR_RESOURCEFORK_NAME), "small");
    EXPECT_FALSE(isThere(m_folder->path("._file")));
}

TEST_P(AttributesIn, KeepTheOthersWhenOneDoesNotFit) {
    std::string const file = m_folder->makeFile("file", "");
    Names expected;
    for (int index = 0; index < 20; ++index) {
        std::string const name = "attribute " + std::to_string(index);
        expected.push_back(name);
        ASSERT_EQ(set(file, name, bytesOfLength(1'000 + static_cast<std::size_t>(index))), 0);
    }
    Names names = list(file);
    std::ranges::sort(names);
    std::ranges::sort(expected);
    EXPECT_EQ(names, expected);
    for (int index = 0; index < 20; ++index)
        EXPECT_TRUE(get(file, "attribute " + std::to_string(index)) ==
                    bytesOfLength(1'000 + static_cast<std::size_t>(index)));
    for (std::string const& name : names)
        EXPECT_EQ(removeAttribute(file, name), 0);
    EXPECT_TRUE(list(file).empty());
    EXPECT_FALSE(isThere(m_folder->path("._file")));
}

INSTANTIATE_TEST_SUITE_P(Folders, AttributesIn, testing::Values("/tmp", "/dev/shm"),
                         [](auto const& parameter) { return parameter.index == 0 ? "Temporary" : "Memory"; });

class AttributesOnVolumes : public PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
};

TEST_F(AttributesOnVolumes, WithoutAnyGoBesideTheItem) {
    std::string const point = m_folder.makeFolder("point");
    mountWithoutAttributes(point);
    std::string const file = m_folder.makeFile("point/file", "");
    EXPECT_TRUE(list(file).empty());
    ASSERT_EQ(set(file, "a", "1"), 0);
    ASSERT_EQ(set(file, "empty", ""), 0);
    ASSERT_EQ(set(file, XATTR_FINDERINFO_NAME, std::string(32, 'F')), 0);
    EXPECT_TRUE(isThere(point + "/._file"));
    EXPECT_EQ(get(file, "a"), "1");
    EXPECT_EQ(get(file, "empty"), "");
    EXPECT_EQ(list(file), (Names{XATTR_FINDERINFO_NAME, "a", "empty"}));
    EXPECT_FALSE(get(file, "b"));
    EXPECT_EQ(errno, ENODATA);
    EXPECT_EQ(removeAttribute(file, "b"), -1);
    EXPECT_EQ(errno, ENODATA);
    for (std::string const& name : list(file))
        EXPECT_EQ(removeAttribute(file, name), 0);
    EXPECT_FALSE(isThere(point + "/._file"));
}

TEST_F(AttributesOnVolumes, OfTheirRootGoBesideTheMountPoint) {
    std::string const point = m_folder.makeFolder("point");
    mountWithoutAttributes(point);
    // The mount point's folder is another volume's, but it is where the root's name is.
    EXPECT_EQ(set(point, "a", "1"), 0);
    EXPECT_TRUE(isThere(m_folder.path("._point")));
    EXPECT_EQ(get(point + "/.", "a"), "1");
}

TEST_F(AttributesOnVolumes, ThatAreFullStayAsTheyWere) {
    std::string const point = m_folder.makeFolder("point");
    mountMemory(point, "size=256k");
    std::string const file = m_folder.makeFile("point/file", "");
    ASSERT_EQ(set(file, "a", "old"), 0);
    std::string const fork = bytesOfLength(100'000);
    ASSERT_EQ(set(file, XATTR_RESOURCEFORK_NAME, fork), 0);
    try {
        m_folder.makeFile("point/filler", std::string(300'000, 'x'));
        FAIL() << "it is not full";
    } catch (std::exception const&) {}
    EXPECT_EQ(set(file, XATTR_RESOURCEFORK_NAME, bytesOfLength(110'000)), -1);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_TRUE(get(file, XATTR_RESOURCEFORK_NAME) == fork);
    EXPECT_EQ(set(file, "a", bytesOfLength(100'000)), -1);
    EXPECT_EQ(get(file, "a"), "old");
    EXPECT_EQ(outputOf({"ls", "-A", point}), "._file\nfile\nfiller\n");
}

TEST_F(AttributesOnVolumes, ThatAreReadOnlyAreReadOnly) {
    std::string const point = m_folder.makeFolder("point");
    mountMemory(point);
    std::string const file = m_folder.makeFile("point/file", "");
    std::string const fork = bytesOfLength(100'000);
    ASSERT_EQ(set(file, "a", "1"), 0);
    ASSERT_EQ(set(file, XATTR_RESOURCEFORK_NAME, fork), 0);
    makeReadOnly(point);
    EXPECT_EQ(set(file, "a", "2"), -1);
    EXPECT_EQ(errno, EROFS);
    EXPECT_EQ(set(file, "b", bytesOfLength(100'000)), -1);
    EXPECT_EQ(errno, EROFS);
    EXPECT_EQ(removeAttribute(file, "a"), -1);
    EXPECT_EQ(errno, EROFS);
    EXPECT_EQ(removeAttribute(file, XATTR_RESOURCEFORK_NAME), -1);
    EXPECT_EQ(errno, EROFS);
    EXPECT_EQ(get(file, "a"), "1");
    EXPECT_TRUE(get(file, XATTR_RESOURCEFORK_NAME) == fork);
}

// Files that get smaller, until not even one of a byte has room.
void fill(std::string const& point) {
    std::vector<char> const bytes(std::size_t{1} << 20, 'x');
    int number = 0;
    for (std::size_t size = bytes.size(); size > 0; size /= 4) {
        for (bool isFull = false; !isFull;) {
            std::ofstream file(point + "/filler " + std::to_string(number++), std::ios::binary);
            file.write(bytes.data(), static_cast<std::streamsize>(size)).flush();
            isFull = !file;
        }
    }
}

TEST_F(AttributesOnVolumes, ThatAreFullDisksStayAsTheyWere) {
    std::string const point = m_folder.makeFolder("point");
    mountImage(m_folder.path("image"), point, {"-m", "0"});
    if (IsSkipped()) return;
    std::string const file = m_folder.makeFile("point/file", "");
    ASSERT_EQ(set(file, "a", "old"), 0);
    fill(point);
    EXPECT_EQ(set(file, "a", bytesOfLength(100'000)), -1);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_TRUE(get(file, "a") == "old");
}

TEST_F(AttributesOnVolumes, AreWhereCreationDatesAreKept) {
    std::string const point = m_folder.makeFolder("point");
    mountWithoutAttributes(point);
    std::string const file = m_folder.makeFile("point/file", "");
    UTCDateTime const date{.lowSeconds = 1'000};
    Result<OpenItem> const item = openItemAtPath(file, LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(item.hasValue());
    ASSERT_TRUE(keepCreationDate(item.value(), {unitsOf(date)}).isDone());
    EXPECT_EQ(utcDateTimeOf(keptCreationDate(item.value()).valueOr({}).units), date);
    CFAbsoluteTime time = 0;
    ASSERT_EQ(UCConvertUTCDateTimeToCFAbsoluteTime(&date, &time), noErr);
    NSString const path = NSString::stringWithFileSystemRepresentation_(file);
    NSDictionary const attributes = NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(path, NO);
    EXPECT_EQ(attributes.fileCreationDate().timeIntervalSinceReferenceDate(), time);
}

} // namespace
} // namespace mac::test
