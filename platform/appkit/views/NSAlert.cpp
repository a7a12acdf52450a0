#include "platform/appkit/views/NSAlert.h"
#include "platform/appkit/views/AlertDialog.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/Log.h"
#include <QApplication>

namespace mac {

namespace {

constexpr char ReturnKey[] = "\r";
constexpr char EscapeKey[] = "\x1B";

NSString alertText(NSString const& text) {
    return text == nil ? NSString::string() : uncheckedCast<NSString>(text.copy());
}

} // namespace

class NSAlert::Body : public ObjectBody {
public:
    NSString messageText{NSString::string()};
    NSString informativeText{NSString::string()};
    NSAlertStyle style{NSWarningAlertStyle};
    NSMutableArray buttons{NSMutableArray::array()};
};

ClassDescription NSAlert::describeClass() {
    using Self = NSAlert;
    return {
        .name = "NSAlert",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSAlert>,
        .methods =
            {
                method<&Self::init>("init"),
                method<&Self::messageText>("messageText"),
                method<&Self::setMessageText_>("setMessageText:"),
                method<&Self::informativeText>("informativeText"),
                method<&Self::setInformativeText_>("setInformativeText:"),
                method<&Self::alertStyle>("alertStyle"),
                method<&Self::setAlertStyle_>("setAlertStyle:"),
                method<&Self::addButtonWithTitle_>("addButtonWithTitle:"),
                method<&Self::buttons>("buttons"),
                method<&Self::runModal>("runModal"),
            },
    };
}

NSAlert NSAlert::init() const { return *this; }

NSString NSAlert::messageText() const { return *this == nil ? NSString(nil) : bodyOf(*this)->messageText; }

void NSAlert::setMessageText_(NSString const& text) const {
    if (*this != nil) bodyOf(*this)->messageText = alertText(text);
}

NSString NSAlert::informativeText() const { return *this == nil ? NSString(nil) : bodyOf(*this)->informativeText; }

void NSAlert::setInformativeText_(NSString const& text) const {
    if (*this != nil) bodyOf(*this)->informativeText = alertText(text);
}

NSAlertStyle NSAlert::alertStyle() const { return *this == nil ? NSWarningAlertStyle : bodyOf(*this)->style; }

void NSAlert::setAlertStyle_(NSAlertStyle style) const {
    if (*this != nil) bodyOf(*this)->style = style;
}

NSButton NSAlert::addButtonWithTitle_(NSString const& title) const {
    if (*this == nil) return nil;
    NSMutableArray const& all = bodyOf(*this)->buttons;
    NSButton const button = NSButton::alloc();
    button.setTitle_(title);
    button.setTag_(NSAlertFirstButtonReturn + static_cast<NSInteger>(all.count()));
    if (all.count() == 0)
        button.setKeyEquivalent_(ReturnKey);
    else if (title.isEqualToString_("Cancel"))
        button.setKeyEquivalent_(EscapeKey);
    all.addObject_(button);
    return button;
}

NSArray NSAlert::buttons() const {
    return *this == nil ? NSArray(nil) : uncheckedCast<NSArray>(bodyOf(*this)->buttons.copy());
}

NSInteger NSAlert::runModal() const {
    if (*this == nil) return NSRunAbortedResponse;
    NSApplication::sharedApplication();
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        NSLog("The alert \"%@\" cannot be shown: there is no display", messageText());
        return NSRunAbortedResponse;
    }
    if (bodyOf(*this)->buttons.count() == 0) addButtonWithTitle_("OK");
    NSAlert const kept = *this;
    AlertDialog dialog(kept);
    NSButton const pressed = dialog.run();
    return pressed == nil ? NSRunAbortedResponse : pressed.tag();
}

} // namespace mac
