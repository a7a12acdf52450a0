#pragma once

#include "platform/files/references/FSRef.h"
#include "platform/foundation/objects/ServiceTypes.h"

namespace mac {

// Applications by the identifiers of their bundles. Any thread.

// No application is known by what was asked for.
inline constexpr OSStatus kLSApplicationNotFoundErr = -10814;
inline constexpr OSType kLSUnknownCreator{};

// Finds an application by its bundle identifier, in any case of letters; else by the name of its file, in any case of
// letters; else by its creator. Each may be nil or unknown, but not all. The reference and the URL may be null. Of
// several it is the first of the registered ones, then those in Applications in the home folder, in /Applications and
// in /opt, and in the folders there. kLSApplicationNotFoundErr if there is none, paramErr if nothing is asked for; the
// answers are untouched then. The types that the applications on the way declare are known from then on.
//
// Linux: "com.apple.finder" is the desktop's application for folders, "com.apple.ActivityMonitor" and
// "com.apple.systempreferences" the first of the desktop's entries that shows processes or settings; what is found is
// the entry's file, unless a bundle of that identifier is there.
OSStatus LSFindApplicationForInfo(OSType inCreator, CFStringRef const& inBundleID, CFStringRef const& inName,
                                  FSRef* outAppRef, CFURLRef* outAppURL);

// From then on the bundle of the application is found by its identifier, and its types are known. One that is gone from
// its place is forgotten when the next one is looked for; its types stay. fnfErr where there is nothing, kLSDataErr for
// what says nothing usable.
inline constexpr OSStatus kLSDataErr = -10817;
OSStatus LSRegisterURL(CFURLRef const& inURL, BOOL inUpdate);
OSStatus LSRegisterFSRef(FSRef const* inRef, BOOL inUpdate);

} // namespace mac
