#include "fuzz/Complaint.h"
#include "platform/system/XDGFolders.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::optional<std::string> const folder =
        mac::folderInList(mac::fuzz::textOf(data, size), "XDG_MUSIC_DIR", "/home");
    bool const isInOrder = !folder || (folder->starts_with('/') && folder->find('\0') == std::string::npos);
    mac::fuzz::requireNone(isInOrder ? "" : "a folder that is none");
    return 0;
}
