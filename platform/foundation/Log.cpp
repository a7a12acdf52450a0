#include "platform/foundation/Log.h"
#include "platform/foundation/Listeners.h"
#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <sys/time.h>
#include <syslog.h>
#include <unistd.h>

namespace mac {

namespace {

Listeners<NSString>& listeners() {
    static Listeners<NSString>& all = *std::make_unique<Listeners<NSString>>().release();
    return all;
}

// What would end the line or drive a terminal is written as its code, so that a file's name cannot fake a line of the
// log.
std::string oneLine(std::string const& text) {
    constexpr char Digits[] = "0123456789abcdef";
    std::string line;
    for (char const c : text) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7F) {
            line += c;
            continue;
        }
        line += c == '\n' ? std::string("\\n") : std::string("\\x") + Digits[byte >> 4] + Digits[byte & 15];
    }
    return line;
}

void appendNumber(std::string& text, long value, std::size_t digits) {
    std::string const number = std::to_string(value);
    if (number.size() < digits) text.append(digits - number.size(), '0');
    text += number;
}

std::string programName() {
    std::array<char, 256> path{};
    ssize_t const size = ::readlink("/proc/self/exe", path.data(), path.size() - 1);
    std::string const name(path.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    return name.empty() ? "program" : name.substr(name.rfind('/') + 1);
}

// "2026-11-21 10:00:00.123 framekeeper[4711] ".
std::string linePrefix() {
    timeval now{};
    ::gettimeofday(&now, nullptr);
    tm local{};
    ::localtime_r(&now.tv_sec, &local);
    std::string text;
    appendNumber(text, local.tm_year + 1900L, 4);
    text += '-';
    appendNumber(text, local.tm_mon + 1L, 2);
    text += '-';
    appendNumber(text, local.tm_mday, 2);
    text += ' ';
    appendNumber(text, local.tm_hour, 2);
    text += ':';
    appendNumber(text, local.tm_min, 2);
    text += ':';
    appendNumber(text, local.tm_sec, 2);
    text += '.';
    appendNumber(text, now.tv_usec / 1000, 3);
    static std::string const name = programName();
    return text + " " + name + "[" + std::to_string(::getpid()) + "] ";
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
    std::string const line = oneLine(message == nil ? "(null)" : message.UTF8String());
    // One write a line, so that lines of several threads do not mix.
    writeAll(linePrefix() + line + "\n");
    ::syslog(LOG_USER | LOG_NOTICE, "%s", line.c_str());
    listeners().tell(message);
}

LogListener::LogListener(std::function<void(NSString const&)> listener)
    : m_token(listeners().add(std::move(listener))) {}

LogListener::~LogListener() { listeners().remove(m_token); }

} // namespace mac
