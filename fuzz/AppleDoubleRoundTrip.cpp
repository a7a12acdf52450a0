#include "fuzz/Trials.h"
#include "platform/system/items/AppleDouble.h"
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
    return file.isEmpty() == isEmpty ? "" : "isEmpty() is wrong";
}

bool isAsInWhole(AppleDouble::Attribute const& attribute, AppleDouble::Attribute const& inWhole) {
    return attribute.name == inWhole.name && (attribute.value == inWhole.value || attribute.value.empty());
}

// Reads the first bytes alone: the answer must be that of the whole file, or that more bytes are needed.
std::string complaintAboutBeginning(std::span<std::byte const> bytes, std::size_t size,
                                    Result<AppleDouble, Failure> const& whole) {
    Result<AppleDouble, Failure> const read = AppleDouble::readBeginning(bytes.first(size), bytes.size());
    if (!read.hasValue()) return "";
    if (!whole.hasValue()) return "only the beginning can be read";
    if (read.value().finderInformation != whole.value().finderInformation)
        return "the beginning has other Finder information";
    return std::ranges::equal(read.value().attributes, whole.value().attributes, isAsInWhole)
               ? ""
               : "the beginning has other attributes";
}

std::string complaintAboutBeginnings(std::span<std::byte const> bytes, Result<AppleDouble, Failure> const& whole) {
    for (std::size_t parts = 1; parts < 8; ++parts) {
        std::string complaint = complaintAboutBeginning(bytes, bytes.size() * parts / 8, whole);
        if (!complaint.empty()) return complaint;
    }
    return "";
}

} // namespace

std::string complaintAboutAppleDouble(std::span<std::byte const> bytes) {
    Result<AppleDouble, Failure> const read = AppleDouble::read(bytes);
    std::string complaint = complaintAboutBeginnings(bytes, read);
    if (!complaint.empty()) return complaint;
    if (!read.hasValue()) return read.problem().reason.empty() ? "refused without a reason" : "";
    if (sizeOf(read.value()) > 2 * bytes.size()) return "more bytes were read than the file has";
    std::optional<std::vector<std::byte>> const written = read.value().written();
    if (!written) return "what was read cannot be written";
    Result<AppleDouble, Failure> const again = AppleDouble::read(*written);
    if (!again.hasValue()) return "what was written cannot be read: " + again.problem().reason;
    if (!(again.value() == read.value())) return "it was read otherwise than it was written";
    if (again.value().written() != written) return "it is written otherwise the second time";
    return complaintAboutAccess(read.value());
}

} // namespace mac::fuzz
