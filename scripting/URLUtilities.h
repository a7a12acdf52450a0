#pragma once

#include "platform/files/references/CatalogInformation.h"
#include "platform/foundation/urls/NSURL.h"

namespace mac {

// What file URLs lead to: volumes, flags and names as people see them, images and sound; and the components of a URL.
// Any thread. A nil receiver answers nil and NO, and logs nothing.

// The URL of the volume's root; nil if no volume has the number.
NSURL pxURLForVolume_(FSVolumeRefNum volume);
// The path of the root of the mounted volume whose URL equals the receiver; nil if there is none.
NSString KRVolumeURLGetPath(NSURL receiver);
// The basic flags of Launch Services (ItemInformation.h) and the display name, whose pointer may be null. A final
// symbolic link is not followed. NO, and nothing is written, if there is no item or the URL is no file URL.
bool pxLSFlags_displayName_(NSURL receiver, std::uint32_t* flags, NSString* displayName);
// Whether the file is an image of a type that can be read here; links are followed.
bool pxIsImageFile(NSURL receiver);
// Whether the file is sound by its type; whether that can be played is not asked. Links are followed.
bool pxIsAudioFile(NSURL receiver);

// Whether files on the URL's volume can have icons of their own, as for its path (pathutils/FinderMetadata.h). On the
// iDisk service, which is recognised by the host alone, they can.
bool KRURLSupportsCustomIcons(NSURL receiver);
// Whether dates on the URL's volume are less exact than here, as for its path (pathutils/FinderMetadata.h). On the
// iDisk service they are not.
bool KRURLHasInexactTime(NSURL receiver);

// The components of a URL as it was written, without its base, by their numbers: 1 scheme, 2 net location, 3 path,
// 4 resource specifier, 5 user, 6 password, 7 user info, 8 host, 9 port, 10 parameter string, 11 query, 12 fragment.

// The component without its separators, with its percent escapes; an empty path is the empty string. nil if the URL has
// no such component, and for an unknown number.
NSString pxComponent_(NSURL receiver, std::int32_t component);
// The component as pxComponent_ answers it, with a log line that shows it with and without its separators; nil, and a
// line that says so, if it is absent or empty. An unknown number raises NSRangeException.
NSString pxDisplayComponent_(NSURL receiver, std::int32_t component);
// Logs what the URL answers for each of its parts, a line each.
void pxDisplayComponents(NSURL receiver);

} // namespace mac
