#pragma once

#include <QWidget>

namespace mac {

// What a form of Qt Designer cannot say by itself: icons where the theme has none and one of the window, shortcuts in
// tool tips, further shortcuts, mnemonics on tool buttons, a palette that can be read. The properties stand in
// InterfaceFile.cpp.
void styleWindow(QWidget* window);

// Gives the widget the keyboard; of a text field all is selected.
void focusOn(QWidget* widget);

} // namespace mac
