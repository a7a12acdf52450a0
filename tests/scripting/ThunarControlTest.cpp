#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/foundation/collections/NSArray.h"
#include "scripting/ProcessQuitting.h"
#include "scripting/ProcessesAndFinder.h"
#include "tests/platform/desktop/ThunarDesktop.h"

namespace mac::test {
namespace {

// The operations on a real file browser, whose windows are read as assistive technology reads them.
class ThunarControl : public ThunarDesktop {
protected:
    void SetUp() override {
        ThunarDesktop::SetUp();
        if (IsSkipped()) return;
        EXPECT_TRUE(KRAProcessSerialNumberGetFinder() == nil);
        ASSERT_TRUE(launchBrowser());
    }

    NSString makeFile(std::string const& relative) const {
        return NSString::stringWithFileSystemRepresentation_(m_folder.makeFile(relative, ""));
    }
};

TEST_F(ThunarControl, SelectsTheItemThatIsRevealed) {
    makeFile("items/another.txt");
    EXPECT_TRUE(KRAPathRevealInFinder(makeFile("items/letter.txt")));
    EXPECT_TRUE(showsWindow("items - Thunar"));
    EXPECT_TRUE(showsElement(R"(status bar "letter.txt")"));
}

TEST_F(ThunarControl, ShowsInformationThroughAScript) {
    NSString const file = makeFile(R"(items/a "quoted" letter.txt)");
    EXPECT_TRUE(pxShowFinderInfo(NSArray::arrayWithObject_(file).objectEnumerator()));
    EXPECT_TRUE(showsElement(R"(dialog a "quoted" letter.txt - Properties)"));
}

TEST_F(ThunarControl, OpensAFolder) {
    makeFile("shown/file");
    EXPECT_TRUE(pxOpenItemWithFinder(NSString::stringWithFileSystemRepresentation_(m_folder.path("shown"))));
    EXPECT_TRUE(showsWindow("shown - Thunar"));
}

TEST_F(ThunarControl, QuitsTheFinderAndLaunchesItAgain) {
    EXPECT_TRUE(KRAPathRevealInFinder(makeFile("items/letter.txt")));
    NSNumber const first = KRAProcessSerialNumberGetFinder();
    ASSERT_FALSE(first == nil);
    // It takes as long as it takes.
    EXPECT_TRUE(quitProcess(first, [](NSTimeInterval) { waitUntil([] { return fileBrowserProcesses().empty(); }); }));
    EXPECT_TRUE(KRAProcessSerialNumberGetFinder() == nil);
    EXPECT_TRUE(NSWorkspace::sharedWorkspace()
                    .launchAppWithBundleIdentifier_options_additionalEventParamDescriptor_launchIdentifier_(
                        "com.apple.finder", NSWorkspaceLaunchDefault, nil, nullptr));
    NSNumber const second = KRAProcessSerialNumberGetFinder();
    ASSERT_FALSE(second == nil);
    EXPECT_FALSE(second.isEqual_(first));
    EXPECT_TRUE(KRAPathRevealInFinder(makeFile("others/letter.txt")));
    EXPECT_TRUE(showsWindow("others - Thunar"));
}

} // namespace
} // namespace mac::test
