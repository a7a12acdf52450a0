#pragma once

#include "platform/foundation/predicates/NSPredicate.h"
#include <QAction>
#include <QKeySequence>
#include <QLineEdit>
#include <QObject>
#include <QPointer>
#include <QStringList>

namespace mac {

// Passes objects in which one of the key paths contains the text, whatever its case; nil, which passes all, for empty
// text.
NSPredicate predicateFor(QString const& text, QStringList const& keyPaths);

// An action that empties a text field, enabled while there is text in it. Meanwhile it has the key sequence of its
// dynamic property clearingKey; another action of the window with that key has it back when the field is empty.
class FieldClearing : public QObject {
public:
    // Belongs to the action from then on.
    FieldClearing(QAction* action, QLineEdit* field);

private:
    void follow(QString const& text);

    QAction* m_action;
    QPointer<QAction> m_lender;
    QKeySequence m_key;
};

} // namespace mac
