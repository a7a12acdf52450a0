#pragma once

#include "platform/foundation/text/NSString.h"

namespace framekeeper {

using namespace mac;

// The outcome of one path, or of the whole command.
enum class Status {
    Done,
    // Done, but the file browser could not show it or take it up, or the changed list could not be read again.
    NotShown,
    // There is no copy at the path, or the copy is not in the list or does not run.
    NoSuchCopy,
    Failed,
    NotConfirmed,
    NotWritten,
    Interrupted,
};

// The worse of two statuses: that of a command with several paths is the worst of theirs.
inline Status worse(Status first, Status second) { return first < second ? second : first; }

// The process's exit status, as the manual page lists them.
int exitStatusOf(Status status);
// "done", "not-shown" and so on, as in the output for programs.
char const* nameOf(Status status);

struct Outcome {
    NSString path{};
    Status status{Status::Done};
    // Where the copy is now, if it moved; nil if not.
    NSString newPath{};
    // Why it is not done, for people; nil if the log has said so.
    NSString reason{};
};

} // namespace framekeeper
