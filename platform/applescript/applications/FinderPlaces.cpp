#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/Terminology.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/NSString.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include "platform/system/XDGFolders.h"
#include "platform/system/items/FolderPlace.h"
#include "platform/system/items/OpenItem.h"
#include <algorithm>

namespace mac::applescript {

std::u16string shownName(std::string_view name) {
    std::u16string shown = unitsFromFileSystemBytes(name);
    std::ranges::replace(shown, u':', u'/');
    return shown;
}

std::optional<std::string> nameOnDisk(std::u16string_view shown) {
    std::u16string units(shown);
    std::ranges::replace(units, u'/', u':');
    std::optional<std::string> name = fileSystemBytesFromUnits(units);
    if (!name || name->empty() || *name == "." || *name == "..") return {};
    return name;
}

std::string homePath() { return NSHomeDirectory().fileSystemRepresentation().value_or("/"); }

// Linux: the desktop's folder as the user's settings name it.
std::string desktopPath() { return desktopFolder("XDG_DESKTOP_DIR").value_or(BytePath(homePath()).joined("Desktop")); }

Code classOfFolderNamed(std::string_view name) {
    std::size_t const dot = name.rfind('.');
    std::string const extension = dot == std::string_view::npos || dot == 0 ? "" : asciiLowercase(name.substr(dot + 1));
    if (extension == "app") return codes::ApplicationFile;
    return isPackageExtension(extension) ? codes::Package : codes::Folder;
}

Value finderItself() { return makeObject<ApplicationObject>(ValueKind::Application, u"Finder", false); }

Value itemSpecifier(Code type, std::string_view name, Value const& folder) {
    return elementSpecifier(Form::Name, type, folder, Value::text(shownName(name)));
}

Value folderSpecifier(std::string const& path) {
    std::vector<MountedVolume> volumes = mountedVolumes();
    std::erase_if(volumes, [](MountedVolume const& volume) { return !volume.isStartup() && !volume.isBrowsable; });
    MountedVolume const* const volume = volumeOfPath(volumes, path);
    std::string const mountPoint = volume ? volume->mountPoint : "/";
    Value place = mountPoint == "/"
                      ? propertySpecifier(termSymbol(codes::StartupDisk, u"startup disk"), finderItself())
                      : elementSpecifier(Form::Name, codes::Disk, finderItself(), Value::text(volume->name));
    std::string_view rest = std::string_view(path).substr(mountPoint == "/" ? 0 : mountPoint.size());
    while (!rest.empty()) {
        rest.remove_prefix(1);
        std::string_view const name = rest.substr(0, rest.find('/'));
        rest.remove_prefix(name.size());
        if (!name.empty()) place = itemSpecifier(classOfFolderNamed(name), name, place);
    }
    return place;
}

std::optional<std::string> directPath(std::string const& path) {
    Result<OpenItem> const item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return {};
    if (item.value().name.empty()) return "/";
    Result<std::string> const folder = pathOfFolder(item.value().folder);
    return folder.hasValue() ? std::optional(BytePath(folder.value()).joined(item.value().name)) : std::nullopt;
}

std::string parentOf(std::string const& path) { return std::string(BytePath(path).parent()); }

} // namespace mac::applescript
