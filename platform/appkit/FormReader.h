#pragma once

#include "platform/foundation/NSString.h"
#include <QString>
#include <QWidget>
#include <memory>

namespace mac {

// The widgets of a form of Qt Designer, not shown yet. Null, and why, when the file cannot be read or is no form. A
// widget class that is not known is logged and becomes a plain widget.
std::unique_ptr<QWidget> readForm(NSString const& path, QString& error);

} // namespace mac
