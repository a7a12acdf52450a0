#pragma once

#include <QWidget>

namespace mac {

// Keeps the texts of a window's labels at the side where its lines begin, as long as the labels live. The toolkit goes
// by the letters of each text: in a window from right to left a version would stand far away from its title. Labels
// whose form aligns them otherwise stay as they are.
void keepLabelsLeading(QWidget* window);

} // namespace mac
