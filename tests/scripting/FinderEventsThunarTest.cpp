#include "pathutils/FinderMetadata.h"
#include "platform/events/AppleEvents.h"
#include "scripting/AppleEventDescriptors.h"
#include "tests/platform/desktop/ThunarDesktop.h"
#include "tests/support/ObjectTexts.h"
#include <unistd.h>
#include <utility>

// Events for the Finder, on a desktop with a real file browser, which receives none itself.

namespace mac::test {
namespace {

class FinderEventsToThunar : public ThunarDesktop {
protected:
    // The status of a sending with a reply, and the number of the error that the reply tells.
    using Answer = std::pair<OSErr, int>;
    static constexpr Answer Done{noErr, 0};

    void SetUp() override {
        ThunarDesktop::SetUp();
        if (IsSkipped()) return;
        ASSERT_TRUE(m_browser.openFolders({m_folder.makeFolder("shown")}).isDone());
        ASSERT_EQ(fileBrowserProcesses().size(), 1U);
    }

    NSString at(std::string const& name) const {
        return NSString::stringWithFileSystemRepresentation_(m_folder.path(name));
    }
    NSAppleEventDescriptor referenceTo(std::string const& name) const {
        FSRef ref{};
        EXPECT_TRUE(KRPathGetFSRef_traverseLink_(at(name), &ref, NO));
        return NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeFSRef, &ref, sizeof ref);
    }
    static NSAppleEventDescriptor eventOf(AEEventClass eventClass, AEEventID eventID,
                                          NSAppleEventDescriptor const& direct) {
        NSAppleEventDescriptor const event =
            NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
                eventClass, eventID, pxDescriptorWithProcessSerialNumberFinder(), kAutoGenerateReturnID,
                kAnyTransactionID);
        event.setParamDescriptor_forKeyword_(direct, keyDirectObject);
        return event;
    }
    static NSAppleEventDescriptor replyTo(NSAppleEventDescriptor const& event, OSErr& status) {
        AppleEvent reply;
        status = AESend(event.aeDesc(), &reply, kAEWaitReply, kAENormalPriority, kAEDefaultTimeout, nil, nil);
        return NSAppleEventDescriptor::descriptorWithAEDesc(std::move(reply));
    }
    static Answer send(AEEventClass eventClass, AEEventID eventID, NSAppleEventDescriptor const& direct) {
        OSErr status = noErr;
        NSAppleEventDescriptor const reply = replyTo(eventOf(eventClass, eventID, direct), status);
        return {status, reply.paramDescriptorForKeyword_(keyErrorNumber).int32Value()};
    }
    static NSAppleEventDescriptor propertyOfFinder(DescType code) {
        NSAppleEventDescriptor const specifier = NSAppleEventDescriptor::recordDescriptor();
        specifier.setDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithTypeCode_(DescType("prop")),
                                            AEKeyword("want"));
        specifier.setDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithEnumCode_(DescType("prop")),
                                            AEKeyword("form"));
        specifier.setDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithTypeCode_(code), AEKeyword("seld"));
        specifier.setDescriptor_forKeyword_(NSAppleEventDescriptor::nullDescriptor(), AEKeyword("from"));
        return specifier.coerceToDescriptorType_(DescType("obj "));
    }
};

TEST_F(FinderEventsToThunar, UpdateAnItem) {
    m_folder.makeFile("shown/letter.txt", "");
    EXPECT_TRUE(pxUpdatePathInFinder(at("shown/letter.txt")));
    EXPECT_TRUE(pxUpdatePathInFinder(at("shown")));
    EXPECT_FALSE(pxUpdatePathInFinder(at("none")));
    EXPECT_EQ(send(AEEventClass("fndr"), AEEventID("fupd"), referenceTo("shown")), Done);
}

TEST_F(FinderEventsToThunar, TellOfAnItemThatIsGone) {
    m_folder.makeFolder("gone");
    FSRef ref{};
    ASSERT_TRUE(KRPathGetFSRef_traverseLink_(at("gone"), &ref, NO));
    NSAppleEventDescriptor const gone = referenceTo("gone");
    ASSERT_EQ(::rmdir(m_folder.path("gone").c_str()), 0);
    EXPECT_EQ(send(AEEventClass("fndr"), AEEventID("fupd"), gone), Answer(noErr, fnfErr));
    EXPECT_EQ(send(AEEventClass("aevt"), AEEventID("odoc"), gone), Answer(noErr, fnfErr));
    // Without a reply the error is that of the sending.
    EXPECT_FALSE(pxUpdatePathInFinder_(&ref));
}

TEST_F(FinderEventsToThunar, OpenAndRevealItems) {
    m_folder.makeFolder("opened");
    m_folder.makeFile("revealed/letter.txt", "");
    EXPECT_EQ(send(AEEventClass("aevt"), AEEventID("odoc"), referenceTo("opened")), Done);
    EXPECT_TRUE(showsWindow("opened - Thunar"));
    NSAppleEventDescriptor const list = NSAppleEventDescriptor::listDescriptor();
    list.insertDescriptor_atIndex_(referenceTo("revealed/letter.txt"), 1);
    EXPECT_EQ(send(AEEventClass("misc"), AEEventID("mvis"), list), Done);
    EXPECT_TRUE(showsWindow("revealed - Thunar"));
}

TEST_F(FinderEventsToThunar, AskForAProperty) {
    OSErr status = noErr;
    NSAppleEventDescriptor const event =
        eventOf(AEEventClass("core"), AEEventID("getd"), propertyOfFinder(DescType("pnam")));
    NSAppleEventDescriptor const reply = replyTo(event, status);
    EXPECT_EQ(status, noErr);
    EXPECT_EQ(reply.paramDescriptorForKeyword_(keyDirectObject).stringValue().UTF8String(), "Finder");
    EXPECT_EQ(send(AEEventClass("core"), AEEventID("getd"), propertyOfFinder(DescType("zzzz"))), Answer(noErr, -1728));
    EXPECT_EQ(send(AEEventClass("core"), AEEventID("getd"), nil), Answer(noErr, -1701));
}

TEST_F(FinderEventsToThunar, RefuseWhatTheFinderDoesNotKnow) {
    EXPECT_EQ(send(AEEventClass("fndr"), AEEventID("none"), referenceTo("shown")), Answer(noErr, errAEEventNotHandled));
    EXPECT_FALSE(pxSend(eventOf(AEEventClass("fndr"), AEEventID("none"), referenceTo("shown"))));
}

} // namespace
} // namespace mac::test
