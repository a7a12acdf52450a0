#pragma once

#include "platform/foundation/objects/Exceptions.h"

namespace mac {

// Writes the exception that is being handled to the log: its name and its reason.
void logCurrentException();

// Where the event loop calls the program: an exception is logged and goes no further, since the loop cannot carry it.
template <class Function>
void guarded(Function&& function) {
    try {
        function();
    } catch (...) {
        logCurrentException();
    }
}

} // namespace mac
