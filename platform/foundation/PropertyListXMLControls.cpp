#include "platform/foundation/PropertyListXMLControls.h"
#include "platform/foundation/PropertyListXMLMarkup.h"
#include <algorithm>
#include <bitset>
#include <charconv>
#include <optional>

namespace mac {

namespace {

constexpr char16_t kFirstPrivate = 0xE000;
constexpr char16_t kLastPrivate = 0xF8FF;
// Substitutes are letters, which no parser takes for anything else: 'A' stands for U+0000.
constexpr char16_t kSubstituteOfNull = u'A';
constexpr unsigned kControls = 0x20;
// "&#x0000001F;" is the longest reference that is looked at.
constexpr std::size_t kLongestReference = 12;

bool isForeignControl(unsigned character) {
    return character < kControls && character != '\t' && character != '\n' && character != '\r';
}

struct Reference {
    unsigned control;
    std::size_t length;
};

// The reference to a control character that XML does not have, if the text begins with one.
std::optional<Reference> referenceToControl(std::u16string_view text) {
    if (!text.starts_with(u"&#")) return std::nullopt;
    std::size_t const end = text.substr(0, kLongestReference).find(u';');
    if (end == std::u16string_view::npos) return std::nullopt;
    std::string number(text.begin() + 2, text.begin() + static_cast<std::ptrdiff_t>(end));
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

// A character of private use that the text does not hold, or 0.
char16_t unusedCharacter(std::u16string_view text) {
    std::bitset<kLastPrivate - kFirstPrivate + 1> isUsed;
    for (char16_t const unit : text) {
        if (unit >= kFirstPrivate && unit <= kLastPrivate) isUsed.set(unit - kFirstPrivate);
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
    std::u16string result;
    result.reserve(string.size());
    for (std::size_t index = 0; index < string.size(); ++index) {
        bool const isSubstitute = m_escape != 0 && string[index] == m_escape && index + 1 < string.size();
        if (isSubstitute) ++index;
        result.push_back(isSubstitute ? static_cast<char16_t>(string[index] - kSubstituteOfNull) : string[index]);
    }
    return result;
}

} // namespace mac
