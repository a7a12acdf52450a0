#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mac {

// What stands between the digits of a number.
struct NumberSeparators {
    std::u16string decimal;
    // Empty: none.
    std::u16string thousand;
};

// A number in decimal: the digits behind "0." times ten to the power of the exponent. No digits: zero.
struct DecimalNumber {
    std::string digits;
    int exponent{0};

    // Reads a text in the style of C's %g, without a sign: "1", "0.25", "1e+20".
    static DecimalNumber fromText(std::string_view text);
    // Rounds to that many digits behind the point, ties to the even digit.
    void round(int fractionDigits);
    // The digit at a place: 0 is the one before the point, -1 the first behind it.
    char digitAt(int place) const;
};

// One part of a number format such as "#,##0.00": what stands before and behind the digits, and how many there are.
class NumberPattern {
public:
    NumberPattern() = default;
    explicit NumberPattern(std::u16string_view format);

    // Whether it has no digits at all, and is printed as it stands.
    bool isLiteral() const { return m_isLiteral; }
    bool hasThousandSeparators() const { return m_groupSize > 0; }
    void setHasThousandSeparators(bool hasSeparators);

    std::u16string apply(DecimalNumber number, NumberSeparators const& separators) const;
    // The digits, and a point, of a text of this form; nothing for another text.
    std::optional<std::string> digitsIn(std::u16string_view text, NumberSeparators const& separators) const;

private:
    void readDigits(std::u16string_view digits);

    std::u16string m_prefix;
    std::u16string m_suffix;
    bool m_isLiteral{false};
    int m_integerDigits{1};
    int m_leastFractionDigits{0};
    int m_mostFractionDigits{0};
    int m_groupSize{0};
};

} // namespace mac
