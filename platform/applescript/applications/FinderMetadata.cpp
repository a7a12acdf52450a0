#include "platform/applescript/applications/FinderItem.h"
#include "platform/files/CatalogFields.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/NSString.h"
#include "platform/launchservices/ContentTypes.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "platform/system/ASCII.h"
#include "platform/system/PercentEscapes.h"
#include <cerrno>
#include <sys/stat.h>

// What the Finder keeps beside an item's contents.

namespace mac::applescript {

namespace {

// Linux: the attribute "user.xdg.comment", which the desktop's own programs show.
constexpr char CommentName[] = "xdg.comment";
constexpr std::uint32_t Start = 0;
// Of the flags, three bits of colour.
constexpr unsigned LabelShift = 1;
constexpr int LabelCount = 8;

// What cannot be read does not show.
FinderInformation shownInformation(OpenItem const& item) {
    return readFinderInformation(attributePath(item)).value_or(FinderInformation());
}

// Of another size than the Finder's: another program's.
bool holdsOtherInformation(std::string const& path) {
    std::ptrdiff_t const length = mac::getxattr(path.c_str(), XATTR_FINDERINFO_NAME, nullptr, 0, Start, XATTR_NOFOLLOW);
    return length >= 0 && static_cast<std::size_t>(length) != FinderInformation().bytes.size();
}

} // namespace

std::u16string commentOf(OpenItem const& item) {
    std::string const path = attributePath(item);
    std::ptrdiff_t const length = mac::getxattr(path.c_str(), CommentName, nullptr, 0, Start, XATTR_NOFOLLOW);
    if (length <= 0) return {};
    std::string bytes(static_cast<std::size_t>(length), '\0');
    std::ptrdiff_t const read =
        mac::getxattr(path.c_str(), CommentName, bytes.data(), bytes.size(), Start, XATTR_NOFOLLOW);
    if (read < 0) return {};
    bytes.resize(static_cast<std::size_t>(read));
    return unitsFromFileSystemBytes(bytes);
}

void setComment(OpenItem const& item, std::u16string const& comment, Value const& object) {
    std::string const path = attributePath(item);
    std::string const bytes = utf8FromUnits(comment);
    bool const isSet =
        bytes.empty()
            ? mac::removexattr(path.c_str(), CommentName, XATTR_NOFOLLOW) == 0 || errno == ENODATA
            : mac::setxattr(path.c_str(), CommentName, bytes.data(), bytes.size(), Start, XATTR_NOFOLLOW) == 0;
    if (!isSet) throw fileError(errno, object);
}

// The colours count the other way round on the disk.
int labelIndexOf(OpenItem const& item) {
    int const colour = shownInformation(item).labelIndex();
    return colour == 0 ? 0 : LabelCount - colour;
}

void setLabelIndex(OpenItem const& item, int index, Value const& object) {
    if (index < 0 || index >= LabelCount) throw plainError(errors::Parameter);
    std::string const path = attributePath(item);
    // What else is there stays, so it has to be read and understood.
    std::optional<FinderInformation> information = readFinderInformation(path);
    if (!information) throw fileError(errno, object);
    if (holdsOtherInformation(path)) throw fileError(EIO, object);
    auto const colour = static_cast<unsigned>(index == 0 ? 0 : LabelCount - index);
    unsigned const flags = information->finderFlags() & ~unsigned{kColor};
    information->setFinderFlags(static_cast<std::uint16_t>(flags | colour << LabelShift));
    if (!writeFinderInformation(path, *information)) throw fileError(errno, object);
}

std::optional<Value> fileTypeOf(OpenItem const& item, bool isCreator) {
    FinderInformation const information = shownInformation(item);
    Code const code = (isCreator ? information.fileCreator() : information.fileType()).value();
    return code == 0 ? std::nullopt : std::optional(Value::type(code));
}

bool isLocked(OpenItem const& item) {
    FSCatalogInfo information;
    return readCatalogFields(item, kFSCatInfoNodeFlags, information) &&
           (information.nodeFlags & kFSNodeLockedMask) != 0;
}

Value privilegesOf(std::uint32_t mode, int whose) {
    constexpr unsigned bitsEach = 3;
    std::uint32_t const rights = mode >> (bitsEach * static_cast<unsigned>(2 - whose));
    bool const reads = (rights & 4U) != 0;
    bool const writes = (rights & 2U) != 0;
    if (reads) return Value::constant(writes ? codeOf("rdwr") : codeOf("read"));
    return Value::constant(writes ? codeOf("writ") : codeOf("none"));
}

// A folder that may be read may also be entered.
bool setPrivileges(OpenItem const& item, int whose, Value const& value) {
    if (!value.is(ValueKind::Constant)) return false;
    std::uint32_t rights = 0;
    switch (value.asCode()) {
    case codeOf("rdwr"):
        rights = 6;
        break;
    case codeOf("read"):
        rights = 4;
        break;
    case codeOf("writ"):
        rights = 2;
        break;
    case codeOf("none"):
        break;
    default:
        return false;
    }
    struct stat status {};
    if (::fstat(item.item.number(), &status) != 0 || S_ISLNK(status.st_mode)) return false;
    unsigned const shift = 3U * static_cast<unsigned>(2 - whose);
    std::uint32_t const kept = status.st_mode & 07777U & ~(6U << shift);
    std::uint32_t const entering = S_ISDIR(status.st_mode) && rights != 0 ? 1U << shift : 0;
    return ::chmod(item.systemPath().c_str(), kept | rights << shift | entering) == 0;
}

std::u16string kindOf(Code type, DiskItem const& item) {
    if (type == codeOf("cdis")) return u"Volume";
    if (type == codeOf("alia")) return u"Alias";
    NSString const identifier = NSString::stringWithUTF8String_(contentTypeOf(item));
    NSString const description = UTTypeCopyDescription(identifier);
    // Of a type that nobody describes the extension says most.
    if (description == nil)
        return item.extension().empty() ? std::u16string(u"Document")
                                        : foldedName(unitsFromFileSystemBytes(item.extension())) + u" document";
    std::u16string kind(description.codeUnits());
    if (kind.front() >= u'a' && kind.front() <= u'z') kind.front() -= u'a' - u'A';
    return kind;
}

std::u16string urlOf(std::string const& path, bool isFolder) {
    bool const needsSlash = isFolder && path != "/";
    return unitsFromASCII("file://" + percentEscaped(path) + (needsSlash ? "/" : ""));
}

} // namespace mac::applescript
