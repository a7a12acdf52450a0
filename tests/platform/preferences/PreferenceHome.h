#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/preferences/CFPreferences.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace mac::test {

// Settings of a user, and of the computer, that hold only what the test puts there.
class PreferenceHome : public testing::Test {
protected:
    std::string file(std::string const& domain) const {
        return m_folder.path("config/framekeeper/Preferences/" + domain + ".plist");
    }
    void makeFile(std::string const& domain, std::string const& contents) const {
        m_folder.makeFile("config/framekeeper/Preferences/" + domain + ".plist", contents);
    }
    static std::string contentsOf(std::string const& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    TemporaryFolder const m_folder{};

private:
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable const m_configFolders{"XDG_CONFIG_DIRS", m_folder.path("system")};
};

// In the user's domain on any host.
inline id valueIn(NSString const& domain, NSString const& key) {
    return CFPreferencesCopyValue(key, domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
}
inline void setValueIn(NSString const& domain, NSString const& key, id const& value) {
    CFPreferencesSetValue(key, value, domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
}
inline bool synchronize(NSString const& domain) {
    return CFPreferencesSynchronize(domain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
}

} // namespace mac::test
