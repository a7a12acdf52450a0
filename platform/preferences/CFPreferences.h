#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// Preferences: values by key in domains. A domain is a property-list file, DOMAIN.plist in the folder
// framekeeper/Preferences of the user's settings ($XDG_CONFIG_HOME); some keys stand for something that the desktop
// keeps itself (NativeStores.h). Main thread.

// A user: this one, or all of the computer, whose file lies in the system's settings (the first of $XDG_CONFIG_DIRS).
inline constexpr char kCFPreferencesCurrentUser[] = "kCFPreferencesCurrentUser";
inline constexpr char kCFPreferencesAnyUser[] = "kCFPreferencesAnyUser";
// A host: any, or this computer alone, whose file is ByHost/DOMAIN.HOST.plist.
inline constexpr char kCFPreferencesAnyHost[] = "kCFPreferencesAnyHost";
inline constexpr char kCFPreferencesCurrentHost[] = "kCFPreferencesCurrentHost";
// The domain named by this program's bundle identifier, or by its file if it has no such identifier.
inline constexpr char kCFPreferencesCurrentApplication[] = "kCFPreferencesCurrentApplication";
// The global domain, which is meant for all programs: .GlobalPreferences.
inline constexpr char kCFPreferencesAnyApplication[] = "kCFPreferencesAnyApplication";

// A domain is an application's identifier ("com.apple.finder"). With one that is empty or cannot be a file's name, and
// with users and hosts other than those above, there are no values and synchronising fails.

// The value as it was last set here, else as it was when the domain was first read or last synchronised; nil if there
// is none. Its class is whatever the file has.
id CFPreferencesCopyValue(CFStringRef const& key, CFStringRef const& applicationID, CFStringRef const& userName,
                          CFStringRef const& hostName);
// Sets the value, or removes it with nil, in memory: the next synchronising writes it.
void CFPreferencesSetValue(CFStringRef const& key, id const& value, CFStringRef const& applicationID,
                           CFStringRef const& userName, CFStringRef const& hostName);
// Writes what was set, then lets go of what was read, so that the next look finds what other programs wrote. YES if all
// was written or, with nothing to write, if what there is could be read.
//
// Linux: what could not be written is forgotten, so that the values are those on the disk again. A file that cannot be
// read, or is no dictionary, is left as it is and cannot be written.
bool CFPreferencesSynchronize(CFStringRef const& applicationID, CFStringRef const& userName,
                              CFStringRef const& hostName);

} // namespace mac
