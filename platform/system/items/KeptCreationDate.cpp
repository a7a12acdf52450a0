#include "platform/system/items/KeptCreationDate.h"
#include "platform/system/BigEndian.h"
#include "platform/system/items/ItemAttributes.h"
#include <array>
#include <cerrno>

namespace mac {

namespace {

using DateBytes = std::array<std::byte, sizeof(std::uint64_t)>;

DateBytes bytesOf(KeptCreationDate date) {
    DateBytes bytes{};
    for (std::size_t index = 0; index < bytes.size(); ++index)
        bytes[index] = static_cast<std::byte>(date.units >> (8 * (bytes.size() - 1 - index)));
    return bytes;
}

} // namespace

Result<KeptCreationDate> keptCreationDate(OpenItem const& item) {
    Result<std::vector<std::byte>> const bytes = readAttribute(item, AttributeName(CreateDateAttribute));
    if (!bytes.hasValue()) return bytes.problem();
    if (bytes.value().size() == sizeof(DateBytes)) return KeptCreationDate{bigEndian<std::uint64_t>(bytes.value(), 0)};
    return SystemError{.code = ENODATA, .operation = "getxattr", .item = CreateDateAttribute};
}

Result<void> keepCreationDate(OpenItem const& item, KeptCreationDate date) {
    return writeAttribute(item, AttributeName(CreateDateAttribute), bytesOf(date));
}

} // namespace mac
