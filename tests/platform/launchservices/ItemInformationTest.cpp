#include "platform/launchservices/ItemInformation.h"
#include "platform/files/FinderInformation.h"
#include "platform/files/references/FSRef.h"
#include "tests/support/FinderInformation.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

class ItemInformation : public testing::Test {
protected:
    LSItemInfoRecord recordOf(std::string_view name, LSRequestedInfo which) const {
        LSItemInfoRecord record;
        EXPECT_EQ(LSCopyItemInfoForURL(fileURL(m_folder.path(name)), which, &record), noErr);
        return record;
    }
    LSItemInfoFlags basicFlags(std::string_view name) const { return recordOf(name, kLSRequestBasicFlagsOnly).flags; }
    void setFinderFlags(std::string const& item, std::uint16_t flags) const {
        FinderInformation information;
        information.setFinderFlags(flags);
        ASSERT_TRUE(writeFinderInformation(item, information));
    }
    void setFinderCodes(std::string const& item, std::string_view codes) const {
        FinderInformation information;
        for (std::size_t index = 0; index < codes.size(); ++index)
            information.bytes[index] = static_cast<std::byte>(codes[index]);
        ASSERT_TRUE(writeFinderInformation(item, information));
    }

    TemporaryFolder const m_folder{};
};

TEST_F(ItemInformation, TellsFilesFoldersAndLinksApart) {
    m_folder.makeFile("file.txt", "");
    m_folder.makeFolder("folder");
    ASSERT_EQ(::symlink("folder", m_folder.path("link").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", m_folder.path("lost").c_str()), 0);
    ASSERT_EQ(::mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(basicFlags("file.txt"), kLSItemInfoIsPlainFile);
    EXPECT_EQ(basicFlags("folder"), kLSItemInfoIsContainer);
    EXPECT_EQ(basicFlags("link"), kLSItemInfoIsSymlink | kLSItemInfoIsAliasFile);
    EXPECT_EQ(basicFlags("lost"), kLSItemInfoIsSymlink | kLSItemInfoIsAliasFile);
    EXPECT_EQ(basicFlags("pipe"), kLSItemInfoIsPlainFile);
}

TEST_F(ItemInformation, KnowsPackagesByTheirExtensionInAnyCase) {
    constexpr LSItemInfoFlags package = kLSItemInfoIsContainer | kLSItemInfoIsPackage;
    for (char const* name : {"a.bundle", "a.PLUGIN", "a.prefPane", "a.rtfd"}) {
        m_folder.makeFolder(name);
        EXPECT_EQ(basicFlags(name), package) << name;
    }
    for (char const* name : {"a.app", "b.App"}) {
        m_folder.makeFolder(name);
        EXPECT_EQ(basicFlags(name), package | kLSItemInfoIsApplication) << name;
    }
    for (char const* name : {"a.framework", "a.d", "app", "a.app.old"}) {
        m_folder.makeFolder(name);
        EXPECT_EQ(basicFlags(name), kLSItemInfoIsContainer) << name;
    }
    m_folder.makeFile("file.app", "");
    EXPECT_EQ(basicFlags("file.app"), kLSItemInfoIsPlainFile);
}

TEST_F(ItemInformation, BelievesTheFindersFlags) {
    setFinderFlags(m_folder.makeFolder("package"), kHasBundle);
    EXPECT_EQ(basicFlags("package"), kLSItemInfoIsContainer | kLSItemInfoIsPackage);
    setFinderFlags(m_folder.makeFile("file", ""), kIsInvisible);
    EXPECT_EQ(basicFlags("file"), kLSItemInfoIsPlainFile | kLSItemInfoIsInvisible);
    setFinderFlags(m_folder.makeFile("alias", ""), kIsAlias);
    EXPECT_EQ(basicFlags("alias"), kLSItemInfoIsPlainFile | kLSItemInfoIsAliasFile);
}

TEST_F(ItemInformation, HidesNamesThatBeginWithADot) {
    m_folder.makeFile(".a", "");
    m_folder.makeFolder(".app");
    EXPECT_EQ(basicFlags(".a"), kLSItemInfoIsPlainFile | kLSItemInfoIsInvisible);
    EXPECT_EQ(basicFlags(".app"), kLSItemInfoIsContainer | kLSItemInfoIsInvisible);
}

TEST_F(ItemInformation, TellsThatTheRootIsAVolume) {
    LSItemInfoRecord record;
    ASSERT_EQ(LSCopyItemInfoForURL(fileURL("/"), kLSRequestBasicFlagsOnly, &record), noErr);
    EXPECT_EQ(record.flags, kLSItemInfoIsContainer | kLSItemInfoIsVolume);
}

TEST_F(ItemInformation, AnswersOnlyWhatIsAskedFor) {
    m_folder.makeBundle("A.app", R"(<plist version="1.0"><dict>
        <key>CFBundlePackageType</key><string>APPL</string><key>CFBundleSignature</key><string>mrfr</string>
        <key>NSAppleScriptEnabled</key><string>YES</string></dict></plist>)");
    constexpr LSItemInfoFlags basic = kLSItemInfoIsContainer | kLSItemInfoIsPackage | kLSItemInfoIsApplication;
    constexpr LSItemInfoFlags ofApplication = kLSItemInfoIsNativeApp | kLSItemInfoAppIsScriptable;
    EXPECT_EQ(basicFlags("A.app"), basic);
    EXPECT_EQ(recordOf("A.app", kLSRequestAppTypeFlags).flags, ofApplication);
    EXPECT_EQ(recordOf("A.app", kLSRequestAllFlags).flags, basic | ofApplication);
    LSItemInfoRecord const codes = recordOf("A.app", kLSRequestTypeCreator);
    EXPECT_EQ(codes.flags, 0U);
    EXPECT_EQ(codes.filetype, OSType("APPL"));
    EXPECT_EQ(codes.creator, OSType("mrfr"));
    EXPECT_TRUE(codes.extension == nil);
    EXPECT_TRUE(recordOf("A.app", kLSRequestExtension).extension.isEqualToString_("app"));
}

TEST_F(ItemInformation, HasCodesInMacOSRoman) {
    m_folder.makeBundle("A.app", "{CFBundlePackageType = \"b\u2022ll\"; CFBundleSignature = \"a\u2022\";}");
    LSItemInfoRecord const codes = recordOf("A.app", kLSRequestTypeCreator);
    EXPECT_EQ(codes.filetype, OSType("b\xA5ll"));
    EXPECT_EQ(codes.creator, OSType()) << "four bytes, but two characters";
}

TEST_F(ItemInformation, TellsAFilesTypeCreatorAndExtension) {
    setFinderCodes(m_folder.makeFile("a.b.\xFF", ""), "TEXTttxt");
    LSItemInfoRecord const record = recordOf("a.b.\xFF", kLSRequestTypeCreator | kLSRequestExtension);
    EXPECT_EQ(record.filetype, OSType("TEXT"));
    EXPECT_EQ(record.creator, OSType("ttxt"));
    EXPECT_EQ(record.extension.fileSystemRepresentation(), "\xFF");
    m_folder.makeFile("plain", "");
    EXPECT_TRUE(recordOf("plain", kLSRequestAllInfo).extension == nil);
    setFinderCodes(m_folder.makeFile("program", ""), "APPL????");
    EXPECT_EQ(basicFlags("program"), kLSItemInfoIsPlainFile | kLSItemInfoIsApplication);
}

TEST_F(ItemInformation, IsTheSameForAReference) {
    std::string const bundle = m_folder.makeFolder("A.app");
    FSRef ref{};
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>(bundle.c_str()), &ref, nullptr), noErr);
    LSItemInfoRecord record;
    EXPECT_EQ(LSCopyItemInfoForRef(&ref, kLSRequestBasicFlagsOnly, &record), noErr);
    EXPECT_EQ(record.flags, basicFlags("A.app"));
    ASSERT_EQ(::rmdir(bundle.c_str()), 0);
    EXPECT_EQ(LSCopyItemInfoForRef(&ref, kLSRequestBasicFlagsOnly, &record), fnfErr);
}

TEST_F(ItemInformation, LeavesTheRecordWhenItFails) {
    LSItemInfoRecord record;
    record.flags = 77;
    EXPECT_EQ(LSCopyItemInfoForURL(fileURL(m_folder.path("none")), kLSRequestAllInfo, &record), fnfErr);
    EXPECT_EQ(LSCopyItemInfoForURL(NSURL::URLWithString_("http://host/a"), kLSRequestAllInfo, &record), paramErr);
    EXPECT_EQ(LSCopyItemInfoForURL(nil, kLSRequestAllInfo, &record), paramErr);
    EXPECT_EQ(LSCopyItemInfoForURL(fileURL("/"), kLSRequestAllInfo, nullptr), paramErr);
    FSRef const none{};
    EXPECT_EQ(LSCopyItemInfoForRef(&none, kLSRequestAllInfo, &record), fnfErr);
    EXPECT_EQ(LSCopyItemInfoForRef(nullptr, kLSRequestAllInfo, &record), paramErr);
    EXPECT_EQ(LSCopyItemInfoForRef(&none, kLSRequestAllInfo, nullptr), paramErr);
    EXPECT_EQ(record.flags, 77U);
}

} // namespace
} // namespace mac::test
