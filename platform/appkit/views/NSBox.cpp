#include "platform/appkit/views/NSBox.h"
#include "platform/appkit/views/ViewBody.h"
#include "platform/foundation/objects/Method.h"
#include <QGroupBox>

namespace mac {

class NSBox::Body : public NSView::Body {
public:
    explicit Body(QGroupBox* widget = nullptr) : NSView::Body(widget) {
        if (widget) m_title = NSString::stringWithCodeUnits(widget->title().toStdU16String());
    }

    NSString title() const { return m_title; }
    void setTitle(NSString const& title) {
        m_title = title == nil ? NSString::string() : uncheckedCast<NSString>(title.copy());
        show();
    }
    NSTitlePosition position() const { return m_position; }
    void setPosition(NSTitlePosition position) {
        m_position = position;
        show();
    }

private:
    void show() const {
        auto* const group = qobject_cast<QGroupBox*>(widget());
        if (!group) return;
        bool const isShown = m_position != NSNoTitle;
        group->setTitle(isShown ? QString::fromStdU16String(std::u16string(m_title.codeUnits())) : QString());
    }

    NSString m_title{"Title"};
    NSTitlePosition m_position{NSAtTop};
};

ClassDescription NSBox::describeClass() {
    using Self = NSBox;
    return {
        .name = "NSBox",
        .superclass = classOf<NSView>(),
        .makeBody = &makeEmptyBody<NSBox>,
        .methods =
            {
                method<&Self::title>("title"),
                method<&Self::setTitle_>("setTitle:"),
                method<&Self::titlePosition>("titlePosition"),
                method<&Self::setTitlePosition_>("setTitlePosition:"),
            },
        .properties =
            {
                property<&Self::title, &Self::setTitle_>("title"),
                property<&Self::titlePosition, &Self::setTitlePosition_>("titlePosition"),
            },
    };
}

NSView viewOfWidget(QWidget* widget) {
    if (auto* const group = qobject_cast<QGroupBox*>(widget)) return adopt<NSBox>(group);
    return adopt<NSView>(widget);
}

NSBox NSBox::initWithFrame_(NSRect const& frame) const {
    NSView::initWithFrame_(frame);
    return *this;
}

NSString NSBox::title() const { return *this == nil ? NSString(nil) : bodyOf(*this)->title(); }

void NSBox::setTitle_(NSString const& title) const {
    if (*this != nil) bodyOf(*this)->setTitle(title);
}

NSTitlePosition NSBox::titlePosition() const { return *this == nil ? NSNoTitle : bodyOf(*this)->position(); }

void NSBox::setTitlePosition_(NSTitlePosition position) const {
    if (*this != nil) bodyOf(*this)->setPosition(position);
}

} // namespace mac
