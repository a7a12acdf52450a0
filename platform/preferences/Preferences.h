#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/preferences/NativeStores.h"
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace mac {

struct PreferenceDomain {
    // Its property-list file.
    std::string file{};
    // The domain's name in the table of native stores; empty for a domain that has none.
    std::string nativeName{};
};

// What this process knows of domains: the values read, and those set and not written yet. Main thread.
class Preferences {
public:
    // REQUIRES: the stores outlive the object.
    explicit Preferences(std::span<NativeStore const> stores) : m_stores(stores) {}

    // As CFPreferencesCopyValue, CFPreferencesSetValue and CFPreferencesSynchronize (CFPreferences.h).
    id value(PreferenceDomain const& domain, NSString const& key);
    void setValue(PreferenceDomain const& domain, NSString const& key, id const& value);
    bool synchronize(PreferenceDomain const& domain);

private:
    struct Change {
        NSString key{};
        // nil to remove the value.
        id value{};
    };
    struct Known {
        // nil until the domain is read.
        NSDictionary values{};
        // Whether the file and all native items could be read.
        bool isComplete{true};
        // Not written yet; one for a key.
        std::vector<Change> changes{};
    };

    NativeStore const* storeOf(PreferenceDomain const& domain, NSString const& key) const;
    Known& readDomain(PreferenceDomain const& domain);
    // nil if a change cannot be made to these values.
    NSDictionary changedValues(PreferenceDomain const& domain, Known const& known, NSDictionary const& values) const;

    std::span<NativeStore const> m_stores;
    // By the path of the file.
    std::map<std::string, Known> m_known{};
};

} // namespace mac
