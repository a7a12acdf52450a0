#include "platform/preferences/CFPreferences.h"
#include "platform/preferences/PreferenceDomains.h"
#include <optional>

namespace mac {

id CFPreferencesCopyValue(CFStringRef const& key, CFStringRef const& applicationID, CFStringRef const& userName,
                          CFStringRef const& hostName) {
    std::optional<PreferenceDomain> const domain = preferenceDomain(applicationID, userName, hostName);
    return domain && key != nil ? sharedPreferences().value(*domain, key) : id();
}

void CFPreferencesSetValue(CFStringRef const& key, id const& value, CFStringRef const& applicationID,
                           CFStringRef const& userName, CFStringRef const& hostName) {
    std::optional<PreferenceDomain> const domain = preferenceDomain(applicationID, userName, hostName);
    if (domain && key != nil) sharedPreferences().setValue(*domain, key, value);
}

bool CFPreferencesSynchronize(CFStringRef const& applicationID, CFStringRef const& userName,
                              CFStringRef const& hostName) {
    return synchronizePreferences(applicationID, userName, hostName).isDone();
}

} // namespace mac
