#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/preferences/NativeStores.h"
#include "platform/system/Result.h"
#include <map>
#include <optional>
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

// What becomes of changes that could not be written: the values are those on the disk again, or stay as they were set
// until they are written.
enum class RefusedChanges { AreForgotten, AreKept };

// What this process knows of domains: the values read, and those set and not written yet. Main thread.
class Preferences {
public:
    // REQUIRES: the stores outlive the object.
    explicit Preferences(std::span<NativeStore const> stores) : m_stores(stores) {}

    // Implement CFPreferencesCopyValue, CFPreferencesSetValue and CFPreferencesSynchronize (CFPreferences.h).
    id value(PreferenceDomain const& domain, NSString const& key);
    void setValue(PreferenceDomain const& domain, NSString const& key, id const& value);
    // Fails also, with nothing to write, if not all of the domain could be read.
    Result<void, Failure> synchronize(PreferenceDomain const& domain,
                                      RefusedChanges refused = RefusedChanges::AreForgotten);

    // All values of the domain, with those that were set and not written yet. A copy.
    NSDictionary values(PreferenceDomain const& domain);
    bool hasChanges(PreferenceDomain const& domain) const;
    // Why the domain could not be read whole, for people; nullopt if it could.
    std::optional<Failure> readingProblem(PreferenceDomain const& domain) { return readDomain(domain).problem; }

private:
    struct Change {
        NSString key{};
        // nil to remove the value.
        id value{};
    };
    struct Known {
        // nil until the domain is read.
        NSDictionary values{};
        // Why not all of the file and the native items could be read, for people.
        std::optional<Failure> problem{};
        // Changes not written yet, one for each key.
        std::vector<Change> changes{};
    };

    NativeStore const* storeOf(PreferenceDomain const& domain, NSString const& key) const;
    Known& readDomain(PreferenceDomain const& domain);
    // nil if a change cannot be made to these values; fails if the desktop does not take what it keeps itself.
    Result<NSDictionary, Failure> changedValues(PreferenceDomain const& domain, Known const& known,
                                                NSDictionary const& values) const;

    std::span<NativeStore const> m_stores;
    // By the path of the file.
    std::map<std::string, Known> m_known{};
};

} // namespace mac
