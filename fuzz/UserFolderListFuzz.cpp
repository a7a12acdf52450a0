#include "platform/foundation/DesktopFolders.h"
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string_view const list(reinterpret_cast<char const*>(data), size);
    std::optional<std::string> const folder = mac::folderInList(list, "XDG_MUSIC_DIR", "/home");
    bool const isInOrder = !folder || (folder->starts_with('/') && folder->find('\0') == std::string::npos);
    if (isInOrder) return 0;
    std::fputs("a folder that is none\n", stderr);
    std::abort();
}
