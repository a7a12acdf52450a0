#include "fuzz/Trials.h"
#include "platform/desktop/HexText.h"
#include "platform/desktop/autostart/Autostart.h"
#include "platform/desktop/entries/CommandWords.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/desktop/entries/StartedItem.h"
#include "platform/desktop/session/Desktops.h"
#include "platform/system/XDGFolders.h"
#include <optional>

namespace mac::fuzz {

namespace {

// The words as the standard writes them: each in double quotes, with backslashes where they are needed, and per cent
// signs twice.
std::string standardQuoted(CommandWords const& words) {
    std::string line;
    for (std::string const& word : words) {
        line += " \"";
        for (char const character : word) {
            if (std::string_view("\"\\$`").find(character) != std::string_view::npos) line.push_back('\\');
            line.append(character == '%' ? 2 : 1, character);
        }
        line += "\"";
    }
    return line;
}

} // namespace

std::string complaintAboutAutostart(std::string_view bytes) {
    AutostartEntry const entry = AutostartEntry::of(DesktopEntry::read(bytes), currentAutostartRules());
    bool const isStarted = entry.standing == AutostartEntry::Standing::Starts;
    if (isStarted && entry.command.empty()) return "an entry without command starts something";
    for (std::string_view const command : {std::string_view(entry.command), bytes}) {
        commandsOfShellText(command);
        std::string const item = itemStartedBy(command);
        std::optional<CommandWords> const words = wordsOfEntryCommand(command);
        if (!words && !item.empty()) return "a command line without words starts something";
        if (words && wordsOfEntryCommand(standardQuoted(*words)) != words)
            return "words are read otherwise when quoted";
    }
    return bytesFromHexText(hexTextOf(bytes)) == bytes ? "" : "bytes are lost in hexadecimal digits";
}

std::string complaintAboutKeyFile(std::string_view bytes) {
    KeyFile::read(bytes).list("Default Applications", "inode/directory");
    DesktopEntry const entry = DesktopEntry::read(bytes);
    entry.localizedName({"de"});
    entry.command();
    entry.commandOfAction("quit");
    entry.isShownHere();
    return "";
}

std::string complaintAboutUserFolderList(std::string_view bytes) {
    std::optional<std::string> const folder = folderInList(bytes, "XDG_MUSIC_DIR", "/home");
    bool const isPath = !folder || (folder->starts_with('/') && folder->find('\0') == std::string::npos);
    return isPath ? "" : "a folder of the user is no absolute path";
}

} // namespace mac::fuzz
