#pragma once

#include "platform/foundation/text/NSString.h"
#include <QString>

namespace mac {

// Text for the screen: what cannot be shown is made visible instead of acting on what stands around it. Control
// characters become their pictures; bytes that are not text, and marks that turn the reading direction, become U+FFFD.
QString visibleText(NSString const& text);

// The description of any object as visibleText shows it; empty for nil and the null object.
QString visibleTextOf(id const& object);

// A tool tip that shows the text as it stands: never as markup.
QString plainToolTip(QString const& text);

NSString stringOf(QString const& text);

} // namespace mac
