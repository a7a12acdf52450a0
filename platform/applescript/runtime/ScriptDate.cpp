#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <array>
#include <ctime>
#include <vector>

namespace mac::applescript {

namespace {

constexpr std::int64_t SecondsPerDay = 86400;
// Days from 1 January 1904 to 1 January 1970.
constexpr std::int64_t DaysTo1970 = 24107;
constexpr auto MonthNames =
    std::to_array<std::u16string_view>({u"January", u"February", u"March", u"April", u"May", u"June", u"July",
                                        u"August", u"September", u"October", u"November", u"December"});
constexpr auto WeekdayNames = std::to_array<std::u16string_view>(
    {u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"});

std::int64_t floorDivide(std::int64_t dividend, std::int64_t divisor) {
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

// Days since 1 January 1970; months count from 1.
std::int64_t daysOfDate(std::int64_t year, int month, int day) {
    year -= month <= 2 ? 1 : 0;
    std::int64_t const era = floorDivide(year, 400);
    std::int64_t const yearOfEra = year - era * 400;
    std::int64_t const dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    std::int64_t const dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

std::u16string paddedDecimal(std::int64_t number, std::size_t width = 1) {
    std::string digits = std::to_string(number);
    if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
    return std::u16string(digits.begin(), digits.end());
}

bool isDateLetter(char16_t unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z'); }

std::u16string lowered(std::u16string_view text) {
    std::u16string lower(text);
    for (char16_t& unit : lower)
        unit = lowercaseASCII(unit);
    return lower;
}

// The name that the word is, or begins with at least three letters; -1 for none.
template <std::size_t N>
int indexOfName(std::array<std::u16string_view, N> const& names, std::u16string_view word) {
    if (word.size() < 3) return -1;
    for (std::size_t index = 0; index < N; ++index)
        if (lowered(names[index]).starts_with(word)) return static_cast<int>(index);
    return -1;
}

// Reads one text; any order of day and time, punctuation between the parts.
class DateReader {
public:
    DateReader(std::u16string_view text, std::int64_t base) : m_text(text), m_base(partsOfDate(base)) {}

    std::optional<std::int64_t> read() {
        while (m_place < m_text.size()) {
            char16_t const unit = m_text[m_place];
            bool const isFine = isASCIIDigit(unit) ? readNumber() : isDateLetter(unit) ? readWord() : readSeparator();
            if (!isFine) return {};
        }
        return finish();
    }

private:
    bool readSeparator() {
        char16_t const unit = m_text[m_place++];
        return std::u16string_view(u" ,./-\t\u00A0\u202F").find(unit) != std::u16string_view::npos;
    }

    bool readWord() {
        std::size_t const start = m_place;
        while (m_place < m_text.size() && isDateLetter(m_text[m_place]))
            ++m_place;
        std::u16string const word = lowered(m_text.substr(start, m_place - start));
        if (word == u"at" || word == u"of" || word == u"the") return true;
        if (word == u"am" || word == u"pm") {
            if (m_hour < 1 || m_hour > 12 || m_hasHalf) return false;
            m_hasHalf = true;
            m_hour = m_hour % 12 + (word == u"pm" ? 12 : 0);
            return true;
        }
        if (indexOfName(WeekdayNames, word) >= 0) return true;
        int const month = indexOfName(MonthNames, word);
        if (month < 0 || m_month != 0) return false;
        m_month = month + 1;
        return true;
    }

    std::int64_t digits(std::size_t& count) {
        std::int64_t number = 0;
        count = 0;
        for (; m_place < m_text.size() && isASCIIDigit(m_text[m_place]) && count < 9; ++m_place, ++count)
            number = number * 10 + (m_text[m_place] - u'0');
        return number;
    }

    bool readNumber() {
        std::size_t count = 0;
        std::int64_t const number = digits(count);
        if (m_place < m_text.size() && m_text[m_place] == u':') return readTime(number);
        // 2 pm
        std::size_t next = m_place;
        while (next < m_text.size() && m_text[next] == u' ')
            ++next;
        std::u16string const word = lowered(m_text.substr(next, 2));
        bool const isHour = (word == u"am" || word == u"pm") && m_hour < 0;
        if (isHour) {
            m_hour = static_cast<int>(number);
            return number <= 12;
        }
        // 9th
        std::u16string const suffix = lowered(m_text.substr(m_place, 2));
        if (suffix == u"st" || suffix == u"nd" || suffix == u"rd" || suffix == u"th") m_place += 2;
        m_numbers.push_back({number, count});
        return m_numbers.size() <= 3;
    }

    bool readTime(std::int64_t hour) {
        if (m_hour >= 0 || hour > 23) return false;
        m_hour = static_cast<int>(hour);
        std::array<int*, 2> const parts{&m_minute, &m_second};
        for (int* const part : parts) {
            if (m_place >= m_text.size() || m_text[m_place] != u':') break;
            ++m_place;
            std::size_t count = 0;
            std::int64_t const number = digits(count);
            if (count == 0 || number > 59) return false;
            *part = static_cast<int>(number);
        }
        return true;
    }

    static std::int64_t fullYear(std::int64_t year, std::size_t digits) {
        if (digits > 2) return year;
        return year < 50 ? 2000 + year : 1900 + year;
    }

    std::optional<std::int64_t> finish() {
        DateParts parts = m_base;
        parts.hour = std::max(m_hour, 0);
        parts.minute = m_minute;
        parts.second = m_second;
        bool const hasDay = m_month != 0 || !m_numbers.empty();
        if (!hasDay && m_hour < 0) return {};
        if (hasDay && !takeDay(parts)) return {};
        return dateOfParts(parts);
    }

    bool takeDay(DateParts& parts) {
        std::vector<Number> rest = m_numbers;
        auto const take = [&](std::size_t index) {
            Number const number = rest[index];
            rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(index));
            return number;
        };
        // 2007-11-09
        bool const isYearFirst = !rest.empty() && rest.front().digits > 2;
        std::optional<Number> year;
        if (isYearFirst) year = take(0);
        int month = m_month;
        if (month == 0) {
            if (rest.empty()) return false;
            month = static_cast<int>(take(0).value);
        }
        parts.day = rest.empty() ? 1 : static_cast<int>(take(0).value);
        if (!rest.empty() && !year) year = take(0);
        if (!rest.empty() || month < 1 || month > 12) return false;
        if (year) parts.year = fullYear(year->value, year->digits);
        parts.month = month;
        DateParts const probe{.year = parts.year, .month = month, .day = parts.day};
        return parts.day >= 1 && partsOfDate(dateOfParts(probe)).day == parts.day;
    }

    struct Number {
        std::int64_t value{0};
        std::size_t digits{0};
    };

    std::u16string_view m_text;
    DateParts m_base;
    std::size_t m_place{0};
    int m_month{0};
    int m_hour{-1};
    int m_minute{0};
    int m_second{0};
    bool m_hasHalf{false};
    std::vector<Number> m_numbers;
};

} // namespace

DateParts partsOfDate(std::int64_t seconds) {
    std::int64_t const days = floorDivide(seconds, SecondsPerDay);
    std::int64_t const time = seconds - days * SecondsPerDay;
    std::int64_t const shifted = days - DaysTo1970 + 719468;
    std::int64_t const era = floorDivide(shifted, 146097);
    std::int64_t const dayOfEra = shifted - era * 146097;
    std::int64_t const yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    std::int64_t const dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    std::int64_t const shiftedMonth = (5 * dayOfYear + 2) / 153;
    DateParts parts;
    parts.day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    parts.month = static_cast<int>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
    parts.year = yearOfEra + era * 400 + (parts.month <= 2 ? 1 : 0);
    parts.hour = static_cast<int>(time / 3600);
    parts.minute = static_cast<int>(time / 60 % 60);
    parts.second = static_cast<int>(time % 60);
    return parts;
}

std::int64_t dateOfParts(DateParts const& parts) {
    std::int64_t const months = static_cast<std::int64_t>(parts.month) - 1;
    std::int64_t const year = parts.year + floorDivide(months, 12);
    int const month = static_cast<int>(months - floorDivide(months, 12) * 12) + 1;
    std::int64_t const days = daysOfDate(year, month, 1) + parts.day - 1 + DaysTo1970;
    return days * SecondsPerDay + static_cast<std::int64_t>(parts.hour) * 3600 +
           static_cast<std::int64_t>(parts.minute) * 60 + parts.second;
}

int weekdayOfDate(std::int64_t seconds) {
    // 1 January 1904 was a Friday.
    std::int64_t const day = (floorDivide(seconds, SecondsPerDay) + 5) % 7;
    return static_cast<int>(day < 0 ? day + 7 : day);
}

std::u16string longDateText(std::int64_t seconds) {
    DateParts const parts = partsOfDate(seconds);
    std::u16string text(WeekdayNames.at(static_cast<std::size_t>(weekdayOfDate(seconds))));
    text += u", ";
    text += MonthNames.at(static_cast<std::size_t>(parts.month) - 1);
    return text + u" " + paddedDecimal(parts.day) + u", " + paddedDecimal(parts.year);
}

std::u16string shortDateText(std::int64_t seconds) {
    DateParts const parts = partsOfDate(seconds);
    return paddedDecimal(parts.month) + u"/" + paddedDecimal(parts.day) + u"/" + paddedDecimal(parts.year % 100, 2);
}

std::u16string timeText(std::int64_t seconds) {
    DateParts const parts = partsOfDate(seconds);
    int const hour = parts.hour % 12 == 0 ? 12 : parts.hour % 12;
    return paddedDecimal(hour) + u":" + paddedDecimal(parts.minute, 2) + u":" + paddedDecimal(parts.second, 2) +
           (parts.hour < 12 ? u" AM" : u" PM");
}

std::u16string fullDateText(std::int64_t seconds) { return longDateText(seconds) + u" " + timeText(seconds); }

std::optional<std::int64_t> dateInText(std::u16string_view text, std::int64_t base) {
    return DateReader(text, base).read();
}

std::int64_t dateOfUnixTime(std::int64_t seconds) {
    std::time_t const moment = seconds;
    std::tm local{};
    std::int64_t offset = 0;
    if (::localtime_r(&moment, &local)) offset = local.tm_gmtoff;
    return seconds + offset + DaysTo1970 * SecondsPerDay;
}

std::int64_t unixTimeOfDate(std::int64_t seconds) {
    DateParts const parts = partsOfDate(seconds);
    std::tm local{};
    local.tm_year = static_cast<int>(parts.year - 1900);
    local.tm_mon = parts.month - 1;
    local.tm_mday = parts.day;
    local.tm_hour = parts.hour;
    local.tm_min = parts.minute;
    local.tm_sec = parts.second;
    local.tm_isdst = -1;
    return std::mktime(&local);
}

std::int64_t currentDate() { return dateOfUnixTime(std::time(nullptr)); }

std::int64_t secondsToGMT() {
    std::int64_t const now = std::time(nullptr);
    return dateOfUnixTime(now) - now - DaysTo1970 * SecondsPerDay;
}

} // namespace mac::applescript
