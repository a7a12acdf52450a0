#include "scripting/AppleEventDescriptors.h"
#include "platform/events/AppleEvents.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Log.h"
#include "platform/processes/Processes.h"
#include "tests/platform/events/Descriptors.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>
#include <vector>

namespace mac::test {

namespace {

NSAppleEventDescriptor recordOf(NSAppleEventDescriptor const& value, AEKeyword keyword = AEKeyword("usrf")) {
    NSAppleEventDescriptor const record = NSAppleEventDescriptor::recordDescriptor();
    record.setDescriptor_forKeyword_(value, keyword);
    return record;
}

ProcessSerialNumber serialNumberIn(NSAppleEventDescriptor const& address) {
    ProcessSerialNumber psn;
    EXPECT_EQ(address.descriptorType(), typeProcessSerialNumber);
    NSData const data = address.data();
    EXPECT_EQ(data.length(), sizeof psn);
    if (data.length() == sizeof psn) std::ranges::copy(data.span(), std::as_writable_bytes(std::span(&psn, 1)).begin());
    return psn;
}

// The lines that are logged while it lives.
class LoggedWhileAlive {
public:
    std::vector<std::string> const& all() const { return m_lines; }

private:
    std::vector<std::string> m_lines;
    LogListener m_listener{[this](NSString const& line) { m_lines.push_back(line.UTF8String()); }};
};

// A desktop whose file browser is a copy of cat, which runs as often as is asked for.
class DesktopWithFinder {
public:
    explicit DesktopWithFinder(int running) {
        std::ifstream const original("/bin/cat", std::ios::binary);
        std::ostringstream bytes;
        bytes << original.rdbuf();
        std::string const program = m_folder.makeFile("browser", bytes.str());
        EXPECT_EQ(::chmod(program.c_str(), 0755), 0);
        m_folder.makeFile("applications/browser.desktop", "[Desktop Entry]\nName=Files\nExec=\"" + program + "\"\n");
        m_folder.makeFile("mimeapps.list", "[Default Applications]\ninode/directory=browser.desktop\n");
        for (int count = 0; count < running; ++count)
            m_running.push_back(std::make_unique<ChildProcess>(std::vector<std::string>{program}));
    }

    ProcessSerialNumber numberOf(std::size_t index) const {
        ProcessSerialNumber psn;
        EXPECT_EQ(GetProcessForPID(m_running.at(index)->pid(), &psn), noErr);
        return psn;
    }

private:
    TemporaryFolder m_folder;
    EnvironmentVariable m_data{"XDG_DATA_HOME", m_folder.path()};
    EnvironmentVariable m_config{"XDG_CONFIG_HOME", m_folder.path()};
    std::vector<std::unique_ptr<ChildProcess>> m_running;
};

} // namespace

TEST(AppleEventDescriptors, AddressTheCallingProcess) {
    EXPECT_EQ(serialNumberIn(pxDescriptorWithProcessSerialNumberSelf()), (ProcessSerialNumber{0, 2}));
}

TEST(AppleEventDescriptors, AddressTheFirstRunningFinder) {
    DesktopWithFinder const desktop(2);
    ProcessSerialNumber const found = serialNumberIn(pxDescriptorWithProcessSerialNumberFinder());
    ProcessSerialNumber psn{0, kNoProcess};
    while (GetNextProcess(&psn) == noErr && psn != desktop.numberOf(0) && psn != desktop.numberOf(1)) {}
    EXPECT_EQ(found, psn);
    NSAppleEventDescriptor const event = pxFinderAppleEventWithEventID_(AEEventID("fupd"));
    EXPECT_EQ(serialNumberIn(event.attributeDescriptorForKeyword_(keyAddressAttr)), found);
}

TEST(AppleEventDescriptors, AddressNoFinderWhereNoneRuns) {
    DesktopWithFinder const desktop(0);
    EXPECT_TRUE(pxDescriptorWithProcessSerialNumberFinder() == nil);
    NSAppleEventDescriptor const event = pxFinderAppleEventWithEventID_(AEEventID("fupd"));
    EXPECT_TRUE(event.attributeDescriptorForKeyword_(keyAddressAttr) == nil);
    EXPECT_FALSE(pxSend(event));
}

TEST(AppleEventDescriptors, MakeAnEventOfTheFindersClass) {
    NSAppleEventDescriptor const event = pxFinderAppleEventWithEventID_(AEEventID("fupd"));
    EXPECT_EQ(event.descriptorType(), typeAppleEvent);
    EXPECT_EQ(event.eventClass(), AEEventClass("fndr"));
    EXPECT_EQ(event.eventID(), AEEventID("fupd"));
    EXPECT_EQ(event.transactionID(), 0);
    EXPECT_EQ(event.numberOfItems(), 0);
    EXPECT_NE(pxFinderAppleEventWithEventID_(AEEventID("fupd")).returnID(), event.returnID()) << "each has its own";
}

TEST(AppleEventDescriptors, MakeAnEventBySignatureWhoseClassAndIDAreFixed) {
    NSAppleEventDescriptor const event =
        pxFinderAppleEventWithEventClass_eventID_(AEEventClass("core"), AEEventID("getd"));
    EXPECT_EQ(event.eventClass(), AEEventClass("aevt"));
    EXPECT_EQ(event.eventID(), AEEventID("setd"));
    NSAppleEventDescriptor const target = event.attributeDescriptorForKeyword_(keyAddressAttr);
    EXPECT_EQ(target.descriptorType(), typeApplSignature);
    std::uint32_t const signature = 0x4D414353;
    EXPECT_TRUE(target.data().isEqualToData_(NSData::dataWithBytes_length_(&signature, sizeof signature)));
}

TEST(AppleEventDescriptors, SendWithoutWaitingForAReply) {
    static int calls = 0;
    auto const count = [](AppleEvent const*, AppleEvent* reply, void*) -> OSErr {
        EXPECT_EQ(reply->descriptorType, typeNull) << "no reply is wanted";
        ++calls;
        return -1;
    };
    ASSERT_EQ(AEInstallEventHandler(AEEventClass("test"), AEEventID("send"), count, nullptr, NO), noErr);
    NSAppleEventDescriptor const event =
        NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
            AEEventClass("test"), AEEventID("send"), pxDescriptorWithProcessSerialNumberSelf(), kAutoGenerateReturnID,
            kAnyTransactionID);
    EXPECT_TRUE(pxSend(event)) << "an error inside the target is not seen";
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(as<NSNumber>(event.performSelector_("pxSend")).boolValue());
    AERemoveEventHandler(AEEventClass("test"), AEEventID("send"), nullptr, NO);
    EXPECT_FALSE(pxSend(numberDescriptor(1))) << "a number is no event";
    EXPECT_FALSE(pxSend(nil));
}

TEST(AppleEventDescriptors, ConvertNumbersAndTruthValues) {
    EXPECT_TRUE(pxObject(numberDescriptor(-7)).isEqual_(NSNumber::numberWithInt_(-7)));
    EXPECT_TRUE(pxObject(realDescriptor(1.5)).isEqual_(NSNumber::numberWithDouble_(1.5)));
    for (double const value : {0.1, 1e300, -2.2250738585072014e-308, 12345678.9})
        EXPECT_EQ(as<NSNumber>(pxObject(realDescriptor(value))).doubleValue(), value);
    for (bool const value : {true, false}) {
        NSNumber const truth = as<NSNumber>(pxObject(NSAppleEventDescriptor::descriptorWithBoolean_(BOOL(value))));
        EXPECT_EQ(truth.kind(), NSNumber::Kind::Boolean);
        EXPECT_EQ(truth.boolValue(), value);
    }
}

TEST(AppleEventDescriptors, ConvertTextAndCodesToStrings) {
    EXPECT_TRUE(pxObject(stringDescriptor("a\"\n")).isEqual_("a\"\n"));
    EXPECT_TRUE(pxObject(stringDescriptor("")).isEqual_(""));
    EXPECT_TRUE(pxObject(descriptorOfBytes(typeText, "plain")).isEqual_("plain"));
    EXPECT_TRUE(pxObject(NSAppleEventDescriptor::descriptorWithEnumCode_(OSType("yes "))).isEqual_("yes "));
    EXPECT_TRUE(pxObject(NSAppleEventDescriptor::descriptorWithTypeCode_(OSType("msng"))).isEqual_("msng"));
}

TEST(AppleEventDescriptors, ConvertAListItemByItem) {
    LoggedWhileAlive const lines;
    NSArray const array = as<NSArray>(pxObject(
        listDescriptor({numberDescriptor(1), stringDescriptor("a"), descriptorOfBytes(DescType("fork"), "xy")})));
    ASSERT_EQ(array.count(), 3U);
    EXPECT_TRUE(array.objectAtIndex_(0).isEqual_(NSNumber::numberWithInt_(1)));
    EXPECT_TRUE(array.objectAtIndex_(1).isEqual_("a"));
    EXPECT_TRUE(array.objectAtIndex_(2).isEqual_(NSData::dataWithBytes_length_("xy", 2)));
    EXPECT_EQ(lines.all(), std::vector<std::string>{
                               "-[NSAppleEventDescriptor(PXCoreUtils) pxObject] Unknown descriptor type: 'fork'"});
    EXPECT_EQ(as<NSArray>(pxObject(NSAppleEventDescriptor::listDescriptor())).count(), 0U);
    EXPECT_TRUE(as<NSMutableArray>(array) == nil);
}

TEST(AppleEventDescriptors, LeaveOutItemsThatConvertToNothing) {
    NSAppleEventDescriptor const record = recordOf(numberDescriptor(1));
    record.setDescriptor_forKeyword_(numberDescriptor(2), AEKeyword("two "));
    LoggedWhileAlive const lines;
    NSArray const array = as<NSArray>(pxObject(listDescriptor({record, numberDescriptor(1)})));
    ASSERT_EQ(array.count(), 1U);
    EXPECT_TRUE(array.objectAtIndex_(0).isEqual_(NSNumber::numberWithInt_(1)));
    EXPECT_TRUE(lines.all().empty()) << "such a record is nil without a message";
}

TEST(AppleEventDescriptors, ConvertAnObjectSpecifierLikeAList) {
    NSAppleEventDescriptor const specifier = recordOf(numberDescriptor(3), AEKeyword("seld"));
    specifier.setDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithTypeCode_(OSType("cfol")),
                                        AEKeyword("want"));
    NSArray const array = as<NSArray>(pxObject(specifier.coerceToDescriptorType_(typeObjectSpecifier)));
    ASSERT_EQ(array.count(), 2U);
    EXPECT_TRUE(array.objectAtIndex_(0).isEqual_(NSNumber::numberWithInt_(3)));
    EXPECT_TRUE(array.objectAtIndex_(1).isEqual_("cfol"));
    EXPECT_EQ(as<NSArray>(pxObject(descriptorOfBytes(typeObjectSpecifier, "lying"))).count(), 0U);
}

TEST(AppleEventDescriptors, ConvertARecordOfOneFlatListToADictionary) {
    NSAppleEventDescriptor const list =
        listDescriptor({stringDescriptor("k1"), numberDescriptor(1), stringDescriptor("k2"), numberDescriptor(2),
                        stringDescriptor("k1"), numberDescriptor(3)});
    for (AEKeyword const keyword : {AEKeyword("usrf"), AEKeyword("any ")}) {
        NSDictionary const dictionary = as<NSDictionary>(pxObject(recordOf(list, keyword)));
        ASSERT_EQ(dictionary.count(), 2U);
        EXPECT_TRUE(dictionary.objectForKey_("k1").isEqual_(NSNumber::numberWithInt_(3))) << "the later one counts";
        EXPECT_TRUE(dictionary.objectForKey_("k2").isEqual_(NSNumber::numberWithInt_(2)));
        EXPECT_TRUE(as<NSMutableDictionary>(dictionary) == nil);
    }
}

TEST(AppleEventDescriptors, TakeAnyKeyAsAKey) {
    NSDictionary const dictionary = as<NSDictionary>(
        pxObject(recordOf(listDescriptor({stringDescriptor("@count"), numberDescriptor(1), stringDescriptor("a.b"),
                                          numberDescriptor(2), numberDescriptor(3), stringDescriptor("c")}))));
    ASSERT_EQ(dictionary.count(), 3U);
    EXPECT_TRUE(dictionary.objectForKey_("@count").isEqual_(NSNumber::numberWithInt_(1)));
    EXPECT_TRUE(dictionary.objectForKey_("a.b").isEqual_(NSNumber::numberWithInt_(2)));
    EXPECT_TRUE(dictionary.objectForKey_(NSNumber::numberWithInt_(3)).isEqual_("c"));
}

TEST(AppleEventDescriptors, ConvertAnyOtherRecordToNothing) {
    LoggedWhileAlive const lines;
    EXPECT_TRUE(pxObject(NSAppleEventDescriptor::recordDescriptor()) == nil);
    NSAppleEventDescriptor const two = recordOf(listDescriptor({stringDescriptor("k"), numberDescriptor(1)}));
    two.setDescriptor_forKeyword_(numberDescriptor(2), AEKeyword("two "));
    EXPECT_TRUE(pxObject(two) == nil);
    EXPECT_TRUE(pxObject(recordOf(stringDescriptor("a"))) == nil);
    EXPECT_TRUE(pxObject(recordOf(listDescriptor({}))) == nil);
    EXPECT_TRUE(pxObject(recordOf(listDescriptor({stringDescriptor("k1")}))) == nil);
    EXPECT_TRUE(pxObject(recordOf(recordOf(listDescriptor({stringDescriptor("k"), numberDescriptor(1)})))) == nil)
        << "a dictionary is no list";
    EXPECT_TRUE(lines.all().empty());
}

TEST(AppleEventDescriptors, ConvertNullToItsData) {
    LoggedWhileAlive const lines;
    NSData const data = as<NSData>(pxObject(NSAppleEventDescriptor::nullDescriptor()));
    ASSERT_FALSE(data == nil);
    EXPECT_EQ(data.length(), 0U);
    EXPECT_TRUE(lines.all().empty());
}

TEST(AppleEventDescriptors, LogATypeTheyDoNotKnowAndAnswerItsData) {
    LoggedWhileAlive const lines;
    EXPECT_TRUE(pxObject(descriptorOfBytes(typeBoolean, "\x01")).isEqual_(NSData::dataWithBytes_length_("\x01", 1)));
    EXPECT_TRUE(pxObject(descriptorOfBytes(DescType("utf8"), "x")).isEqual_(NSData::dataWithBytes_length_("x", 1)));
    EXPECT_EQ(lines.all(), (std::vector<std::string>{
                               "-[NSAppleEventDescriptor(PXCoreUtils) pxObject] Unknown descriptor type: 'bool'",
                               "-[NSAppleEventDescriptor(PXCoreUtils) pxObject] Unknown descriptor type: 'utf8'"}));
    EXPECT_FALSE(pxObject(descriptorOfBytes(DescType(0x80FF000AU), "x")) == nil);
    EXPECT_EQ(lines.all().size(), 3U);
}

TEST(AppleEventDescriptors, AreConvertedByMessageToo) {
    EXPECT_TRUE(stringDescriptor("x").performSelector_("pxObject").isEqual_("x"));
    EXPECT_TRUE(pxObject(nil) == nil);
}

} // namespace mac::test
