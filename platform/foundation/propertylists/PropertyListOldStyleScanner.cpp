#include "platform/foundation/propertylists/PropertyListOldStyleScanner.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/propertylists/PropertyListLimits.h"
#include "platform/foundation/text/NSString.h"
#include <array>

namespace mac {

namespace {

bool isOldStyleBlank(char16_t unit) {
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == u'\x2028' || unit == u'\x2029';
}

bool isOldStyleLineEnd(char16_t unit) {
    return unit == u'\n' || unit == u'\r' || unit == u'\x2028' || unit == u'\x2029';
}

bool isUnquoted(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9') ||
           std::u16string_view(u"_$/:.-").find(unit) != std::u16string_view::npos;
}

bool isOctal(char16_t unit) { return unit >= u'0' && unit <= u'7'; }

bool isHexadecimal(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
}

unsigned digitValue(char16_t digit) {
    if (digit <= u'9') return static_cast<unsigned>(digit - u'0');
    return static_cast<unsigned>((digit | 0x20) - u'a' + 10);
}

unsigned valueOf(std::u16string_view digits, unsigned base) {
    unsigned value = 0;
    for (char16_t const digit : digits)
        value = value * base + digitValue(digit);
    return value;
}

// U+FFFD for the two bytes that the encoding leaves free.
char16_t unitOfNeXTSTEP(unsigned byte) {
    static std::array<char16_t, 256> const units = [] {
        std::array<char16_t, 256> made{};
        for (unsigned value = 0; value < made.size(); ++value) {
            auto const single = static_cast<std::byte>(value);
            NSString const text =
                NSString::stringWithData_encoding_(NSData::dataWithBytes({&single, 1}), NSNEXTSTEPStringEncoding);
            made[value] = text.length() == 1 ? text.characterAtIndex_(0) : u'\xFFFD';
        }
        return made;
    }();
    return units[byte];
}

} // namespace

std::string OldStyleScanner::skipBlanks() {
    while (!isAtEnd()) {
        std::u16string_view const rest = m_text.substr(m_position);
        if (isOldStyleBlank(rest[0])) {
            ++m_position;
        } else if (rest.starts_with(u"//")) {
            while (!isAtEnd() && !isOldStyleLineEnd(peek()))
                ++m_position;
        } else if (rest.starts_with(u"/*")) {
            std::size_t const end = rest.find(u"*/", 2);
            if (end == std::u16string_view::npos) return failure("There is a comment without end");
            m_position += end + 2;
        } else {
            return {};
        }
    }
    return {};
}

bool OldStyleScanner::accept(char16_t unit) {
    if (isAtEnd() || m_text[m_position] != unit) return false;
    ++m_position;
    return true;
}

bool OldStyleScanner::isAtString() const {
    return !isAtEnd() && (peek() == u'"' || peek() == u'\'' || isUnquoted(peek()));
}

Result<std::u16string, Failure> OldStyleScanner::readString() {
    if (peek() == u'"' || peek() == u'\'') return readQuoted();
    std::size_t const start = m_position;
    while (!isAtEnd() && isUnquoted(peek()))
        ++m_position;
    return std::u16string(m_text.substr(start, m_position - start));
}

Result<std::u16string, Failure> OldStyleScanner::readQuoted() {
    std::size_t const start = m_position;
    char16_t const quote = m_text[m_position++];
    std::u16string string;
    while (!isAtEnd()) {
        char16_t const unit = m_text[m_position++];
        if (unit == quote) return string;
        if (unit != u'\\') {
            string += unit;
            continue;
        }
        if (std::string reason = readEscape(string); !reason.empty()) return Failure{std::move(reason)};
    }
    return Failure{failureAt("There is a quoted string without end", start)};
}

// Behind the backslash. A character without a meaning of its own stands for itself.
std::string OldStyleScanner::readEscape(std::u16string& string) {
    constexpr std::u16string_view kNames = u"abfnrtv";
    constexpr std::u16string_view kUnits = u"\a\b\f\n\r\t\v";
    if (isAtEnd()) return failure("There is a quoted string without end");
    if (isOctal(peek())) {
        unsigned const byte = valueOf(readDigits(3, isOctal), 8);
        if (byte > 0xFF) return failure("There is an octal escape that is no byte");
        string += unitOfNeXTSTEP(byte);
        return {};
    }
    char16_t const unit = m_text[m_position++];
    if (unit == u'U') {
        std::u16string_view const digits = readDigits(4, isHexadecimal);
        if (digits.empty()) return failure("There is a \\U without hexadecimal digits");
        string += static_cast<char16_t>(valueOf(digits, 16));
        return {};
    }
    std::size_t const index = kNames.find(unit);
    string += index == std::u16string_view::npos ? unit : kUnits[index];
    return {};
}

std::u16string_view OldStyleScanner::readDigits(std::size_t most, bool (*isDigit)(char16_t)) {
    std::size_t const start = m_position;
    while (m_position - start < most && !isAtEnd() && isDigit(peek()))
        ++m_position;
    return m_text.substr(start, m_position - start);
}

Result<std::vector<std::byte>, Failure> OldStyleScanner::readData() {
    std::vector<std::byte> data;
    while (!isAtEnd()) {
        if (isOldStyleBlank(peek())) {
            ++m_position;
            continue;
        }
        if (accept(u'>')) return data;
        std::u16string_view const digits = readDigits(2, isHexadecimal);
        if (digits.size() != 2) return Failure{unexpected("Two hexadecimal digits or \">\"")};
        data.push_back(static_cast<std::byte>(valueOf(digits, 16)));
    }
    return Failure{failure("There is data without end")};
}

std::string OldStyleScanner::unexpected(std::string_view expected) const {
    std::string const what = std::string(expected) + " is missing";
    if (isAtEnd()) return failure(what + " before the end of the text,");
    bool const isVisible = peek() > u' ' && peek() < u'\x7F';
    return failure(isVisible ? what + " before \"" + static_cast<char>(peek()) + "\"" : what);
}

std::string OldStyleScanner::failureAt(std::string_view reason, std::size_t position) const {
    std::size_t line = 1;
    for (std::size_t index = 0; index < position; ++index) {
        bool const isHalfOfPair = m_text[index] == u'\r' && index + 1 < m_text.size() && m_text[index + 1] == u'\n';
        line += isOldStyleLineEnd(m_text[index]) && !isHalfOfPair ? 1 : 0;
    }
    return atLine(reason, line);
}

} // namespace mac
