#include "scripting/URLUtilities.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/files/volumes/VolumeInformation.h"
#include "platform/icons/ImageSources.h"
#include "platform/launchservices/DisplayNames.h"
#include "platform/launchservices/ItemAttributes.h"
#include "platform/launchservices/ItemInformation.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "scripting/FileReferences.h"
#include <algorithm>

namespace mac {

namespace {

// The item's content type; nil if there is no item.
NSString contentTypeOf(NSURL const& url) {
    PassingReferences const passing;
    FSRef ref{};
    if (!KRCURLGetFSRef_(url, &ref)) return nil;
    NSDictionary values;
    OSStatus const status =
        LSCopyItemAttributes(&ref, kLSRolesViewer, NSArray::arrayWithObject_(kLSItemContentType), &values);
    return status == noErr ? as<NSString>(values.objectForKey_(kLSItemContentType)) : NSString(nil);
}

} // namespace

NSURL pxURLForVolume_(FSVolumeRefNum volume) {
    NSURL url;
    return FSCopyURLForVolume(volume, &url) == noErr ? url : NSURL(nil);
}

NSString KRVolumeURLGetPath(NSURL receiver) {
    if (receiver == nil) return nil;
    PassingReferences const passing;
    FSRef root{};
    for (ItemCount index = 1;
         FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, {}, kFSVolInfoNone, {}, {}, &root) == noErr; ++index) {
        FSCatalogInfo information;
        if (FSGetCatalogInfo(&root, kFSCatInfoVolume, &information, {}, {}, {}) != noErr) continue;
        if (pxURLForVolume_(information.volume).isEqual_(receiver)) return KRCPathWithFSRef_(&root);
    }
    return nil;
}

bool pxLSFlags_displayName_(NSURL receiver, std::uint32_t* flags, NSString* displayName) {
    LSItemInfoRecord record;
    if (LSCopyItemInfoForURL(receiver, kLSRequestBasicFlagsOnly, &record) != noErr) return false;
    if (flags) *flags = record.flags;
    return !displayName || LSCopyDisplayNameForURL(receiver, displayName) == noErr;
}

bool pxIsImageFile(NSURL receiver) {
    NSString const contentType = contentTypeOf(receiver);
    if (contentType == nil) return false;
    return std::ranges::any_of(CGImageSourceCopyTypeIdentifiers(), [&](id const& object) {
        NSString const readable = as<NSString>(object);
        return UTTypeConformsTo(readable, "public.image") && UTTypeConformsTo(contentType, readable);
    });
}

bool pxIsAudioFile(NSURL receiver) { return UTTypeConformsTo(contentTypeOf(receiver), "public.audio"); }

bool KRURLSupportsCustomIcons(NSURL receiver) {
    return KRCURLIsOnIDisk(receiver) || KRPathSupportsCustomIcons(receiver.path());
}

bool KRURLHasInexactTime(NSURL receiver) {
    return receiver != nil && !KRCURLIsOnIDisk(receiver) && KRPathHasInexactTime(receiver.path());
}

} // namespace mac
