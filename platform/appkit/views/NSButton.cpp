#include "platform/appkit/views/NSButton.h"
#include "platform/appkit/views/ViewBody.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

namespace {

NSString copyOrEmpty(NSString const& text) {
    return text == nil ? NSString::string() : uncheckedCast<NSString>(text.copy());
}

} // namespace

class NSButton::Body : public NSControl::Body {
public:
    NSString title{NSString::string()};
    NSInteger tag{0};
    NSString keyEquivalent{NSString::string()};
};

ClassDescription NSButton::describeClass() {
    using Self = NSButton;
    return {
        .name = "NSButton",
        .superclass = classOf<NSControl>(),
        .makeBody = &makeEmptyBody<NSButton>,
        .methods =
            {
                method<&Self::title>("title"),
                method<&Self::setTitle_>("setTitle:"),
                method<&Self::tag>("tag"),
                method<&Self::setTag_>("setTag:"),
                method<&Self::keyEquivalent>("keyEquivalent"),
                method<&Self::setKeyEquivalent_>("setKeyEquivalent:"),
            },
        .properties =
            {
                property<&Self::title, &Self::setTitle_>("title"),
                property<&Self::tag, &Self::setTag_>("tag"),
                property<&Self::keyEquivalent, &Self::setKeyEquivalent_>("keyEquivalent"),
            },
    };
}

NSString NSButton::title() const { return *this == nil ? NSString(nil) : bodyOf(*this)->title; }

void NSButton::setTitle_(NSString const& title) const {
    if (*this != nil) bodyOf(*this)->title = copyOrEmpty(title);
}

NSInteger NSButton::tag() const { return *this == nil ? 0 : bodyOf(*this)->tag; }

void NSButton::setTag_(NSInteger tag) const {
    if (*this != nil) bodyOf(*this)->tag = tag;
}

NSString NSButton::keyEquivalent() const { return *this == nil ? NSString(nil) : bodyOf(*this)->keyEquivalent; }

void NSButton::setKeyEquivalent_(NSString const& key) const {
    if (*this != nil) bodyOf(*this)->keyEquivalent = copyOrEmpty(key);
}

} // namespace mac
