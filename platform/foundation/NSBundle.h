#pragma once

#include "platform/foundation/NSDictionary.h"

namespace mac {

// A folder with an information file: an application, this program itself. The file is read on first need and again when it
// has changed on the disk. Main thread.
class NSBundle : public Handle<NSBundle, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // The running program's bundle: the one its executable lies in, else the executable's folder.
    static NSBundle mainBundle();
    // Nil when there is no folder at the path; a folder without an information file is a bundle that tells nothing.
    static NSBundle bundleWithPath_(NSString const& path);

    NSString bundlePath() const;
    // The information file's dictionary; an empty one when there is no file or it cannot be read (which is logged once for each
    // state of the file).
    NSDictionary infoDictionary() const;
    id objectForInfoDictionaryKey_(NSString const& key) const;
    // CFBundleIdentifier where it is a string that is not empty, else nil.
    NSString bundleIdentifier() const;
    // Linux: the program lies in Contents/Linux, beside where other systems look. Nil when CFBundleExecutable names no file.
    NSString executablePath() const;
    NSString resourcePath() const;
    // The file in the resources folder; nil when it is not there.
    NSString pathForResource_ofType_(NSString const& name, NSString const& type) const;
};

}
