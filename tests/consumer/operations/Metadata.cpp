#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FinderMetadata.h"
#include "tests/consumer/operations/Trial.h"

// What the Finder, Launch Services and extended attributes tell of an item.

namespace consumer {

using namespace mac;

namespace {

void tryVolumes(Trial const& trial, NSString const& file) {
    std::uint16_t const kind = pxFilesystemIDForPath(file);
    trial.expect("pxVolumeRefNumOfPath", pxVolumeRefNumOfPath(file) == pxVolumeRefNumOfPath(file) &&
                                             pxVolumeRefNumOfPath("/no such item") == 0x3F3F);
    trial.expect("pxFilesystemIDForPath", pxFilesystemIDForPath("/no such item") == 0xFFFF);
    trial.expect("KRPathSupportsCustomIcons", !KRPathSupportsCustomIcons("/no such item"));
    trial.expect("KRPathHasInexactTime", KRPathHasInexactTime("/no such item"));
    trial.expect("pxPathIsOnDOSVolume", pxPathIsOnDOSVolume(file) == (kind == 0x4953));
    trial.expect("pxPathIsOnIDisk", !pxPathIsOnIDisk(file));
}

void tryFlags(Trial const& trial, NSString const& file) {
    std::uint16_t flags = 0;
    trial.expect("pxSetFinderFlagsOfPath_mask_", pxSetFinderFlagsOfPath_mask_(file, 0x8000, 0x8000));
    trial.expect("pxFinderFlagsOfPath_", pxFinderFlagsOfPath_(file, &flags) && flags == 0x8000);
    bool isFolder = true;
    std::int16_t label = -1;
    IconRef icon = nullptr;
    bool const isRead = pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_(file, &flags, &isFolder, &icon, &label);
    trial.expect("pxFinderFlagsOfPath_isFolder_customIconRef_labelIndex_", isRead && !isFolder && label == 0);
    if (icon) ReleaseIconRef(icon);
    NSDictionary data;
    bool const hasData =
        pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_(file, nullptr, nullptr, &data, nullptr);
    trial.expect("pxFinderFlagsOfPath_isFolder_customIconData_labelIndex_", hasData && data == nil);
    std::uint32_t itemFlags = 0;
    NSString name;
    trial.expect("pxLSFlagsOfPath_", pxLSFlagsOfPath_(file, &itemFlags) && (itemFlags & 1U) != 0);
    trial.expect("pxLSFlagsOfPath_displayName_",
                 pxLSFlagsOfPath_displayName_(file, &itemFlags, &name) && isText(name, "shown.txt"));
    trial.expect("pxLSFlagsOfPath_displayName_isDirectory_",
                 pxLSFlagsOfPath_displayName_isDirectory_(file, &itemFlags, nullptr, NO));
}

void tryAttributes(Places const& places) {
    Trial const trial("pathutils/ExtendedAttributes");
    NSString const file = places.file("attributes İ", "");
    NSString const key = "com.example.title";
    NSData const data = NSData::dataWithBytes_length_("blue", 4);
    trial.expect("pxSetExtendedAttributeData_forKey_", pxSetExtendedAttributeData_forKey_(file, data, key));
    trial.expect("pxExtendedAttributesKeys", areTexts(pxExtendedAttributesKeys(file), {"com.example.title"}));
    trial.expect("pxExtendedAttributeDataForKey_", pxExtendedAttributeDataForKey_(file, key).isEqualToData_(data));
    trial.expect("pxExtendedAttributes", pxExtendedAttributes(file).count() == 1);
    trial.expect("pxExtendedAttributesForKeys_",
                 pxExtendedAttributesForKeys_(file, NSArray::arrayWithObject_("none")) == nil);
    trial.expect("pxRemoveExtendedAttributeForKey_",
                 pxRemoveExtendedAttributeForKey_(file, key) && pxExtendedAttributeDataForKey_(file, key) == nil);
    pxSetExtendedAttributes_(file, NSDictionary::dictionaryWithObject_forKey_(data, key));
    trial.expect("pxSetExtendedAttributes_", pxExtendedAttributeDataForKey_(file, key).isEqualToData_(data));
    NSDictionary const list = NSDictionary::dictionaryWithObject_forKey_("red", "colour");
    trial.expect("pxSetExtendedAttributeDictionary_forKey_",
                 pxSetExtendedAttributeDictionary_forKey_(file, list, "list"));
    NSDictionary const read = as<NSDictionary>(pxExtendedAttributeDictionaryForKey_(file, "list"));
    trial.expect("pxExtendedAttributeDictionaryForKey_", read.isEqualToDictionary_(list));
    // Without a bundle there is no identifier to keep it under.
    pxSetExtendedAttributeDictionary_(file, list);
    trial.expect("pxSetExtendedAttributeDictionary_", pxExtendedAttributesKeys(file).count() == 2);
    trial.expect("pxExtendedAttributeDictionary", pxExtendedAttributeDictionary(file) == nil);
}

} // namespace

void tryMetadata(Places const& places) {
    Trial const trial("pathutils/FinderMetadata");
    NSString const file = places.file("metadata/shown.txt", "");
    FSRef ref{};
    bool isFolder = true;
    trial.expect("KRPathGetFSRef_getIsDirectory_traverseLink_",
                 KRPathGetFSRef_getIsDirectory_traverseLink_(file, &ref, &isFolder, NO) && !isFolder);
    trial.expect("KRPathGetFSRef_traverseLink_", KRPathGetFSRef_traverseLink_(file, &ref, YES));
    FSRef parent{};
    HFSUniStr255 name{};
    trial.expect("KRPathGetParentFSRef_name_", KRPathGetParentFSRef_name_(file, &parent, &name) && name.length == 9);
    std::uint32_t valence = 0;
    trial.expect("pxValenceOfPath_", pxValenceOfPath_(places.path("metadata"), &valence) && valence == 1);
    tryVolumes(trial, file);
    tryFlags(trial, file);
    tryAttributes(places);
}

} // namespace consumer
