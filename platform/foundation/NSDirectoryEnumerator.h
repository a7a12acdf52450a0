#pragma once

#include "platform/foundation/NSArray.h"

namespace mac {

class NSDictionary;

// Gives the paths of everything below a folder, relative to it, a folder before
// what is in it; of each folder the names as they were when it was entered.
// Links are not followed, and folders that cannot be read count as empty. One
// thread at a time.
class NSDirectoryEnumerator : public Handle<NSDirectoryEnumerator, NSEnumerator> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Those of the item given last, links not followed, as NSFileManager tells
    // them; of the folder itself.
    NSDictionary fileAttributes() const;
    NSDictionary directoryAttributes() const;
    // What is in the folder given last is left out.
    void skipDescendents() const;
};

// For implementations: of a folder at the path (bytes), whose names are these.
NSDirectoryEnumerator directoryEnumerator(std::string const& path, std::vector<std::string> names);

} // namespace mac
