#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ShellCommand.h"
#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/DesktopEntry.h"
#include "platform/desktop/Desktops.h"
#include "platform/desktop/KeyFile.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/NSURL.h"
#include "platform/system/BytePath.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <array>
#include <sstream>

// The picture behind the icons of the desktop. Linux: read where the desktop keeps it, and set with its own programs.

namespace mac::applescript::finder {

namespace {

constexpr std::size_t MostBytesOfSetting = 65536;

ScriptError refused(std::u16string message) {
    return {.number = errors::PrivilegeViolation, .message = std::move(message)};
}

// What the program prints. Throws if it is missing or fails.
std::string printed(std::string_view name, std::vector<std::string> words) {
    std::optional<std::string> const program = resolvedProgram(std::string(name));
    if (!program) throw refused(u"The program “" + unitsFromFileSystemBytes(name) + u"” is missing.");
    words.insert(words.begin(), *program);
    ShellCommand command(std::move(words));
    command.collect(MostBytesOfSetting);
    if (command.status() == 0) return command.output();
    throw refused(unitsFromFileSystemBytes(command.complaints()));
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

std::string quoted(std::string const& text) {
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
    std::string const text = quoted(settings.form == PictureSettings::Form::URI ? fileURIOfPath(path) : path);
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
    if (properties.empty()) throw refused(u"The desktop has no picture yet.");
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

// The picture of the first screen that has one.
std::string readPlasma(PictureSettings const& /*settings*/) {
    KeyFile const file = KeyFile::readFile(BytePath(configHome()).joined("plasma-org.kde.plasma.desktop-appletsrc"));
    for (std::string const& group : file.groups()) {
        bool const isPicture = group.ends_with("][Wallpaper][org.kde.image][General");
        std::optional<std::string> const image = isPicture ? file.text(group, "Image") : std::nullopt;
        if (image && !image->empty()) return image->starts_with('/') ? *image : pathOfURI(*image);
    }
    return {};
}

void writePlasma(PictureSettings const& /*settings*/, std::string const& path) {
    printed("plasma-apply-wallpaperimage", {path});
}

std::string readPCManFM(PictureSettings const& /*settings*/) {
    std::string const settings = BytePath(configHome()).joined("pcmanfm-qt/lxqt/settings.conf");
    return KeyFile::readFile(settings).text("Desktop", "Wallpaper").value_or("");
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
    if (row == PictureStores.end()) throw refused(u"This desktop does not tell programs about its picture.");
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
