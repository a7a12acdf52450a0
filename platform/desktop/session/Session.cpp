#include "platform/desktop/session/Session.h"
#include "platform/system/PercentEscapes.h"
#include "platform/system/XDGFolders.h"
#include <cstdlib>
#include <functional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace mac {

namespace {

// Answers a variable's value; empty if it is not set.
using Environment = std::function<std::string(std::string_view)>;

Environment environmentOfThisProcess() {
    return [](std::string_view name) {
        char const* const value = std::getenv(std::string(name).c_str());
        return std::string(value ? value : "");
    };
}

Environment environmentIn(std::vector<std::string> variables) {
    return [variables = std::move(variables)](std::string_view name) {
        for (std::string_view const variable : variables) {
            if (variable.starts_with(name) && variable.substr(name.size()).starts_with('='))
                return std::string(variable.substr(name.size() + 1));
        }
        return std::string();
    };
}

std::optional<std::string> busAddressIn(Environment const& value) {
    std::string address = value("DBUS_SESSION_BUS_ADDRESS");
    if (!address.empty()) return address;
    std::string const folder = value("XDG_RUNTIME_DIR");
    std::string const socket = folder + "/bus";
    struct stat status {};
    if (folder.empty() || ::stat(socket.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode)) return std::nullopt;
    return "unix:path=" + percentEscaped(socket);
}

// The address without the bus's own number (guid), which not all processes know.
std::optional<std::string> placeIn(std::optional<std::string> const& address) {
    return address ? std::optional(address->substr(0, address->find(",guid="))) : std::nullopt;
}

// The display's name without the number of its screen: ":0" for ":0.1".
std::string displayIn(std::string const& name) {
    std::size_t const dot = name.rfind('.');
    return dot != std::string::npos && dot > name.rfind(':') ? name.substr(0, dot) : name;
}

// Sessions of one user may share a bus. If both processes name a Wayland display, that decides, else their X11
// displays.
bool areAtDifferentDisplays(Environment const& one, Environment const& other) {
    for (char const* const name : {"WAYLAND_DISPLAY", "DISPLAY"}) {
        std::string const display = one(name);
        std::string const otherDisplay = other(name);
        if (!display.empty() && !otherDisplay.empty()) return displayIn(display) != displayIn(otherDisplay);
    }
    return false;
}

} // namespace

std::optional<std::string> sessionBusAddress() { return busAddressIn(environmentOfThisProcess()); }

bool hasDisplay() {
    Environment const value = environmentOfThisProcess();
    return !value("DISPLAY").empty() || !value("WAYLAND_DISPLAY").empty();
}

std::vector<std::string> currentDesktops() { return listInEnvironment("XDG_CURRENT_DESKTOP", ""); }

bool isOfThisSession(std::int32_t pid) {
    struct stat status {};
    if (::stat(("/proc/" + std::to_string(pid)).c_str(), &status) != 0 || status.st_uid != ::geteuid()) return false;
    std::optional<std::vector<std::string>> variables = environmentOf(pid);
    // During exec the environment is empty for a moment, whichever session the process belongs to.
    if (!variables || variables->empty()) return false;
    Environment const environment = environmentIn(std::move(*variables));
    if (areAtDifferentDisplays(environment, environmentOfThisProcess())) return false;
    std::optional<std::string> const place = placeIn(busAddressIn(environment));
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
