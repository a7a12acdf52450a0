#pragma once

#include <QIcon>
#include <QPainterPath>
#include <QString>
#include <optional>

namespace mac {

// A path in the notation of SVG: M L H V C Q Z, absolute or relative. Nothing when the text is no such path.
std::optional<QPainterPath> pathFromText(QString const& text);

// An icon of one line, drawn in a box of 16 units in the colour of the theme's text at any size: for desktops whose
// icon theme lacks what the window shows. An empty icon when the text is no path.
QIcon drawnIcon(QString const& pathText);

// The same line in white on a coloured tile, which can be seen on any background: for windows. An empty icon when the
// text is no path.
QIcon tileIcon(QString const& pathText);

} // namespace mac
