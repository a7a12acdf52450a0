#pragma once

#include "platform/appkit/BundleIcons.h"
#include "platform/appkit/KeyPathScope.h"
#include <QLabel>
#include <QPointer>

namespace mac {

// A label that shows the icon of the bundle at a path. Dynamic properties: iconKeyPath, whose value is the path;
// without a bundle there the label is empty; iconSize, the edge in pixels of the layout, 64 unless set.
class BoundIcon {
public:
    BoundIcon(QLabel* label, KeyPathScope const& scope);

private:
    void follow();

    QPointer<QLabel> m_label;
    BundleIcons m_icons;
    std::unique_ptr<BoundValue> m_path;
};

} // namespace mac
