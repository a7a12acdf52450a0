#pragma once

#include "platform/foundation/predicates/NSPredicate.h"
#include <QStringList>

namespace mac {

// Passes objects in which one of the key paths contains the text, whatever its case; nil, which passes all, for empty
// text.
NSPredicate predicateFor(QString const& text, QStringList const& keyPaths);

} // namespace mac
