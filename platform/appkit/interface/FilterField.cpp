#include "platform/appkit/interface/FilterField.h"
#include "platform/appkit/interface/Forms.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/text/Format.h"
#include <algorithm>

namespace mac {

NSPredicate predicateFor(QString const& text, QStringList const& keyPaths) {
    if (text.isEmpty()) return nil;
    QStringList tests;
    std::vector<FormatArgument> arguments;
    for (QString const& keyPath : keyPaths) {
        tests.append("%K CONTAINS[c] %@");
        arguments.emplace_back(stringOf(keyPath));
        arguments.emplace_back(stringOf(text));
    }
    return NSPredicate::predicateWithArguments(stringOf(tests.join(" OR ")), arguments);
}

namespace {

void give(QAction* action, QKeySequence const& key) {
    QList<QKeySequence> keys = action->shortcuts();
    if (!keys.contains(key)) action->setShortcuts(keys << key);
}

void take(QAction* action, QKeySequence const& key) {
    QList<QKeySequence> keys = action->shortcuts();
    if (keys.removeAll(key) > 0) action->setShortcuts(keys);
}

} // namespace

FieldClearing::FieldClearing(QAction* action, QLineEdit* field)
    : QObject(action), m_action(action), m_key(formProperty<QString>(action, "clearingKey")) {
    QList<QAction*> const others = field->window()->findChildren<QAction*>();
    auto const lender = std::ranges::find_if(others, [&](QAction const* other) {
        return other != action && !m_key.isEmpty() && other->shortcuts().contains(m_key);
    });
    if (lender != others.end()) m_lender = *lender;
    // A key that is held down does not go on to what the other action does with it.
    action->setAutoRepeat(false);
    if (m_lender) m_lender->setAutoRepeat(false);
    connect(action, &QAction::triggered, field, &QLineEdit::clear);
    connect(field, &QLineEdit::textChanged, this, &FieldClearing::follow);
    follow(field->text());
}

void FieldClearing::follow(QString const& text) {
    bool const hasText = !text.isEmpty();
    m_action->setEnabled(hasText);
    if (m_key.isEmpty()) return;
    if (m_lender && hasText) take(m_lender, m_key);
    if (hasText)
        give(m_action, m_key);
    else
        take(m_action, m_key);
    if (m_lender && !hasText) give(m_lender, m_key);
}

} // namespace mac
