#include "platform/processes/Session.h"
#include "platform/foundation/PercentEscapes.h"
#include "platform/processes/DesktopApplication.h"
#include <cstdlib>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// The value of a variable; empty where it is not set.
using Environment = std::function<std::string(std::string_view)>;

std::optional<std::string> busAddressIn(Environment const& value) {
    std::string address = value("DBUS_SESSION_BUS_ADDRESS");
    if (!address.empty()) return address;
    std::string const folder = value("XDG_RUNTIME_DIR");
    std::string const socket = folder + "/bus";
    struct stat status {};
    if (folder.empty() || ::stat(socket.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode)) return std::nullopt;
    return "unix:path=" + percentEscaped(socket);
}

// Without the number that a bus gives itself, which not all processes know.
std::optional<std::string> placeIn(std::optional<std::string> const& address) {
    return address ? std::optional(address->substr(0, address->find(",guid="))) : std::nullopt;
}

} // namespace

std::optional<std::string> sessionBusAddress() {
    return busAddressIn([](std::string_view name) {
        char const* const value = std::getenv(std::string(name).c_str());
        return std::string(value ? value : "");
    });
}

bool isOfThisSession(std::int32_t pid) {
    struct stat status {};
    if (::stat(("/proc/" + std::to_string(pid)).c_str(), &status) != 0 || status.st_uid != ::geteuid()) return false;
    std::optional<std::vector<std::string>> const variables = environmentOf(pid);
    if (!variables) return false;
    std::optional<std::string> const place = placeIn(busAddressIn([&](std::string_view name) {
        for (std::string_view const variable : *variables) {
            if (variable.starts_with(name) && variable.substr(name.size()).starts_with('='))
                return std::string(variable.substr(name.size() + 1));
        }
        return std::string();
    }));
    return !place || place == placeIn(sessionBusAddress());
}

std::vector<ProcessIdentity> sessionProcessesOf(std::string const& program) {
    std::vector<ProcessIdentity> processes;
    for (RunningProcess const& process : runningProcesses()) {
        if (programOf(process) == program && isOfThisSession(process.identity.pid))
            processes.push_back(process.identity);
    }
    return processes;
}

} // namespace mac
