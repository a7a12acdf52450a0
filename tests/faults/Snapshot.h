#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace mac::faults {

// What is known of one item without following it.
struct SeenItem {
    // Kind, whether it is locked, and the date if it is that of all fixtures.
    std::string kind{};
    unsigned owner{0};
    unsigned group{0};
    std::string contents{};
    // Values by the system's names.
    std::map<std::string, std::string> attributes{};
    // Permissions and access lists.
    unsigned mode{0};
    std::string accessList{};
    // The secrets (secretText) that its contents, attributes or target hold.
    std::vector<std::string> secrets{};
    bool isFolder{false};

    bool operator==(SeenItem const&) const = default;
};

// All items below a folder by their paths, relative to it.
using Snapshot = std::map<std::string, SeenItem>;

// What only some users may read, recognisable wherever it turns up: "{name}" in brackets of its own.
std::string secretText(std::string_view name);
// The date that fixtures give their files, in seconds since 1970.
inline constexpr long FixtureDate = 900'000'000;

// The items as the library reads them: the attributes in an AppleDouble sidecar count as its item's, unless the item
// has another value, and such a sidecar is no item itself.
Snapshot asLibraryReads(Snapshot const& snapshot);

// Adds what is below the folder. Throws std::system_error for what cannot be read, which is a defect of the campaign.
void addItems(Snapshot& snapshot, std::string const& folder, std::string const& prefix);

} // namespace mac::faults
