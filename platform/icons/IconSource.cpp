#include "platform/icons/IconSource.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/desktop/entries/MIMETypes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/icons/IconPictures.h"
#include "platform/icons/IconTheme.h"
#include "platform/icons/PictureToolkit.h"
#include "platform/launchservices/Applications.h"
#include "platform/launchservices/BundleFiles.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/Users.h"
#include "platform/system/XDGFolders.h"
#include <array>

namespace mac {

namespace {

constexpr OSType SystemCreator{"macs"};
constexpr OSType ApplicationType{"APPL"};
constexpr OSType UnknownCode{"????"};
// The icon file of an application has up to a few million bytes.
constexpr std::size_t LargestIconFile = std::size_t{16} << 20;

// Folders of the user that have pictures of their own.
struct UserFolderIcon {
    char const* variable;
    char const* name;
};
constexpr std::array UserFolderIcons{
    UserFolderIcon{"XDG_DESKTOP_DIR", "user-desktop"},
    UserFolderIcon{"XDG_DOWNLOAD_DIR", "folder-download"},
    UserFolderIcon{"XDG_DOCUMENTS_DIR", "folder-documents"},
    UserFolderIcon{"XDG_MUSIC_DIR", "folder-music"},
    UserFolderIcon{"XDG_PICTURES_DIR", "folder-pictures"},
    UserFolderIcon{"XDG_VIDEOS_DIR", "folder-videos"},
    UserFolderIcon{"XDG_PUBLICSHARE_DIR", "folder-publicshare"},
    UserFolderIcon{"XDG_TEMPLATES_DIR", "folder-templates"},
};

IconSource sourceOfFolder(DiskItem const& item) {
    IconSource source{.names = {"folder", "inode-directory"}, .generic = IconSource::Generic::Folder};
    BytePath const path(item.path);
    if (item.isVolume) source.names.insert(source.names.begin(), "drive-harddisk");
    // A list of folders may name the home folder for those that are not there.
    if (path.bytes() == ownHomeFolder()) {
        source.names.insert(source.names.begin(), "user-home");
        return source;
    }
    for (UserFolderIcon const& folder : UserFolderIcons) {
        if (path.bytes() == desktopFolder(folder.variable).value_or(""))
            source.names.insert(source.names.begin(), folder.name);
    }
    return source;
}

IconSource sourceOfPackage(DiskItem const& item) {
    bool const isApplication = item.isApplicationBundle();
    NSDictionary const information = bundleInformation(item.path);
    IconSource source =
        isApplication ? IconSource{.names = {"application-x-executable"}, .generic = IconSource::Generic::Application}
                      : iconSourceOfExtension(std::string(item.extension())).value_or(IconSource());
    source.names.emplace_back("package-x-generic");
    source.family = iconFileInBundle(item.path, as<NSString>(information.objectForKey_("CFBundleIconFile")));
    return source;
}

// The icon is named in the theme, mostly without extension, or by its path.
IconSource sourceOfDesktopEntry(std::string const& path) {
    IconSource source{.names = {"application-x-executable"}, .generic = IconSource::Generic::Application};
    std::string icon = DesktopEntry::readFile(path).text("Icon").value_or("");
    if (icon.starts_with('/')) {
        source.file = icon;
        return source;
    }
    source.names.insert(source.names.begin(), icon);
    for (std::string_view const extension : {".png", ".svg", ".xpm"}) {
        if (icon.ends_with(extension)) source.names.front() = icon.substr(0, icon.size() - extension.size());
    }
    return source;
}

bool isDesktopEntry(DiskItem const& item) { return asciiLowercase(item.extension()) == "desktop"; }

bool isKnownCode(OSType code) { return code != OSType() && code != UnknownCode; }

IconSource sourceOfFile(DiskItem const& item) {
    if (isDesktopEntry(item)) return sourceOfDesktopEntry(item.path);
    OSType const creator = item.finder.fileCreator();
    OSType const type = item.finder.fileType();
    if (isKnownCode(creator) && isKnownCode(type)) {
        std::optional<IconSource> declared = iconSourceOfCodes(creator, type);
        if (declared && !declared->family.empty()) return std::move(*declared);
    }
    std::vector<std::string> const byName = mimeTypesOfName(item.name);
    if (byName.empty() && isKnownCode(type)) {
        if (std::optional<IconSource> byCode = iconSourceOfTypeCode(type)) return std::move(*byCode);
    }
    std::string const mimeType =
        byName.size() == 1 ? byName.front() : mimeTypeOfItem(item.path, LinkAtEnd::IsNotFollowed);
    return {.names = iconNamesOfContents(mimeType)};
}

IconSource sourceOfLink(DiskItem const& item) {
    Result<DiskItem> const target = diskItemAtPath(resolvedPath(item.path));
    bool const isFound = target.hasValue() && target.value().kind != DiskItem::Kind::Link;
    return isFound ? iconSourceOf(target.value()) : IconSource{.names = {"inode-symlink", "text-x-generic"}};
}

IconSource sourceByKind(DiskItem const& item) {
    switch (item.kind) {
    case DiskItem::Kind::Folder:
        return item.isPackage() ? sourceOfPackage(item) : sourceOfFolder(item);
    case DiskItem::Kind::Link:
        return sourceOfLink(item);
    case DiskItem::Kind::File:
        return sourceOfFile(item);
    case DiskItem::Kind::Other:
        break;
    }
    return {.names = {"unknown", "application-x-generic", "text-x-generic"}};
}

// The bundle of the application with that creator and what it says; nullopt if no bundle has the creator.
struct CreatorsBundle {
    std::string path;
    NSDictionary information;
};
std::optional<CreatorsBundle> bundleOfCreator(OSType creator) {
    CFURLRef url;
    if (LSFindApplicationForInfo(creator, nil, nil, nullptr, &url) != noErr) return std::nullopt;
    std::optional<std::string> const path = url.path().fileSystemRepresentation();
    NSDictionary const information = path ? bundleInformation(*path) : NSDictionary();
    return information == nil ? std::nullopt : std::optional(CreatorsBundle{*path, information});
}

bool declaresType(NSDictionary const& documentType, OSType type) {
    NSString const wanted = NSString::stringWithCodeUnits(textOfCode(type));
    return as<NSArray>(documentType.objectForKey_("CFBundleTypeOSTypes")).containsObject_(wanted);
}

// Empty where the bundle declares no icon for the type.
std::vector<std::byte> declaredIcon(CreatorsBundle const& bundle, OSType type) {
    NSDictionary const& information = bundle.information;
    NSString file = type == ApplicationType ? as<NSString>(information.objectForKey_("CFBundleIconFile")) : NSString();
    NSArray const documentTypes = as<NSArray>(information.objectForKey_("CFBundleDocumentTypes"));
    for (NSUInteger index = 0; index < documentTypes.count() && file == nil; ++index) {
        NSDictionary const documentType = as<NSDictionary>(documentTypes.objectAtIndex_(index));
        if (declaresType(documentType, type)) file = as<NSString>(documentType.objectForKey_("CFBundleTypeIconFile"));
    }
    return iconFileInBundle(bundle.path, file);
}

} // namespace

IconSource iconSourceOf(DiskItem const& item) {
    IconSource source = sourceByKind(item);
    bool const isCustom = item.kind != DiskItem::Kind::Link && (item.finder.finderFlags() & kHasCustomIcon) != 0;
    std::vector<std::byte> custom =
        isCustom ? customIconAtPath(item.path, item.kind == DiskItem::Kind::Folder) : std::vector<std::byte>();
    if (!custom.empty()) source.family = std::move(custom);
    return source;
}

IconSource iconSourceOfFileType(NSString const& fileType) {
    IconSource const document{.names = {"unknown", "text-x-generic"}};
    constexpr NSUInteger lengthInQuotes = 6;
    bool const isInQuotes = fileType.length() == lengthInQuotes && fileType.hasPrefix_("'") && fileType.hasSuffix_("'");
    if (isInQuotes) {
        std::optional<OSType> const code = codeOfText(fileType.codeUnits().substr(1, 4));
        std::optional<IconSource> source = code ? iconSourceOfTypeCode(*code) : std::nullopt;
        if (!source && code) source = iconSourceOfSystemIcon(*code);
        return source.value_or(document);
    }
    std::string extension = fileType.fileSystemRepresentation().value_or("");
    if (extension.starts_with('.')) extension.erase(0, 1);
    bool const isExtension = !extension.empty() && extension.find('/') == std::string::npos;
    return isExtension ? iconSourceOfExtension(extension).value_or(document) : document;
}

std::optional<IconSource> iconSourceOfCodes(OSType creator, OSType type) {
    if (creator == SystemCreator) {
        std::optional<IconSource> source = iconSourceOfSystemIcon(type);
        return source ? source : iconSourceOfTypeCode(type);
    }
    std::optional<CreatorsBundle> const bundle = creator == kLSUnknownCreator ? std::nullopt : bundleOfCreator(creator);
    std::optional<IconSource> source = iconSourceOfTypeCode(type);
    std::vector<std::byte> icon = bundle ? declaredIcon(*bundle, type) : std::vector<std::byte>();
    if (icon.empty()) return source;
    if (!source) source = IconSource();
    source->family = std::move(icon);
    return source;
}

std::vector<std::byte> iconFileInBundle(std::string const& bundlePath, NSString const& name) {
    std::string file = name.fileSystemRepresentation().value_or("");
    if (file.empty() || file.find('/') != std::string::npos) return {};
    if (!file.ends_with(".icns")) file += ".icns";
    Result<FileContents> contents =
        readFileAtPath(BytePath(bundlePath).joined("Contents/Resources/" + file), LargestIconFile);
    if (!contents.hasValue() || !readIconFamily(contents.value().bytes)) return {};
    return std::move(contents.value().bytes);
}

std::vector<SharedPicture> picturesOfSource(IconSource const& source) {
    std::vector<SharedPicture> pictures =
        source.family.empty() ? std::vector<SharedPicture>() : picturesInIconSides(picturesInIconFile(source.family));
    if (pictures.empty() && !source.file.empty()) pictures = picturesInThemeFile(source.file);
    if (pictures.empty() && !source.names.empty()) pictures = picturesInTheme(source.names);
    return pictures.empty() ? genericPictures(source.generic) : pictures;
}

std::vector<SharedPicture> genericPictures(IconSource::Generic generic) {
    std::vector<Picture> pictures;
    for (int const side : IconSides)
        pictures.push_back(pictureToolkit().genericPicture(generic, side));
    return picturesInIconSides(std::move(pictures));
}

} // namespace mac
