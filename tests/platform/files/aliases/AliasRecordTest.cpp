#include "platform/files/aliases/AliasRecord.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

AliasRecord example() {
    return {.path = "/a/b\xFF/c",
            .pathOnVolume = "/b\xFF/c",
            .pathBelowHome = std::nullopt,
            .volume = "ext4 0123",
            .inode = 0x123456789ABCDEF0,
            .birth = -5,
            .kind = AliasRecord::Kind::Folder};
}

TEST(AliasRecord, IsReadAsItWasWritten) {
    AliasRecord record = example();
    EXPECT_EQ(AliasRecord::read(record.bytes()), record);
    record.pathBelowHome = "b/c";
    EXPECT_EQ(AliasRecord::read(record.bytes()), record);
    record.pathBelowHome = "";
    record.volume.clear();
    record.pathOnVolume.clear();
    EXPECT_EQ(AliasRecord::read(record.bytes()), record);
}

TEST(AliasRecord, IsNotReadWithAnyByteChanged) {
    std::vector<std::byte> const good = example().bytes();
    for (std::size_t index = 0; index < good.size(); ++index) {
        for (unsigned const change : {0x01U, 0x80U, 0xFFU}) {
            std::vector<std::byte> bytes = good;
            bytes[index] ^= static_cast<std::byte>(change);
            EXPECT_FALSE(AliasRecord::read(bytes)) << index;
        }
    }
}

TEST(AliasRecord, IsNotReadInPart) {
    std::vector<std::byte> bytes = example().bytes();
    while (!bytes.empty()) {
        bytes.pop_back();
        EXPECT_FALSE(AliasRecord::read(bytes)) << bytes.size();
    }
    bytes = example().bytes();
    bytes.push_back({});
    EXPECT_FALSE(AliasRecord::read(bytes));
}

// The checksums of these records are right: anyone can compute one.
TEST(AliasRecord, IsNotReadWithWhatNoRecordHolds) {
    for (AliasRecord const& wrong :
         {AliasRecord{.path = "relative"}, AliasRecord{.path = ""}, AliasRecord{.path = std::string("/a\0b", 4)},
          AliasRecord{.path = "/a", .pathOnVolume = "b"}, AliasRecord{.path = "/a", .pathBelowHome = "/b"},
          AliasRecord{.path = "/a", .kind = AliasRecord::Kind{0}},
          AliasRecord{.path = "/a", .kind = AliasRecord::Kind{5}}})
        EXPECT_FALSE(AliasRecord::read(wrong.bytes())) << wrong.path;
    EXPECT_FALSE(AliasRecord::read(AliasRecord{.path = "/" + std::string(AliasRecord::MostBytes, 'x')}.bytes()));
}

TEST(AliasRecord, DescribesAnItem) {
    TemporaryFolder const folder;
    EnvironmentVariable const home("HOME", folder.path("home"));
    std::string const file = folder.makeFile("home/a/file", "");
    ASSERT_EQ(::symlink("file", folder.path("home/a/link").c_str()), 0);
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    AliasRecord const record = aliasRecordOf(openItemAtPath(file, LinkAtEnd::IsNotFollowed).value()).value();
    EXPECT_EQ(record.path, file);
    EXPECT_EQ(record.pathBelowHome, "a/file");
    EXPECT_TRUE(file.ends_with(record.pathOnVolume));
    EXPECT_EQ(record.inode, status.st_ino);
    EXPECT_EQ(record.kind, AliasRecord::Kind::File);
    EXPECT_NE(record.volume, "");
    auto const kindAt = [&](std::string const& path) {
        return aliasRecordOf(openItemAtPath(path, LinkAtEnd::IsNotFollowed).value()).value().kind;
    };
    EXPECT_EQ(kindAt(folder.path("home/a/link")), AliasRecord::Kind::Link);
    EXPECT_EQ(kindAt(folder.path("home/a")), AliasRecord::Kind::Folder);
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(kindAt(folder.path("pipe")), AliasRecord::Kind::Other);
    EXPECT_EQ(aliasRecordOf(openItemAtPath("/", LinkAtEnd::IsFollowed).value()).value().path, "/");
}

} // namespace
} // namespace mac::test
