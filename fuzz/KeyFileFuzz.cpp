#include "fuzz/Complaint.h"
#include "platform/desktop/entries/DesktopEntry.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    mac::KeyFile::read(mac::fuzz::textOf(data, size)).list("Default Applications", "inode/directory");
    mac::DesktopEntry const entry = mac::DesktopEntry::read(mac::fuzz::textOf(data, size));
    entry.localizedName({"de"});
    entry.command();
    entry.commandOfAction("quit");
    entry.isShownHere();
    return 0;
}
