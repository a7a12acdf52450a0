#pragma once

#include "platform/appkit/interface/InterfaceIcons.h"
#include "platform/appkit/interface/KeyPathScope.h"
#include <QLabel>
#include <QPointer>
#include <QWidget>

namespace mac {

// A label or button that shows values of the program: its pattern with %@ for each, another one for zero and for one of
// the first. Always plain text. Dynamic properties: displayPattern, displayPatternForZero, displayPatternForOne,
// displayKeyPaths. With displayPatternForOne the pattern counts: both stand untranslated in the file (notr), and the
// catalogue has the form for each number under the pattern.
class BoundText {
public:
    // REQUIRES: a label or a button.
    BoundText(QWidget* widget, KeyPathScope const& scope);

private:
    void follow();
    NSString pattern(id const& first) const;

    QPointer<QWidget> m_widget;
    std::vector<std::unique_ptr<BoundValue>> m_values;
};

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
