#include "fuzz/Complaint.h"
#include "platform/desktop/KeyFile.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::KeyFile const file = mac::KeyFile::read(mac::fuzz::textOf(data, size));
    file.list("Default Applications", "inode/directory");
    file.text("Desktop Entry", "Name");
    std::optional<std::string> const commandLine = file.text("Desktop Entry", "Exec");
    if (commandLine) mac::wordsOfCommandLine(*commandLine);
    return 0;
}
