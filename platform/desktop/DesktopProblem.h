#pragma once

#include "platform/system/Result.h"
#include <optional>
#include <string>
#include <utility>

namespace mac {

// Why the desktop did not do what it was asked for. A value.
struct DesktopProblem {
    enum class Kind {
        // There is no item at one of the paths, or no path.
        NotThere,
        // No application is known for the item.
        NoApplication,
        // There is no session bus to reach the file browser by.
        NoBus,
        // There is no display to show a window on.
        NoDisplay,
        // A program could not be started, ended at once, or did not answer in time.
        NoAnswer,
        // The program answered that it cannot.
        Refused,
    };

    Kind kind{Kind::Refused};
    // For people, in UTF-8.
    std::string text{};
    // The system's refusal that caused the problem, if one did.
    std::optional<SystemError> cause{};
};

template <class T>
using DesktopResult = Result<T, DesktopProblem>;
using DesktopOutcome = DesktopResult<void>;

} // namespace mac
