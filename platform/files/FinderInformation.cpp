#include "platform/files/FinderInformation.h"
#include "platform/system/BigEndian.h"
#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/items/ItemAttributes.h"
#include <algorithm>
#include <cerrno>

namespace mac {

namespace {

constexpr std::size_t TypeOffset = 0;
constexpr std::size_t CreatorOffset = 4;
constexpr std::size_t FlagsOffset = 8;
constexpr int LabelShift = 1;

// Whether the item has no Finder information, or cannot have any.
bool isNowhere(SystemError const& error) {
    return error.is(ENODATA) || error.is(EOPNOTSUPP) || error.is(EPERM) || error.is(ERANGE);
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

Result<FinderInformation> readFinderInformation(OpenItem const& item) {
    Result<std::vector<std::byte>> const value = readAttribute(item, AttributeName(XATTR_FINDERINFO_NAME));
    if (!value.hasValue()) return isNowhere(value.problem()) ? Result(FinderInformation()) : value.problem();
    return finderInformationFromBytes(value.value()).value_or(FinderInformation());
}

Result<void> writeFinderInformation(OpenItem const& item, FinderInformation const& information) {
    AttributeName const name(XATTR_FINDERINFO_NAME);
    if (information != FinderInformation()) return writeAttribute(item, name, information.bytes);
    Result<void> removed = removeAttribute(item, name);
    return removed.isDone() || removed.problem().is(ENODATA) ? Result<void>() : removed;
}

} // namespace mac
