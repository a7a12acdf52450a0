#pragma once

#include "platform/foundation/NSArray.h"

namespace mac {

// Files and folders by path. Symbolic links are followed unless said. Any thread.
class NSFileManager : public Handle<NSFileManager, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSFileManager defaultManager();

    // False also for a link that leads nowhere, a nil path and a path that cannot be reached. Relative paths start at
    // the current folder.
    bool fileExistsAtPath_(NSString const& path) const;
    // isDirectory may be null.
    bool fileExistsAtPath_isDirectory_(NSString const& path, bool* isDirectory) const;
};

}
