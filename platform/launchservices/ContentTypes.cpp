#include "platform/launchservices/ContentTypes.h"
#include "platform/desktop/MIMETypes.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/FourCharCodeText.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/TypeTree.h"
#include "platform/system/BytePath.h"
#include "platform/system/items/OpenItem.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// All that the rules of the shared MIME information look at.
constexpr std::size_t BytesToLookAt = 16384;

std::string const* identifierOfTag(TypeTree const& types, TagClass tagClass, std::string_view tag,
                                   std::string_view kind) {
    if (tag.empty()) return nullptr;
    for (DeclaredType const* const type : types.typesWithTag(tagClass, tag)) {
        if (conforms(types, type->identifier, kind)) return &type->identifier;
    }
    return nullptr;
}

std::string contentTypeOfFolder(TypeTree const& types, DiskItem const& item) {
    if (item.isVolume) return "public.volume";
    if (std::string const* const type =
            identifierOfTag(types, TagClass::Extension, item.extension(), "public.directory"))
        return *type;
    return item.isPackage() ? "com.apple.package" : "public.folder";
}

// As declarations name it; empty for none.
std::string typeCodeOf(DiskItem const& item) {
    OSType const code = item.finder.fileType();
    return code == OSType() ? std::string() : utf8FromUnits(textOfCode(code));
}

// Opened so that nothing else can be read in the file's place; empty where it cannot be read.
std::string firstBytes(std::string const& path, bool followsLinks) {
    LinkAtEnd const linkAtEnd = followsLinks ? LinkAtEnd::IsFollowed : LinkAtEnd::IsNotFollowed;
    Result<OpenItem> const opened = openItemAtPath(path, linkAtEnd);
    if (!opened.hasValue()) return {};
    struct stat status {};
    if (::fstat(opened.value().item.number(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    FileDescriptor const file(
        ::open(opened.value().systemPath().c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::string bytes(BytesToLookAt, '\0');
    std::size_t length = 0;
    while (file.isOpen() && length < bytes.size()) {
        ssize_t const count = ::read(file.number(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return bytes;
}

std::string contentTypeOfFile(TypeTree const& types, DiskItem const& item) {
    if ((item.finder.finderFlags() & kIsAlias) != 0) return "com.apple.alias-file";
    std::vector<std::string> const byName = mimeTypesOfName(item.name);
    if (byName.size() == 1) return identifierOfMIMEType(types, byName.front());
    if (byName.empty()) {
        std::string const code = typeCodeOf(item);
        for (std::string const* const type :
             {identifierOfTag(types, TagClass::Extension, item.extension(), "public.data"),
              identifierOfTag(types, TagClass::TypeCode, code, "public.data")}) {
            if (type) return *type;
        }
    }
    return identifierOfMIMEType(types, mimeTypeOfItem(item.path, false));
}

} // namespace

std::string contentTypeOf(DiskItem const& item) {
    std::shared_ptr<TypeTree const> const types = knownTypes();
    switch (item.kind) {
    case DiskItem::Kind::Folder:
        return contentTypeOfFolder(*types, item);
    case DiskItem::Kind::Link:
        return "public.symlink";
    case DiskItem::Kind::File:
        return contentTypeOfFile(*types, item);
    case DiskItem::Kind::Other:
        break;
    }
    return "public.item";
}

std::string mimeTypeOfItem(std::string const& path, bool followsLinks) {
    return mimeTypeOfNameAndBytes(BytePath(path).leaf(), firstBytes(path, followsLinks));
}

} // namespace mac
