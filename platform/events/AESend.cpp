#include "platform/events/AppleEvents.h"
#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/events/EventDispatch.h"
#include "platform/events/EventSending.h"
#include "platform/events/EventTransport.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/processes/SerialNumbers.h"
#include <atomic>
#include <unistd.h>

namespace mac {

namespace {

constexpr AESendMode ReplyModes = 3;

std::atomic<QuitRequest> s_unansweredQuitHandler{askToEnd};
std::atomic<EventStandIn> s_eventStandIn{nullptr};

EventDeadline deadlineIn(std::int32_t ticks) {
    constexpr std::int32_t ticksOfDefault = 60 * 60;
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 60>>;
    if (ticks == kNoTimeOut) return std::nullopt;
    return std::chrono::steady_clock::now() + std::chrono::ceil<std::chrono::steady_clock::duration>(
                                                  Ticks(ticks == kAEDefaultTimeout ? ticksOfDefault : ticks));
}

bool isQuit(AppleEvent const& event) {
    return codeAttribute(event, keyEventClassAttr) == kCoreEventClass.value() &&
           codeAttribute(event, keyEventIDAttr) == kAEQuitApplication.value();
}

void enqueueAnswer(AppleEvent const& answer) { enqueue({.event = answer}); }

OSStatus sendInPlace(AppleEvent const& event, AESendMode mode, AppleEvent& reply) {
    OSErr const status = dispatchEvent(event, mode != kAENoReply, reply);
    if (mode == kAEWaitReply) return status;
    if (mode == kAEQueueReply) enqueueAnswer(status == noErr ? reply : failedReply(event, status));
    reply = {};
    return noErr;
}

std::optional<SendingOutcome> waitWhileWanted(PendingReply const& pending, EventWait const& wait, Until until) {
    constexpr std::chrono::milliseconds betweenLooks{50};
    while (wait.shouldContinue) {
        auto const nextLook = std::chrono::steady_clock::now() + betweenLooks;
        if (wait.deadline && *wait.deadline <= nextLook) break;
        if (std::optional<SendingOutcome> outcome = waitFor(pending, nextLook, until)) return outcome;
        if (!wait.shouldContinue()) return std::nullopt;
    }
    return waitFor(pending, wait.deadline, until);
}

// Abandons the pending reply when its scope ends, also by an exception: an event that is not sent by then is never
// sent.
class Abandoning {
public:
    explicit Abandoning(std::shared_ptr<PendingReply> pending) : m_pending(std::move(pending)) {}
    ~Abandoning() { abandon(*m_pending); }
    Abandoning(Abandoning const&) = delete;
    Abandoning& operator=(Abandoning const&) = delete;

private:
    std::shared_ptr<PendingReply> m_pending;
};

// The reply in place of a process that receives no events; nullopt if there is none.
std::optional<AppleEvent> replyInPlaceOf(ProcessIdentity const& process, AppleEvent const& event,
                                         EventWait const& wait) {
    if (isQuit(event)) return s_unansweredQuitHandler.load()(process) ? std::optional(makeReply(event)) : std::nullopt;
    EventStandIn const standIn = s_eventStandIn.load();
    return standIn ? standIn(event, process, wait) : std::nullopt;
}

OSStatus errorIn(AppleEvent const& answer) {
    AEDesc const* const error = findEntry(contentsOf(answer).entries, keyErrorNumber);
    return error ? valueOf<std::int32_t>(*error, typeSInt32).value_or(errAEEventFailed) : noErr;
}

// Hands the reply over as the mode says, and answers the status of the sending.
OSStatus deliver(AppleEvent const& answer, AESendMode mode, AppleEvent& reply) {
    OSStatus const error = errorIn(answer);
    if (mode == kAENoReply) return error;
    if (mode == kAEQueueReply) {
        enqueueAnswer(answer);
        return noErr;
    }
    // A wait that timed out ends without a reply, also if a stand-in was to answer.
    if (error == errAETimeout) return errAETimeout;
    reply = answer;
    return noErr;
}

Expectation expectationOf(AESendMode mode, EventWait const& wait) {
    if (mode == kAENoReply) return Expectation::Nothing;
    return mode == kAEWaitReply && !wait.shouldContinue ? Expectation::ReplyUntilDeadline : Expectation::Reply;
}

OSStatus sendElsewhere(AppleEvent const& event, ProcessIdentity const& process, AESendMode mode, EventWait const& wait,
                       AppleEvent& reply) {
    Result<std::vector<std::byte>, Failure> flat = flattened(event);
    if (!flat.hasValue()) return memFullErr;
    auto const pending = std::make_shared<PendingReply>();
    if (mode == kAEQueueReply) {
        pending->whenDone = [event](SendingOutcome const& outcome) {
            enqueueAnswer(outcome.status == noErr ? outcome.reply : failedReply(event, outcome.status));
        };
    }
    Abandoning const abandoning(pending);
    sendToProcess({process, flat.takeValue(), expectationOf(mode, wait), wait.deadline, pending});
    Until const until = mode == kAEWaitReply ? Until::Replied : Until::Sent;
    std::optional<SendingOutcome> outcome = waitWhileWanted(*pending, wait, until);
    if (!outcome) return errAETimeout;
    if (outcome->hasNoEndpoint) {
        std::optional<AppleEvent> const answer =
            replyInPlaceOf(process, event, mode == kAEWaitReply ? wait : EventWait());
        if (answer) return deliver(*answer, mode, reply);
    }
    reply = std::move(outcome->reply);
    return outcome->status;
}

OSStatus send(AppleEvent const& sent, AppleEvent* reply, AESendMode mode, EventWait const& wait) {
    if (!isEvent(sent)) return errAENotAppleEvent;
    if (mode == 0) return errAEUnknownSendMode;
    AEDesc const* const address = findEntry(contentsOf(sent).attributes, keyAddressAttr);
    std::optional<EventTarget> const target = address ? targetOfAddress(*address) : std::nullopt;
    if (!target) return procNotFound;
    AppleEvent answer;
    OSStatus const status = target->isThisProcess ? sendInPlace(sent, mode, answer)
                                                  : sendElsewhere(sent, target->process, mode, wait, answer);
    if (reply && status == noErr) *reply = std::move(answer);
    return status;
}

} // namespace

void setUnansweredQuitHandler(QuitRequest handler) { s_unansweredQuitHandler = handler; }

void setEventStandIn(EventStandIn standIn) { s_eventStandIn = standIn; }

OSStatus sendAndWait(AppleEvent const& event, AppleEvent& reply, EventDeadline const& deadline,
                     std::function<bool()> const& shouldContinue) {
    return send(event, &reply, kAEWaitReply, {.deadline = deadline, .shouldContinue = shouldContinue});
}

OSStatus AESendMessage(AppleEvent const* event, AppleEvent* reply, AESendMode sendMode, std::int32_t timeOutInTicks) {
    AESendMode const mode = sendMode & ReplyModes;
    // The reply may be the event's own record.
    AppleEvent const sent = event ? *event : AppleEvent();
    if (reply) *reply = {};
    if (!event || (!reply && mode == kAEWaitReply) || timeOutInTicks < kNoTimeOut) return paramErr;
    return send(sent, reply, mode, {.deadline = deadlineIn(timeOutInTicks)});
}

OSErr AESend(AppleEvent const* event, AppleEvent* reply, AESendMode sendMode, AESendPriority,
             std::int32_t timeOutInTicks, AEIdleUPP, AEFilterUPP) {
    return static_cast<OSErr>(AESendMessage(event, reply, sendMode, timeOutInTicks));
}

OSStatus sendEvent(ProcessSerialNumber const& psn, AEEventClass eventClass, AEEventID eventID) {
    NSAppleEventDescriptor const target =
        NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(typeProcessSerialNumber, &psn, sizeof psn);
    NSAppleEventDescriptor const event =
        NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
            eventClass, eventID, target, kAutoGenerateReturnID, kAnyTransactionID);
    AppleEvent reply;
    return AESendMessage(event.aeDesc(), &reply, kAEWaitReply, kAEDefaultTimeout);
}

namespace {

constexpr FourCharCode FinderSignature{"MACS"};

std::optional<ProcessSerialNumber> processWithSignature(FourCharCode signature) {
    if (signature == FinderSignature) return processWith(kCFBundleIdentifierKey, "com.apple.finder");
    return processWith("FileCreator", NSString::stringWithCodeUnits(textOfCode(signature)));
}

std::optional<ProcessSerialNumber> processWithID(std::int32_t pid) {
    ProcessSerialNumber psn;
    return GetProcessForPID(pid, &psn) == noErr ? std::optional(psn) : std::nullopt;
}

std::optional<ProcessSerialNumber> serialNumberOfAddress(AEDesc const& address) {
    if (auto const psn = valueOf<ProcessSerialNumber>(address, typeProcessSerialNumber)) return psn;
    if (auto const pid = valueOf<std::int32_t>(address, typeKernelProcessID)) return processWithID(*pid);
    if (auto const code = valueOf<std::uint32_t>(address, typeApplSignature))
        return processWithSignature(FourCharCode(*code));
    auto const bytes = bytesOf(address, typeApplicationBundleID);
    if (!bytes || bytes->empty()) return std::nullopt;
    NSString const identifier =
        NSString::stringWithUTF8String_({reinterpret_cast<char const*>(bytes->data()), bytes->size()});
    return processWith(kCFBundleIdentifierKey, identifier);
}

} // namespace

std::optional<EventTarget> targetOfAddress(AEDesc const& address) {
    std::optional<ProcessSerialNumber> const psn = serialNumberOfAddress(address);
    std::optional<ProcessIdentity> const identity = psn ? identityOf(*psn) : std::nullopt;
    if (!identity || !runningProcess(*identity)) return std::nullopt;
    return EventTarget{*identity, identity->pid == ::getpid()};
}

} // namespace mac
