#include "platform/processes/KeyFile.h"
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::KeyFile const file = mac::KeyFile::read({reinterpret_cast<char const*>(data), size});
    file.list("Default Applications", "inode/directory");
    file.text("Desktop Entry", "Name");
    std::optional<std::string> const commandLine = file.text("Desktop Entry", "Exec");
    if (commandLine) mac::wordsOfCommandLine(*commandLine);
    return 0;
}
