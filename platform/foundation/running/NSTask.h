#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

// A program that runs as a child process, once. Its input, output and environment are this program's. No other code may
// wait for the child. Releasing the task does not end it. Main thread; nil does nothing and answers nil, NO or 0.
class NSTask : public Handle<NSTask, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSTask launchedTaskWithLaunchPath_arguments_(NSString const& path, NSArray const& arguments);

    NSTask init() const;

    // The program's path, which is not looked for anywhere else.
    NSString launchPath() const;
    void setLaunchPath_(NSString const& path) const;
    // Strings, without the program's own name; nil stands for none.
    NSArray arguments() const;
    void setArguments_(NSArray const& arguments) const;

    // Raises NSInvalidArgumentException when there is no path, it names no program that can be started, an argument is
    // no string (or has no form as bytes), or the task was launched before.
    void launch() const;
    bool isRunning() const;
    // Asks the child to end (SIGTERM) and does not wait; nothing happens once it has ended. Raises
    // NSInvalidArgumentException before the launch.
    void terminate() const;
    // Blocks until the child has ended and handles nothing meanwhile.
    void waitUntilExit() const;
    // The child's exit status, or the number of the signal that ended it. Raises NSInvalidArgumentException before the
    // launch and while the child runs.
    NSInteger terminationStatus() const;
    // 0 before the launch.
    NSInteger processIdentifier() const;
};

}
