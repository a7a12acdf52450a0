#include "tests/support/ServedFolder.h"
#include "platform/system/FileDescriptor.h"
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace mac::test {

std::string ServedFolder::whyNone() {
    if (::access(Server, X_OK) != 0) return "no folder can be served here: bindfs is not installed";
    // A container may have the device and not be permitted to open it.
    FileDescriptor const device(::open("/dev/fuse", O_RDWR | O_CLOEXEC));
    if (device.isOpen()) return {};
    return std::string("no folder can be served here: /dev/fuse: ") + std::strerror(errno);
}

ServedFolder::ServedFolder(std::string const& folder, std::string point)
    : m_point(std::move(point)),
      m_server(endingWithThisProcess({Server, "-f", "--no-allow-other", folder, m_point}, "TERM")) {}

ServedFolder::~ServedFolder() {
    goOn();
    m_server.sendSignal(SIGTERM);
    m_server.wait();
}

bool ServedFolder::isMounted() const {
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);)
        if (line.find(" " + m_point + " ") != std::string::npos) return true;
    return false;
}

void ServedFolder::waitUntilMounted() const {
    while (!isMounted())
        std::this_thread::yield();
}

void ServedFolder::stop() const { m_server.sendSignal(SIGSTOP); }

void ServedFolder::goOn() const { m_server.sendSignal(SIGCONT); }

bool ServedFolder::isWaitedForBy(std::int32_t thread) {
    std::ifstream file("/proc/" + std::to_string(thread) + "/wchan");
    std::string place;
    file >> place;
    return place.find("request_wait_answer") != std::string::npos || place.find("fuse") != std::string::npos;
}

} // namespace mac::test
