#pragma once

#include "platform/foundation/files/NSFileManager.h"

namespace mac {

// Keeps what the file manager tells of a failure while it removes or copies, and stops it there. Made for one call.
// Nil answers nil and NO. One thread at a time.
class PXFileManagerHandler : public Handle<PXFileManagerHandler, NSObject> {
public:
    class Body;
    using Handle::Handle;

    // Its name, superclass and methods, for its registration.
    static ClassDescription describeClass();

    // Keeps the dictionary, whose "Error" is a message for people; always NO.
    bool fileManager_shouldProceedAfterError_(NSFileManager const& manager, NSDictionary const& errorInfo) const;
    // Does nothing.
    void fileManager_willProcessPath_(NSFileManager const& manager, NSString const& path) const;

    // The dictionary of the last failure; nil until there is one.
    NSDictionary errorInfo() const;
    // Replaces the dictionary of the last failure; nil forgets it.
    void setErrorInfo_(NSDictionary const& errorInfo) const;
};

} // namespace mac
