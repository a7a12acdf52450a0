#include "platform/foundation/propertylists/PropertyListXMLControls.h"
#include "platform/foundation/propertylists/PropertyListXML.h"
#include <algorithm>
#include <bitset>
#include <charconv>

namespace mac {

namespace {

constexpr char16_t kFirstPrivate = 0xE000;
constexpr char16_t kLastPrivate = 0xF8FF;
// Substitutes are letters that no markup is made of: U+0100 stands for U+0000.
constexpr char16_t kSubstituteOfNull = u'\u0100';
constexpr unsigned kControls = 0x20;
// "&#x0000001F;" is the longest reference that is looked at.
constexpr std::size_t kLongestReference = 12;
constexpr unsigned kLastCharacter = 0x10FFFF;

bool isForeignControl(unsigned character) {
    return character < kControls && character != '\t' && character != '\n' && character != '\r';
}

bool isASCII(char16_t unit) { return unit < 0x80; }

bool isPrivate(unsigned character) { return character >= kFirstPrivate && character <= kLastPrivate; }

struct Reference {
    unsigned control;
    std::size_t length;
};

// The reference to a control character that XML does not have, if the text begins with one.
std::optional<Reference> referenceToControl(std::u16string_view text) {
    if (!text.starts_with(u"&#")) return std::nullopt;
    std::size_t const end = text.substr(0, kLongestReference).find(u';');
    if (end == std::u16string_view::npos) return std::nullopt;
    std::u16string_view const units = text.substr(2, end - 2);
    if (!std::ranges::all_of(units, isASCII)) return std::nullopt;
    std::string number(units.begin(), units.end());
    bool const isHexadecimal = number.starts_with('x');
    if (isHexadecimal) number.erase(0, 1);
    unsigned value = 0;
    auto const [stop, error] =
        std::from_chars(number.data(), number.data() + number.size(), value, isHexadecimal ? 16 : 10);
    bool const isNumber = error == std::errc() && stop == number.data() + number.size() && !number.empty();
    if (!isNumber || !isForeignControl(value)) return std::nullopt;
    return Reference{value, end + 1};
}

bool mayHoldControls(std::u16string_view text) {
    return std::ranges::any_of(text, isForeignControl) || text.find(u"&#") != std::u16string_view::npos;
}

// The value of a digit; 16 for anything else.
unsigned valueOfDigit(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return static_cast<unsigned>(unit - u'0');
    char16_t const lower = unit | 0x20;
    return isASCII(unit) && lower >= u'a' && lower <= u'f' ? static_cast<unsigned>(lower - u'a' + 10) : 16;
}

// The number behind "&#", however many digits it has, complete or not; at most kLastCharacter + 1.
unsigned numberOfReference(std::u16string_view text) {
    bool const isHexadecimal = text.starts_with(u'x');
    if (isHexadecimal) text.remove_prefix(1);
    unsigned const base = isHexadecimal ? 16 : 10;
    unsigned value = 0;
    for (char16_t const unit : text) {
        unsigned const digit = valueOfDigit(unit);
        if (digit >= base) break;
        value = std::min(value * base + digit, kLastCharacter + 1);
    }
    return value;
}

// A character of private use that the text holds neither as such nor as a reference, or 0.
char16_t unusedCharacter(std::u16string_view text) {
    std::bitset<kLastPrivate - kFirstPrivate + 1> isUsed;
    for (std::size_t index = 0; index < text.size(); ++index) {
        bool const isReference = text.substr(index).starts_with(u"&#");
        unsigned const character = isReference ? numberOfReference(text.substr(index + 2)) : text[index];
        if (isPrivate(character)) isUsed.set(character - kFirstPrivate);
    }
    if (isUsed.all()) return 0;
    std::size_t index = 0;
    while (isUsed.test(index))
        ++index;
    return static_cast<char16_t>(kFirstPrivate + index);
}

} // namespace

SubstitutedControls::SubstitutedControls(std::u16string_view text) : m_original(text) {
    if (mayHoldControls(text)) m_escape = unusedCharacter(text);
    if (m_escape == 0) return;
    m_text.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        std::size_t const literal = lengthOfLiteralMarkup(text.substr(position));
        if (literal > 0) {
            append(text.substr(position, literal));
            position += literal;
            continue;
        }
        position += appendOne(text.substr(position));
    }
}

std::size_t SubstitutedControls::appendOne(std::u16string_view text) {
    std::optional<Reference> const reference = referenceToControl(text);
    if (reference) {
        appendControl(reference->control);
        return reference->length;
    }
    append(text.substr(0, 1));
    return 1;
}

void SubstitutedControls::append(std::u16string_view text) {
    for (char16_t const unit : text) {
        if (isForeignControl(unit))
            appendControl(unit);
        else
            m_text.push_back(unit);
    }
}

void SubstitutedControls::appendControl(unsigned control) {
    m_text.push_back(m_escape);
    m_text.push_back(static_cast<char16_t>(kSubstituteOfNull + control));
}

std::u16string SubstitutedControls::restored(std::u16string_view string) const {
    if (m_escape == 0) return std::u16string(string);
    std::u16string result;
    result.reserve(string.size());
    for (std::size_t index = 0; index < string.size(); ++index) {
        std::optional<char16_t> const control = controlAt(string.substr(index));
        result.push_back(control.value_or(string[index]));
        if (control) ++index;
    }
    return result;
}

std::optional<char16_t> SubstitutedControls::controlAt(std::u16string_view string) const {
    if (m_escape == 0 || string.size() < 2 || string[0] != m_escape) return std::nullopt;
    unsigned const control = static_cast<unsigned>(string[1]) - kSubstituteOfNull;
    return control < kControls ? std::optional(static_cast<char16_t>(control)) : std::nullopt;
}

} // namespace mac
