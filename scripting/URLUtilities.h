#pragma once

#include "platform/files/references/CatalogInformation.h"
#include "platform/foundation/urls/NSURL.h"

namespace mac {

// What file URLs lead to: volumes, flags and names as people see them, images and sound; and the components of a URL.
// Any thread. A nil receiver answers nil and NO, and logs nothing.

// Of the volume's root; nil where no volume has the number.
NSURL pxURLForVolume_(FSVolumeRefNum volume);
// The path of the root of the mounted volume whose URL equals the receiver; nil where there is none.
NSString KRVolumeURLGetPath(NSURL receiver);
// The basic flags of Launch Services (ItemInformation.h) and the name as people see it, whose pointer may be null. A
// link is meant itself. NO where there is nothing, and for what is no file URL; nothing is written then.
bool pxLSFlags_displayName_(NSURL receiver, std::uint32_t* flags, NSString* displayName);
// Whether the file is an image of a type that can be read here; links are followed.
bool pxIsImageFile(NSURL receiver);
// Whether the file is sound by its type; whether that can be played is not asked. Links are followed.
bool pxIsAudioFile(NSURL receiver);

// As for the URL's path (pathutils/FinderMetadata.h): whether files on its volume can have icons of their own. On the
// iDisk service, which is told by the host alone, they can.
bool KRURLSupportsCustomIcons(NSURL receiver);
// Likewise, whether dates there are less exact than here. On the iDisk service they are not.
bool KRURLHasInexactTime(NSURL receiver);

// The components of a URL as it was written, without its base, by their numbers: 1 scheme, 2 net location, 3 path,
// 4 resource specifier, 5 user, 6 password, 7 user info, 8 host, 9 port, 10 parameter string, 11 query, 12 fragment.

// The component without what separates it, with its percent escapes; an empty path is the empty string. Nil where the
// URL has no such component, and for a number that is none.
NSString pxComponent_(NSURL receiver, std::int32_t component);
// The same, with a log line that shows it with and without what separates it; for one that is absent or empty nil, and
// a line that says so. A number that is none raises NSRangeException.
NSString pxDisplayComponent_(NSURL receiver, std::int32_t component);
// Logs what the URL answers for each of its parts, a line each.
void pxDisplayComponents(NSURL receiver);

} // namespace mac
