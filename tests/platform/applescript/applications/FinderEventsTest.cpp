#include "platform/applescript/applications/FinderEvents.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/desktop/browser/FileBrowserSession.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/platform/events/Descriptors.h"
#include "tests/support/ChildProcess.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>

// Events for a file browser that receives none, answered in its place.

namespace mac::applescript::test {

namespace {

using mac::test::descriptorOfBytes;
using mac::test::listDescriptor;

// A default application for folders that runs and does nothing.
class FinderEventsInPlace : public testing::Test {
protected:
    void SetUp() override {
        m_desktop.install(m_program);
        m_browser.emplace(std::vector<std::string>{m_program});
        ASSERT_EQ(fileBrowserProcesses().size(), 1U);
        m_process = fileBrowserProcesses().front();
    }

    NSAppleEventDescriptor referenceTo(std::string const& path) const {
        Result<FSRef> const reference = referenceToPath(path, LinkAtEnd::IsNotFollowed);
        EXPECT_TRUE(reference.hasValue());
        FSRef const ref = reference.hasValue() ? reference.value() : FSRef();
        return NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeFSRef, &ref, sizeof ref);
    }

    static NSAppleEventDescriptor eventWith(AEEventClass eventClass, AEEventID eventID,
                                            NSAppleEventDescriptor const& direct) {
        NSAppleEventDescriptor const event =
            NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
                eventClass, eventID, nil, kAutoGenerateReturnID, kAnyTransactionID);
        event.setParamDescriptor_forKeyword_(direct, keyDirectObject);
        return event;
    }
    static NSAppleEventDescriptor deletionOf(NSAppleEventDescriptor const& direct) {
        return eventWith(AEEventClass("core"), AEEventID("delo"), direct);
    }

    NSAppleEventDescriptor replyTo(NSAppleEventDescriptor const& event, EventWait const& wait = {}) const {
        std::optional<AppleEvent> reply = finderReplyTo(*event.aeDesc(), m_process, wait);
        if (!reply) return nil;
        return NSAppleEventDescriptor::descriptorWithAEDesc(*std::move(reply));
    }
    std::int32_t errorOf(NSAppleEventDescriptor const& event, EventWait const& wait = {}) const {
        return replyTo(event, wait).paramDescriptorForKeyword_(keyErrorNumber).int32Value();
    }

    mac::test::Desktop const m_desktop{};
    std::string const m_letter{m_desktop.folder.makeFile("home/letter.txt", "Dear")};

private:
    std::string copiedProgram() const {
        std::string copy = m_desktop.folder.path("browser");
        // Waits for input that does not come.
        std::filesystem::copy_file("/bin/cat", copy);
        return copy;
    }

    std::string const m_program{copiedProgram()};
    std::optional<mac::test::ChildProcess> m_browser{};
    ProcessIdentity m_process{};
};

TEST_F(FinderEventsInPlace, DoNothingOnceTheSenderWaitsNoLonger) {
    NSAppleEventDescriptor const deletion = deletionOf(referenceTo(m_letter));
    EXPECT_EQ(errorOf(deletion, {.deadline = std::chrono::steady_clock::now()}), errAETimeout);
    EXPECT_EQ(errorOf(deletion, {.shouldContinue = [] { return false; }}), errAETimeout);
    EXPECT_THROW(replyTo(deletion, {.shouldContinue = []() -> bool { throw std::runtime_error("no more"); }}),
                 std::runtime_error);
    EXPECT_TRUE(std::filesystem::exists(m_letter));
    EXPECT_EQ(errorOf(deletion, {.deadline = std::chrono::steady_clock::now() + std::chrono::hours(1),
                                 .shouldContinue = [] { return true; }}),
              0);
    EXPECT_FALSE(std::filesystem::exists(m_letter));
}

TEST_F(FinderEventsInPlace, EndBetweenTwoItemsWhenTheSenderGoesAway) {
    std::string const other = m_desktop.folder.makeFile("home/other.txt", "");
    int looks = 0;
    auto const untilTheFirstIsGone = [&] {
        ++looks;
        return std::filesystem::exists(m_letter);
    };
    EXPECT_EQ(errorOf(deletionOf(listDescriptor({referenceTo(m_letter), referenceTo(other)})),
                      {.shouldContinue = untilTheFirstIsGone}),
              errAETimeout);
    EXPECT_GT(looks, 1);
    EXPECT_FALSE(std::filesystem::exists(m_letter));
    EXPECT_TRUE(std::filesystem::exists(other));
}

TEST_F(FinderEventsInPlace, KnowReferencesWithinRecords) {
    NSAppleEventDescriptor const record = NSAppleEventDescriptor::recordDescriptor();
    record.setDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithTypeCode_(DescType("prop")),
                                     AEKeyword("want"));
    record.setDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithEnumCode_(DescType("prop")),
                                     AEKeyword("form"));
    record.setDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithTypeCode_(DescType("pnam")),
                                     AEKeyword("seld"));
    record.setDescriptor_forKeyword_(referenceTo(m_letter), AEKeyword("from"));
    NSAppleEventDescriptor const reply =
        replyTo(eventWith(AEEventClass("core"), AEEventID("getd"), record.coerceToDescriptorType_(DescType("obj "))));
    EXPECT_EQ(reply.paramDescriptorForKeyword_(keyErrorNumber).int32Value(), 0);
    EXPECT_TRUE(reply.paramDescriptorForKeyword_(keyDirectObject).stringValue().isEqualToString_("letter.txt"));
    EXPECT_EQ(errorOf(deletionOf(descriptorOfBytes(typeFSRef, "short"))), errors::CorruptData);
}

TEST_F(FinderEventsInPlace, MeanTheVeryItemThatIsReferredTo) {
    auto const fileWithIdentityOf = [&](std::string const& path) {
        Value file =
            makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias, unitsFromFileSystemBytes(m_letter));
        file.file().identity = identifyAtPath(path, LinkAtEnd::IsNotFollowed).value().identity;
        return fileInApplication(file, finderItself());
    };
    std::string const other = m_desktop.folder.makeFile("home/other.txt", "");
    TextContext const context;
    EXPECT_TRUE(existsInApplication(fileWithIdentityOf(m_letter), context));
    EXPECT_FALSE(existsInApplication(fileWithIdentityOf(other), context));
}

} // namespace

} // namespace mac::applescript::test
