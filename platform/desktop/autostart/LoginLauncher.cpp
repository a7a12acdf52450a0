#include "platform/desktop/HexText.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/system/SystemError.h"
#include <cerrno>
#include <cstdio>
#include <string>
#include <unistd.h>

// framekeeper-login HEX: becomes the program whose path, or whose bundle's path, is given as pairs of hexadecimal
// digits. Autostart entries name it for programs whose path not every desktop can read.

namespace {

// The program of the bundle, if the path is a bundle's; else the path itself.
std::string programAt(std::string const& path) {
    using namespace mac;
    NSBundle const bundle = NSBundle::bundleWithPath_(NSString::stringWithFileSystemRepresentation_(path));
    return bundle.executablePath().fileSystemRepresentation().value_or(path);
}

} // namespace

int main(int argc, char** argv) {
    std::string const path = mac::bytesFromHexText(argc == 2 ? argv[1] : "-").value_or("");
    if (!path.starts_with('/') || path.find('\0') != std::string::npos) {
        std::fprintf(stderr, "framekeeper-login: no path was given\n");
        return 2;
    }
    std::string program = programAt(path);
    char* const words[] = {program.data(), nullptr};
    ::execv(program.c_str(), words);
    mac::SystemError const error = mac::lastSystemError("start", program);
    std::fprintf(stderr, "framekeeper-login: %s\n", error.text().c_str());
    // As shells tell a program that is not there from one that cannot be started.
    return error.is(ENOENT) ? 127 : 126;
}
