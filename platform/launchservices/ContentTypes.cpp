#include "platform/launchservices/ContentTypes.h"
#include "platform/desktop/MIMETypes.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/FourCharCodeText.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/TypeTree.h"
#include "platform/system/FolderContents.h"

namespace mac {

namespace {

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
    return identifierOfMIMEType(types, mimeTypeOfItem(item.path, LinkAtEnd::IsNotFollowed));
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

} // namespace mac
