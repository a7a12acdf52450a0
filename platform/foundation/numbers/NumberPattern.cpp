#include "platform/foundation/numbers/NumberPattern.h"
#include <algorithm>
#include <charconv>

namespace mac {

namespace {

constexpr std::u16string_view Placeholders = u"#0,.";
constexpr int UsualGroup = 3;

int count(std::u16string_view text, char16_t unit) { return static_cast<int>(std::ranges::count(text, unit)); }

bool takePrefix(std::u16string_view& text, std::u16string_view prefix) {
    if (prefix.empty() || !text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

} // namespace

DecimalNumber DecimalNumber::fromText(std::string_view text) {
    DecimalNumber number;
    std::size_t const mantissaEnd = std::min(text.find('e'), text.size());
    if (mantissaEnd != text.size()) {
        std::string_view exponent = text.substr(mantissaEnd + 1);
        if (exponent.starts_with('+')) exponent.remove_prefix(1);
        std::from_chars(exponent.data(), exponent.data() + exponent.size(), number.exponent);
    }
    std::string_view const mantissa = text.substr(0, mantissaEnd);
    number.exponent += static_cast<int>(std::min(mantissa.find('.'), mantissa.size()));
    std::ranges::copy_if(mantissa, std::back_inserter(number.digits), [](char digit) { return digit != '.'; });
    std::size_t const zeros = std::min(number.digits.find_first_not_of('0'), number.digits.size());
    number.digits.erase(0, zeros);
    number.exponent -= static_cast<int>(zeros);
    return number;
}

void DecimalNumber::round(int fractionDigits) {
    int const kept = exponent + fractionDigits;
    if (kept >= static_cast<int>(digits.size())) return;
    if (kept < 0) return digits.clear();
    auto const cut = static_cast<std::size_t>(kept);
    std::string_view const rest = std::string_view(digits).substr(cut);
    bool const isTie = rest[0] == '5' && rest.find_first_not_of('0', 1) == std::string_view::npos;
    bool const isOdd = cut > 0 && (digits[cut - 1] - '0') % 2 == 1;
    bool const goesUp = isTie ? isOdd : rest[0] >= '5';
    digits.resize(cut);
    if (!goesUp) return;
    while (!digits.empty() && digits.back() == '9')
        digits.pop_back();
    if (!digits.empty()) {
        ++digits.back();
        return;
    }
    digits = "1";
    ++exponent;
}

char DecimalNumber::digitAt(int place) const {
    int const index = exponent - 1 - place;
    return index < 0 || index >= static_cast<int>(digits.size()) ? '0' : digits[static_cast<std::size_t>(index)];
}

NumberPattern::NumberPattern(std::u16string_view format) {
    std::size_t const start = format.find_first_of(u"#0.");
    m_isLiteral = start == std::u16string_view::npos;
    m_prefix = format.substr(0, start);
    if (m_isLiteral) return;
    std::size_t const end = std::min(format.find_first_not_of(Placeholders, start), format.size());
    m_suffix = format.substr(end);
    readDigits(format.substr(start, end - start));
}

void NumberPattern::readDigits(std::u16string_view digits) {
    std::size_t const point = std::min(digits.find(u'.'), digits.size());
    std::u16string_view const integer = digits.substr(0, point);
    std::u16string_view const fraction = digits.substr(point);
    m_integerDigits = count(integer, u'0');
    m_leastFractionDigits = count(fraction, u'0');
    m_mostFractionDigits = m_leastFractionDigits + count(fraction, u'#');
    std::size_t const comma = integer.rfind(u',');
    if (comma == std::u16string_view::npos) return;
    auto const behind = static_cast<int>(integer.size() - comma - 1);
    m_groupSize = behind > 0 ? behind : UsualGroup;
}

void NumberPattern::setHasThousandSeparators(bool hasSeparators) {
    if (hasSeparators != hasThousandSeparators()) m_groupSize = hasSeparators ? UsualGroup : 0;
}

std::u16string NumberPattern::apply(DecimalNumber number, NumberSeparators const& separators) const {
    std::u16string text = m_prefix;
    if (m_isLiteral) return text;
    number.round(m_mostFractionDigits);
    int const integerDigits = number.digits.empty() ? 0 : std::max(number.exponent, 0);
    int const shown = std::max(integerDigits, m_integerDigits);
    for (int place = shown - 1; place >= 0; --place) {
        text.push_back(static_cast<char16_t>(number.digitAt(place)));
        if (m_groupSize > 0 && place > 0 && place % m_groupSize == 0) text.append(separators.thousand);
    }
    int const fractionDigits = static_cast<int>(number.digits.size()) - number.exponent;
    int last = std::clamp(fractionDigits, m_leastFractionDigits, m_mostFractionDigits);
    while (last > m_leastFractionDigits && number.digitAt(-last) == '0')
        --last;
    // A number without any digit would be nothing at all.
    if (shown == 0 && last == 0) text.push_back(u'0');
    if (last > 0) text.append(separators.decimal);
    for (int place = -1; place >= -last; --place)
        text.push_back(static_cast<char16_t>(number.digitAt(place)));
    return text.append(m_suffix);
}

std::optional<std::string> NumberPattern::digitsIn(std::u16string_view text, NumberSeparators const& separators) const {
    if (m_isLiteral) return text == m_prefix ? std::optional<std::string>("0") : std::nullopt;
    if (!text.starts_with(m_prefix) || !text.ends_with(m_suffix) || text.size() < m_prefix.size() + m_suffix.size())
        return std::nullopt;
    text = text.substr(m_prefix.size(), text.size() - m_prefix.size() - m_suffix.size());
    std::string digits;
    bool hasPoint = false;
    while (!text.empty()) {
        if (text[0] >= u'0' && text[0] <= u'9') {
            digits.push_back(static_cast<char>(text[0]));
            text.remove_prefix(1);
        } else if (!hasPoint && takePrefix(text, separators.decimal)) {
            digits.push_back('.');
            hasPoint = true;
        } else if (hasPoint || m_groupSize == 0 || digits.empty() || !takePrefix(text, separators.thousand)) {
            return std::nullopt;
        }
    }
    return digits.find_first_not_of('.') == std::string::npos ? std::nullopt : std::optional(digits);
}

} // namespace mac
