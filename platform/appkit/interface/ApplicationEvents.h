#pragma once

namespace mac {

// Has this program answer the events that every program with windows gets from others: opened, opened once more, which
// brings its windows to the front, and asked to quit. It quits as if its last window were closed, after its reply has
// left. Main thread; once the application is there.
void installApplicationEvents();

} // namespace mac
