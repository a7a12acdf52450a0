#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ShellCommand.h"
#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/DesktopEntry.h"
#include "platform/desktop/Desktops.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/NSURL.h"
#include <algorithm>

// The picture behind the icons of the desktop. Linux: read and set with the desktop's own settings program.

namespace mac::applescript::finder {

namespace {

constexpr std::size_t MostBytesOfSetting = 65536;

PictureSettings const& pictureSettings() {
    DesktopKind const* const desktop = currentDesktopKind();
    if (desktop && !desktop->picture.schema.empty()) return desktop->picture;
    throw ScriptError{.number = errors::PrivilegeViolation,
                      .message = u"This desktop does not tell programs about its picture."};
}

// What the settings program prints. Throws if it is missing or fails.
std::string runSettings(std::vector<std::string> words) {
    std::optional<std::string> const program = resolvedProgram("gsettings");
    if (!program)
        throw ScriptError{.number = errors::PrivilegeViolation, .message = u"The program “gsettings” is missing."};
    words.insert(words.begin(), *program);
    ShellCommand command(std::move(words));
    command.collect(MostBytesOfSetting);
    if (command.status() == 0) return command.output();
    throw ScriptError{.number = errors::PrivilegeViolation, .message = unitsFromFileSystemBytes(command.complaints())};
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

} // namespace

std::optional<Value> desktopPicture(ModelObject const& /*root*/) {
    PictureSettings const& settings = pictureSettings();
    std::string const text =
        unquoted(runSettings({"get", std::string(settings.schema), std::string(settings.keys.front())}));
    if (text.empty()) return Value::missing();
    std::u16string path = unitsFromFileSystemBytes(text);
    if (settings.form == PictureSettings::Form::URI) {
        NSString const found = NSURL::URLWithString_(NSString::stringWithUTF8String_(text.c_str())).path();
        if (found == nil) return Value::missing();
        path = found.codeUnits();
    }
    return makeObject<FileObject>(ValueKind::File, FileObject::Kind::PosixFile, std::move(path));
}

bool setDesktopPicture(ModelObject const& /*root*/, Value const& value, TextContext const& context) {
    std::u16string const path = requireType(value, codes::AliasType, context).file().path;
    PictureSettings const& settings = pictureSettings();
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
    if (!bytes) throw fileNotFound(value);
    bool const isURI = settings.form == PictureSettings::Form::URI;
    std::string const setting = quoted(isURI ? fileURIOfPath(*bytes) : *bytes);
    for (std::string_view const key : settings.keys)
        if (!key.empty()) runSettings({"set", std::string(settings.schema), std::string(key), setting});
    return true;
}

} // namespace mac::applescript::finder
