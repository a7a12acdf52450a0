#include "platform/appkit/ViewBody.h"
#include "platform/foundation/Method.h"

namespace mac {

ClassDescription NSView::describeClass() {
    return {
        .name = "NSView",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSView::isHidden>("isHidden"), method<&NSView::setHidden_>("setHidden:")},
        .properties = {property<&NSView::isHidden, &NSView::setHidden_>("hidden")},
    };
}

bool NSView::isHidden() const {
    if (*this == nil || !bodyOf(*this)->widget()) return false;
    return bodyOf(*this)->widget()->isHidden();
}

void NSView::setHidden_(BOOL hidden) const {
    if (*this != nil && bodyOf(*this)->widget()) bodyOf(*this)->widget()->setHidden(static_cast<bool>(hidden));
}

} // namespace mac
