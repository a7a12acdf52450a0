#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/NSString.h"
#include "platform/system/Users.h"
#include <arpa/inet.h>
#include <array>
#include <cstdlib>
#include <fstream>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

// What scripts may know of the computer.

namespace mac::applescript::additions {

namespace {

Value textOfName(std::string_view bytes) { return Value::text(unitsFromFileSystemBytes(bytes)); }

// The value behind "KEY=" in a file of such lines, without quotes; empty if there is none.
std::string valueInFile(char const* path, std::string_view key) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        bool const isIt = line.size() > key.size() && line.starts_with(key) && line[key.size()] == '=';
        if (!isIt) continue;
        std::string value = line.substr(key.size() + 1);
        bool const isQuoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
        return isQuoted ? value.substr(1, value.size() - 2) : value;
    }
    return {};
}

// Text behind "key : " in the list of processors; empty if there is none.
std::string processorField(std::string_view key) {
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        std::size_t const colon = line.find(": ");
        if (line.starts_with(key) && colon != std::string::npos) return line.substr(colon + 2);
    }
    return {};
}

std::string fullUserName() {
    passwd const* const record = ::getpwuid(::getuid());
    std::string const about = record && record->pw_gecos ? record->pw_gecos : "";
    std::string const name = about.substr(0, about.find(','));
    return name.empty() ? nameOfUser(::getuid()).value_or("") : name;
}

// "en_US" of "en_US.UTF-8".
std::string userLocale() {
    for (char const* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        char const* const value = std::getenv(variable);
        if (value && *value) return std::string(value).substr(0, std::string_view(value).find_first_of(".@"));
    }
    return "C";
}

struct FreeAddresses {
    void operator()(ifaddrs* list) const { ::freeifaddrs(list); }
};

// The first address that other computers may know, and the name of its interface.
std::pair<std::string, std::string> addressOfComputer() {
    ifaddrs* found = nullptr;
    if (::getifaddrs(&found) != 0) return {};
    std::unique_ptr<ifaddrs, FreeAddresses> const list(found);
    for (ifaddrs const* entry = list.get(); entry; entry = entry->ifa_next) {
        bool const isMeant = entry->ifa_addr && entry->ifa_addr->sa_family == AF_INET &&
                             (entry->ifa_flags & IFF_UP) != 0 && (entry->ifa_flags & IFF_LOOPBACK) == 0;
        if (!isMeant) continue;
        std::array<char, INET_ADDRSTRLEN> text{};
        auto const* const address = reinterpret_cast<sockaddr_in const*>(entry->ifa_addr);
        if (::inet_ntop(AF_INET, &address->sin_addr, text.data(), text.size())) return {text.data(), entry->ifa_name};
    }
    return {};
}

std::string firstLineOf(std::string const& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

} // namespace

// Linux: the system's version is that of the distribution, and memory counts in MB of 2^20 bytes.
Value systemInfo(Evaluator& /*evaluator*/, CommandArguments const& /*arguments*/) {
    std::array<char, 256> host{};
    if (::gethostname(host.data(), host.size() - 1) != 0) host.front() = '\0';
    utsname system{};
    (void)::uname(&system);
    auto const [address, interface] = addressOfComputer();
    std::string const hardware = interface.empty() ? "" : firstLineOf("/sys/class/net/" + interface + "/address");
    constexpr double mebibyte = 1024.0 * 1024;
    double const memory =
        static_cast<double>(::sysconf(_SC_PHYS_PAGES)) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / mebibyte;
    std::string const speed = processorField("cpu MHz");
    return Value::record({
        {keyOf(keys::AppleScriptVersion), Value::text(u"2.8")},
        {keyOf(keys::SystemVersion), textOfName(valueInFile("/etc/os-release", "VERSION_ID"))},
        {keyOf(keys::ShortUserName), textOfName(nameOfUser(::getuid()).value_or(""))},
        {keyOf(keys::LongUserName), textOfName(fullUserName())},
        {keyOf(keys::UserID), Value::number(static_cast<double>(::getuid()))},
        {keyOf(keys::UserLocale), textOfName(userLocale())},
        {keyOf(keys::HomeDirectory), makeObject<FileObject>(ValueKind::File, FileObject::Kind::PosixFile,
                                                            std::u16string(NSHomeDirectory().codeUnits()))},
        {keyOf(keys::BootVolume), Value::text(startupVolumeName())},
        {keyOf(keys::ComputerName), textOfName(host.data())},
        {keyOf(keys::HostName), textOfName(host.data())},
        {keyOf(keys::IPv4Address), textOfName(address)},
        {keyOf(keys::PrimaryEthernetAddress), textOfName(hardware)},
        {keyOf(keys::CPUType), textOfName(system.machine)},
        {keyOf(keys::CPUSpeed),
         speed.empty() ? Value::missing() : Value::number(static_cast<double>(std::atol(speed.c_str())))},
        {keyOf(keys::PhysicalMemory), Value::number(static_cast<double>(static_cast<std::int64_t>(memory)))},
    });
}

Value listDisks(Evaluator& /*evaluator*/, CommandArguments const& /*arguments*/) {
    std::vector<Value> names;
    for (MountedVolume const& volume : mountedVolumes())
        if (volume.isStartup() || volume.isBrowsable) names.push_back(Value::text(volume.name));
    return Value::list(std::move(names));
}

} // namespace mac::applescript::additions
