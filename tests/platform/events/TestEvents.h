#pragma once

#include "platform/events/NSAppleEventDescriptor.h"

namespace mac::test {

inline constexpr AEEventClass TestClass{"test"};
inline constexpr AEEventID Echo{"echo"};
inline constexpr AEEventID CallBack{"call"};
inline constexpr AEEventID Back{"back"};
inline constexpr AEEventID Hang{"hang"};
inline constexpr AEEventID Die{"die "};
inline constexpr AEEventID Fail{"fail"};
inline constexpr AEEventID Raise{"rais"};
inline constexpr AEEventID TooMuch{"much"};
inline constexpr AEEventID Tell{"tell"};

// An event of our own to the target, which may be nil, as may the direct object.
inline AppleEvent testEvent(AEEventID eventID, NSAppleEventDescriptor const& target,
                            NSAppleEventDescriptor const& directObject = nil) {
    NSAppleEventDescriptor const event =
        NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
            TestClass, eventID, target, kAutoGenerateReturnID, kAnyTransactionID);
    event.setParamDescriptor_forKeyword_(directObject, keyDirectObject);
    return *event.aeDesc();
}

} // namespace mac::test
