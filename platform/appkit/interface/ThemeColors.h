#pragma once

#include "platform/appkit/workspace/NSColor.h"
#include <QColor>
#include <QPalette>

namespace mac {

// The contrast that text is given: what it wants, 4.5, with room for the rounding of colours.
inline constexpr double LegibleContrast = 4.6;

// How strongly two opaque colours differ, from 1 to 21.
double contrast(QColor const& first, QColor const& second);

// The palette's text, taken back as far as it can still be read on the palette's rows.
QColor dimmedText(QPalette const& palette);

// The colour as a window of that palette shows it: black is its text, dark grey its dimmed text, any other itself. An
// invalid colour for nil.
QColor colorInTheme(NSColor const& color, QPalette const& palette);

} // namespace mac
