#include "platform/appkit/interface/NSWindow.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/appkit/interface/WindowBody.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

namespace {

QWidget* widgetOf(NSWindow const& window) { return window == nil ? nullptr : bodyOf(window)->widget(); }

} // namespace

ClassDescription NSWindow::describeClass() {
    using Self = NSWindow;
    return {
        .name = "NSWindow",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&Self::title>("title"),
                method<&Self::setTitle_>("setTitle:"),
                method<&Self::isVisible>("isVisible"),
                method<&Self::makeKeyAndOrderFront_>("makeKeyAndOrderFront:"),
                method<&Self::frameAutosaveName>("frameAutosaveName"),
                method<&Self::setFrameAutosaveName_>("setFrameAutosaveName:"),
                method<&Self::close>("close"),
                method<&Self::performClose_>("performClose:"),
            },
        .properties = {property<&Self::title, &Self::setTitle_>("title"),
                       readOnlyProperty<&Self::isVisible>("visible")},
    };
}

NSString NSWindow::title() const {
    if (*this == nil) return nil;
    QWidget const* const widget = widgetOf(*this);
    return widget ? stringOf(widget->windowTitle()) : NSString::string();
}

void NSWindow::setTitle_(NSString const& title) const {
    if (QWidget* const widget = widgetOf(*this)) widget->setWindowTitle(visibleText(title));
}

bool NSWindow::isVisible() const {
    QWidget const* const widget = widgetOf(*this);
    return widget && widget->isVisible();
}

NSString NSWindow::frameAutosaveName() const { return *this == nil ? NSString() : bodyOf(*this)->autosaveName(); }

bool NSWindow::setFrameAutosaveName_(NSString const& name) const {
    return *this != nil && bodyOf(*this)->setAutosaveName(name);
}

void NSWindow::makeKeyAndOrderFront_(id const&) const {
    QWidget* const widget = widgetOf(*this);
    if (!widget) return;
    widget->show();
    widget->activateWindow();
}

void NSWindow::performClose_(id const&) const { close(); }

void NSWindow::close() const {
    if (QWidget* const widget = widgetOf(*this)) widget->close();
}

} // namespace mac
