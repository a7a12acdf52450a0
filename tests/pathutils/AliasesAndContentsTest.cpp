#include "pathutils/AliasesAndContents.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
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

} // namespace
} // namespace mac::test
