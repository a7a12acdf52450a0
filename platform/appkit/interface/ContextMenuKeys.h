#pragma once

#include <QWidget>

namespace mac {

// Has Shift+F10 open the context menu of the widget that has the keyboard, as the menu key does, and a table's open
// beside the current row, in the window and as long as it lives.
void openContextMenusByKeys(QWidget* window);

} // namespace mac
