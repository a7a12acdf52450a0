#pragma once

#include <QMimeData>
#include <memory>
#include <string>
#include <vector>

namespace mac {

// Files as other programs take them from the clipboard or from a drag: text/uri-list, x-special/gnome-copied-files (to
// be copied) and, for editors and terminals, the paths as text, one a line. Paths are bytes and stay what they are,
// also where they are no UTF-8; in the text alone a control character is a backslash and three octal digits, since a
// terminal would take a line break in a name for the end of a command.
std::unique_ptr<QMimeData> mimeDataOfFiles(std::vector<std::string> const& paths);

} // namespace mac
