#include "platform/files/aliases/Aliases.h"
#include "platform/files/references/ItemReferences.h"
#include "tests/platform/files/references/References.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::test {
namespace {

OSErr newAlias(FSRef const& folder, std::u16string_view name, AliasHandle& alias, bool* isDirectory = nullptr) {
    auto const length = static_cast<std::uint32_t>(name.size());
    return FSNewAliasUnicode(nullptr, &folder, length, name.data(), &alias, isDirectory);
}

TEST(Aliases, LeadToTheirItem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("a:b", "");
    AliasHandle alias{};
    bool isDirectory = true;
    ASSERT_EQ(newAlias(referenceTo(folder.path(), LinkAtEnd::IsNotFollowed), u"a/b", alias, &isDirectory), noErr);
    EXPECT_FALSE(isDirectory);
    FSRef target{};
    bool wasChanged = true;
    EXPECT_EQ(FSResolveAlias(nullptr, alias, &target, &wasChanged), noErr);
    EXPECT_FALSE(wasChanged);
    EXPECT_EQ(target, referenceTo(file, LinkAtEnd::IsNotFollowed));
    DisposeHandle(alias);
}

TEST(Aliases, AreChangedInPlace) {
    TemporaryFolder const folder;
    folder.makeFile("old", "");
    AliasHandle alias{};
    ASSERT_EQ(newAlias(referenceTo(folder.path(), LinkAtEnd::IsNotFollowed), u"old", alias), noErr);
    std::int32_t const size = GetHandleSize(alias);
    ASSERT_EQ(::rename(folder.path("old").c_str(), folder.path("a longer name").c_str()), 0);
    FSRef target{};
    bool wasChanged = false;
    EXPECT_EQ(FSResolveAlias(nullptr, alias, &target, &wasChanged), noErr);
    EXPECT_TRUE(wasChanged);
    EXPECT_GT(GetHandleSize(alias), size);
    EXPECT_EQ(FSResolveAlias(nullptr, alias, &target, &wasChanged), noErr);
    EXPECT_FALSE(wasChanged);
    EXPECT_EQ(pathOf(target), folder.path("a longer name"));
    DisposeHandle(alias);
}

TEST(Aliases, MayLeadToALinkOrTheRoot) {
    TemporaryFolder const folder;
    ASSERT_EQ(::symlink("nowhere", folder.path("link").c_str()), 0);
    FSRef target{};
    bool wasChanged = true;
    bool isDirectory = true;
    AliasHandle alias{};
    ASSERT_EQ(newAlias(referenceTo(folder.path(), LinkAtEnd::IsNotFollowed), u"link", alias, &isDirectory), noErr);
    EXPECT_FALSE(isDirectory);
    EXPECT_EQ(FSResolveAlias(nullptr, alias, &target, &wasChanged), noErr);
    EXPECT_EQ(pathOf(target), folder.path("link"));
    DisposeHandle(alias);
    ASSERT_EQ(newAlias(FSRef{}, u"", alias, &isDirectory), noErr);
    EXPECT_TRUE(isDirectory);
    EXPECT_EQ(FSResolveAlias(nullptr, alias, &target, &wasChanged), noErr);
    EXPECT_EQ(pathOf(target), "/");
    DisposeHandle(alias);
}

TEST(Aliases, OfNothingAreRefused) {
    TemporaryFolder const folder;
    FSRef const parent = referenceTo(folder.path(), LinkAtEnd::IsNotFollowed);
    AliasHandle alias{};
    EXPECT_EQ(newAlias(parent, u"none", alias), fnfErr);
    EXPECT_EQ(newAlias(parent, u"..", alias), fnfErr);
    EXPECT_EQ(newAlias(parent, u"a:b", alias), fnfErr);
    EXPECT_EQ(newAlias(parent, u"", alias), fnfErr);
    EXPECT_EQ(newAlias(FSRef{}, u"etc", alias), errFSBadFSRef);
    EXPECT_EQ(FSNewAliasUnicode(nullptr, nullptr, 1, u"a", &alias, nullptr), paramErr);
    EXPECT_EQ(FSNewAliasUnicode(nullptr, &parent, 1, nullptr, &alias, nullptr), paramErr);
    EXPECT_EQ(FSNewAliasUnicode(nullptr, &parent, 1, u"a", nullptr, nullptr), paramErr);
    EXPECT_FALSE(alias);
}

TEST(Aliases, WithoutARecordLeadNowhere) {
    FSRef target{};
    bool wasChanged = true;
    AliasHandle const odd = NewHandle(3);
    EXPECT_EQ(FSResolveAlias(nullptr, odd, &target, &wasChanged), paramErr);
    EXPECT_FALSE(wasChanged);
    EXPECT_EQ(FSResolveAlias(nullptr, nullptr, &target, &wasChanged), paramErr);
    EXPECT_EQ(FSResolveAlias(nullptr, odd, nullptr, &wasChanged), paramErr);
    DisposeHandle(odd);
    EXPECT_EQ(FSResolveAlias(nullptr, odd, &target, &wasChanged), paramErr);
}

} // namespace
} // namespace mac::test
