#pragma once

#include "platform/foundation/text/NSString.h"
#include <functional>

namespace mac {

// One line to standard error and the system log, with date, time, program and process id before it. Line breaks and
// what else could fake a line or drive a terminal are written as codes, and bytes of a file's name that are no text as
// hexadecimal codes.
void logMessage(NSString const& message);

template <class... Arguments>
void NSLog(NSString const& format, Arguments const&... arguments) {
    logMessage(NSString::stringWithFormat_(format, arguments...));
}

// A place to listen to the log: the function gets every message, on the thread that logs it, from the listener's birth
// to its death, and is not running any more then. Messages logged by a listener are not told to listeners; what it
// raises is dropped. It waits for no other thread.
class LogListener {
public:
    explicit LogListener(std::function<void(NSString const&)> listener);
    ~LogListener();
    LogListener(LogListener const&) = delete;
    LogListener& operator=(LogListener const&) = delete;

private:
    int m_token;
};

}
