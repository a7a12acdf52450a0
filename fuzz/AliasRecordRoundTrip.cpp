#include "fuzz/Trials.h"
#include "platform/files/aliases/AliasRecord.h"
#include <algorithm>

namespace mac::fuzz {

namespace {

std::string complaintAboutReading(std::span<std::byte const> bytes) {
    std::optional<AliasRecord> const record = AliasRecord::read(bytes);
    if (!record) return "";
    if (!std::ranges::equal(record->bytes(), bytes)) return "the record changes when it is written";
    if (!record->path.starts_with('/')) return "the path is not absolute";
    for (std::string const& text : {record->path, record->pathOnVolume, record->pathBelowHome.value_or("")}) {
        if (text.find('\0') != std::string::npos) return "a path has a NUL";
    }
    return "";
}

} // namespace

std::string complaintAboutAlias(std::span<std::byte const> bytes) {
    std::string complaint = complaintAboutReading(bytes);
    if (!complaint.empty()) return complaint;
    std::vector<std::byte> sealed(bytes.begin(), bytes.end());
    AliasRecord::seal(sealed);
    return complaintAboutReading(sealed);
}

} // namespace mac::fuzz
