#include "fuzz/Complaint.h"
#include "platform/desktop/Autostart.h"
#include "platform/desktop/CommandWords.h"
#include "platform/desktop/DesktopEntry.h"
#include "platform/desktop/Desktops.h"
#include "platform/desktop/HexText.h"
#include "platform/desktop/StartedItem.h"

// An autostart entry of any bytes: what it starts, by every reading of its command line.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string_view const text = mac::fuzz::textOf(data, size);
    mac::AutostartEntry const entry =
        mac::AutostartEntry::of(mac::DesktopEntry::read(text), mac::currentAutostartRules());
    mac::commandsOfShellText(entry.command);
    mac::commandsOfShellText(text);
    for (std::string_view const command : {std::string_view(entry.command), text}) {
        std::string const item = mac::itemStartedBy(command);
        if (mac::bundleAround(item + "/x").size() > item.size()) mac::fuzz::requireNone("a bundle beyond its path");
    }
    if (mac::bytesFromHexText(mac::hexTextOf(text)) != text) mac::fuzz::requireNone("bytes lost in hexadecimal digits");
    return 0;
}
