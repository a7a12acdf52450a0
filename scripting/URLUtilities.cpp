#include "scripting/URLUtilities.h"
#include "platform/files/VolumeInformation.h"
#include "platform/foundation/Method.h"
#include "platform/launchservices/DisplayNames.h"
#include "platform/launchservices/ImageSources.h"
#include "platform/launchservices/ItemAttributes.h"
#include "platform/launchservices/ItemInformation.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "scripting/FileReferences.h"

namespace mac {

namespace {

// Nil where there is nothing.
NSString contentTypeOf(NSURL const& url) {
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

bool pxLSFlags_displayName_(NSURL receiver, std::uint32_t* flags, NSString* displayName) {
    LSItemInfoRecord record;
    if (LSCopyItemInfoForURL(receiver, kLSRequestBasicFlagsOnly, &record) != noErr) return false;
    *flags = record.flags;
    return !displayName || LSCopyDisplayNameForURL(receiver, displayName) == noErr;
}

bool pxIsImageFile(NSURL receiver) {
    NSString const contentType = contentTypeOf(receiver);
    if (contentType == nil) return false;
    for (id const& object : CGImageSourceCopyTypeIdentifiers()) {
        NSString const type = as<NSString>(object);
        if (UTTypeConformsTo(type, "public.image") && UTTypeConformsTo(contentType, type)) return true;
    }
    return false;
}

bool pxIsAudioFile(NSURL receiver) { return UTTypeConformsTo(contentTypeOf(receiver), "public.audio"); }

namespace {

struct Registration {
    Registration() {
        Method const methods[] = {
            method<static_cast<bool (*)(NSURL)>(&pxIsImageFile)>("pxIsImageFile"),
            method<static_cast<bool (*)(NSURL)>(&pxIsAudioFile)>("pxIsAudioFile"),
        };
        classOf<NSURL>().addMethods(methods);
    }
} const s_registration;

} // namespace

} // namespace mac
