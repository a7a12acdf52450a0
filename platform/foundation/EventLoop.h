#pragma once

namespace mac {

// Makes the program's event loop when there is none yet, for programs without windows. Main thread.
void requireEventLoop();

} // namespace mac
