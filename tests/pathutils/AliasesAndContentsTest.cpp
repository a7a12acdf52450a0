#include "pathutils/AliasesAndContents.h"
#include "coreutils/Strings.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/ExtendedAttributes.h"
#include "tests/support/DiskContents.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

class AliasesAndContents : public testing::Test {
protected:
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }
    void rename(std::string_view from, std::string_view to) const {
        ASSERT_EQ(::rename(m_folder.path(from).c_str(), m_folder.path(to).c_str()), 0);
    }

    TemporaryFolder const m_folder{};
};

TEST_F(AliasesAndContents, AnAliasLeadsToItsItem) {
    m_folder.makeFile("folder/file", "");
    ASSERT_EQ(::symlink("folder/file", m_folder.path("link").c_str()), 0);
    for (char const* name : {"folder/file", "link"}) {
        NSData const alias = pxAliasDataOfPath(at(name));
        EXPECT_GT(alias.length(), 0U);
        NSData changed = alias;
        EXPECT_EQ(fileSystemBytes(pxPathOfAliasDataChangedAlias_(alias, &changed)), m_folder.path("folder/file"));
        EXPECT_TRUE(changed == nil);
        EXPECT_EQ(fileSystemBytes(pxPathOfAliasData(alias)), m_folder.path("folder/file"));
    }
    EXPECT_EQ(fileSystemBytes(pxPathOfAliasData(pxAliasDataOfPath(at("folder")))), m_folder.path("folder"));
    EXPECT_EQ(fileSystemBytes(pxPathOfAliasData(pxAliasDataOfPath("/"))), "/");
}

TEST_F(AliasesAndContents, ThereIsNoAliasOfNothing) {
    ASSERT_EQ(::symlink("nowhere", m_folder.path("lost").c_str()), 0);
    for (NSString const& none : {at("none"), at("lost"), NSString(""), NSString(nil)})
        EXPECT_TRUE(pxAliasDataOfPath(none) == nil);
}

TEST_F(AliasesAndContents, AnAliasFollowsItsItemAndIsRenewed) {
    m_folder.makeFile("old", "");
    NSData const alias = pxAliasDataOfPath(at("old"));
    rename("old", "new");
    NSData changed;
    EXPECT_EQ(fileSystemBytes(pxPathOfAliasDataChangedAlias_(alias, &changed)), m_folder.path("new"));
    ASSERT_TRUE(changed != nil);
    NSData again = changed;
    EXPECT_EQ(fileSystemBytes(pxPathOfAliasDataChangedAlias_(changed, &again)), m_folder.path("new"));
    EXPECT_TRUE(again == nil);
    EXPECT_EQ(fileSystemBytes(pxPathOfAliasDataChangedAlias_(alias, {})), m_folder.path("new"));
}

TEST_F(AliasesAndContents, AnAliasLeadsToWhatReplacedItsItem) {
    m_folder.makeFile("file", "old");
    NSData const alias = pxAliasDataOfPath(at("file"));
    m_folder.makeFile("replacement", "new");
    rename("replacement", "file");
    NSData changed;
    EXPECT_EQ(fileSystemBytes(pxPathOfAliasDataChangedAlias_(alias, &changed)), m_folder.path("file"));
    EXPECT_TRUE(changed != nil);
}

TEST_F(AliasesAndContents, WhatIsNoAliasLeadsNowhere) {
    m_folder.makeFile("file", "");
    NSData const alias = pxAliasDataOfPath(at("file"));
    NSMutableData const longer = NSMutableData::dataWithData_(alias);
    longer.appendData_(NSData::dataWithBytes_length_("x", 1));
    NSMutableData const large = NSMutableData::dataWithData_(alias);
    large.setLength_(100'000'000);
    for (NSData const& none : {NSData(nil), NSData::data(), NSData(longer), NSData(large),
                               alias.subdataWithRange_({0, alias.length() - 1})}) {
        NSData changed = alias;
        EXPECT_TRUE(pxPathOfAliasDataChangedAlias_(none, &changed) == nil);
        EXPECT_TRUE(changed == nil);
        EXPECT_TRUE(pxPathOfAliasData(none) == nil);
    }
}

TEST_F(AliasesAndContents, AHandleHoldsACopyOfTheData) {
    NSData const data = NSData::dataWithBytes_length_("odd", 3);
    MemoryHandle const handle = pxCreateHandle(data);
    ASSERT_TRUE(handle);
    EXPECT_EQ(GetHandleSize(handle), 3);
    EXPECT_TRUE(pxDataWithHandle_(handle).isEqualToData_(data));
    (*handle)[0] = 'x';
    EXPECT_EQ(data.bytes()[0], std::byte{'o'});
    DisposeHandle(handle);
    EXPECT_TRUE(pxDataWithHandle_(handle) == nil);
}

TEST_F(AliasesAndContents, WithoutBytesThereIsNeitherHandleNorData) {
    EXPECT_FALSE(pxCreateHandle(nil));
    EXPECT_FALSE(pxCreateHandle(NSData::data()));
    EXPECT_TRUE(pxDataWithHandle_({}) == nil);
    MemoryHandle const empty = NewHandle(0);
    EXPECT_TRUE(pxDataWithHandle_(empty) == nil);
    DisposeHandle(empty);
}

TEST_F(AliasesAndContents, FilesAreExchanged) {
    m_folder.makeFile("a", "one");
    m_folder.makeFile("b", "the other");
    NSData const alias = pxAliasDataOfPath(at("a"));
    EXPECT_TRUE(pxExchangeFileWith_(at("a"), at("b")));
    EXPECT_EQ(textOf(m_folder.path("a")), "the other");
    EXPECT_EQ(textOf(m_folder.path("b")), "one");
    EXPECT_EQ(fileSystemBytes(pxPathOfAliasData(alias)), m_folder.path("a"));
}

TEST_F(AliasesAndContents, LinksAreExchangedThemselves) {
    m_folder.makeFile("a", "one");
    m_folder.makeFile("target", "stays");
    ASSERT_EQ(::symlink("target", m_folder.path("link").c_str()), 0);
    EXPECT_TRUE(pxExchangeFileWith_(at("link"), at("a")));
    EXPECT_EQ(textOf(m_folder.path("link")), "one");
    EXPECT_EQ(textOf(m_folder.path("a")), "stays");
    EXPECT_EQ(textOf(m_folder.path("target")), "stays");
}

TEST_F(AliasesAndContents, NothingIsExchangedWithWhatIsNoFile) {
    m_folder.makeFile("a", "one");
    m_folder.makeFolder("folder");
    for (NSString const& none : {at("none"), at("folder"), at("a"), NSString(""), NSString(nil)}) {
        EXPECT_FALSE(pxExchangeFileWith_(at("a"), none));
        EXPECT_FALSE(pxExchangeFileWith_(none, at("a")));
    }
    EXPECT_EQ(textOf(m_folder.path("a")), "one");
}

class ContentsOfSize : public testing::TestWithParam<std::size_t> {
protected:
    bool areEqual(std::string_view one, std::string_view other) const {
        m_folder.makeFile("one", one);
        m_folder.makeFile("other", other);
        bool const areEqual = pxPathHasEqualContentsWithPath_(path(m_folder.path("one")), path(m_folder.path("other")));
        EXPECT_EQ(pxPathHasEqualContentsWithPath_(path(m_folder.path("other")), path(m_folder.path("one"))), areEqual);
        return areEqual;
    }
    TemporaryFolder const m_folder{};
};

TEST_P(ContentsOfSize, AreEqualByteByByte) {
    std::string const contents(GetParam(), 'x');
    EXPECT_TRUE(areEqual(contents, contents));
    EXPECT_FALSE(areEqual(contents, contents + "x"));
    EXPECT_FALSE(areEqual(contents, contents + contents + std::string(5'000, 'x')));
    if (contents.empty()) return;
    for (std::size_t const place : {std::size_t{0}, contents.size() / 2, contents.size() - 1}) {
        std::string different = contents;
        different[place] = 'y';
        EXPECT_FALSE(areEqual(contents, different));
    }
}

// Around blocks of 1 KiB, a size that does not matter, and of 128 KiB, which are read at once.
INSTANTIATE_TEST_SUITE_P(AliasesAndContents, ContentsOfSize,
                         testing::Values(0, 1, 1'023, 1'024, 1'025, 2'048, 131'072, 132'095, 132'096, 132'097,
                                         263'168));

TEST_F(AliasesAndContents, ResourceForksCount) {
    std::string const one = m_folder.makeFile("one", "data");
    std::string const other = m_folder.makeFile("other", "data");
    EXPECT_TRUE(pxPathHasEqualContentsWithPath_(at("one"), at("other")));
    ASSERT_EQ(setxattr(one.c_str(), XATTR_RESOURCEFORK_NAME, "resources", 9, 0, 0), 0);
    // A fork that the first file lacks is equal to any other; the other way round it is not.
    EXPECT_TRUE(pxPathHasEqualContentsWithPath_(at("other"), at("one")));
    EXPECT_FALSE(pxPathHasEqualContentsWithPath_(at("one"), at("other")));
    ASSERT_EQ(setxattr(other.c_str(), XATTR_RESOURCEFORK_NAME, "resourceS", 9, 0, 0), 0);
    EXPECT_FALSE(pxPathHasEqualContentsWithPath_(at("one"), at("other")));
    FSRef first{};
    FSRef second{};
    ASSERT_TRUE(KRPathGetFSRef_traverseLink_(at("one"), &first, NO));
    ASSERT_TRUE(KRPathGetFSRef_traverseLink_(at("other"), &second, NO));
    EXPECT_TRUE(pxIsFork_equalToFork_dataFork_(&first, &second, YES));
    EXPECT_FALSE(pxIsFork_equalToFork_dataFork_(&first, &second, NO));
    EXPECT_FALSE(pxIsContentsOfFile_equalToFile_(&first, &second));
    ASSERT_EQ(setxattr(other.c_str(), XATTR_RESOURCEFORK_NAME, "resources", 9, 0, 0), 0);
    EXPECT_TRUE(pxIsContentsOfFile_equalToFile_(&first, &second));
    EXPECT_FALSE(pxIsContentsOfFile_equalToFile_({}, &second));
    EXPECT_FALSE(pxIsFork_equalToFork_dataFork_(&first, {}, YES));
}

// By design a fork that cannot be opened is equal to whatever the second one is.
TEST_F(AliasesAndContents, AForkThatCannotBeOpenedIsEqualIfItIsTheFirst) {
    m_folder.makeFile("file", "data");
    m_folder.makeFolder("folder");
    EXPECT_TRUE(pxPathHasEqualContentsWithPath_(at("folder"), at("file")));
    EXPECT_FALSE(pxPathHasEqualContentsWithPath_(at("file"), at("folder")));
}

TEST_F(AliasesAndContents, LinksAreComparedThemselves) {
    m_folder.makeFile("file", "file");
    m_folder.makeFile("same", "file");
    ASSERT_EQ(::symlink("file", m_folder.path("link").c_str()), 0);
    ASSERT_EQ(::symlink("same", m_folder.path("other").c_str()), 0);
    ASSERT_EQ(::symlink("file", m_folder.path("equal").c_str()), 0);
    EXPECT_FALSE(pxPathHasEqualContentsWithPath_(at("link"), at("other")));
    EXPECT_TRUE(pxPathHasEqualContentsWithPath_(at("link"), at("equal")));
    // The link's text is what the file holds.
    EXPECT_TRUE(pxPathHasEqualContentsWithPath_(at("link"), at("file")));
}

TEST_F(AliasesAndContents, NothingIsEqualToAMissingFile) {
    m_folder.makeFile("file", "");
    for (NSString const& none : {at("none"), NSString(""), NSString(nil)}) {
        EXPECT_FALSE(pxPathHasEqualContentsWithPath_(at("file"), none));
        EXPECT_FALSE(pxPathHasEqualContentsWithPath_(none, at("file")));
    }
}

TEST_F(AliasesAndContents, TheChecksumIsThatOfTheData) {
    for (std::size_t const size : {0, 1, 2, 3, 1'024, 131'071, 131'072, 131'073, 500'001}) {
        std::string contents(size, '\0');
        for (std::size_t index = 0; index < size; ++index)
            contents[index] = static_cast<char>(index * 37 + index / 251);
        std::string const file = m_folder.makeFile("file", contents);
        EXPECT_EQ(pxChecksumOfPath(path(file)), pxChecksum(bytes(contents))) << size;
    }
    ASSERT_EQ(::symlink("file", m_folder.path("link").c_str()), 0);
    EXPECT_EQ(pxChecksumOfPath(at("link")), pxChecksumOfPath(at("file")));
}

TEST_F(AliasesAndContents, TheChecksumOfWhatCannotBeReadIsZero) {
    m_folder.makeFolder("folder");
    ASSERT_EQ(::mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
    std::string const closed = m_folder.makeFile("closed", "data");
    for (NSString const& none : {at("none"), at("folder"), at("pipe"), NSString(""), NSString(nil)})
        EXPECT_EQ(pxChecksumOfPath(none), 0);
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(closed.c_str(), 0), 0);
    OrdinaryUser const user;
    EXPECT_EQ(pxChecksumOfPath(path(closed)), 0);
}

TEST_F(AliasesAndContents, TheModificationDateIsTheItemsOwn) {
    std::string const file = m_folder.makeFile("file", "");
    ASSERT_EQ(::symlink("file", m_folder.path("link").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", m_folder.path("lost").c_str()), 0);
    std::array<timespec, 2> const times{timespec{1'000'000'000, 0}, timespec{1'200'000'000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times.data(), 0), 0);
    EXPECT_EQ(pxModificationDateOfPath(at("file")).timeIntervalSince1970(), 1'200'000'000);
    EXPECT_EQ(pxModificationDateOfPath(at("folder/.././file/")).timeIntervalSince1970(), 1'200'000'000);
    EXPECT_GT(pxModificationDateOfPath(at("link")).timeIntervalSince1970(), 1'200'000'000);
    EXPECT_TRUE(pxModificationDateOfPath(at("lost")) != nil);
    for (NSString const& none : {at("none"), NSString(""), NSString(nil)})
        EXPECT_TRUE(pxModificationDateOfPath(none) == nil);
}

} // namespace
} // namespace mac::test
