#include "pathutils/FinderMetadata.h"
#include "platform/events/AppleEvents.h"
#include "platform/events/NSAppleEventManager.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/files/volumes/VolumeInformation.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/launchservices/ItemInformation.h"
#include "scripting/FileReferences.h"
#include "tests/platform/files/references/References.h"
#include "tests/platform/icons/IconBytes.h"
#include "tests/support/Environment.h"
#include "tests/support/FinderInformation.h"
#include "tests/support/FolderWithLinks.h"
#include "tests/support/ObjectTexts.h"
#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::test {
namespace {

class FinderMetadata : public FolderWithLinks {
protected:
    std::uint16_t flagsOf(std::string_view name) const {
        std::uint16_t flags = 0xDEAD;
        EXPECT_TRUE(pxFinderFlagsOfPath_(at(name), &flags));
        return flags;
    }
    void setFlags(std::string_view name, std::uint16_t flags) const {
        FinderInformation information;
        information.setFinderFlags(flags);
        ASSERT_TRUE(writeFinderInformation(m_folder.path(name), information));
    }
    void giveIcon(std::string_view name) const {
        std::string const fork = resourceFork("icns", -16455, iconFamily(iconPiece("is32", "abc")));
        ASSERT_EQ(setxattr(m_folder.path(name).c_str(), XATTR_RESOURCEFORK_NAME, fork.data(), fork.size(), 0, 0), 0);
    }
};

TEST_F(FinderMetadata, AReferenceFollowsALinkOrMeansItItself) {
    FSRef ref{};
    bool isDirectory = false;
    EXPECT_TRUE(KRPathGetFSRef_getIsDirectory_traverseLink_(at("folderLink"), &ref, &isDirectory, YES));
    EXPECT_TRUE(isDirectory);
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&ref)), m_folder.path("folder"));
    EXPECT_TRUE(KRPathGetFSRef_getIsDirectory_traverseLink_(at("folderLink"), &ref, &isDirectory, NO));
    EXPECT_FALSE(isDirectory);
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&ref)), m_folder.path("folderLink"));
    EXPECT_TRUE(KRPathGetFSRef_getIsDirectory_traverseLink_(at("folder"), &ref, &isDirectory, NO));
    EXPECT_TRUE(isDirectory);
    EXPECT_TRUE(KRPathGetFSRef_getIsDirectory_traverseLink_(at("folder"), &ref, {}, NO));
    EXPECT_TRUE(KRPathGetFSRef_traverseLink_(at("link"), &ref, YES));
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&ref)), m_folder.path("folder/file"));
}

TEST_F(FinderMetadata, TheRootHasAReference) {
    for (BOOL const follows : {YES, NO}) {
        FSRef ref{};
        bool isDirectory = false;
        EXPECT_TRUE(KRPathGetFSRef_getIsDirectory_traverseLink_("/", &ref, &isDirectory, follows));
        EXPECT_TRUE(isDirectory);
        EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&ref)), "/");
    }
    EXPECT_NE(pxVolumeRefNumOfPath("/"), 0x3F3F);
}

TEST_F(FinderMetadata, ALinkThatLeadsNowhereHasAReferenceOfItsOwn) {
    FSRef ref = filledReference();
    EXPECT_TRUE(KRPathGetFSRef_traverseLink_(at("lost"), &ref, NO));
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&ref)), m_folder.path("lost"));
    EXPECT_FALSE(KRPathGetFSRef_traverseLink_(at("lost"), &ref, YES));
    EXPECT_EQ(ref, FSRef{});
}

TEST_F(FinderMetadata, AReferenceToNothingIsAllZero) {
    for (NSString const& none : {at("none"), at("none/file"), at("folder/file/below"), NSString(""), NSString(nil)}) {
        for (BOOL const follows : {YES, NO}) {
            FSRef ref = filledReference();
            EXPECT_FALSE(KRPathGetFSRef_traverseLink_(none, &ref, follows)) << fileSystemBytes(none);
            EXPECT_EQ(ref, FSRef{}) << fileSystemBytes(none);
        }
        FSRef ref = filledReference();
        bool isDirectory = true;
        EXPECT_FALSE(KRPathGetFSRef_getIsDirectory_traverseLink_(none, &ref, &isDirectory, NO));
        EXPECT_FALSE(isDirectory);
    }
}

TEST_F(FinderMetadata, AtARelativePathThereIsNothing) {
    CurrentFolder const current(m_folder.path());
    for (char const* const relative : {"folder", "folder/file", "./link", "."}) {
        SCOPED_TRACE(relative);
        FSRef ref = filledReference();
        EXPECT_FALSE(KRPathGetFSRef_traverseLink_(path(relative), &ref, NO));
        EXPECT_EQ(ref, FSRef{});
        std::uint16_t flags = 7;
        HFSUniStr255 name{};
        EXPECT_FALSE(KRPathGetParentFSRef_name_(path(relative), &ref, &name));
        EXPECT_EQ(pxVolumeRefNumOfPath(path(relative)), 0x3F3F);
        EXPECT_EQ(pxFilesystemIDForPath(path(relative)), 0xFFFF);
        EXPECT_FALSE(pxFinderFlagsOfPath_(path(relative), &flags));
        EXPECT_FALSE(pxSetFinderFlagsOfPath_mask_(path(relative), 0x4000, 0x4000));
        EXPECT_EQ(flags, 7);
    }
    EXPECT_EQ(flagsOf("folder"), 0);
}

TEST_F(FinderMetadata, AParentComesWithTheNameInIt) {
    m_folder.makeFile("folder/a:b", "");
    FSRef parent{};
    HFSUniStr255 name{};
    EXPECT_TRUE(KRPathGetParentFSRef_name_(at("folder/a:b"), &parent, &name));
    EXPECT_EQ(fileSystemBytes(KRCPathWithFSRef_(&parent)), m_folder.path("folder"));
    EXPECT_EQ(fileSystemBytes(KRCStringWithHFSUniStr255_(&name)), "a/b");
    EXPECT_TRUE(KRPathGetParentFSRef_name_(at("link"), &parent, &name));
    EXPECT_EQ(fileSystemBytes(KRCStringWithHFSUniStr255_(&name)), "file");
    EXPECT_TRUE(KRPathGetParentFSRef_name_("/", &parent, &name));
    EXPECT_EQ(parent, FSRef{});
    EXPECT_EQ(name.length, 0);
    for (NSString const& none : {at("none"), at("lost"), NSString(nil)}) {
        FSRef untouched = filledReference();
        EXPECT_FALSE(KRPathGetParentFSRef_name_(none, &untouched, &name));
        EXPECT_EQ(untouched, filledReference());
    }
}

TEST_F(FinderMetadata, AVolumeHasOneNumber) {
    FSVolumeRefNum const number = pxVolumeRefNumOfPath(at("folder"));
    EXPECT_LT(number, 0);
    EXPECT_EQ(pxVolumeRefNumOfPath(at("folder/file")), number);
    EXPECT_EQ(pxVolumeRefNumOfPath(at("lost")), number);
    for (NSString const& none : {at("none"), NSString("none"), NSString(""), NSString(nil)})
        EXPECT_EQ(pxVolumeRefNumOfPath(none), 0x3F3F);
}

TEST_F(FinderMetadata, TheKindOfVolumeDecides) {
    std::uint16_t const identifier = pxFilesystemIDForPath(at("folder"));
    FSVolumeInfo information;
    ASSERT_EQ(FSGetVolumeInfo(pxVolumeRefNumOfPath(at("folder")), 0, nullptr, kFSVolInfoFSInfo, &information, nullptr,
                              nullptr),
              noErr);
    EXPECT_EQ(identifier, information.filesystemID);
    // The volume of the tests has one of Linux's own file systems.
    EXPECT_EQ(identifier, 0xFFFE);
    EXPECT_TRUE(KRPathSupportsCustomIcons(at("folder")));
    EXPECT_FALSE(KRPathHasInexactTime(at("folder")));
    EXPECT_FALSE(pxPathIsOnDOSVolume(at("folder")));
    EXPECT_FALSE(pxPathIsOnIDisk(at("folder")));
}

TEST_F(FinderMetadata, OnAnUnknownVolumeTimesAreInexactAndIconsUnsupported) {
    EXPECT_EQ(pxFilesystemIDForPath(at("none")), 0xFFFF);
    EXPECT_FALSE(KRPathSupportsCustomIcons(at("none")));
    EXPECT_TRUE(KRPathHasInexactTime(at("none")));
    EXPECT_FALSE(pxPathIsOnDOSVolume(at("none")));
    EXPECT_FALSE(pxPathIsOnIDisk(at("none")));
    EXPECT_EQ(pxFilesystemIDForPath(nil), 0xFFFF);
    EXPECT_FALSE(KRPathSupportsCustomIcons(nil));
    EXPECT_FALSE(KRPathHasInexactTime(nil));
    EXPECT_FALSE(pxPathIsOnDOSVolume(nil));
    EXPECT_FALSE(pxPathIsOnIDisk(nil));
}

TEST_F(FinderMetadata, TheValenceCountsWhatLiesInAFolder) {
    std::uint32_t valence = 99;
    EXPECT_TRUE(pxValenceOfPath_(at("folder"), &valence));
    EXPECT_EQ(valence, 1U);
    m_folder.makeFile("folder/.hidden", "");
    m_folder.makeFolder("folder/below/it");
    EXPECT_TRUE(pxValenceOfPath_(at("folder"), &valence));
    EXPECT_EQ(valence, 3U);
    EXPECT_TRUE(pxValenceOfPath_(at("folder/file"), &valence));
    EXPECT_EQ(valence, 0U);
    valence = 99;
    EXPECT_TRUE(pxValenceOfPath_(at("folderLink"), &valence));
    EXPECT_EQ(valence, 0U);
    valence = 99;
    EXPECT_FALSE(pxValenceOfPath_(at("none"), &valence));
    EXPECT_FALSE(pxValenceOfPath_(nil, &valence));
    EXPECT_EQ(valence, 99U);
}

TEST_F(FinderMetadata, FlagsAreReadFromTheStoredInformation) {
    EXPECT_EQ(flagsOf("folder/file"), 0);
    setFlags("folder/file", 0xC40A);
    EXPECT_EQ(flagsOf("folder/file"), 0xC40A);
    // A link's own.
    EXPECT_EQ(flagsOf("link"), 0);
    std::uint16_t flags = 7;
    EXPECT_FALSE(pxFinderFlagsOfPath_(at("none"), &flags));
    EXPECT_FALSE(pxFinderFlagsOfPath_(nil, &flags));
    EXPECT_EQ(flags, 7);
}

TEST_F(FinderMetadata, FlagsAreSetWhereTheMaskSaysSo) {
    setFlags("folder/file", 0x0500);
    EXPECT_TRUE(pxSetFinderFlagsOfPath_mask_(at("folder/file"), 0x8000, 0x8000));
    // The alias bit is set, the other bits are kept, and the bit of items on the desk is clear.
    EXPECT_EQ(flagsOf("folder/file"), 0x8400);
    EXPECT_TRUE(pxSetFinderFlagsOfPath_mask_(at("folder/file"), 0xFFFF, 0x0102));
    EXPECT_EQ(flagsOf("folder/file"), 0x8402);
    EXPECT_TRUE(pxSetFinderFlagsOfPath_mask_(at("folder/file"), 0, 0x8000));
    EXPECT_EQ(flagsOf("folder/file"), 0x0402);
    EXPECT_TRUE(pxSetFinderFlagsOfPath_mask_(at("folder/file"), 0xFFFF, 0));
    EXPECT_EQ(flagsOf("folder/file"), 0x0402);
    EXPECT_TRUE(pxSetFinderFlagsOfPath_mask_(at("folder/file"), 0xFFFF, 0xFFFF));
    EXPECT_EQ(flagsOf("folder/file"), 0xFEFF);
    EXPECT_TRUE(pxSetFinderFlagsOfPath_mask_(at("folder"), 0x0400, 0x0400));
    EXPECT_EQ(flagsOf("folder"), 0x0400);
}

TEST_F(FinderMetadata, SettingFlagsKeepsTheRestOfTheInformation) {
    FinderInformation information;
    for (std::size_t index = 0; index < information.bytes.size(); ++index)
        information.bytes[index] = static_cast<std::byte>(index + 1);
    information.setFinderFlags(0x0400);
    ASSERT_TRUE(writeFinderInformation(m_folder.path("folder/file"), information));
    EXPECT_TRUE(pxSetFinderFlagsOfPath_mask_(at("folder/file"), 0x4000, 0x4000));
    information.setFinderFlags(0x4400);
    EXPECT_EQ(readFinderInformation(m_folder.path("folder/file")), information);
}

TEST_F(FinderMetadata, FlagsOfAMissingItemCannotBeSet) {
    EXPECT_FALSE(pxSetFinderFlagsOfPath_mask_(at("none"), 0, 0));
    EXPECT_FALSE(pxSetFinderFlagsOfPath_mask_(nil, 0x8000, 0x8000));
    // A link carries no attributes.
    EXPECT_FALSE(pxSetFinderFlagsOfPath_mask_(at("link"), 0x8000, 0x8000));
    EXPECT_EQ(flagsOf("folder/file"), 0);
}

TEST_F(FinderMetadata, WithoutACustomIconNoneIsLookedUp) {
    IconRef icon = reinterpret_cast<IconRef>(&icon);
    EXPECT_TRUE(pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(at("folder/file"), {}, {}, &icon, {}));
    EXPECT_EQ(icon, nullptr);
}

TEST_F(FinderMetadata, FlagsFolderIconAndLabelComeTogether) {
    setFlags("folder/file", 0x040C);
    giveIcon("folder/file");
    std::uint16_t flags = 0;
    bool isFolder = true;
    IconRef icon{};
    std::int16_t label = -1;
    EXPECT_TRUE(
        pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(at("folder/file"), &flags, &isFolder, &icon, &label));
    EXPECT_EQ(flags, 0x040C);
    EXPECT_FALSE(isFolder);
    EXPECT_EQ(label, 6);
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
    EXPECT_TRUE(pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(at("folder"), {}, &isFolder, {}, &label));
    EXPECT_TRUE(isFolder);
    EXPECT_EQ(label, 0);
    EXPECT_TRUE(pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(at("folder"), {}, {}, {}, {}));
    // Looking for the label finds an icon, too, be it the item's own or that of its type.
    EXPECT_TRUE(pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(at("folder"), {}, {}, &icon, &label));
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
}

TEST_F(FinderMetadata, NothingIsWrittenForAMissingItem) {
    for (NSString const& none : {at("none"), NSString(nil)}) {
        std::uint16_t flags = 7;
        bool isFolder = true;
        auto* const before = reinterpret_cast<IconRef>(&flags);
        IconRef icon = before;
        std::int16_t label = 7;
        EXPECT_FALSE(pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(none, &flags, &isFolder, &icon, &label));
        NSDictionary data = NSDictionary::dictionary();
        EXPECT_FALSE(pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_(none, &flags, &isFolder, &data, &label));
        EXPECT_EQ(flags, 7);
        EXPECT_TRUE(isFolder);
        EXPECT_EQ(icon, before);
        EXPECT_EQ(label, 7);
        EXPECT_TRUE(data == nil);
    }
}

TEST_F(FinderMetadata, AnIconsDataStandsUnderItsTypes) {
    setFlags("folder/file", 0x0400);
    giveIcon("folder/file");
    NSDictionary data;
    std::int16_t label = -1;
    EXPECT_TRUE(pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_(at("folder/file"), {}, {}, &data, &label));
    EXPECT_EQ(data.count(), 1U);
    EXPECT_EQ(as<NSData>(data.objectForKey_("is32")).length(), 3U);
    EXPECT_EQ(label, 0);
    // Without an icon of its own there is no data, with or without a label asked for.
    data = NSDictionary::dictionary();
    EXPECT_TRUE(pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_(at("folder"), {}, {}, &data, {}));
    EXPECT_TRUE(data == nil);
    EXPECT_TRUE(pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_(at("folder"), {}, {}, &data, &label));
    EXPECT_TRUE(data == nil);
    std::uint16_t flags = 0;
    EXPECT_TRUE(pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_(at("folder/file"), &flags, {}, {}, {}));
    EXPECT_EQ(flags, 0x0400);
}

TEST_F(FinderMetadata, LaunchServicesTellsFlagsAndName) {
    m_folder.makeFolder("A.app");
    constexpr std::uint32_t application = kLSItemInfoIsContainer | kLSItemInfoIsPackage | kLSItemInfoIsApplication;
    std::uint32_t flags = 0;
    NSString name;
    EXPECT_TRUE(pxLSFlagsOfPath_(at("A.app"), &flags));
    EXPECT_EQ(flags, application);
    EXPECT_TRUE(pxLSFlagsOfPath_displayName_(at("A.app"), &flags, &name));
    EXPECT_EQ(fileSystemBytes(name), "A.app");
    EXPECT_TRUE(pxLSFlagsOfPath_displayName_(at("A.app"), &flags, {}));
    for (BOOL const isDirectory : {YES, NO}) {
        flags = 0;
        EXPECT_TRUE(pxLSFlagsOfPath_displayName_isDirectory_(at("A.app"), &flags, &name, isDirectory));
        EXPECT_EQ(flags, application);
    }
    for (NSString const& none : {at("none"), NSString(""), NSString(nil)}) {
        flags = 7;
        name = "untouched";
        EXPECT_FALSE(pxLSFlagsOfPath_(none, &flags));
        EXPECT_FALSE(pxLSFlagsOfPath_displayName_(none, &flags, &name));
        EXPECT_FALSE(pxLSFlagsOfPath_displayName_isDirectory_(none, &flags, &name, YES));
        EXPECT_EQ(flags, 7U);
        EXPECT_EQ(fileSystemBytes(name), "untouched");
    }
}

FSRef s_updated{};

OSErr takeUpdate(AppleEvent const*, AppleEvent*, void*) {
    NSAppleEventDescriptor const event = NSAppleEventManager::sharedAppleEventManager().currentAppleEvent();
    NSAppleEventDescriptor const item = event.paramDescriptorForKeyword_(AEKeyword("----"));
    EXPECT_EQ(item.descriptorType(), DescType("fsrf"));
    NSData const data = item.data();
    EXPECT_EQ(data.length(), sizeof s_updated);
    if (data.length() == sizeof s_updated)
        std::ranges::copy(data.span(), std::as_writable_bytes(std::span(s_updated.hidden)).begin());
    return noErr;
}

// A desktop whose file browser is this very program, which handles its own events at once.
class DesktopOfOneself {
public:
    explicit DesktopOfOneself(TemporaryFolder const& folder)
        : m_data("XDG_DATA_HOME", folder.path()), m_config("XDG_CONFIG_HOME", folder.path()) {
        std::array<char, 4096> program{};
        EXPECT_GT(::readlink("/proc/self/exe", program.data(), program.size() - 1), 0);
        folder.makeFile("applications/browser.desktop",
                        std::string("[Desktop Entry]\nName=Files\nExec=\"").append(program.data()).append("\"\n"));
        folder.makeFile("mimeapps.list", "[Default Applications]\ninode/directory=browser.desktop\n");
        EXPECT_EQ(AEInstallEventHandler(AEEventClass("fndr"), AEEventID("fupd"), &takeUpdate, nullptr, NO), noErr);
    }
    ~DesktopOfOneself() { AERemoveEventHandler(AEEventClass("fndr"), AEEventID("fupd"), &takeUpdate, NO); }
    DesktopOfOneself(DesktopOfOneself const&) = delete;
    DesktopOfOneself& operator=(DesktopOfOneself const&) = delete;

private:
    EnvironmentVariable m_data;
    EnvironmentVariable m_config;
};

TEST_F(FinderMetadata, TheFinderIsToldWhichItemToShowAnew) {
    DesktopOfOneself const desktop(m_folder);
    for (char const* name : {"folder", "lost"}) {
        FSRef ref{};
        ASSERT_TRUE(KRPathGetFSRef_traverseLink_(at(name), &ref, NO));
        s_updated = {};
        EXPECT_TRUE(pxUpdatePathInFinder(at(name)));
        EXPECT_EQ(s_updated, ref);
        s_updated = {};
        EXPECT_TRUE(pxUpdatePathInFinder_(&ref));
        EXPECT_EQ(s_updated, ref);
    }
}

TEST_F(FinderMetadata, SendsNoEventIfNoFinderRuns) {
    EnvironmentVariable const data("XDG_DATA_HOME", m_folder.path("none"));
    EnvironmentVariable const dirs("XDG_DATA_DIRS", m_folder.path("none"));
    EnvironmentVariable const config("XDG_CONFIG_HOME", m_folder.path("none"));
    EnvironmentVariable const configs("XDG_CONFIG_DIRS", m_folder.path("none"));
    EXPECT_FALSE(pxUpdatePathInFinder(at("folder")));
}

TEST_F(FinderMetadata, ThereIsNothingToUpdateForAMissingItem) {
    EXPECT_FALSE(pxUpdatePathInFinder(at("none")));
    EXPECT_FALSE(pxUpdatePathInFinder(NSString(nil)));
    EXPECT_FALSE(pxUpdatePathInFinder_(static_cast<FSRef const*>(nullptr)));
}

TEST_F(FinderMetadata, IsAnsweredWithoutAPlaceForIt) {
    EXPECT_TRUE(pxValenceOfPath_(at("folder"), nullptr));
    EXPECT_TRUE(pxFinderFlagsOfPath_(at("folder"), nullptr));
    EXPECT_TRUE(KRPathGetFSRef_getIsDirectory_traverseLink_(at("folder"), nullptr, nullptr, NO));
    EXPECT_TRUE(as<NSNumber>(at("folder").performSelector_("pxValenceOfPath:")).boolValue());
}

TEST_F(FinderMetadata, AreMessagesOfStrings) {
    id const answer = at("folder").performSelector_("pxFilesystemIDForPath");
    EXPECT_EQ(as<NSNumber>(answer).unsignedIntValue(), 0xFFFEU);
}

} // namespace
} // namespace mac::test
