#include "platform/foundation/text/SystemErrorTexts.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <array>

namespace mac {

namespace {

// The catalogues' keys: the system's own texts of what disks, servers and users' files bring about.
[[maybe_unused]] constexpr std::array Keys{
    localizable("The item is locked"),
    localizable("Operation not permitted"),
    localizable("No such file or directory"),
    localizable("Interrupted system call"),
    localizable("Input/output error"),
    localizable("No such device or address"),
    localizable("Argument list too long"),
    localizable("Exec format error"),
    localizable("Resource temporarily unavailable"),
    localizable("Cannot allocate memory"),
    localizable("Permission denied"),
    localizable("Device or resource busy"),
    localizable("File exists"),
    localizable("Invalid cross-device link"),
    localizable("No such device"),
    localizable("Not a directory"),
    localizable("Is a directory"),
    localizable("Invalid argument"),
    localizable("Too many open files in system"),
    localizable("Too many open files"),
    localizable("Text file busy"),
    localizable("File too large"),
    localizable("No space left on device"),
    localizable("Read-only file system"),
    localizable("Too many links"),
    localizable("File name too long"),
    localizable("Directory not empty"),
    localizable("Too many levels of symbolic links"),
    localizable("No data available"),
    localizable("Network is unreachable"),
    localizable("Transport endpoint is not connected"),
    localizable("Operation not supported"),
    localizable("Connection timed out"),
    localizable("Connection refused"),
    localizable("Host is down"),
    localizable("No route to host"),
    localizable("Stale file handle"),
    localizable("Structure needs cleaning"),
    localizable("Remote I/O error"),
    localizable("Disk quota exceeded"),
    localizable("Required key not available"),
};

} // namespace

NSString localizedSystemError(int code) {
    return NSLocalizedString(NSString::stringWithUTF8String_(textOfSystemError(code)), nil);
}

NSString localizedSystemError(SystemError const& error) {
    NSString const operation = NSString::stringWithUTF8String_(error.operation);
    NSString const reason = localizedSystemError(error.code);
    if (error.item.empty()) return NSString::stringWithFormat_("%@: %@", operation, reason);
    return NSString::stringWithFormat_(NSLocalizedString("%@ of \"%@\": %@", "A system call, its object, the reason"),
                                       operation, NSString::stringWithFileSystemRepresentation_(error.item), reason);
}

} // namespace mac
