#pragma once

#include "platform/appkit/views/NSButton.h"

namespace mac {

// How serious an alert is. The values are the framework's own.
enum NSAlertStyle : NSUInteger {
    NSWarningAlertStyle = 0,
    NSInformationalAlertStyle = 1,
    NSCriticalAlertStyle = 2,
};

// The tags that an alert's buttons have unless they are given others; the fourth has 1003, and so on.
inline constexpr NSInteger NSAlertFirstButtonReturn = 1000;
inline constexpr NSInteger NSAlertSecondButtonReturn = 1001;
inline constexpr NSInteger NSAlertThirdButtonReturn = 1002;
// The answer of an alert that ended without a button.
inline constexpr NSInteger NSRunAbortedResponse = -1001;

// A message with buttons that holds the program until one of them is pressed. A message to nil answers an empty value
// or does nothing. Main thread.
class NSAlert : public Handle<NSAlert, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    NSAlert init() const;

    // Plain text, whatever it looks like; nil counts as empty.
    NSString messageText() const;
    void setMessageText_(NSString const& text) const;
    NSString informativeText() const;
    void setInformativeText_(NSString const& text) const;
    // NSWarningAlertStyle at first.
    NSAlertStyle alertStyle() const;
    void setAlertStyle_(NSAlertStyle style) const;

    // The first button stands rightmost and is pressed by Return, one with the title "Cancel" by Escape, until they are
    // given other key equivalents.
    NSButton addButtonWithTitle_(NSString const& title) const;
    NSArray buttons() const;

    // Shows the alert, with a button "OK" if it has none, and answers the tag of the button that is pressed. A key that
    // is no button's equivalent presses nothing but Space the button that has the keyboard; closing the window does
    // nothing. NSRunAbortedResponse if the application ends meanwhile, and for nil.
    // Linux: likewise, after a line in the log, where there is no display.
    NSInteger runModal() const;
};

} // namespace mac
