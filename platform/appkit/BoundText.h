#pragma once

#include "platform/appkit/KeyPathScope.h"
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

} // namespace mac
