#include "coreutils/DeferredPerforming.h"
#include "coreutils/Logging.h"
#include "coreutils/Strings.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/ObjectBody.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "tests/consumer/operations/Trial.h"

#include <clocale>

// Text, logs, and methods that are called later.

namespace consumer {

using namespace mac;

namespace {

void tryStrings() {
    Trial const trial("coreutils/Strings");
    trial.expect("pxCountOf_", pxCountOf_("aaaa", "aa") == 2);
    trial.expect("pxContainsCharactersInString_", pxContainsCharactersInString_("title", "xyzi"));
    NSCharacterSet const vowels = NSCharacterSet::characterSetWithCharactersInString_("iI");
    trial.expect("pxStringByRemovingCharactersInSet_",
                 isText(pxStringByRemovingCharactersInSet_("TITLE it", vowels), "TTLE t"));
    trial.expect("pxStringBySubstituting_with_", isText(pxStringBySubstituting_with_("a.b", ".", "--"), "a--b"));
    trial.expect("pxUUID", pxUUID().length() == 36 && !isText(pxUUID(), pxUUID().UTF8String()));
    trial.expect("pxChecksum", pxChecksum(NSData::data()) == 65535);
    // The separator of decimals is that of the language.
    std::string const separator = std::localeconv()->decimal_point;
    trial.expect("pxFormattedStringWithSize_", isText(pxFormattedStringWithSize_(1572864), "1" + separator + "5 MB"));
    trial.expect("pxDescriptionOfSystemErrorCode_",
                 pxDescriptionOfSystemErrorCode_(0) == nil && pxDescriptionOfSystemErrorCode_(-43).length() > 0);
}

std::string contentsOf(NSString const& path) {
    NSData const data = NSData::dataWithContentsOfFile_(path);
    return {reinterpret_cast<char const*>(data.bytes()), static_cast<std::size_t>(data.length())};
}

void tryLogging(Places const& places) {
    Trial const trial("coreutils/Logging");
    places.file("Logger.app/Contents/Info.plist", "{CFBundleName = Logger; CFBundleVersion = 7;}");
    NSBundle const bundle = NSBundle::bundleWithPath_(places.path("Logger.app"));
    NSString const path = pxLogFilePathWithAppendingToName_(bundle, " of İ");
    trial.expect("pxLogFilePathWithAppendingToName_", isText(path.lastPathComponent(), "Logger of İ.log"));
    NSString const made =
        pxCreateLogFileWithAppendingToName_appendingToFile_includeAuxiliaryInformation_(bundle, nil, NO, YES);
    trial.expect("pxCreateLogFileWithAppendingToName_appendingToFile_includeAuxiliaryInformation_",
                 contentsOf(made).find("Logger") != std::string::npos);
    NSString const log = places.path("own.log");
    std::FILE* const stream = pxOpenLogFileForPathWithAppending_(log, NO);
    trial.expect("pxOpenLogFileForPathWithAppending_", stream && std::fputs("begin\n", stream) >= 0);
    if (stream) std::fclose(stream);
    pxLog_(log, "one");
    pxLog_(log, " and %@\n", NSString("two"));
    trial.expect("pxLog_", contentsOf(log) == "begin\none and two\n");
    pxLogAux_(log, YES, "%d lines", 3);
    pxLogAux_(log, NO, "end");
    std::string const lines = contentsOf(log);
    bool const hasTime = lines.size() > std::string_view("begin\none and two\n 3 lines\nend").size();
    trial.expect("pxLogAux_", lines.ends_with(" 3 lines\nend") && hasTime);
    trial.expect("pxFormattedStringWithArguments_",
                 isText(pxFormattedStringWithArguments_("%@-%@", NSArray::arrayWithObjects_({"a", "b"})), "a-b"));
}

// Keeps the arguments of the last call.
class Receiver : public Handle<Receiver, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        id first{};
        id second{};
    };
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "ConsumerReceiver",
                .superclass = classOf<NSObject>(),
                .methods = {method<&Receiver::take>("take:and:")}};
    }
    void take(id const& first, id const& second) const {
        bodyOf(*this)->first = first;
        bodyOf(*this)->second = second;
    }
    // Runs the loop until the method was called; whether it was called with these texts.
    bool isCalledWith(std::string_view first, std::string_view second) const {
        Body* const body = bodyOf(*this);
        NSDate const end = NSDate::dateWithTimeIntervalSinceNow_(60);
        while (body->first == nil && body->second == nil && end.timeIntervalSinceNow() > 0)
            NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode,
                                                            NSDate::dateWithTimeIntervalSinceNow_(0.01));
        bool const isRight = (first.empty() ? body->first == nil : isText(body->first, first)) &&
                             (second.empty() ? body->second == nil : isText(body->second, second));
        body->first = nil;
        body->second = nil;
        return isRight;
    }
    bool isCalled() const { return bodyOf(*this)->first != nil || bodyOf(*this)->second != nil; }
};

void tryDeferring() {
    Trial const trial("coreutils/DeferredPerforming");
    Receiver const receiver = adopt<Receiver>();
    pxRegisterPerformDeferredSelector(receiver);
    pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(receiver, "take:and:", "x", NO, YES);
    bool const isPerformed = receiver.isCalledWith("x", "");
    trial.expect("pxRegisterPerformDeferredSelector", isPerformed);
    trial.expect("pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_", isPerformed);
    pxPerformDeferredSelector_withObject_withObject_postWhenIdle_coalescing_(receiver, "take:and:", "x", "y", YES, NO);
    trial.expect("pxPerformDeferredSelector_withObject_withObject_postWhenIdle_coalescing_",
                 receiver.isCalledWith("", "y"));
    NSDictionary const call = NSDictionary::dictionaryWithObjectsAndKeys_({"take:and:", "selector", "z", "object1"});
    pxPerformDeferredSelectorHandler_(receiver,
                                      NSNotification::notificationWithName_object_userInfo_("any", receiver, call));
    trial.expect("pxPerformDeferredSelectorHandler_", receiver.isCalledWith("z", ""));
    pxUnregisterPerformDeferredSelector(receiver);
    pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(receiver, "take:and:", "x", NO, YES);
    NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode, NSDate::date());
    trial.expect("pxUnregisterPerformDeferredSelector", !receiver.isCalled());
}

} // namespace

void tryText(Places const& places) {
    tryStrings();
    tryLogging(places);
    tryDeferring();
}

} // namespace consumer
