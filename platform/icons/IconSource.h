#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/foundation/text/NSString.h"
#include "platform/icons/Picture.h"
#include <string>
#include <vector>

namespace mac {

struct DiskItem;

// The source of an icon's pictures, in this order: the first that has any counts. A value; for implementations, any
// thread.
struct IconSource {
    // What is drawn where nothing else has a picture.
    enum class Generic { Document, Folder, Application };

    // The contents of a file of type 'icns'.
    std::vector<std::byte> family{};
    // A picture's file by its path.
    std::string file{};
    // Names in the icon theme.
    std::vector<std::string> names{};
    Generic generic{Generic::Document};
};

// The icon of an item: its custom icon, the icon of its bundle, of its desktop entry, of its type code and creator
// where an application declares one, of its kind of folder, or of its type. A symbolic link has that of the item that
// it leads to. Linux: without a badge for links and aliases.
IconSource iconSourceOf(DiskItem const& item);
// The icon of a type, which is an extension or a type code in single quotes ("'TEXT'"). Anything else is a document.
IconSource iconSourceOfFileType(NSString const& fileType);
// The icon of files with this creator and type, as the application of the creator declares it among its document types,
// else as the tree of types says; of the system's creator, 'macs', one of the system's icons. Nothing where nobody says
// one.
std::optional<IconSource> iconSourceOfCodes(OSType creator, OSType type);

// The contents of the icon file of that name in a bundle's resources, the extension .icns being left out or not; empty
// where there is none that can be read. A name that leads elsewhere is none.
std::vector<std::byte> iconFileInBundle(std::string const& bundlePath, NSString const& name);
// The custom icon, or nothing.
std::vector<std::byte> customIconAtPath(std::string const& path, bool isFolder);

// In the sides of icons (IconTheme.h); never empty.
std::vector<SharedPicture> picturesOfSource(IconSource const& source);
// Drawn by this program.
std::vector<SharedPicture> genericPictures(IconSource::Generic generic);

// Which pictures of an icon theme stand for types. For implementations; any thread.

// The names for files of a MIME type; never empty.
std::vector<std::string> iconNamesOfContents(std::string const& mimeType);
// The icon of files with an extension, as the tree of types and the shared MIME information know it; nullopt where
// neither does.
std::optional<IconSource> iconSourceOfExtension(std::string const& extension);
// The icon of files with a type code; nullopt where no type has it.
std::optional<IconSource> iconSourceOfTypeCode(OSType type);
// An icon of the system's own, such as 'trsh'; nullopt for another code.
std::optional<IconSource> iconSourceOfSystemIcon(OSType icon);

} // namespace mac
