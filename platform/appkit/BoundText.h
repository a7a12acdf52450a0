#pragma once

#include "platform/appkit/KeyPathScope.h"
#include <QLabel>
#include <QPointer>

namespace mac {

// A label that shows values of the program: its pattern with %@ for each, another one for zero and for one of the
// first. Always plain text. Dynamic properties: displayPattern, displayPatternForZero, displayPatternForOne,
// displayKeyPaths. With displayPatternForOne the pattern counts: both stand untranslated in the file (notr), and the
// catalogue has the form for each number under the pattern.
class BoundText {
public:
    BoundText(QLabel* label, KeyPathScope const& scope);

private:
    void follow();
    NSString pattern(id const& first) const;

    QPointer<QLabel> m_label;
    std::vector<std::unique_ptr<BoundValue>> m_values;
};

} // namespace mac
