#pragma once

#include "platform/appkit/workspace/NSImage.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/numbers/NSNumber.h"

namespace mac {

// How an application is launched; nothing but the default has a meaning here.
using NSWorkspaceLaunchOptions = std::uint32_t;
inline constexpr NSWorkspaceLaunchOptions NSWorkspaceLaunchAsync = 0x00010000;
inline constexpr NSWorkspaceLaunchOptions NSWorkspaceLaunchAllowingClassicStartup = 0x00020000;
inline constexpr NSWorkspaceLaunchOptions NSWorkspaceLaunchDefault =
    NSWorkspaceLaunchAsync | NSWorkspaceLaunchAllowingClassicStartup;

// Files shown and opened, and applications launched, as the desktop does it. There is one. Main thread; paths are
// absolute. NO where it could not be done, for nil, and from nil; what the file browser answers is waited for, bounded.
class NSWorkspace : public Handle<NSWorkspace, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    static NSWorkspace sharedWorkspace();

    // Shows the item selected in a window of the file browser. Linux: the root of the window is the browser's matter,
    // whatever is asked for.
    bool selectFile_inFileViewerRootedAtPath_(NSString const& fullPath, NSString const& rootFullPath) const;
    // Opens a folder in the file browser, anything else with the desktop's default application for it.
    bool openFile_(NSString const& fullPath) const;
    // Launches the application with the bundle identifier (see Applications.h) and does not wait for it. One that runs
    // already is not started again but brought to the front, where the display does that (see SetFrontProcess); what
    // runs in a terminal is started anew each time. The descriptor is not passed on, and the identifier, whose pointer
    // may be null, is left alone.
    bool launchAppWithBundleIdentifier_options_additionalEventParamDescriptor_launchIdentifier_(
        NSString const& bundleIdentifier, NSWorkspaceLaunchOptions options, NSAppleEventDescriptor const& descriptor,
        NSNumber* identifier) const;

    // A new image of the item's icon, in forms of 16, 32, 48 and 128 pixels, and larger ones where there are any: its
    // custom icon, that of its bundle or desktop entry, or the one that the icon theme has for its kind or type. In a
    // size of 32 points. A path that leads nowhere has a document's; nil for nil.
    NSImage iconForFile_(NSString const& fullPath) const;
    // A new image like those above, of files of a type: an extension, or a type code in single quotes ("'TEXT'"). A
    // document's for any other; nil for nil.
    NSImage iconForFileType_(NSString const& fileType) const;
};

// The type code as iconForFileType_ takes it: "'TEXT'".
NSString NSFileTypeForHFSTypeCode(OSType type);

}
