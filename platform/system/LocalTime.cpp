#include "platform/system/LocalTime.h"
#include <ctime>
#include <iterator>
#include <string_view>

namespace mac {

namespace {

void appendDigits(std::string& text, long value, std::size_t digits) {
    std::string const number = std::to_string(value);
    if (number.size() < digits) text.append(digits - number.size(), '0');
    text += number;
}

} // namespace

std::string localTimeStamp(std::chrono::system_clock::time_point moment) {
    auto const second = std::chrono::floor<std::chrono::seconds>(moment);
    std::time_t const seconds = std::chrono::system_clock::to_time_t(second);
    tm local{};
    ::localtime_r(&seconds, &local);
    std::string text;
    appendDigits(text, local.tm_year + 1900L, 4);
    constexpr std::string_view separators = "-- ::";
    long const parts[] = {local.tm_mon + 1L, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
    for (std::size_t index = 0; index < std::size(parts); ++index) {
        text += separators[index];
        appendDigits(text, parts[index], 2);
    }
    text += '.';
    appendDigits(text, static_cast<long>(std::chrono::floor<std::chrono::milliseconds>(moment - second).count()), 3);
    return text;
}

} // namespace mac
