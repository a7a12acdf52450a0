#pragma once

#include <string>
#include <string_view>

namespace mac {

// A code of our own, beyond the system's error numbers, which end at 4095: the item is locked (ItemLock.h).
inline constexpr int ItemIsLocked = 4096;

// Why the system refused: what was tried, on what, and the system's own code. A value; any thread.
struct SystemError {
    // An errno value or ItemIsLocked; 0 only if nothing was tried.
    int code{0};
    // The system call or step, such as "open" or "rename"; a literal.
    char const* operation{""};
    // What it was tried on: a path or a name in bytes, as far as it is known there.
    std::string item{};

    bool is(int errorNumber) const { return code == errorNumber; }
    // In English and UTF-8: rename of "notes.txt": Permission denied.
    std::string text() const;
};

// The error of the system call on the line above it, which has just set errno.
SystemError lastSystemError(char const* operation, std::string_view item = {});

// A code's text in English: "Permission denied".
std::string textOfSystemError(int code);

} // namespace mac
