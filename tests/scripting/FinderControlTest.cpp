#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/desktop/session/Patience.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/urls/NSURL.h"
#include "scripting/ProcessQuitting.h"
#include "scripting/ProcessesAndFinder.h"
#include "tests/platform/desktop/Desktop.h"
#include <chrono>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

using AskedLines = std::vector<std::string>;

// A desktop with a file browser that writes down what it is asked for.
class FinderControl : public testing::Test {
protected:
    void SetUp() override {
        m_desktop.install(m_desktop.fake("serve"));
        m_desktop.installService(m_desktop.fake("serve"));
    }

    std::string uri(std::string const& relative) const { return "file://" + m_desktop.folder.path(relative); }
    NSString path(std::string const& relative) const {
        return NSString::stringWithFileSystemRepresentation_(m_desktop.folder.path(relative));
    }
    NSString makeFile(std::string const& relative) const {
        return NSString::stringWithFileSystemRepresentation_(m_desktop.folder.makeFile(relative, ""));
    }
    // The requests that the file browser received, without its start.
    AskedLines asked() const {
        AskedLines lines = m_desktop.lines();
        if (!lines.empty()) lines.erase(lines.begin());
        return lines;
    }
    static NSEnumerator enumerator(std::initializer_list<id> items) {
        return NSArray::arrayWithObjects_(items).objectEnumerator();
    }

    // On a busy computer the browser starts and answers later than a user would wait for it.
    Patience const m_patience{std::chrono::minutes(5)};
    Desktop const m_desktop{};
};

TEST_F(FinderControl, RevealsAnItem) {
    EXPECT_TRUE(KRAPathRevealInFinder(makeFile("shown/file")));
    EXPECT_EQ(asked(), AskedLines{"ShowItems " + uri("shown/file")});
}

TEST_F(FinderControl, OpensTheNearestFolderOfAMissingItem) {
    makeFile("shown/file");
    EXPECT_TRUE(KRAPathRevealInFinder(path("shown/none")));
    EXPECT_TRUE(KRAPathRevealInFinder(path("shown/no/such/folder/file")));
    EXPECT_EQ(asked(), (AskedLines{"ShowFolders " + uri("shown"), "ShowFolders " + uri("shown")}));
}

TEST_F(FinderControl, OpensAFolderFurtherUpIfTheNearestItemCannotBeOpened) {
    NSString const unknown = makeFile("shown/file.unknown-to-all");
    EXPECT_TRUE(KRAPathRevealInFinder(unknown.stringByAppendingPathComponent_("none")));
    EXPECT_EQ(asked(), AskedLines{"ShowFolders " + uri("shown")});
}

TEST_F(FinderControl, OpensNoInvisibleFolder) {
    makeFile("shown/.hidden/file");
    EXPECT_FALSE(KRAPathRevealInFinder(path("shown/.hidden/none")));
    EXPECT_TRUE(m_desktop.lines().empty());
    EXPECT_TRUE(KRAPathRevealInFinder(path("shown/.hidden/file"))) << "an item that is there is shown nevertheless";
}

TEST_F(FinderControl, NeverOpensTheRootForAMissingItem) {
    std::string const& folder = m_desktop.folder.path();
    NSString const besideRoot = NSString::stringWithUTF8String_(folder.substr(folder.rfind('/')));
    EXPECT_FALSE(KRAPathRevealInFinder(besideRoot.stringByAppendingString_("/such/folder/file")));
    EXPECT_FALSE(KRAPathRevealInFinder(besideRoot));
    EXPECT_FALSE(KRAPathRevealInFinder(""));
    EXPECT_FALSE(KRAPathRevealInFinder("none"));
    EXPECT_FALSE(KRAPathRevealInFinder(nil));
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(FinderControl, OpensAnItem) {
    makeFile("shown/file");
    EXPECT_TRUE(pxOpenItemWithFinder(path("shown/../shown/")));
    EXPECT_FALSE(pxOpenItemWithFinder(path("none")));
    EXPECT_FALSE(pxOpenItemWithFinder(""));
    EXPECT_FALSE(pxOpenItemWithFinder(nil));
    EXPECT_EQ(asked(), AskedLines{"ShowFolders " + uri("shown")});
}

TEST_F(FinderControl, FailsToOpenWhatNoApplicationIsKnownFor) {
    EXPECT_FALSE(pxOpenItemWithFinder(makeFile("file.unknown-to-all")));
}

TEST_F(FinderControl, RevealsManyItemsAndPassesOverOthers) {
    NSString const first = makeFile("shown/first");
    NSURL const second = NSURL::fileURLWithPath_(makeFile("shown/second"));
    EXPECT_TRUE(pxRevealItemsInFinder(enumerator({NSNull::null(), first, NSURL::URLWithString_("http://example.org/a"),
                                                  NSNumber::numberWithInt_(1), path("shown/none"), second})));
    EXPECT_EQ(asked(), (AskedLines{"ShowItems " + uri("shown/first"), "ShowFolders " + uri("shown"),
                                   "ShowItems " + uri("shown/second")}));
}

TEST_F(FinderControl, StandardizesThePathsOfItems) {
    makeFile("shown/file");
    EnvironmentVariable const home("HOME", m_desktop.folder.path("shown"));
    EXPECT_TRUE(pxRevealItemsInFinder(enumerator({"~/file"})));
    EXPECT_TRUE(pxOpenItemsWithFinder(enumerator({"~"})));
    EXPECT_TRUE(pxShowFinderInfo(enumerator({"~/file"})));
    EXPECT_TRUE(pxRevealItemsInFinder(enumerator({path("shown/../shown/./file/")})));
    // Without a display the Finder is activated by a window of the home folder, ahead of the information.
    EXPECT_EQ(asked(), (AskedLines{"ShowItems " + uri("shown/file"), "ShowFolders " + uri("shown"),
                                   "ShowFolders " + uri("shown"), "ShowItemProperties " + uri("shown/file"),
                                   "ShowItems " + uri("shown/file")}));
}

TEST_F(FinderControl, RevealsNoObjectOtherThanAPath) {
    EXPECT_FALSE(pxRevealItemsInFinder(
        enumerator({NSNull::null(), NSURL::URLWithString_("http://example.org/a"), NSNumber::numberWithInt_(1)})));
    EXPECT_FALSE(pxRevealItemsInFinder(enumerator({})));
    EXPECT_FALSE(pxRevealItemsInFinder(nil));
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(FinderControl, OpensManyItemsThatExist) {
    makeFile("shown/file");
    EXPECT_TRUE(pxOpenItemsWithFinder(
        enumerator({path("none"), NSNull::null(), NSURL::fileURLWithPath_(path("shown")), path("shown")})));
    EXPECT_EQ(asked(), (AskedLines{"ShowFolders " + uri("shown"), "ShowFolders " + uri("shown")}));
    EXPECT_FALSE(pxOpenItemsWithFinder(enumerator({path("none"), NSNull::null()})));
    EXPECT_FALSE(pxOpenItemsWithFinder(nil));
}

TEST_F(FinderControl, ContinuesAfterAFailure) {
    NSString const unknown = makeFile("file.unknown-to-all");
    makeFile("folder/file");
    EXPECT_TRUE(pxOpenItemsWithFinder(enumerator({unknown, path("folder")})));
    EXPECT_EQ(asked(), AskedLines{"ShowFolders " + uri("folder")});
}

TEST_F(FinderControl, ShowsNoInformationOfAMissingItem) {
    EXPECT_FALSE(pxShowFinderInfo(enumerator({NSNull::null(), path("none"), NSNumber::numberWithInt_(1)})));
    EXPECT_FALSE(pxShowFinderInfo(enumerator({})));
    EXPECT_FALSE(pxShowFinderInfo(nil));
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(FinderControl, ShowsInformationOfNamesThatNeedEscaping) {
    NSString const quoted = makeFile(R"(shown/a "quoted" \ name)");
    EXPECT_TRUE(pxShowFinderInfo(enumerator({quoted, NSNull::null(), path("none"), path("shown")})));
    AskedLines windows;
    for (std::string const& line : m_desktop.lines()) {
        if (line.starts_with("ShowItemProperties")) windows.push_back(line);
    }
    EXPECT_EQ(windows, (AskedLines{"ShowItemProperties " + uri("shown/a%20%22quoted%22%20%5C%20name"),
                                   "ShowItemProperties " + uri("shown")}));
}

TEST_F(FinderControl, AnswersYesForInformationWhateverBecomesOfTheScript) {
    NSString const file = makeFile("shown/file");
    EnvironmentVariable const none("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_desktop.folder.path("none"));
    EXPECT_TRUE(pxShowFinderInfo(enumerator({file})));
}

TEST_F(FinderControl, FailsWithoutAFileBrowser) {
    NSString const file = makeFile("shown/file");
    EnvironmentVariable const none("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_desktop.folder.path("none"));
    EXPECT_FALSE(KRAPathRevealInFinder(file));
    EXPECT_FALSE(KRAPathRevealInFinder(path("shown/none")));
    EXPECT_FALSE(pxRevealItemsInFinder(enumerator({file})));
}

TEST_F(FinderControl, QuitsTheFileBrowserByItsOwnMeansAndStartsItAsItWas) {
    m_desktop.install(m_desktop.fake("serve"),
                      "Actions=Quit;\n[Desktop Action Quit]\nName=Quit\nExec=" + m_desktop.fake("quit") + "\n");
    ChildProcess const browser({fakeFileBrowser(), "serve", m_desktop.log(), "as it was"});
    ASSERT_TRUE(waitUntil([] { return KRAProcessSerialNumberGetFinder() != nil; }));
    ASSERT_EQ(m_desktop.lines(1), AskedLines{"started serve as it was"});
    ASSERT_TRUE(waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    EXPECT_TRUE(quitProcess(KRAProcessSerialNumberGetFinder(), [&](NSTimeInterval) { browser.waitUntilEnded(); }));
    EXPECT_TRUE(KRAProcessSerialNumberGetFinder() == nil);
    EXPECT_EQ(asked(), (AskedLines{"started quit", "asked to quit"}));
    EXPECT_TRUE(NSWorkspace::sharedWorkspace()
                    .launchAppWithBundleIdentifier_options_additionalEventParamDescriptor_launchIdentifier_(
                        "com.apple.finder", NSWorkspaceLaunchDefault, nil, nullptr));
    EXPECT_EQ(m_desktop.lastLine(), "started serve as it was");
    KRAProcessSerialNumberQuit(KRAProcessSerialNumberGetFinder());
}

TEST_F(FinderControl, AnswersMessagesByName) {
    id const file = makeFile("shown/file");
    EXPECT_TRUE(as<NSNumber>(file.performSelector_("KRAPathRevealInFinder")).boolValue());
    id const items = enumerator({file});
    EXPECT_TRUE(as<NSNumber>(items.performSelector_("pxRevealItemsInFinder")).boolValue());
    EXPECT_EQ(asked().size(), 2U);
}

} // namespace
} // namespace mac::test
