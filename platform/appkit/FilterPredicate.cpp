#include "platform/appkit/FilterPredicate.h"
#include "platform/appkit/VisibleText.h"
#include "platform/foundation/Format.h"

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

} // namespace mac
