#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ShellCommand.h"
#include "platform/desktop/entries/DesktopApplication.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/desktop/entries/KeyFile.h"
#include "platform/desktop/session/Desktops.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/urls/NSURL.h"
#include "platform/system/BytePath.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>
#include <tuple>

// The picture behind the icons of the desktop. Linux: read where the desktop keeps it, and set with its own programs.

namespace mac::applescript::finder {

namespace {

constexpr std::size_t MostBytesOfSetting = 65536;

ScriptError pictureError(std::u16string message) {
    return {.number = errors::PrivilegeViolation, .message = std::move(message)};
}

// What the program prints. Throws if it is missing or fails.
std::string printed(std::string_view name, std::vector<std::string> words) {
    std::optional<std::string> const program = resolvedProgram(std::string(name));
    if (!program) throw pictureError(u"The program “" + unitsFromFileSystemBytes(name) + u"” is missing.");
    words.insert(words.begin(), *program);
    ShellCommand command(std::move(words));
    command.collect(MostBytesOfSetting);
    if (command.status() == 0) return command.output();
    throw pictureError(unitsFromFileSystemBytes(command.complaints()));
}

// The text of a setting as it is printed: 'file:///a'. Empty for one that is no text.
std::string unquoted(std::string printed) {
    while (printed.ends_with('\n'))
        printed.pop_back();
    bool const isQuoted =
        printed.size() >= 2 && (printed.front() == '\'' || printed.front() == '"') && printed.back() == printed.front();
    if (!isQuoted) return {};
    std::string text;
    for (std::size_t place = 1; place + 1 < printed.size(); ++place) {
        if (printed[place] == '\\' && place + 2 < printed.size()) ++place;
        text += printed[place];
    }
    return text;
}

std::string asTextOfSetting(std::string const& text) {
    std::string result = "'";
    for (char const character : text) {
        if (character == '\'' || character == '\\') result += '\\';
        result += character;
    }
    return result + "'";
}

std::string pathOfURI(std::string const& uri) {
    return NSURL::URLWithString_(NSString::stringWithUTF8String_(uri)).path().fileSystemRepresentation().value_or("");
}

std::string readGSettings(PictureSettings const& settings) {
    std::string const text =
        unquoted(printed("gsettings", {"get", std::string(settings.schema), std::string(settings.keys.front())}));
    return settings.form == PictureSettings::Form::URI ? pathOfURI(text) : text;
}

void writeGSettings(PictureSettings const& settings, std::string const& path) {
    std::string const text = asTextOfSetting(settings.form == PictureSettings::Form::URI ? fileURIOfPath(path) : path);
    for (std::string_view const key : settings.keys)
        if (!key.empty()) printed("gsettings", {"set", std::string(settings.schema), std::string(key), text});
}

constexpr char XfceChannel[] = "xfce4-desktop";

// The properties that hold the pictures: "/backdrop/screen0/monitor0/workspace0/last-image". Throws if there are none,
// which is so until the desktop has run.
std::vector<std::string> xfceProperties() {
    std::istringstream lines(printed("xfconf-query", {"-c", XfceChannel, "-p", "/backdrop", "-l"}));
    std::vector<std::string> properties;
    for (std::string line; std::getline(lines, line);)
        if (line.ends_with("/last-image")) properties.push_back(line);
    if (properties.empty()) throw pictureError(u"The desktop has no picture yet.");
    return properties;
}

std::string readXfconf(PictureSettings const& /*settings*/) {
    std::string path = printed("xfconf-query", {"-c", XfceChannel, "-p", xfceProperties().front()});
    if (path.ends_with('\n')) path.pop_back();
    return path;
}

void writeXfconf(PictureSettings const& /*settings*/, std::string const& path) {
    for (std::string const& property : xfceProperties())
        printed("xfconf-query", {"-c", XfceChannel, "-p", property, "-s", path});
}

constexpr std::string_view PictureOfContainment = "][Wallpaper][org.kde.image][General";

// A picture that the shell's file has, and how far its containment is from what is shown.
struct PlasmaPicture {
    bool isOfAnotherActivity;
    int screen;
    std::string path;

    auto order() const { return std::tuple(isOfAnotherActivity, screen); }
};

// The screen that a containment is on; nullopt for one that is left over from a screen that is gone.
std::optional<int> screenOf(KeyFile const& file, std::string const& containment) {
    std::string const written = file.text(containment, "lastScreen").value_or("0");
    int screen = 0;
    auto const [end, problem] = std::from_chars(written.data(), written.data() + written.size(), screen);
    bool const isNumber = problem == std::errc() && end == written.data() + written.size();
    return isNumber && screen >= 0 ? std::optional(screen) : std::nullopt;
}

std::string plasmaActivity() {
    return KeyFile::readFile(BytePath(configHome()).joined("kactivitymanagerdrc"))
        .text("main", "currentActivity")
        .value_or("");
}

// The picture of the first screen in the current activity. Containments outlive their screens and activities, and keep
// the picture when another kind of wallpaper is chosen, so theirs come later or count for nothing.
std::string readPlasma(PictureSettings const& /*settings*/) {
    KeyFile const file = KeyFile::readFile(BytePath(configHome()).joined("plasma-org.kde.plasma.desktop-appletsrc"));
    std::string const activity = plasmaActivity();
    std::optional<PlasmaPicture> best;
    for (std::string const& group : file.groups()) {
        std::optional<std::string> const image =
            group.ends_with(PictureOfContainment) ? file.text(group, "Image") : std::nullopt;
        if (!image || image->empty()) continue;
        std::string const containment = group.substr(0, group.size() - PictureOfContainment.size());
        std::optional<int> const screen = screenOf(file, containment);
        bool const isShown = screen && file.text(containment, "wallpaperplugin") == "org.kde.image";
        if (!isShown) continue;
        PlasmaPicture found{.isOfAnotherActivity = file.text(containment, "activityId").value_or(activity) != activity,
                            .screen = *screen,
                            .path = image->starts_with('/') ? *image : pathOfURI(*image)};
        if (!best || found.order() < best->order()) best = std::move(found);
    }
    return best ? best->path : std::string();
}

void writePlasma(PictureSettings const& /*settings*/, std::string const& path) {
    printed("plasma-apply-wallpaperimage", {path});
}

// How many digits of the base the text has from the place on, and no more than may belong to a code unit.
std::size_t countDigits(std::string_view text, std::size_t place, std::string_view digits) {
    std::size_t const end = text.find_first_not_of(digits, place);
    return std::min(end, text.size()) - place;
}

// The code unit of an escape, whose place behind the backslash moves to its end.
char16_t unescapedUnit(std::string_view text, std::size_t& place) {
    constexpr std::string_view hexadecimal = "0123456789abcdefABCDEF";
    constexpr std::string_view octal = "01234567";
    constexpr std::string_view letters = "abfnrtv";
    constexpr std::string_view meanings = "\a\b\f\n\r\t\v";
    bool const isHexadecimal = text[place] == 'x';
    if (isHexadecimal) ++place;
    int const base = isHexadecimal ? 16 : 8;
    if (std::size_t const count = countDigits(text, place, isHexadecimal ? hexadecimal : octal); count > 0) {
        std::uint32_t unit = 0;
        std::from_chars(text.data() + place, text.data() + place + count, unit, base);
        place += count;
        return static_cast<char16_t>(unit);
    }
    char const letter = place < text.size() ? text[place++] : '\\';
    std::size_t const known = letters.find(letter);
    return static_cast<unsigned char>(known == std::string_view::npos ? letter : meanings[known]);
}

// The bytes of a path in a file of settings as its program writes them: in quotes where it holds separators, and with
// escapes for code units beyond ASCII ("\x20ac").
std::string pathOfSetting(std::string_view written) {
    bool const isQuoted = written.size() >= 2 && written.front() == '"' && written.back() == '"';
    if (isQuoted) written = written.substr(1, written.size() - 2);
    std::u16string units;
    for (std::size_t place = 0; place < written.size();) {
        std::size_t const escape = std::min(written.find('\\', place), written.size());
        units += unitsFromFileSystemBytes(std::string(written.substr(place, escape - place)));
        place = escape + 1;
        if (place < written.size()) units += unescapedUnit(written, place);
    }
    // No path holds a zero.
    return units.find(u'\0') == std::u16string::npos ? fileSystemBytesFromUnits(units).value_or("") : std::string();
}

std::string readPCManFM(PictureSettings const& /*settings*/) {
    KeyFile const settings = KeyFile::readFile(BytePath(configHome()).joined("pcmanfm-qt/lxqt/settings.conf"));
    return pathOfSetting(settings.value("Desktop", "Wallpaper").value_or(""));
}

void writePCManFM(PictureSettings const& /*settings*/, std::string const& path) {
    printed("pcmanfm-qt", {"--set-wallpaper=" + path});
}

struct PictureStoreRow {
    PictureSettings::Store store;
    // The bytes of the picture's path; empty without a picture.
    std::string (*read)(PictureSettings const& settings);
    void (*write)(PictureSettings const& settings, std::string const& path);
};

constexpr auto PictureStores = std::to_array<PictureStoreRow>({
    {PictureSettings::Store::GSettings, readGSettings, writeGSettings},
    {PictureSettings::Store::Xfconf, readXfconf, writeXfconf},
    {PictureSettings::Store::Plasma, readPlasma, writePlasma},
    {PictureSettings::Store::PCManFM, readPCManFM, writePCManFM},
});

PictureSettings const& pictureSettings() {
    static constexpr PictureSettings none{};
    DesktopKind const* const desktop = currentDesktopKind();
    return desktop ? desktop->picture : none;
}

PictureStoreRow const& pictureStore() {
    auto const* const row = std::ranges::find(PictureStores, pictureSettings().store, &PictureStoreRow::store);
    if (row == PictureStores.end()) throw pictureError(u"This desktop does not tell programs about its picture.");
    return *row;
}

} // namespace

std::optional<Value> desktopPicture(ModelObject const& /*root*/) {
    std::string const path = pictureStore().read(pictureSettings());
    if (path.empty()) return Value::missing();
    return makeObject<FileObject>(ValueKind::File, FileObject::Kind::PosixFile, unitsFromFileSystemBytes(path));
}

bool setDesktopPicture(ModelObject const& /*root*/, Value const& value, TextContext const& context) {
    std::u16string const path = requireType(value, codes::AliasType, context).file().path;
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
    if (!bytes) throw fileNotFound(value);
    pictureStore().write(pictureSettings(), *bytes);
    return true;
}

} // namespace mac::applescript::finder
