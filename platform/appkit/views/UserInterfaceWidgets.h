#pragma once

namespace mac {

// Makes the toolkit's dialogs and clipboard what scripts ask and use. Main thread; once the application is there.
void installUserInterface();

} // namespace mac
