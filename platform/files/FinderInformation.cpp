#include "platform/files/FinderInformation.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/system/BigEndian.h"
#include <algorithm>
#include <cerrno>

namespace mac {

namespace {

constexpr std::size_t TypeOffset = 0;
constexpr std::size_t CreatorOffset = 4;
constexpr std::size_t FlagsOffset = 8;
constexpr int LabelShift = 1;
constexpr std::uint32_t Start = 0;

bool isNowhere(int errorNumber) {
    return errorNumber == ENODATA || errorNumber == EOPNOTSUPP || errorNumber == EPERM || errorNumber == ERANGE;
}

} // namespace

OSType FinderInformation::fileType() const { return OSType(bigEndian32(bytes, TypeOffset)); }
OSType FinderInformation::fileCreator() const { return OSType(bigEndian32(bytes, CreatorOffset)); }
std::uint16_t FinderInformation::finderFlags() const { return bigEndian16(bytes, FlagsOffset); }

void FinderInformation::setFinderFlags(std::uint16_t flags) {
    bytes[FlagsOffset] = static_cast<std::byte>(flags >> 8);
    bytes[FlagsOffset + 1] = static_cast<std::byte>(flags & 0xFF);
}

std::int16_t FinderInformation::labelIndex() const {
    return static_cast<std::int16_t>((finderFlags() & kColor) >> LabelShift);
}

std::optional<FinderInformation> finderInformationFromBytes(std::span<std::byte const> bytes) {
    FinderInformation information;
    if (bytes.size() != information.bytes.size()) return std::nullopt;
    std::ranges::copy(bytes, information.bytes.begin());
    return information;
}

std::optional<FinderInformation> readFinderInformation(std::string const& path) {
    FinderInformation information;
    std::ptrdiff_t const length = getxattr(path.c_str(), XATTR_FINDERINFO_NAME, information.bytes.data(),
                                           information.bytes.size(), Start, XATTR_NOFOLLOW);
    if (length < 0) return isNowhere(errno) ? std::optional(FinderInformation()) : std::nullopt;
    bool const isWhole = static_cast<std::size_t>(length) == information.bytes.size();
    return isWhole ? information : FinderInformation();
}

bool writeFinderInformation(std::string const& path, FinderInformation const& information) {
    if (information == FinderInformation())
        return removexattr(path.c_str(), XATTR_FINDERINFO_NAME, XATTR_NOFOLLOW) == 0 || errno == ENODATA;
    return setxattr(path.c_str(), XATTR_FINDERINFO_NAME, information.bytes.data(), information.bytes.size(), Start,
                    XATTR_NOFOLLOW) == 0;
}

} // namespace mac
