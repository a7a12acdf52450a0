#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/text/NSString.h"
#include "platform/preferences/Preferences.h"
#include <optional>
#include <span>
#include <string>

namespace mac {

// The domains of this program's preferences. Main thread.

// The preferences that CFPreferences and NSUserDefaults share. Never destroyed, so that they can be written at exit.
Preferences& sharedPreferences();

// The domain of an application (or kCFPreferencesCurrentApplication, kCFPreferencesAnyApplication), a user and a host,
// the latter two as in CFPreferences.h; nullopt if there is no such domain.
std::optional<PreferenceDomain> preferenceDomain(NSString const& applicationID, NSString const& userName,
                                                 NSString const& hostName);

// As CFPreferencesSynchronize, and tells what failed, for people.
Result<void, Failure> synchronizePreferences(NSString const& applicationID, NSString const& userName,
                                             NSString const& hostName);

// The defaults that a program's arguments (bytes, the program's own name first) set by words "-KEY VALUE", as told in
// NSUserDefaults.h. A byte that is not UTF-8 becomes a lone surrogate, as in paths. Of equal keys the last one counts.
NSDictionary argumentDomain(std::span<std::string const> arguments);

} // namespace mac
