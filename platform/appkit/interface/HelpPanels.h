#pragma once

#include <QString>
#include <QWidget>
#include <vector>

namespace mac {

// A command of a window's menus and the keys that give it.
struct CommandKeys {
    // The title of the menu, or of the menu in it.
    QString menu;
    QString command;
    // In the words of the user's platform, several joined by ", ".
    QString keys;
};

// The commands that have keys, in the order of the menu bar, as the actions have them at the time. The Return key
// belongs to the action that a table activates.
std::vector<CommandKeys> commandKeysOf(QWidget const* window);

// Shows the commands with their keys beside the window, which can be used meanwhile. At most one such panel is open.
void showKeysOf(QWidget* window);

// Shows what the main bundle says of the program: CFBundleName, CFBundleShortVersionString and
// NSHumanReadableCopyright, which names the licence too and is a key of the catalogues. At most one such panel is open.
void showAboutPanel(QWidget* window);

} // namespace mac
