#include "platform/preferences/PreferenceDomains.h"
#include "platform/desktop/entries/KeyFile.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/preferences/CFPreferences.h"
#include "platform/system/XDGFolders.h"
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace mac {

namespace {

constexpr char GlobalDomainName[] = ".GlobalPreferences";

// Empty for a text that cannot be part of a file's name.
std::string domainNameOf(NSString const& text) {
    std::string name = text.fileSystemRepresentation().value_or("");
    return name.find('/') == std::string::npos ? name : "";
}

// The main bundle's identifier; for a program without one the name of its file.
std::string findOwnDomain() {
    NSBundle const bundle = NSBundle::mainBundle();
    std::string name = domainNameOf(bundle.bundleIdentifier());
    return name.empty() ? domainNameOf(bundle.executablePath().lastPathComponent()) : name;
}

// Stays what it was first, also when the program is replaced while it runs: what was set must be stored where it was
// read. Never destroyed, since settings are written at exit.
std::string const& nameOfOwnDomain() {
    static std::string const& name = *std::make_unique<std::string>(findOwnDomain()).release();
    return name;
}

std::string nameOfDomain(NSString const& applicationID) {
    if (applicationID.isEqualToString_(kCFPreferencesCurrentApplication)) return nameOfOwnDomain();
    if (applicationID.isEqualToString_(kCFPreferencesAnyApplication)) return GlobalDomainName;
    return domainNameOf(applicationID);
}

std::string nameOfHost() {
    constexpr std::size_t longestName = 256;
    std::string name(longestName, '\0');
    if (::gethostname(name.data(), name.size() - 1) != 0) return "";
    name.resize(name.find('\0'));
    return name.find('/') == std::string::npos ? name : "";
}

// The folder of the user's settings, or of the computer's; nullopt for another user.
std::optional<std::string> settingsOf(NSString const& userName) {
    if (userName.isEqualToString_(kCFPreferencesCurrentUser)) return configHome();
    if (!userName.isEqualToString_(kCFPreferencesAnyUser)) return std::nullopt;
    std::vector<std::string> const folders = configFolders();
    return folders.size() > 1 ? std::optional(folders[1]) : std::nullopt;
}

} // namespace

Preferences& sharedPreferences() {
    static Preferences& shared = *std::make_unique<Preferences>(nativeStores()).release();
    return shared;
}

std::optional<PreferenceDomain> preferenceDomain(NSString const& applicationID, NSString const& userName,
                                                 NSString const& hostName) {
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

Result<void, Failure> synchronizePreferences(NSString const& applicationID, NSString const& userName,
                                             NSString const& hostName) {
    std::optional<PreferenceDomain> const domain = preferenceDomain(applicationID, userName, hostName);
    return domain ? sharedPreferences().synchronize(*domain) : Failure{"There is no such domain of preferences"};
}

namespace {

bool isNegativeNumber(std::string_view word) {
    if (!word.starts_with('-')) return false;
    word.remove_prefix(1);
    return !word.empty() && word.find_first_not_of("0123456789.") == std::string_view::npos && word != ".";
}

bool isKeyWord(std::string_view word) {
    return word.size() > 1 && word.front() == '-' && word[1] != '-' && !isNegativeNumber(word);
}

bool isValueWord(std::string_view word) { return !word.starts_with('-') || isNegativeNumber(word); }

NSString textOfWord(std::string_view word) { return NSString::stringWithFileSystemRepresentation_(word); }

// A plain word is itself; only what begins as these forms do is read as a property list, so that a word such as "a=b;"
// stays text.
id valueOfWord(std::string const& word) {
    constexpr std::string_view beginnings = "({<\"'";
    NSString const text = textOfWord(word);
    if (word.empty() || beginnings.find(word.front()) == std::string_view::npos) return text;
    id const value = NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(std::as_bytes(std::span(word))), NSPropertyListImmutable, nullptr, nullptr);
    return value == nil ? id(text) : value;
}

} // namespace

NSDictionary argumentDomain(std::span<std::string const> arguments) {
    NSMutableDictionary const values = NSMutableDictionary::dictionary();
    for (std::size_t index = 1; index + 1 < arguments.size(); ++index) {
        std::string const& word = arguments[index];
        if (word == "--") break;
        if (!isKeyWord(word) || !isValueWord(arguments[index + 1])) continue;
        values.setObject_forKey_(valueOfWord(arguments[index + 1]), textOfWord(std::string_view(word).substr(1)));
        ++index;
    }
    return values;
}

} // namespace mac
