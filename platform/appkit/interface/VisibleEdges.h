#pragma once

#include <QPalette>

namespace mac {

// Whether buttons, fields and panes can be told from the window around them: by their own ground, or by the outline
// that styles draw a little darker than the window. Palettes of high contrast need more of either.
bool areEdgesSeen(QPalette const& palette);

// Has the application's style draw edges, also of menus, tool tips and what scrolls, in the colour of the window's text
// wherever a palette leaves none to be seen, now and whenever another palette comes; black themes of high contrast are
// such. Main thread, with an application.
void keepEdgesVisible();

} // namespace mac
