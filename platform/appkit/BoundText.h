#pragma once

#include "platform/appkit/KeyPathScope.h"
#include <QLabel>
#include <QPointer>

namespace mac {

// A label that shows values of the program: its pattern with %@ for each, another one for zero and for one of the
// first. Always plain text. Dynamic properties: displayPattern, displayPatternForZero, displayPatternForOne,
// displayKeyPaths.
class BoundText {
public:
    BoundText(QLabel* label, KeyPathScope const& scope);

private:
    void follow();
    QString pattern(id const& first) const;

    QPointer<QLabel> m_label;
    std::vector<std::unique_ptr<BoundValue>> m_values;
};

} // namespace mac
