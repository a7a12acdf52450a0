#include "platform/applescript/runtime/ISODate.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include <array>
#include <cstdio>

namespace mac::applescript {

namespace {

constexpr std::int64_t UnixEpochSince1904 = 2082844800;

class Scanner {
public:
    explicit Scanner(std::u16string_view text) : m_rest(text) {}

    // Exactly so many digits; they make the scan fail where they are missing or past the limit.
    int number(std::size_t digits, int most) {
        int read = 0;
        for (std::size_t place = 0; place < digits; ++place) {
            bool const isDigit = place < m_rest.size() && m_rest[place] >= u'0' && m_rest[place] <= u'9';
            if (!isDigit) return fail();
            read = read * 10 + (m_rest[place] - u'0');
        }
        m_rest.remove_prefix(digits);
        return read <= most ? read : fail();
    }

    bool take(char16_t unit) {
        if (!m_rest.starts_with(unit)) return false;
        m_rest.remove_prefix(1);
        return true;
    }

    void expect(char16_t unit) {
        if (!take(unit)) fail();
    }

    bool isAtEnd() const { return m_rest.empty(); }
    bool hasFailed() const { return m_hasFailed; }

private:
    int fail() {
        m_hasFailed = true;
        return 0;
    }

    std::u16string_view m_rest;
    bool m_hasFailed{false};
};

} // namespace

std::u16string isoDateText(std::int64_t seconds) {
    DateParts const parts = partsOfDate(seconds);
    std::array<char, 64> text{};
    int const length =
        std::snprintf(text.data(), text.size(), "%04lld-%02d-%02dT%02d:%02d:%02d", static_cast<long long>(parts.year),
                      parts.month, parts.day, parts.hour, parts.minute, parts.second);
    return {text.begin(), text.begin() + length};
}

std::optional<std::int64_t> dateInISOText(std::u16string_view text) {
    Scanner scanner(text);
    DateParts parts;
    parts.year = scanner.number(4, 9999);
    scanner.expect(u'-');
    parts.month = scanner.number(2, 12);
    scanner.expect(u'-');
    parts.day = scanner.number(2, 31);
    bool isUTC = false;
    if (scanner.take(u'T') || scanner.take(u' ')) {
        parts.hour = scanner.number(2, 23);
        scanner.expect(u':');
        parts.minute = scanner.number(2, 59);
        if (scanner.take(u':')) parts.second = scanner.number(2, 59);
        isUTC = scanner.take(u'Z');
    }
    if (scanner.hasFailed() || !scanner.isAtEnd()) return {};
    std::int64_t const seconds = dateOfParts(parts);
    DateParts const found = partsOfDate(seconds);
    if (found.month != parts.month || found.day != parts.day) return {};
    return isUTC ? dateOfUnixTime(seconds - UnixEpochSince1904) : seconds;
}

} // namespace mac::applescript
