#include "fuzz/Trials.h"
#include "platform/files/references/CatalogInformation.h"
#include "platform/icons/IconFamily.h"
#include "platform/icons/ResourceFork.h"

namespace mac::fuzz {

namespace {

std::string complaintAboutRecord(std::span<std::byte const> bytes) {
    std::optional<FinderInformation> const read = finderInformationFromBytes(bytes);
    if (!read) return bytes.size() == FinderInformation().bytes.size() ? "a whole record is refused" : "";
    if (read->labelIndex() < 0 || read->labelIndex() > 7) return "there is no such label";
    FinderInformation changed = *read;
    changed.setFinderFlags(static_cast<std::uint16_t>(~read->finderFlags()));
    if (changed.fileType() != read->fileType() || changed.fileCreator() != read->fileCreator())
        return "flags are not flags alone";
    changed.setFinderFlags(read->finderFlags());
    if (!(changed == *read)) return "flags that are put back are others";
    FSCatalogInfo information;
    setFinderInformation(information, *read);
    return finderInformationOf(information) == *read ? "" : "the catalog keeps it otherwise";
}

std::string complaintAboutIcon(std::span<std::byte const> bytes) {
    std::optional<std::vector<IconPart>> const parts = readIconFamily(bytes);
    std::size_t size = 0;
    for (IconPart const& part : parts.value_or(std::vector<IconPart>()))
        size += part.bytes.size();
    return size <= bytes.size() ? "" : "more was read than there is";
}

std::string complaintAboutFork(std::span<std::byte const> bytes) {
    std::optional<std::span<std::byte const>> const icon = resourceInFork(bytes, OSType("icns"), -16455);
    if (!icon) return "";
    bool const isWithin =
        icon->empty() || (icon->data() >= bytes.data() && icon->data() + icon->size() <= bytes.data() + bytes.size());
    return isWithin ? complaintAboutIcon(*icon) : "a resource lies outside of its fork";
}

} // namespace

std::string complaintAboutFinderInformation(std::span<std::byte const> bytes) {
    for (auto const complaint : {&complaintAboutRecord, &complaintAboutIcon, &complaintAboutFork}) {
        std::string const text = complaint(bytes);
        if (!text.empty()) return text;
    }
    return "";
}

} // namespace mac::fuzz
