#include "fuzz/Trials.h"
#include "pathutils/BundleVersions.h"
#include <algorithm>

namespace mac::fuzz {

namespace {

std::string complaintAboutOne(NSString const& whole) {
    if (pxVersionCompare_(whole, whole) != 0) return "a version differs from itself";
    NSString const trimmed = pxTrimmedVersion_(whole, 3);
    if (trimmed == nil) return "";
    return pxVersionCompare_(whole, trimmed) == 0 ? "" : "a trimmed version is another";
}

} // namespace

std::string complaintAboutVersion(std::string_view bytes) {
    std::size_t const end = std::min(bytes.find('\n'), bytes.size());
    NSString const first = NSString::stringWithFileSystemRepresentation_(bytes.substr(0, end));
    NSString const second =
        NSString::stringWithFileSystemRepresentation_(bytes.substr(std::min(end + 1, bytes.size())));
    std::string const complaint = complaintAboutOne(first) + complaintAboutOne(second);
    if (!complaint.empty()) return complaint;
    std::int32_t const forth = pxVersionCompare_(first, second);
    std::int32_t const back = pxVersionCompare_(second, first);
    bool const isOpposite = (forth < 0) == (back > 0) && (forth > 0) == (back < 0);
    return isOpposite ? "" : "two versions have no order";
}

} // namespace mac::fuzz
