#include "docs/examples/Example.h"
#include <cstdio>
#include <cstdlib>
#include <string>

namespace examples {

void expect(bool condition, std::source_location const& place) {
    if (condition) return;
    std::fprintf(stderr, "%s:%u: not as expected\n", place.file_name(), place.line());
    std::exit(1);
}

} // namespace examples

// usage: library_examples; fills a folder of its own below TMPDIR, which it leaves to who made that.
int main() {
    char const* const parent = std::getenv("TMPDIR");
    std::string folder = std::string(parent ? parent : "/tmp") + "/framekeeper-examples-XXXXXX";
    if (!::mkdtemp(folder.data())) return std::perror(folder.c_str()), 1;
    mac::NSString const path = mac::NSString::stringWithFileSystemRepresentation_(folder);
    examples::showPathUtils(path);
    examples::showScripting(path);
    examples::showCoreUtils(path);
    std::puts("3 rooms shown");
    return 0;
}
