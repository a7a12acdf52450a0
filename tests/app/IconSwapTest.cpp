#include "app/IconSwap.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "tests/app/Controller.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/Protection.h"
#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace framekeeper::test {
namespace {

using mac::test::OrdinaryUser;

class SwappedIcons : public testing::Test {
protected:
    NSString makeBundle(std::string const& information) const {
        return pathString(m_folder.makeBundle("Mirror Frame.app", information));
    }
    std::string file() const { return m_folder.path("Mirror Frame.app/Contents/Info.plist"); }
    std::string contents() const {
        std::ifstream stream(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static std::string listOf(NSPropertyListFormat format, NSString const& icon) {
        NSMutableDictionary const list = NSMutableDictionary::dictionary();
        list.setObject_forKey_(icon, "CFBundleIconFile");
        list.setObject_forKey_("kept", "Another");
        NSData const data =
            NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(list, format, nullptr);
        return {reinterpret_cast<char const*>(data.bytes()), data.length()};
    }
    // The failure, after which the file is as it was.
    std::string failureOf(NSString const& bundle) const {
        std::string const before = contents();
        IconSwap const swap = swapIcon(bundle);
        EXPECT_FALSE(swap.isWritten());
        EXPECT_EQ(contents(), before);
        return swap.failure == nil ? "" : text(swap.failure);
    }

    TemporaryFolder const m_folder{};
};

TEST_F(SwappedIcons, KeepTheFormatOfTheFileAndTheRestOfIt) {
    for (NSPropertyListFormat const format : {NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0}) {
        NSString const bundle = makeBundle(listOf(format, "mirrorframe1"));
        IconSwap const swap = swapIcon(bundle);
        EXPECT_TRUE(swap.failure == nil);
        EXPECT_EQ(text(swap.formerName), "mirrorframe1");
        EXPECT_EQ(text(swap.newName), "mirrorframe2");
        EXPECT_EQ(contents(), listOf(format, "mirrorframe2"));
        EXPECT_TRUE(swapIcon(bundle).isWritten());
        EXPECT_EQ(contents(), listOf(format, "mirrorframe1")) << "twice restores the first";
    }
}

TEST_F(SwappedIcons, AreThoseOfTheOpenCopyWhateverTookItsPath) {
    makeBundle(listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe1"));
    auto const item = openItemAtPath(m_folder.path("Mirror Frame.app"), LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(item.hasValue());
    std::filesystem::rename(m_folder.path("Mirror Frame.app"), m_folder.path("Moved.app"));
    makeBundle(listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe1"));
    std::string const other = contents();
    IconSwap const swap = swapIcon(item.value());
    EXPECT_TRUE(swap.isWritten() && swap.failure == nil);
    EXPECT_EQ(contents(), other);
    std::filesystem::rename(m_folder.path("Mirror Frame.app"), m_folder.path("Other.app"));
    std::filesystem::rename(m_folder.path("Moved.app"), m_folder.path("Mirror Frame.app"));
    EXPECT_EQ(contents(), listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe2"));
}

TEST_F(SwappedIcons, TouchTheBundle) {
    NSString const bundle = makeBundle(listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe2"));
    auto const longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1000);
    std::filesystem::last_write_time(text(bundle), longAgo);
    EXPECT_TRUE(swapIcon(bundle).failure == nil);
    EXPECT_GT(std::filesystem::last_write_time(text(bundle)), longAgo + std::chrono::hours(1));
}

// No other program can be run, since /usr/bin is hidden.
class SwappedIconsAlone : public mac::test::PrivateMounts {
protected:
    TemporaryFolder const m_folder{};
};

TEST_F(SwappedIconsAlone, TouchTheBundleWithoutAnotherProgram) {
    std::string const bundle = m_folder.makeBundle(
        "Mirror Frame.app", "<plist><dict><key>CFBundleIconFile</key><string>mirrorframe1</string></dict></plist>");
    auto const longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1000);
    std::filesystem::last_write_time(bundle, longAgo);
    bind(m_folder.makeFolder("empty"), "/usr/bin");
    IconSwap const swap = swapIcon(pathString(bundle));
    unmount("/usr/bin");
    EXPECT_TRUE(swap.isWritten());
    EXPECT_TRUE(swap.failure == nil);
    EXPECT_GT(std::filesystem::last_write_time(bundle), longAgo + std::chrono::hours(1));
}

TEST_F(SwappedIcons, AreSwappedOnlyFromThePresentNameWhenItIsGiven) {
    NSString const bundle = makeBundle(listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe1"));
    EXPECT_FALSE(swapIcon(bundle, "mirrorframe2").isWritten());
    EXPECT_TRUE(swapIcon(bundle, "mirrorframe1").isWritten());
}

TEST_F(SwappedIcons, NeedAnInformationFileThatCanBeRead) {
    EXPECT_EQ(text(swapIcon(pathString(m_folder.path("none"))).failure), "Could not read plist.");
    NSString const bundle = makeBundle("");
    std::filesystem::resize_file(file(), std::uintmax_t{1} << 33);
    EXPECT_EQ(text(swapIcon(bundle).failure), "Could not read plist.");
    EXPECT_EQ(std::filesystem::file_size(file()), std::uintmax_t{1} << 33);
    std::filesystem::remove(file());
    std::filesystem::create_directory(file());
    EXPECT_EQ(text(swapIcon(bundle).failure), "Could not read plist.");
}

TEST_F(SwappedIcons, FailWithTheParsersDescription) {
    std::string const whole = listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe1");
    NSString reason;
    std::string const cut = whole.substr(0, whole.size() / 2);
    NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes_length_(cut.data(), static_cast<NSUInteger>(cut.size())), NSPropertyListImmutable,
        nullptr, &reason);
    EXPECT_EQ(failureOf(makeBundle(cut)), text(reason));
    std::string const binary = listOf(NSPropertyListBinaryFormat_v1_0, "mirrorframe1");
    EXPECT_NE(failureOf(makeBundle(binary.substr(0, binary.size() - 5))), "");
}

TEST_F(SwappedIcons, AreNotSupportedForOtherValues) {
    std::string const refusal = "Not supported with this version of Mirror Frame.";
    for (char const* const value : {"<string>mirrorframe1.icns</string>", "<string>mirrorframe3</string>", "<true/>",
                                    "<string>MirrorFrame1</string>", "<array><string>mirrorframe1</string></array>"})
        EXPECT_EQ(
            failureOf(makeBundle(std::string("<plist><dict><key>CFBundleIconFile</key>") + value + "</dict></plist>")),
            refusal)
            << value;
    EXPECT_EQ(failureOf(makeBundle("<plist><dict/></plist>")), refusal);
    EXPECT_EQ(failureOf(makeBundle("<plist><array><string>mirrorframe1</string></array></plist>")), refusal);
}

TEST_F(SwappedIcons, CannotBeWrittenInTheOldStyle) {
    EXPECT_EQ(failureOf(makeBundle("{ CFBundleIconFile = mirrorframe1; }")), "Could not create plist data.");
}

TEST_F(SwappedIcons, AreNeverWrittenThroughALink) {
    std::string const list = listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe1");
    NSString const bundle = makeBundle(list);
    std::string const outside = m_folder.makeFile("outside/Info.plist", list);
    std::filesystem::remove(file());
    std::filesystem::create_symlink(outside, file());
    EXPECT_EQ(failureOf(bundle), "Could not write plist.");
    EXPECT_TRUE(std::filesystem::is_symlink(file()));

    std::filesystem::remove_all(m_folder.path("Mirror Frame.app/Contents"));
    std::filesystem::create_directory_symlink(m_folder.path("outside"), m_folder.path("Mirror Frame.app/Contents"));
    EXPECT_EQ(failureOf(bundle), "Could not write plist.");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.path("outside")), {}), 1);
}

TEST_F(SwappedIcons, LeaveAFileThatMayNotBeWritten) {
    NSString const bundle = makeBundle(listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe1"));
    for (char const* const place :
         {"", "Mirror Frame.app", "Mirror Frame.app/Contents", "Mirror Frame.app/Contents/Info.plist"})
        OrdinaryUser::own(m_folder.path(place));
    OrdinaryUser const user;
    std::filesystem::permissions(file(), std::filesystem::perms::owner_read);
    EXPECT_EQ(failureOf(bundle), "Could not write plist.");
    std::filesystem::permissions(file(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    std::string const folder = m_folder.path("Mirror Frame.app/Contents");
    std::filesystem::permissions(folder, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    EXPECT_EQ(failureOf(bundle), "Could not write plist.");
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
}

TEST_F(SwappedIcons, TellHowTouchingFailed) {
    if (!mac::test::canLockFilesIn(m_folder)) GTEST_SKIP() << "folders cannot be made immutable here";
    NSString const bundle = makeBundle(listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe1"));
    std::string const path = m_folder.path("Mirror Frame.app");
    ASSERT_TRUE(mac::test::setLocked(path, true));
    IconSwap const swap = swapIcon(bundle);
    ASSERT_TRUE(mac::test::setLocked(path, false));
    EXPECT_TRUE(swap.isWritten()) << "the file stays written";
    EXPECT_EQ(contents(), listOf(NSPropertyListXMLFormat_v1_0, "mirrorframe2"));
    EXPECT_EQ(text(swap.failure), "touch result: 1.");
}

} // namespace
} // namespace framekeeper::test
