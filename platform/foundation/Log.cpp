#include "platform/foundation/Log.h"
#include "platform/foundation/Listeners.h"
#include "platform/system/BytePath.h"
#include "platform/system/LocalTime.h"
#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <syslog.h>
#include <unistd.h>

namespace mac {

namespace {

Listeners<NSString>& logListeners() {
    static Listeners<NSString>& all = *std::make_unique<Listeners<NSString>>().release();
    return all;
}

std::string escaped(char16_t unit) {
    constexpr std::string_view digits = "0123456789abcdef";
    bool const isByte = unit < 0x100;
    std::string text = isByte ? "\\x" : "\\u";
    for (int shift = isByte ? 4 : 12; shift >= 0; shift -= 4)
        text += digits[(static_cast<unsigned>(unit) >> shift) & 0xFU];
    return text;
}

// What would end the line, drive a terminal or turn the text around is written as its code, so that a file's name
// cannot fake a line of the log.
bool isDangerous(char16_t unit) {
    bool const isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
    bool const isBreakOrDirection = (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
    return isControl || isBreakOrDirection;
}

std::string oneLine(std::u16string_view text) {
    std::string line;
    std::size_t start = 0;
    auto const flush = [&](std::size_t end) {
        line += NSString::stringWithCodeUnits(text.substr(start, end - start)).UTF8String();
        start = end + 1;
    };
    for (std::size_t index = 0; index < text.size(); ++index) {
        char16_t const unit = text[index];
        // A byte of a file's name; as the second half of a character it is none.
        bool const isPaired = index > 0 && text[index - 1] >= 0xD800 && text[index - 1] < 0xDC00;
        bool const isByte = unit >= 0xDC80 && unit < 0xDD00 && !isPaired;
        if (!isByte && !isDangerous(unit)) continue;
        flush(index);
        line += unit == u'\n' ? "\\n" : escaped(isByte ? static_cast<char16_t>(unit - 0xDC00) : unit);
    }
    flush(text.size());
    return line;
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
    std::string const line = message == nil ? std::string("(null)") : oneLine(message.codeUnits());
    // One write a line, so that lines of several threads do not mix.
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
