#include "platform/applescript/applications/FinderItem.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/files/OpenItem.h"
#include "platform/foundation/Encodings.h"
#include <array>
#include <cerrno>
#include <sys/stat.h>

// What the Finder keeps beside an item's contents.

namespace mac::applescript {

namespace {

// Linux: the attribute "user.xdg.comment", which the desktop's own programs show.
constexpr char CommentName[] = "xdg.comment";

using FinderInformation = std::array<unsigned char, 32>;
// The ninth byte's second half of the flags: three bits of colour.
constexpr std::size_t LabelByte = 9;
constexpr unsigned LabelMask = 0x0E;
constexpr int LabelCount = 8;

std::optional<FinderInformation> finderInformation(OpenItem const& item) {
    FinderInformation bytes{};
    std::ptrdiff_t const length =
        mac::getxattr(item.systemPath().c_str(), XATTR_FINDERINFO_NAME, bytes.data(), bytes.size(), 0, 0);
    return length == static_cast<std::ptrdiff_t>(bytes.size()) ? std::optional(bytes) : std::nullopt;
}

bool isLink(OpenItem const& item) {
    struct stat status {};
    return ::fstat(item.item.number(), &status) == 0 && S_ISLNK(status.st_mode);
}

} // namespace

std::u16string commentOf(OpenItem const& item) {
    if (isLink(item)) return {};
    std::string const path = item.systemPath();
    std::ptrdiff_t const length = mac::getxattr(path.c_str(), CommentName, nullptr, 0, 0, 0);
    if (length <= 0) return {};
    std::string bytes(static_cast<std::size_t>(length), '\0');
    std::ptrdiff_t const read = mac::getxattr(path.c_str(), CommentName, bytes.data(), bytes.size(), 0, 0);
    if (read < 0) return {};
    bytes.resize(static_cast<std::size_t>(read));
    return unitsFromFileSystemBytes(bytes);
}

void setComment(OpenItem const& item, std::u16string const& comment, Value const& object) {
    if (isLink(item)) throw fileError(EPERM, object);
    std::string const path = item.systemPath();
    std::string const bytes = utf8FromUnits(comment);
    bool const isSet = bytes.empty() ? mac::removexattr(path.c_str(), CommentName, 0) == 0 || errno == ENODATA
                                     : mac::setxattr(path.c_str(), CommentName, bytes.data(), bytes.size(), 0, 0) == 0;
    if (!isSet) throw fileError(errno, object);
}

// The colours count the other way round on the disk.
int labelIndexOf(OpenItem const& item) {
    if (isLink(item)) return 0;
    std::optional<FinderInformation> const information = finderInformation(item);
    unsigned const colour = information ? ((*information)[LabelByte] & LabelMask) >> 1U : 0;
    return colour == 0 ? 0 : LabelCount - static_cast<int>(colour);
}

void setLabelIndex(OpenItem const& item, int index, Value const& object) {
    if (index < 0 || index >= LabelCount) throw plainError(errors::Parameter);
    if (isLink(item)) throw fileError(EPERM, object);
    FinderInformation information = finderInformation(item).value_or(FinderInformation{});
    auto const colour = static_cast<unsigned>(index == 0 ? 0 : LabelCount - index);
    information[LabelByte] = static_cast<unsigned char>((information[LabelByte] & ~LabelMask) | colour << 1U);
    int const status =
        mac::setxattr(item.systemPath().c_str(), XATTR_FINDERINFO_NAME, information.data(), information.size(), 0, 0);
    if (status != 0) throw fileError(errno, object);
}

std::optional<Value> fileTypeOf(OpenItem const& item, bool isCreator) {
    std::optional<FinderInformation> const information = finderInformation(item);
    if (!information) return {};
    Code code = 0;
    for (std::size_t index = 0; index < 4; ++index)
        code = code << 8U | (*information)[index + (isCreator ? 4 : 0)];
    return code == 0 ? std::nullopt : std::optional(Value::type(code));
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

std::u16string kindOf(Code type, std::u16string_view name) {
    switch (type) {
    case codeOf("cfol"):
        return u"Folder";
    case codeOf("cdis"):
        return u"Volume";
    case codeOf("alia"):
        return u"Alias";
    case codeOf("appf"):
        return u"Application";
    default:
        break;
    }
    std::size_t const dot = name.rfind(u'.');
    bool const hasExtension = dot != std::u16string_view::npos && dot > 0 && dot + 1 < name.size();
    if (!hasExtension) return u"Document";
    return foldedName(name.substr(dot + 1)) + u" document";
}

std::u16string urlOf(std::string const& path, bool isFolder) {
    constexpr std::string_view plain = "-._~!$&'()*+,;=:@/";
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    std::u16string url = u"file://";
    std::string const whole = isFolder && path != "/" ? path + "/" : path;
    for (char const character : whole) {
        auto const byte = static_cast<unsigned char>(character);
        bool const isLetter = (byte >= '0' && byte <= '9') || ((byte | 0x20U) >= 'a' && (byte | 0x20U) <= 'z');
        if (byte < 0x80 && (isLetter || plain.find(character) != std::string_view::npos)) {
            url += static_cast<char16_t>(byte);
            continue;
        }
        url += u'%';
        url += digits[byte >> 4U];
        url += digits[byte & 15U];
    }
    return url;
}

} // namespace mac::applescript
