#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

class FileDescriptor;
class NSDictionary;

// Gives the paths of everything below a folder, relative to it, a folder before
// what is in it; of each folder the names as they were when it was entered.
// Links are not followed, and folders that cannot be read count as empty. The
// folder stays the same one when it is moved. One thread at a time.
class NSDirectoryEnumerator : public Handle<NSDirectoryEnumerator, NSEnumerator> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // The attributes, under the keys of NSFileAttributes.h, of the item given last, a final symbolic link not followed;
    // and of the folder that is enumerated.
    NSDictionary fileAttributes() const;
    NSDictionary directoryAttributes() const;
    // What is in the folder given last is left out.
    void skipDescendents() const;
};

// For implementations: of an open folder, which need not be open for reading; nil for what cannot be listed.
NSDirectoryEnumerator directoryEnumerator(FileDescriptor folder);

} // namespace mac
