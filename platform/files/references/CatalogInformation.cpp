#include "platform/files/references/CatalogInformation.h"
#include "platform/files/references/CatalogFields.h"
#include "platform/files/references/FileStatuses.h"
#include "platform/files/references/ItemReferences.h"
#include <algorithm>

namespace mac {

namespace {

std::span<std::byte const> firstHalf(FinderInformation const& information) {
    return std::span(information.bytes).first(information.bytes.size() / 2);
}

std::span<std::byte const> secondHalf(FinderInformation const& information) {
    return std::span(information.bytes).last(information.bytes.size() / 2);
}

// The name in the form of HFS; empty if it is too long for the record.
HFSUniStr255 nameOf(OpenItem const& item) {
    HFSUniStr255 result{};
    NSString const name = NSString::stringWithFileSystemRepresentation_(item.name);
    std::u16string_view const units = name.codeUnits();
    if (units.size() > result.unicode.size()) return result;
    result.length = static_cast<std::uint16_t>(units.size());
    std::ranges::transform(units, result.unicode.begin(), slashAndColonExchanged);
    return result;
}

bool isGettable(FSCatalogInfoBitmap which) { return (which & ~(kFSCatInfoGettableInfo | kFSCatInfoUserAccess)) == 0; }

template <class T>
void deliver(T const& value, T* place) {
    if (place) *place = value;
}

} // namespace

FinderInformation finderInformationOf(FSCatalogInfo const& catalogInfo) {
    FinderInformation information;
    std::ranges::copy(catalogInfo.finderInfo, information.bytes.begin());
    std::ranges::copy(catalogInfo.extFinderInfo, information.bytes.begin() + catalogInfo.finderInfo.size());
    return information;
}

void setFinderInformation(FSCatalogInfo& catalogInfo, FinderInformation const& information) {
    std::ranges::copy(firstHalf(information), catalogInfo.finderInfo.begin());
    std::ranges::copy(secondHalf(information), catalogInfo.extFinderInfo.begin());
}

OSErr FSGetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfo,
                       HFSUniStr255* outName, FSSpec* fsSpec, FSRef* parentRef) {
    if (!ref || fsSpec || (whichInfo != kFSCatInfoNone && !catalogInfo)) return paramErr;
    if (!isGettable(whichInfo)) return errFSBadInfoBitmap;
    Result<OpenItem> const item = openItemOfReference(*ref);
    if (!item.hasValue()) return errFSBadFSRef;
    FSCatalogInfo information{};
    if (catalogInfo) information = *catalogInfo;
    HFSUniStr255 name{};
    OSErr const read = getCatalogInfo(item.value(), whichInfo, information, &name);
    if (read != noErr) return read;
    Result<FSRef> const parent = parentRef ? referenceToFolderOf(item.value()) : FSRef{};
    if (!parent.hasValue()) return statusOf(parent.problem(), FileOperation::UsingCatalog);
    deliver(information, catalogInfo);
    deliver(name, outName);
    deliver(parent.value(), parentRef);
    return noErr;
}

OSErr FSSetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo const* catalogInfo) {
    if (!ref || !catalogInfo) return paramErr;
    if ((whichInfo & ~kFSCatInfoSettableInfo) != 0) return errFSBadInfoBitmap;
    Result<OpenItem> const item = openItemOfReference(*ref);
    return item.hasValue() ? setCatalogInfo(item.value(), whichInfo, *catalogInfo) : errFSBadFSRef;
}

OSErr getCatalogInfo(OpenItem const& item, FSCatalogInfoBitmap whichInfo, FSCatalogInfo& catalogInfo,
                     HFSUniStr255* outName) {
    if (!isGettable(whichInfo)) return errFSBadInfoBitmap;
    FSCatalogInfo information = catalogInfo;
    Result<void> const read = readCatalogFields(item, whichInfo, information);
    if (!read.isDone()) return statusOf(read.problem(), FileOperation::UsingCatalog);
    catalogInfo = information;
    if (outName) *outName = nameOf(item);
    return noErr;
}

OSErr setCatalogInfo(OpenItem const& item, FSCatalogInfoBitmap whichInfo, FSCatalogInfo const& catalogInfo) {
    if ((whichInfo & ~kFSCatInfoSettableInfo) != 0) return errFSBadInfoBitmap;
    Result<void> const written = writeCatalogFields(item, whichInfo, catalogInfo);
    return written.isDone() ? noErr : statusOf(written.problem(), FileOperation::UsingCatalog);
}

} // namespace mac
