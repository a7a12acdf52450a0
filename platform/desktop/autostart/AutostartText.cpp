#include "platform/desktop/autostart/AutostartText.h"
#include "platform/desktop/HexText.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include <algorithm>

namespace mac {

namespace {

constexpr std::string_view ReadDifferently = "\"$%'=\\`";
constexpr std::string_view BundleEnding = ".app";

// LXQt puts the home folder in place of a tilde at the end of any part of a path, even between quotation marks.
bool hasPartEndingInTilde(std::string_view path) {
    return path.ends_with('~') || path.find("~/") != std::string_view::npos;
}

bool isControl(char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }

std::string quoted(std::string_view path) { return "\"" + std::string(path) + "\""; }

std::string_view withoutEnding(std::string_view name, std::string_view ending) {
    bool const ends = name.size() > ending.size() && asciiLowercase(name).ends_with(ending);
    return ends ? name.substr(0, name.size() - ending.size()) : name;
}

// The bytes as a value of a desktop entry, on one line: what is not UTF-8 becomes a question mark.
std::string nameValue(std::string_view name) {
    std::string value;
    for (char const character : unitsFromUTF8(name) ? std::string(name) : std::string()) {
        if (character == '\\') value.push_back('\\');
        value.push_back(isControl(character) ? '?' : character);
    }
    if (value.starts_with(' ')) value.replace(0, 1, "\\s");
    return value.empty() ? "Login item" : value;
}

std::string commandLineFor(NewAutostartEntry const& entry) {
    if (!needsLauncher(entry)) return quoted(entry.program);
    return quoted(entry.launcher) + " " + hexTextOf(entry.program.empty() ? entry.item : entry.program);
}

} // namespace

bool isReadAlikeByDesktops(std::string_view path) {
    bool const isPlain = std::ranges::none_of(
        path, [](char byte) { return isControl(byte) || ReadDifferently.find(byte) != std::string_view::npos; });
    return isPlain && !hasPartEndingInTilde(path) && unitsFromUTF8(path).has_value();
}

bool needsLauncher(NewAutostartEntry const& entry) {
    return entry.program.empty() || !isReadAlikeByDesktops(entry.program);
}

std::string textOfAutostartEntry(NewAutostartEntry const& entry) {
    return "[Desktop Entry]\nType=Application\nName=" +
           nameValue(withoutEnding(BytePath(entry.item).leaf(), BundleEnding)) + "\nExec=" + commandLineFor(entry) +
           "\nTerminal=false\n" + AutostartOrderKey + "=" + std::to_string(entry.order) + "\n" + AutostartNoteKey +
           "=" + entry.note + "\n";
}

std::string textOfAutostartMask(std::string_view fileName) {
    // Some desktops ignore entries without name, type or command.
    return "[Desktop Entry]\nType=Application\nName=" + nameValue(withoutEnding(fileName, ".desktop")) +
           "\nExec=true\nHidden=true\n";
}

std::string autostartNameFor(std::string_view item) {
    constexpr std::size_t longest = 60;
    std::string name = "framekeeper";
    bool isWord = false;
    for (char const character : asciiLowercase(withoutEnding(BytePath(item).leaf(), BundleEnding))) {
        bool const isPart = (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
        if (isPart && !isWord) name.push_back('-');
        if (isPart) name.push_back(character);
        isWord = isPart;
        if (name.size() >= longest) break;
    }
    return name;
}

} // namespace mac
