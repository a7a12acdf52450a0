#include "platform/foundation/text/Format.h"
#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/FormatOperand.h"
#include "platform/foundation/text/StringBody.h"
#include "platform/system/ASCII.h"
#include <algorithm>
#include <cstdlib>

namespace mac {

namespace {

constexpr std::size_t LongestPadding = 65536;
constexpr std::size_t IntegerBytes = 4;
// What the length modifiers l, ll, q, z, t and j mean.
constexpr std::size_t LongBytes = 8;
constexpr std::string_view KnownLetters = "@diouxXDOUcCsSpfFeEgGaA";
constexpr std::string_view LettersOfReals = "fFeEgGaA";

// A conversion as the format writes it, with what an argument gives (*) filled in.
struct ParsedConversion : FormatConversion {
    std::size_t bytes{IntegerBytes};
    // From 0; without one the next argument is taken.
    std::optional<std::size_t> position{};
};

bool isOneOf(char letter, std::string_view letters) { return letters.find(letter) != std::string_view::npos; }

class Formatter {
public:
    Formatter(std::u16string_view format, std::span<FormatArgument const> arguments)
        : m_format(format), m_arguments(arguments) {}

    std::u16string result() {
        while (m_index < m_format.size()) {
            std::size_t const percent = std::min(m_format.find(u'%', m_index), m_format.size());
            m_text.append(m_format.substr(m_index, percent - m_index));
            m_index = percent;
            if (m_index < m_format.size()) appendConversion();
        }
        return std::move(m_text);
    }

private:
    bool take(char16_t unit) {
        if (m_index == m_format.size() || m_format[m_index] != unit) return false;
        ++m_index;
        return true;
    }

    // Digits past the range of an int count as its end.
    std::size_t takeNumber() {
        constexpr std::size_t highest = 0x7FFFFFFF;
        std::size_t number = 0;
        for (; m_index < m_format.size() && m_format[m_index] >= u'0' && m_format[m_index] <= u'9'; ++m_index)
            number = std::min(number * 10 + (m_format[m_index] - u'0'), highest);
        return number;
    }

    // "2$"; a number without the '$' is a width and stays where it is.
    std::optional<std::size_t> takePosition() {
        std::size_t const start = m_index;
        std::size_t const number = takeNumber();
        // Position 0 wraps to an argument that is not there.
        if (m_index > start && take(u'$')) return number - 1;
        m_index = start;
        return std::nullopt;
    }

    bool takeFlag(FormatConversion& conversion) {
        if (take(u'-')) return conversion.isLeftAligned = true;
        if (take(u'+')) return conversion.showsPlus = true;
        if (take(u' ')) return conversion.showsSpace = true;
        if (take(u'0')) return conversion.isZeroPadded = true;
        if (take(u'#')) return conversion.isAlternate = true;
        // Groups thousands as the locale does; without one there are no groups.
        return take(u'\'');
    }

    // The argument of a '*'; 0 if it is missing.
    std::int64_t takeStar() {
        FormatArgument const* const value = argument(takePosition());
        if (!value) return 0;
        SignedMagnitude const number = FormatOperand(*value).integer(IntegerBytes, true);
        auto const magnitude = static_cast<std::int64_t>(number.magnitude);
        return number.isNegative ? -magnitude : magnitude;
    }

    void takeWidth(FormatConversion& conversion) {
        std::int64_t const width = take(u'*') ? takeStar() : static_cast<std::int64_t>(takeNumber());
        if (width < 0) conversion.isLeftAligned = true;
        conversion.width = std::min(static_cast<std::size_t>(std::abs(width)), LongestPadding);
    }

    void takePrecision(FormatConversion& conversion) {
        if (!take(u'.')) return;
        std::int64_t const precision = take(u'*') ? takeStar() : static_cast<std::int64_t>(takeNumber());
        if (precision >= 0) conversion.precision = static_cast<std::size_t>(precision);
    }

    std::size_t takeLength() {
        if (take(u'h')) return take(u'h') ? 1 : 2;
        if (take(u'l')) {
            take(u'l');
            return LongBytes;
        }
        return take(u'q') || take(u'z') || take(u't') || take(u'j') || take(u'L') ? LongBytes : IntegerBytes;
    }

    void appendConversion() {
        std::size_t const start = m_index++;
        std::size_t const nextArgument = m_nextArgument;
        ParsedConversion conversion;
        conversion.position = takePosition();
        while (takeFlag(conversion)) {}
        takeWidth(conversion);
        takePrecision(conversion);
        conversion.bytes = takeLength();
        if (take(u'%')) {
            m_text.push_back(u'%');
            return;
        }
        char16_t const letter = m_index < m_format.size() ? m_format[m_index++] : u'\0';
        if (letter > u'z' || letter == u'\0' || !isOneOf(static_cast<char>(letter), KnownLetters)) {
            m_nextArgument = nextArgument;
            m_text.append(m_format.substr(start, m_index - start));
            return;
        }
        setLetter(conversion, static_cast<char>(letter));
        append(conversion);
    }

    // The capitals of integers are C's old way to write l.
    static void setLetter(ParsedConversion& conversion, char letter) {
        conversion.letter = letter;
        if (letter != 'D' && letter != 'O' && letter != 'U') return;
        conversion.bytes = LongBytes;
        conversion.letter = static_cast<char>(letter - 'A' + 'a');
    }

    FormatArgument const* argument(std::optional<std::size_t> position) {
        std::size_t const index = position ? *position : m_nextArgument++;
        return index < m_arguments.size() ? &m_arguments[index] : nullptr;
    }

    void append(ParsedConversion const& conversion) {
        FormatArgument const* const value = argument(conversion.position);
        if (!value) {
            m_text.append(u"(null)");
            return;
        }
        FormatOperand const operand(*value);
        if (conversion.letter == 'p') {
            appendAddress(operand.address(), conversion);
            return;
        }
        if (operand.isNilObject()) {
            m_text.append(u"(null)");
            return;
        }
        if (conversion.letter == '@')
            m_text.append(operand.text());
        else if (conversion.letter == 's' || conversion.letter == 'S')
            appendText(operand, conversion);
        else if (conversion.letter == 'c')
            appendCharacter(operand, conversion);
        else if (conversion.letter == 'C')
            m_text.push_back(static_cast<char16_t>(operand.integer(sizeof(char16_t), false).magnitude));
        else
            appendNumber(operand, conversion);
    }

    void appendAddress(std::uint64_t address, FormatConversion const& conversion) {
        FormatConversion const hexadecimal{.letter = 'x'};
        appendPadded(u"0x" + unitsFromASCII(formattedInteger(address, false, hexadecimal)), conversion);
    }

    // What stands for no text does so whatever the width.
    void appendText(FormatOperand const& operand, FormatConversion const& conversion) {
        std::u16string text = operand.text();
        if (operand.isNullPointer()) {
            m_text.append(text);
            return;
        }
        if (conversion.precision && *conversion.precision < text.size()) text.resize(*conversion.precision);
        appendPadded(text, conversion);
    }

    // As in C a NUL ends text, also that of one character.
    void appendCharacter(FormatOperand const& operand, FormatConversion const& conversion) {
        auto const unit = static_cast<char16_t>(operand.integer(sizeof(char), false).magnitude);
        appendPadded(unit == u'\0' ? std::u16string() : std::u16string(1, unit), conversion);
    }

    void appendNumber(FormatOperand const& operand, ParsedConversion conversion) {
        if (conversion.precision) conversion.precision = std::min(*conversion.precision, LongestPadding);
        if (isOneOf(conversion.letter, LettersOfReals)) {
            m_text.append(unitsFromASCII(formattedReal(operand.real(), conversion)));
            return;
        }
        bool const isSigned = conversion.letter == 'd' || conversion.letter == 'i';
        SignedMagnitude const number = operand.integer(conversion.bytes, isSigned);
        m_text.append(unitsFromASCII(formattedInteger(number.magnitude, number.isNegative, conversion)));
    }

    void appendPadded(std::u16string_view text, FormatConversion const& conversion) {
        std::size_t const missing = conversion.width > text.size() ? conversion.width - text.size() : 0;
        if (!conversion.isLeftAligned) m_text.append(missing, u' ');
        m_text.append(text);
        if (conversion.isLeftAligned) m_text.append(missing, u' ');
    }

    std::u16string_view m_format;
    std::span<FormatArgument const> m_arguments;
    std::size_t m_index{0};
    std::size_t m_nextArgument{0};
    std::u16string m_text;
};

} // namespace

id FormatArgument::text(std::string_view bytes) { return makeString(unitsFromFileSystemBytes(bytes)); }

id FormatArgument::text(std::u16string_view units) { return makeString(std::u16string(units)); }

NSString formatString(NSString const& format, std::span<FormatArgument const> arguments) {
    if (format == nil) throw NSInvalidArgumentException("The format is nil");
    // A description may change a mutable format.
    NSString const kept = uncheckedCast<NSString>(format.copy());
    return makeString(Formatter(kept.codeUnits(), arguments).result());
}

} // namespace mac
