#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/DiskContents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

NSString pathOf(std::string_view bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

std::ptrdiff_t entriesIn(std::string const& folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

mode_t modeOf(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(0, ::lstat(path.c_str(), &status));
    return status.st_mode;
}

} // namespace

TEST(NSData, HoldsBytes) {
    NSData const data = NSData::dataWithBytes_length_("a\0b", 3);
    EXPECT_EQ(3U, data.length());
    EXPECT_EQ(std::string("a\0b", 3), bytesOf(data));
    EXPECT_EQ(0U, NSData::data().length());
    EXPECT_EQ(0U, NSData::dataWithBytes_length_(nullptr, 0).length());
    EXPECT_THROW(NSData::dataWithBytes_length_(nullptr, 1), NSInvalidArgumentException);
}

TEST(NSData, IsEqualByContents) {
    EXPECT_TRUE(bytes("abc").isEqual_(bytes("abc")));
    EXPECT_TRUE(bytes("abc").isEqualToData_(NSMutableData::dataWithData_(bytes("abc"))));
    EXPECT_EQ(bytes("abcdefghij").hash(), NSMutableData::dataWithData_(bytes("abcdefghij")).hash());
    EXPECT_NE(bytes("abcdefghij").hash(), bytes("abcdefghik").hash());
    EXPECT_FALSE(bytes("abc").isEqual_(bytes("abd")));
    EXPECT_FALSE(bytes("abc").isEqual_(NSString("abc")));
    EXPECT_FALSE(bytes("abc").isEqualToData_(nil));
}

TEST(NSData, DescribesItselfInHexadecimal) {
    EXPECT_EQ("<01020304 05>", bytes("\x01\x02\x03\x04\x05").description().UTF8String());
    EXPECT_EQ("<ff>", bytes("\xFF").description().UTF8String());
    EXPECT_EQ("<>", NSData::data().description().UTF8String());
}

TEST(NSData, IsCut) {
    EXPECT_EQ("bc", bytesOf(bytes("abcd").subdataWithRange_({1, 2})));
    EXPECT_EQ("", bytesOf(bytes("abcd").subdataWithRange_({4, 0})));
    EXPECT_THROW(bytes("abcd").subdataWithRange_({3, 2}), NSRangeException);
    EXPECT_THROW(bytes("abcd").subdataWithRange_({1, 0xFFFFFFFF}), NSRangeException);
}

TEST(NSData, IsItsOwnCopy) {
    NSData const data = bytes("abc");
    EXPECT_TRUE(isSame(data, data.copy()));
    EXPECT_TRUE(as<NSMutableData>(data.mutableCopy()) != nil);
}

TEST(NSData, AnswersNothingForNil) {
    NSData const none = nil;
    EXPECT_EQ(0U, none.length());
    EXPECT_EQ(nullptr, none.bytes());
    EXPECT_TRUE(none.subdataWithRange_({5, 5}) == nil);
    TemporaryFolder const folder;
    EXPECT_FALSE(none.writeToFile_atomically_(pathOf(folder.path("a")), YES));
    EXPECT_EQ(0, entriesIn(folder.path()));
}

TEST(NSMutableData, ChangesInPlace) {
    NSMutableData const data = NSMutableData::data();
    data.appendBytes_length_("abc", 3);
    data.appendData_(bytes("de"));
    EXPECT_EQ("abcde", bytesOf(data));
    data.setLength_(2);
    EXPECT_EQ("ab", bytesOf(data));
    data.setLength_(4);
    EXPECT_EQ(std::string("ab\0\0", 4), bytesOf(data));
    data.mutableBytes()[3] = std::byte{'z'};
    EXPECT_EQ(std::string("ab\0z", 4), bytesOf(data));
}

TEST(NSMutableData, AppendsItself) {
    NSMutableData const data = NSMutableData::dataWithData_(bytes("abc"));
    data.appendData_(data);
    EXPECT_EQ("abcabc", bytesOf(data));
}

TEST(NSMutableData, CopiesAsImmutableData) {
    NSMutableData const data = NSMutableData::dataWithData_(bytes("abc"));
    id const copy = data.copy();
    data.setLength_(0);
    EXPECT_TRUE(as<NSMutableData>(copy) == nil);
    EXPECT_EQ("abc", bytesOf(as<NSData>(copy)));
}

TEST(NSMutableData, TakesNilForNoBytes) {
    NSMutableData const data = NSMutableData::dataWithData_(nil);
    ASSERT_TRUE(data != nil);
    data.appendData_(nil);
    EXPECT_EQ(data.length(), 0U);
    data.appendBytes_length_("ab", 2);
    data.appendData_(nil);
    EXPECT_EQ("ab", bytesOf(data));
}

TEST(NSMutableData, RaisesForInvalidLengths) {
    NSMutableData const data = NSMutableData::data();
    EXPECT_THROW(data.appendBytes_length_(nullptr, 1), NSInvalidArgumentException);
    EXPECT_THROW(data.setLength_(0xFFFFFFFF), NSInvalidArgumentException);
    NSMutableData(nil).appendData_(nil);
    EXPECT_EQ(nullptr, NSMutableData(nil).mutableBytes());
}

TEST(NSDataFiles, AreReadWhole) {
    TemporaryFolder const folder;
    std::string const contents(300000, 'x');
    EXPECT_EQ(contents, bytesOf(NSData::dataWithContentsOfFile_(pathOf(folder.makeFile("a", contents)))));
    EXPECT_EQ(0U, NSData::dataWithContentsOfFile_(pathOf(folder.makeFile("empty", ""))).length());
    EXPECT_TRUE(NSData::dataWithContentsOfFile_(pathOf(folder.path("empty"))) != nil);
    EXPECT_EQ("z", bytesOf(NSData::dataWithContentsOfFile_(pathOf(folder.makeFile("caf\xE9", "z")))));
}

TEST(NSDataFiles, AreNilWhereThereIsNoRegularFile) {
    TemporaryFolder const folder;
    EXPECT_TRUE(NSData::dataWithContentsOfFile_(pathOf(folder.path("missing"))) == nil);
    EXPECT_TRUE(NSData::dataWithContentsOfFile_(pathOf(folder.path())) == nil);
    EXPECT_TRUE(NSData::dataWithContentsOfFile_("/dev/zero") == nil);
    EXPECT_TRUE(NSData::dataWithContentsOfFile_(nil) == nil);
    EXPECT_TRUE(NSData::dataWithContentsOfFile_("") == nil);
    ASSERT_EQ(0, ::mkfifo(folder.path("pipe").c_str(), 0600));
    EXPECT_TRUE(NSData::dataWithContentsOfFile_(pathOf(folder.path("pipe"))) == nil);
}

TEST(NSDataFiles, AreNilWhereTheyAreTooLarge) {
    TemporaryFolder const folder;
    std::string const path = folder.makeFile("large", "");
    ASSERT_EQ(0, ::truncate(path.c_str(), (off_t{1} << 30) + 1));
    EXPECT_TRUE(NSData::dataWithContentsOfFile_(pathOf(path)) == nil);
}

class NSDataWriting : public testing::TestWithParam<bool> {
protected:
    bool write(std::string_view contents, std::string const& path) const {
        return bytes(contents).writeToFile_atomically_(pathOf(path), BOOL(GetParam()));
    }

    TemporaryFolder m_folder;
};

INSTANTIATE_TEST_SUITE_P(BothWays, NSDataWriting, testing::Bool(), [](testing::TestParamInfo<bool> const& parameter) {
    return parameter.param ? "Atomically" : "InPlace";
});

TEST_P(NSDataWriting, WritesANewFileWithThePermissionsOfTheUmask) {
    mode_t const before = ::umask(027);
    EXPECT_TRUE(write("new", m_folder.path("a")));
    ::umask(before);
    EXPECT_EQ("new", textOf(m_folder.path("a")));
    EXPECT_EQ(0640U, modeOf(m_folder.path("a")) & 07777U);
    EXPECT_EQ(1, entriesIn(m_folder.path()));
}

TEST_P(NSDataWriting, ReplacesAFileAndKeepsItsPermissions) {
    std::string const path = m_folder.makeFile("a", "something longer than new");
    ASSERT_EQ(0, ::chmod(path.c_str(), 0604));
    EXPECT_TRUE(write("new", path));
    EXPECT_EQ("new", textOf(path));
    EXPECT_EQ(0604U, modeOf(path) & 07777U);
    EXPECT_EQ(1, entriesIn(m_folder.path()));
}

TEST_P(NSDataWriting, WritesThroughASymbolicLink) {
    std::string const path = m_folder.makeFile("deep/a", "old");
    ASSERT_EQ(0, ::symlink("deep/a", m_folder.path("link").c_str()));
    EXPECT_TRUE(write("new", m_folder.path("link")));
    EXPECT_TRUE(S_ISLNK(modeOf(m_folder.path("link"))));
    EXPECT_EQ("new", textOf(path));
}

TEST_P(NSDataWriting, WritesNamesThatAreNoUTF8) {
    EXPECT_TRUE(write("new", m_folder.path("caf\xE9")));
    EXPECT_EQ("new", textOf(m_folder.path("caf\xE9")));
}

TEST_P(NSDataWriting, WritesPathsTooLongForTheSystem) {
    std::string deep;
    for (int depth = 0; depth < 30; ++depth)
        deep += "/" + std::string(200, 'd');
    std::string path = m_folder.path();
    int folder = ::open(path.c_str(), O_DIRECTORY | O_CLOEXEC);
    for (int depth = 0; depth < 30; ++depth) {
        std::string const name(200, 'd');
        ASSERT_EQ(0, ::mkdirat(folder, name.c_str(), 0700));
        int const next = ::openat(folder, name.c_str(), O_DIRECTORY | O_CLOEXEC);
        ::close(folder);
        folder = next;
    }
    ::close(folder);
    path += deep + "/a";
    EXPECT_TRUE(write("new", path));
    EXPECT_EQ("new", bytesOf(NSData::dataWithContentsOfFile_(pathOf(path))));
}

TEST_P(NSDataWriting, FailsWhereNothingCanBeWritten) {
    EXPECT_FALSE(write("new", m_folder.path("no/folder")));
    EXPECT_FALSE(write("new", m_folder.path()));
    EXPECT_FALSE(write("new", m_folder.path() + "/"));
    EXPECT_FALSE(write("new", "/proc/no-such-file"));
    EXPECT_FALSE(bytes("new").writeToFile_atomically_("", BOOL(GetParam())));
    EXPECT_FALSE(bytes("new").writeToFile_atomically_(nil, BOOL(GetParam())));
    EXPECT_EQ(0, entriesIn(m_folder.path()));
}

TEST_P(NSDataWriting, DoesNotWaitForAPipe) {
    std::string const path = m_folder.path("pipe");
    ASSERT_EQ(0, ::mkfifo(path.c_str(), 0600));
    EXPECT_FALSE(write("new", path));
    EXPECT_TRUE(S_ISFIFO(modeOf(path)));
}

TEST_P(NSDataWriting, FailsForLinksInACircle) {
    ASSERT_EQ(0, ::symlink("b", m_folder.path("a").c_str()));
    ASSERT_EQ(0, ::symlink("a", m_folder.path("b").c_str()));
    EXPECT_FALSE(write("new", m_folder.path("a")));
}

TEST(NSDataFiles, KeepTheOldContentsForReadersThatHaveThemOpen) {
    TemporaryFolder const folder;
    std::string const path = folder.makeFile("a", "old");
    std::ifstream reader(path, std::ios::binary);
    EXPECT_TRUE(bytes("new").writeToFile_atomically_(pathOf(path), YES));
    EXPECT_EQ("old", std::string(std::istreambuf_iterator<char>(reader), {}));
    EXPECT_EQ("new", textOf(path));
}

TEST(NSDataFiles, SurviveAFullDisk) { EXPECT_FALSE(bytes("new").writeToFile_atomically_("/dev/full", NO)); }

} // namespace mac::test
