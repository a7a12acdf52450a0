#include "platform/applescript/applications/FinderItem.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/NSString.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "platform/system/ASCII.h"
#include "platform/system/PercentEscapes.h"
#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/items/ItemAttributes.h"
#include "platform/system/items/ItemLock.h"
#include <cerrno>
#include <sys/stat.h>

// What the Finder keeps beside an item's contents.

namespace mac::applescript {

namespace {

// Linux: the attribute "user.xdg.comment", which the desktop's own programs show.
constexpr char CommentName[] = "xdg.comment";
// The colour is three bits of the flags, from this bit on.
constexpr unsigned LabelShift = 1;
constexpr int LabelCount = 8;

// All zero if it cannot be read.
FinderInformation shownInformation(OpenItem const& item) {
    return readFinderInformation(item).valueOr(FinderInformation());
}

// Whether the attribute has another size than Finder information, and so belongs to another program.
bool holdsOtherInformation(OpenItem const& item) {
    Result<std::size_t> const size = sizeOfAttribute(item, AttributeName(XATTR_FINDERINFO_NAME));
    return size.hasValue() && size.value() != FinderInformation().bytes.size();
}

} // namespace

std::u16string commentOf(OpenItem const& item) {
    std::vector<std::byte> const bytes = readAttribute(item, AttributeName(CommentName)).valueOr({});
    return unitsFromFileSystemBytes({reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

void setComment(OpenItem const& item, std::u16string const& comment, Value const& object) {
    AttributeName const name(CommentName);
    std::string const bytes = utf8FromUnits(comment);
    Result<void> const set =
        bytes.empty() ? removeAttribute(item, name) : writeAttribute(item, name, std::as_bytes(std::span(bytes)));
    bool const isSet = set.isDone() || (bytes.empty() && set.problem().is(ENODATA));
    if (!isSet) throw fileError(set.problem(), object);
}

// Labels count in the opposite order of the colours on the disk.
int labelIndexOf(OpenItem const& item) {
    int const colour = shownInformation(item).labelIndex();
    return colour == 0 ? 0 : LabelCount - colour;
}

void setLabelIndex(OpenItem const& item, int index, Value const& object) {
    if (index < 0 || index >= LabelCount) throw plainError(errors::Parameter);
    // The other fields are kept, so the information must be read and of the Finder's form.
    Result<FinderInformation> const read = readFinderInformation(item);
    if (!read.hasValue()) throw fileError(read.problem(), object);
    if (holdsOtherInformation(item)) throw fileError({.code = EIO, .operation = "read"}, object);
    FinderInformation information = read.value();
    auto const colour = static_cast<unsigned>(index == 0 ? 0 : LabelCount - index);
    unsigned const flags = information.finderFlags() & ~unsigned{kColor};
    information.setFinderFlags(static_cast<std::uint16_t>(flags | colour << LabelShift));
    Result<void> const written = writeFinderInformation(item, information);
    if (!written.isDone()) throw fileError(written.problem(), object);
}

std::optional<Value> fileTypeOf(OpenItem const& item, bool isCreator) {
    FinderInformation const information = shownInformation(item);
    Code const code = (isCreator ? information.fileCreator() : information.fileType()).value();
    return code == 0 ? std::nullopt : std::optional(Value::type(code));
}

bool isLocked(OpenItem const& item) { return lockOf(item) == ItemLock::Locked; }

void setLocked(OpenItem const& item, bool isLocked, Value const& object) {
    Result<void> const set = setLock(item, isLocked ? ItemLock::Locked : ItemLock::Unlocked);
    if (!set.isDone()) throw fileError(set.problem(), object);
}

Value privilegesOf(std::uint32_t mode, int whose) {
    constexpr unsigned bitsEach = 3;
    std::uint32_t const rights = mode >> (bitsEach * static_cast<unsigned>(2 - whose));
    bool const reads = (rights & 4U) != 0;
    bool const writes = (rights & 2U) != 0;
    if (reads) return Value::constant(writes ? codes::ReadWrite : codes::ReadOnly);
    return Value::constant(writes ? codes::WriteOnly : codes::NoAccess);
}

// A folder that may be read may also be entered.
bool setPrivileges(OpenItem const& item, int whose, Value const& value) {
    if (!value.is(ValueKind::Constant)) return false;
    std::uint32_t rights = 0;
    switch (value.asCode()) {
    case codes::ReadWrite:
        rights = 6;
        break;
    case codes::ReadOnly:
        rights = 4;
        break;
    case codes::WriteOnly:
        rights = 2;
        break;
    case codes::NoAccess:
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
    if (type == codes::Disk) return u"Volume";
    if (type == codes::AliasFile) return u"Alias";
    NSString const identifier = NSString::stringWithUTF8String_(contentTypeOf(item));
    NSString const description = UTTypeCopyDescription(identifier);
    // For a type without a description the extension says most.
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
