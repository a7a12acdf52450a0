#pragma once

#include "platform/foundation/text/NSString.h"
#include "platform/preferences/Preferences.h"
#include <optional>

namespace mac {

// Where the domains of this program's preferences lie. Main thread.

// The preferences that CFPreferences and NSUserDefaults share. Never destroyed, so that they can be written at exit.
Preferences& sharedPreferences();

// The domain of an application (or kCFPreferencesCurrentApplication, kCFPreferencesAnyApplication), a user and a host,
// the latter two as in CFPreferences.h; nullopt if there is no such domain.
std::optional<PreferenceDomain> preferenceDomain(NSString const& applicationID, NSString const& userName,
                                                 NSString const& hostName);

} // namespace mac
