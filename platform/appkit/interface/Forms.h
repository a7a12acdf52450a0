#pragma once

#include "platform/foundation/text/NSString.h"
#include <QString>
#include <QVariant>
#include <QWidget>
#include <memory>

namespace mac {

// The widgets of a form of Qt Designer, not shown yet. Null, and why, when the file cannot be read or is no form. A
// widget class that is not known is logged and becomes a plain widget.
std::unique_ptr<QWidget> readForm(NSString const& path, QString& error);

// A dynamic property of an object of a form; the type's default value if it has no such property.
template <class Value>
Value formProperty(QObject const* object, char const* name) {
    return object->property(name).value<Value>();
}

inline bool hasFormProperty(QObject const* object, char const* name) { return object->property(name).isValid(); }

// What a form of Qt Designer cannot say by itself: icons where the theme has none and one of the window, shortcuts in
// tool tips, further shortcuts, mnemonics on tool buttons, a palette that can be read. The properties stand in
// InterfaceFile.cpp.
void styleWindow(QWidget* window);

// Gives the widget the keyboard; of a text field all is selected.
void focusOn(QWidget* widget);

} // namespace mac
