#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/foundation/urls/NSURL.h"

// The procedural side of NSURL. Any thread; a nil URL has no bytes and no parts.

namespace mac {

enum CFURLPathStyle : CFIndex {
    kCFURLPOSIXPathStyle = 0,
};

enum CFURLComponentType : CFIndex {
    kCFURLComponentScheme = 1,
    kCFURLComponentNetLocation = 2,
    kCFURLComponentPath = 3,
    kCFURLComponentResourceSpecifier = 4,
    kCFURLComponentUser = 5,
    kCFURLComponentPassword = 6,
    kCFURLComponentUserInfo = 7,
    kCFURLComponentHost = 8,
    kCFURLComponentPort = 9,
    kCFURLComponentParameterString = 10,
    kCFURLComponentQuery = 11,
    kCFURLComponentFragment = 12,
};

// Copies the bytes of the URL as it was written, without its base, and answers how many they are; -1 when they are more
// than the buffer takes. Without a buffer they are only counted.
CFIndex CFURLGetBytes(CFURLRef const& url, std::uint8_t* buffer, CFIndex bufferLength);

// Where in those bytes the component lies; {kCFNotFound, 0} when there is none, or no such component; an empty path is
// one of length 0 behind an authority and otherwise none. The other range, which may be null, is the component with
// what separates it from the one before, or from the beginning, and from the one behind; or the place where the
// component would be put.
CFRange CFURLGetByteRangeForComponent(CFURLRef const& url, CFURLComponentType component,
                                      CFRange* rangeIncludingSeparators);

// Whether the path of the absolute URL ends with a slash or with a segment "." or ".."; an empty one does not.
bool CFURLHasDirectoryPath(CFURLRef const& url);

// The URL of a path, which is not looked at on the disk: a folder's ends with a slash, another's does not. Nil for a
// nil or empty path, for one that can name no file and for another style.
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef const& filePath, CFURLPathStyle pathStyle,
                                       BOOL isDirectory);
// Makes the URL of a path relative to a base URL; a nil base stands for the current folder.
CFURLRef CFURLCreateWithFileSystemPathRelativeToBase(CFAllocatorRef allocator, CFStringRef const& filePath,
                                                     CFURLPathStyle pathStyle, BOOL isDirectory,
                                                     CFURLRef const& baseURL);
// Makes the URL of a path given as bytes, relative to a base URL; a nil base stands for the current folder.
CFURLRef CFURLCreateFromFileSystemRepresentationRelativeToBase(CFAllocatorRef allocator, std::uint8_t const* buffer,
                                                               CFIndex bufferLength, BOOL isDirectory,
                                                               CFURLRef const& baseURL);

} // namespace mac
