#include "fuzz/AppleDoubleRoundTrip.h"
#include "platform/files/AppleDouble.h"
#include <algorithm>

namespace mac::fuzz {

namespace {

std::size_t sizeOf(AppleDouble const& file) {
    std::size_t size = file.resourceFork.size() + file.informationTail.size();
    for (AppleDouble::Attribute const& attribute : file.attributes)
        size += attribute.value.size();
    for (AppleDouble::Part const& part : file.otherParts)
        size += part.bytes.size();
    return size;
}

std::string complaintAboutAccess(AppleDouble file) {
    for (std::string const& name : file.names()) {
        if (!file.valueOf(name)) return "a name has no value";
        if (!file.removeValue(name) || file.valueOf(name)) return "a value cannot be removed";
    }
    if (!file.names().empty()) return "a name is left";
    bool const isEmpty = file.otherParts.empty() && file.informationTail.empty();
    return file.isEmpty() == isEmpty ? "" : "it is empty, or not";
}

} // namespace

std::string complaintAboutAppleDouble(std::span<std::byte const> bytes) {
    Result<AppleDouble> const read = AppleDouble::read(bytes);
    if (!read.hasValue()) return read.reason().empty() ? "refused without a reason" : "";
    if (sizeOf(read.value()) > 2 * bytes.size()) return "more was read than there is";
    std::optional<std::vector<std::byte>> const written = read.value().written();
    if (!written) return "what was read cannot be written";
    Result<AppleDouble> const again = AppleDouble::read(*written);
    if (!again.hasValue()) return "what was written cannot be read: " + again.reason();
    if (!(again.value() == read.value())) return "it was read otherwise than it was written";
    if (again.value().written() != written) return "it is written otherwise the second time";
    return complaintAboutAccess(read.value());
}

} // namespace mac::fuzz
