#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/Terminology.h"
#include <array>

// The names by which scripts read the records that the standard additions answer.

namespace mac::applescript::additions {

namespace {

struct KeyRow {
    std::u16string_view name;
    Code code;
};

constexpr auto Keys = std::to_array<KeyRow>({
    {u"displayed name", codes::DisplayedName},
    {u"short name", codes::ShortName},
    {u"name extension", codes::NameExtension},
    {u"bundle identifier", codes::BundleIdentifier},
    {u"type identifier", keys::TypeIdentifier},
    {u"kind", codes::Kind},
    {u"creation date", codes::CreationDate},
    {u"modification date", codes::ModificationDate},
    {u"file type", codes::FileType},
    {u"file creator", keys::FileCreator},
    {u"short version", keys::ShortVersion},
    {u"long version", keys::LongVersion},
    {u"size", codes::Size},
    {u"package folder", keys::PackageFolder},
    {u"extension hidden", codes::ExtensionHidden},
    {u"visible", codes::Visible},
    {u"locked", codes::Locked},
    {u"busy status", codeOf("ibzy")},
    {u"folder", codes::IsFolder},
    {u"button returned", keys::ButtonReturned},
    {u"text returned", keys::TextReturned},
    {u"gave up", keys::GaveUp},
    {u"AppleScript version", keys::AppleScriptVersion},
    {u"system version", keys::SystemVersion},
    {u"short user name", keys::ShortUserName},
    {u"long user name", keys::LongUserName},
    {u"user ID", keys::UserID},
    // The code is not 'home', which is the Finder's name of a place.
    {u"home directory", keys::HomeDirectory},
    {u"computer name", keys::ComputerName},
    {u"host name", keys::HostName},
    {u"physical memory", keys::PhysicalMemory},
    {u"CPU type", keys::CPUType},
    {u"CPU speed", keys::CPUSpeed},
    {u"boot volume", keys::BootVolume},
    {u"user locale", keys::UserLocale},
    {u"IPv4 address", keys::IPv4Address},
    {u"primary Ethernet address", keys::PrimaryEthernetAddress},
    {u"output volume", keys::OutputVolume},
    {u"input volume", keys::InputVolume},
    {u"alert volume", keys::AlertVolume},
    {u"output muted", keys::OutputMuted},
});

} // namespace

void addKeys(Terminology& terms) {
    for (KeyRow const& key : Keys)
        terms.addProperty(key.name, key.code);
}

} // namespace mac::applescript::additions
