#include "platform/preferences/CFPreferences.h"
#include "platform/desktop/KeyFile.h"
#include "platform/foundation/NSBundle.h"
#include "platform/preferences/NativeStores.h"
#include "platform/preferences/Preferences.h"
#include "platform/system/XDGFolders.h"
#include <optional>
#include <string>
#include <unistd.h>

namespace mac {

namespace {

Preferences& preferences() {
    static Preferences shared(nativeStores());
    return shared;
}

// Empty for a text that cannot be part of a file's name.
std::string nameOf(NSString const& text) {
    std::string name = text.fileSystemRepresentation().value_or("");
    return name.find('/') == std::string::npos ? name : "";
}

std::string nameOfDomain(CFStringRef const& applicationID) {
    bool const isOwn = applicationID.isEqualToString_(kCFPreferencesCurrentApplication);
    return nameOf(isOwn ? NSBundle::mainBundle().bundleIdentifier() : applicationID);
}

std::string nameOfHost() {
    constexpr std::size_t longestName = 256;
    std::string name(longestName, '\0');
    if (::gethostname(name.data(), name.size() - 1) != 0) return "";
    name.resize(name.find('\0'));
    return name.find('/') == std::string::npos ? name : "";
}

// The folder of the user's settings, or of the computer's; nullopt for another user.
std::optional<std::string> settingsOf(CFStringRef const& userName) {
    if (userName.isEqualToString_(kCFPreferencesCurrentUser)) return configHome();
    if (!userName.isEqualToString_(kCFPreferencesAnyUser)) return std::nullopt;
    std::vector<std::string> const folders = configFolders();
    return folders.size() > 1 ? std::optional(folders[1]) : std::nullopt;
}

std::optional<PreferenceDomain> domainOf(CFStringRef const& applicationID, CFStringRef const& userName,
                                         CFStringRef const& hostName) {
    std::string name = nameOfDomain(applicationID);
    std::optional<std::string> const settings = settingsOf(userName);
    if (name.empty() || !settings) return std::nullopt;
    std::string const folder = *settings + "/framekeeper/Preferences/";
    if (hostName.isEqualToString_(kCFPreferencesCurrentHost)) {
        std::string const host = nameOfHost();
        if (host.empty()) return std::nullopt;
        return PreferenceDomain{.file = folder + "ByHost/" + name + "." + host + ".plist"};
    }
    if (!hostName.isEqualToString_(kCFPreferencesAnyHost)) return std::nullopt;
    std::string file = folder + name + ".plist";
    bool const isOfUser = userName.isEqualToString_(kCFPreferencesCurrentUser);
    return PreferenceDomain{.file = std::move(file), .nativeName = isOfUser ? std::move(name) : ""};
}

} // namespace

id CFPreferencesCopyValue(CFStringRef const& key, CFStringRef const& applicationID, CFStringRef const& userName,
                          CFStringRef const& hostName) {
    std::optional<PreferenceDomain> const domain = domainOf(applicationID, userName, hostName);
    return domain && key != nil ? preferences().value(*domain, key) : id();
}

void CFPreferencesSetValue(CFStringRef const& key, id const& value, CFStringRef const& applicationID,
                           CFStringRef const& userName, CFStringRef const& hostName) {
    std::optional<PreferenceDomain> const domain = domainOf(applicationID, userName, hostName);
    if (domain && key != nil) preferences().setValue(*domain, key, value);
}

bool CFPreferencesSynchronize(CFStringRef const& applicationID, CFStringRef const& userName,
                              CFStringRef const& hostName) {
    std::optional<PreferenceDomain> const domain = domainOf(applicationID, userName, hostName);
    return domain && preferences().synchronize(*domain);
}

} // namespace mac
