#include "platform/appkit/interface/FilterPredicate.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/text/Format.h"

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
