#include "platform/appkit/views/NSView.h"
#include "platform/appkit/views/ViewBody.h"
#include "platform/foundation/objects/Method.h"
#include <QLayout>
#include <array>
#include <cmath>
#include <vector>

namespace mac {

namespace {

// A view's extent along one axis: the margin before it, its size, the margin behind it.
using Parts = std::array<float, 3>;

// The view's origin and size along an axis after its superview has grown by the difference. The bits are those of the
// two margins and the size.
Parts resizedParts(Parts parts, std::array<bool, 3> const& isFlexible, float difference) {
    float flexible = 0;
    float count = 0;
    for (std::size_t index = 0; index < parts.size(); ++index) {
        if (!isFlexible[index]) continue;
        flexible += parts[index];
        ++count;
    }
    if (count == 0) return parts;
    for (std::size_t index = 0; index < parts.size(); ++index) {
        if (!isFlexible[index]) continue;
        parts[index] += difference * (flexible > 0 ? parts[index] / flexible : 1 / count);
    }
    return parts;
}

NSRect resizedFrame(NSRect const& frame, NSUInteger mask, NSSize const& before, NSSize const& after) {
    auto const has = [mask](NSUInteger bit) { return (mask & bit) != 0; };
    Parts const x = resizedParts({frame.origin.x, frame.size.width, before.width - NSMaxX(frame)},
                                 {has(NSViewMinXMargin), has(NSViewWidthSizable), has(NSViewMaxXMargin)},
                                 after.width - before.width);
    Parts const y = resizedParts({frame.origin.y, frame.size.height, before.height - NSMaxY(frame)},
                                 {has(NSViewMinYMargin), has(NSViewHeightSizable), has(NSViewMaxYMargin)},
                                 after.height - before.height);
    return NSMakeRect(x[0], y[0], x[1], y[1]);
}

int pixels(float points) { return static_cast<int>(std::lround(points)); }

// The height of what a widget lies in: widgets are placed from its upper edge, views from its lower one.
float heightAround(QWidget const& widget) {
    return widget.parentWidget() ? static_cast<float>(widget.parentWidget()->height()) : 0;
}

} // namespace

ClassDescription NSView::describeClass() {
    using Self = NSView;
    return {
        .name = "NSView",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSView>,
        .methods =
            {
                method<&Self::isHidden>("isHidden"),
                method<&Self::setHidden_>("setHidden:"),
                method<&Self::autoresizingMask>("autoresizingMask"),
                method<&Self::setAutoresizingMask_>("setAutoresizingMask:"),
                method<&Self::subviews>("subviews"),
                method<&Self::superview>("superview"),
                method<&Self::addSubview_>("addSubview:"),
                method<&Self::removeFromSuperview>("removeFromSuperview"),
            },
        .properties =
            {
                property<&Self::isHidden, &Self::setHidden_>("hidden"),
                property<&Self::autoresizingMask, &Self::setAutoresizingMask_>("autoresizingMask"),
            },
    };
}

NSRect NSView::Body::frame() const {
    if (!m_widget) return m_frame;
    QRect const place = m_widget->geometry();
    auto const height = static_cast<float>(place.height());
    return NSMakeRect(static_cast<float>(place.x()), heightAround(*m_widget) - static_cast<float>(place.y()) - height,
                      static_cast<float>(place.width()), height);
}

void NSView::Body::place(NSRect const& frame) {
    m_frame = frame;
    if (!m_widget) return;
    float const top = heightAround(*m_widget) - NSMaxY(frame);
    m_widget->setGeometry(pixels(frame.origin.x), pixels(top), pixels(frame.size.width), pixels(frame.size.height));
}

NSArray NSView::Body::subviews() {
    adoptChildWidgets();
    return uncheckedCast<NSArray>(m_subviews.copy());
}

// What the interface file put into the widget, each with one view for good.
void NSView::Body::adoptChildWidgets() {
    if (!m_widget) return;
    for (QWidget* const child : m_widget->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        bool isKnown = child->isWindow();
        for (id const& known : m_subviews)
            isKnown = isKnown || bodyOf(uncheckedCast<NSView>(known))->widget() == child;
        if (!isKnown) add(viewOfWidget(child));
    }
}

void NSView::Body::add(NSView const& view) {
    m_subviews.addObject_(view);
    bodyOf(view)->setSuperview(uncheckedCast<NSView>(id::retain(this)));
}

void NSView::Body::remove(NSView const& view) {
    m_subviews.removeObjectIdenticalTo_(view);
    bodyOf(view)->setSuperview(nil);
}

NSView NSView::initWithFrame_(NSRect const& frame) const {
    if (*this != nil) bodyOf(*this)->place(frame);
    return *this;
}

bool NSView::isHidden() const {
    if (*this == nil || !bodyOf(*this)->widget()) return false;
    return bodyOf(*this)->widget()->isHidden();
}

void NSView::setHidden_(BOOL hidden) const {
    if (*this != nil && bodyOf(*this)->widget()) bodyOf(*this)->widget()->setHidden(static_cast<bool>(hidden));
}

NSRect NSView::frame() const { return *this == nil ? NSZeroRect : bodyOf(*this)->frame(); }

void NSView::setFrame_(NSRect const& frame) const {
    if (*this == nil) return;
    Body& body = *bodyOf(*this);
    NSSize const before = body.frame().size;
    bool const hasLayout = body.widget() && body.widget()->layout();
    NSArray const views = hasLayout ? NSArray(nil) : body.subviews();
    // Read before the widgets move: their distance from the upper edge is all that the toolkit keeps.
    std::vector<NSRect> frames;
    for (id const& view : views)
        frames.push_back(uncheckedCast<NSView>(view).frame());
    body.place(frame);
    std::size_t index = 0;
    for (id const& object : views) {
        NSView const view = uncheckedCast<NSView>(object);
        view.setFrame_(resizedFrame(frames[index++], view.autoresizingMask(), before, frame.size));
    }
}

NSUInteger NSView::autoresizingMask() const {
    return *this == nil ? NSViewNotSizable : bodyOf(*this)->autoresizingMask;
}

void NSView::setAutoresizingMask_(NSUInteger mask) const {
    if (*this != nil) bodyOf(*this)->autoresizingMask = mask;
}

NSArray NSView::subviews() const { return *this == nil ? NSArray(nil) : bodyOf(*this)->subviews(); }

NSView NSView::superview() const { return *this == nil ? NSView(nil) : bodyOf(*this)->superview(); }

void NSView::addSubview_(NSView const& view) const {
    if (*this == nil || view == nil) return;
    view.removeFromSuperview();
    bodyOf(*this)->add(view);
}

void NSView::removeFromSuperview() const {
    NSView const above = superview();
    if (above != nil) bodyOf(above)->remove(*this);
}

} // namespace mac
