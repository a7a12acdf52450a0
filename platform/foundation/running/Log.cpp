#include "platform/foundation/running/Log.h"
#include "platform/foundation/objects/Listeners.h"
#include "platform/foundation/text/VisibleLine.h"
#include "platform/system/BytePath.h"
#include "platform/system/LocalTime.h"
#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <memory>
#include <syslog.h>
#include <unistd.h>

namespace mac {

namespace {

Listeners<NSString>& logListeners() {
    static Listeners<NSString>& all = *std::make_unique<Listeners<NSString>>().release();
    return all;
}

std::string programName() {
    std::array<char, 256> path{};
    ssize_t const size = ::readlink("/proc/self/exe", path.data(), path.size() - 1);
    std::string const name(path.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    return name.empty() ? "program" : std::string(BytePath(name).leaf());
}

// "2026-11-21 10:00:00.123 framekeeper[4711] ".
std::string linePrefix() {
    // Never destroyed: the program may log until its last instruction.
    static std::string const& name = *std::make_unique<std::string const>(programName()).release();
    return localTimeStamp(std::chrono::system_clock::now()) + " " + name + "[" + std::to_string(::getpid()) + "] ";
}

void writeAll(std::string const& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        ssize_t const count = ::write(STDERR_FILENO, text.data() + written, text.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        written += static_cast<std::size_t>(count);
    }
}

} // namespace

void logMessage(NSString const& message) {
    std::string const line = message == nil ? std::string("(null)") : visibleLine(message.codeUnits());
    // Each line is one write, so that lines of several threads do not mix.
    writeAll(linePrefix() + line + "\n");
    ::syslog(LOG_USER | LOG_NOTICE, "%s", line.c_str());
    try {
        logListeners().tell(message);
    } catch (...) {
        writeAll(linePrefix() + "A listener of the log raised an exception\n");
    }
}

LogListener::LogListener(std::function<void(NSString const&)> listener)
    : m_token(logListeners().add(std::move(listener))) {}

LogListener::~LogListener() { logListeners().remove(m_token); }

} // namespace mac
