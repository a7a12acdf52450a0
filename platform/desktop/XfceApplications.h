#pragma once

#include "platform/desktop/DesktopApplication.h"
#include <optional>

namespace mac {

// Xfce's entries for the file manager, the web browser and the like start what the user has chosen for that in Xfce's
// own settings ("exo-open --launch FileManager"). This is the application that they start, with the name and the file
// of the entry; nothing for any other application, and for a choice whose program is not there. For implementations;
// any thread.
std::optional<DesktopApplication> xfceApplication(DesktopApplication const& application);

} // namespace mac
