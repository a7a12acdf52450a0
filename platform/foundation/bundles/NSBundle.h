#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include <span>
#include <vector>

namespace mac {

// The key of a bundle's build number in its information.
inline constexpr char kCFBundleVersionKey[] = "CFBundleVersion";

// A folder with an information file: an application, this program itself. The file is read on first need and again when
// it has changed on the disk. Main thread.
class NSBundle : public Handle<NSBundle, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // The running program's bundle: the one its executable lies in (Contents/Linux), else the executable's folder.
    static NSBundle mainBundle();
    // Nil when there is no folder at the path; a folder without an information file has an empty information
    // dictionary.
    static NSBundle bundleWithPath_(NSString const& path);

    // The path that the bundle was made with, unchanged.
    NSString bundlePath() const;
    // The dictionary of Contents/Info.plist, else Info.plist, Resources/Info.plist or Support Files/Info.plist; an
    // empty one when there is no file or it cannot be used (which is logged once for each state of the file). Its
    // values may be of any class.
    NSDictionary infoDictionary() const;
    id objectForInfoDictionaryKey_(NSString const& key) const;
    // CFBundleIdentifier where it is a string that is not empty, else nil.
    NSString bundleIdentifier() const;
    // The file that CFBundleExecutable names; of the main bundle, without one, the running program. Nil when there is
    // none. Linux: the program lies in Contents/Linux; where other systems look, Contents/MacOS and the bundle's
    // folder, comes next.
    NSString executablePath() const;
    // Contents/Resources, else the bundle's folder.
    NSString resourcePath() const;
    // The file in the resources folder; nil when it is not there. The type may be nil or empty.
    NSString pathForResource_ofType_(NSString const& name, NSString const& type) const;
};

// The values of an information file that tell which bundle it is; of any class, nil if they are missing.
struct BundleSummary {
    id identifier{};
    id version{};
    id shortVersion{};
};

// The result of one look at a path.
struct BundleLook {
    // Whether there is an item at the path, a bundle or not.
    bool exists{false};
    BundleSummary summary{};
};

// Answers what fileExistsAtPath: of NSFileManager does for the path, and what its bundle does for CFBundleIdentifier,
// CFBundleVersion and CFBundleShortVersionString. A file that has been read and has not changed since takes its status
// alone: one system call if it lies in Contents, one for the path and one for each further place if it does not, and
// two if there is no folder at the path. What was read of the last 262,144 bundles is remembered, twice as many at
// most. Main thread.
BundleLook lookAtBundle(NSString const& path);
// One look at each of the paths, in their order. If more than a few hundred bundles are not remembered, their
// information files are read in as many threads as the computer has processors; the call returns when all are read.
// Main thread.
std::vector<BundleLook> lookAtBundles(std::span<NSString const> paths);

// For implementations: the bundle that a program at the path belongs to, whether it exists or not; its folder where it
// is in no bundle's Contents/Linux.
NSString bundlePathOfExecutable(NSString const& path);

} // namespace mac
