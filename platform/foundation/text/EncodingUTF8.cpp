#include "platform/foundation/text/Encodings.h"

#include <algorithm>
#include <iterator>

namespace mac {

namespace {

constexpr char32_t highestCodePoint = 0x10FFFF;
constexpr char32_t replacementCharacter = 0xFFFD;

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }
bool isSurrogate(char32_t codePoint) { return codePoint >= 0xD800 && codePoint <= 0xDFFF; }

struct Sequence {
    char32_t codePoint{0};
    // 0: the bytes do not begin with UTF-8.
    std::size_t length{0};
};

std::size_t lengthByLeadByte(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    return 0;
}

Sequence firstSequence(std::string_view bytes) {
    unsigned char const lead = static_cast<unsigned char>(bytes[0]);
    std::size_t const length = lengthByLeadByte(lead);
    if (length == 0 || length > bytes.size()) return {};
    if (length == 1) return {lead, 1};
    char32_t codePoint = lead & (0xFFU >> (length + 1));
    for (std::size_t index = 1; index < length; ++index) {
        unsigned char const byte = static_cast<unsigned char>(bytes[index]);
        if (!isContinuation(byte)) return {};
        codePoint = codePoint << 6 | (byte & 0x3F);
    }
    constexpr char32_t lowest[]{0, 0, 0x80, 0x800, 0x10000};
    if (codePoint < lowest[length] || codePoint > highestCodePoint || isSurrogate(codePoint)) return {};
    return {codePoint, length};
}

void appendUTF8(std::string& bytes, char32_t codePoint) {
    if (codePoint < 0x80) {
        bytes.push_back(static_cast<char>(codePoint));
        return;
    }
    std::size_t const length = codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
    constexpr unsigned leadMarks[]{0, 0, 0xC0, 0xE0, 0xF0};
    bytes.push_back(static_cast<char>(leadMarks[length] | codePoint >> (6 * (length - 1))));
    for (std::size_t left = length - 1; left > 0; --left)
        bytes.push_back(static_cast<char>(0x80 | (codePoint >> (6 * (left - 1)) & 0x3F)));
}

// Calls back for each byte that is not part of UTF-8; false from it ends the conversion.
template <class OnInvalid>
bool decode(std::string_view bytes, std::u16string& units, OnInvalid onInvalid) {
    units.reserve(bytes.size());
    while (!bytes.empty()) {
        auto const* const end =
            std::find_if(bytes.data(), bytes.data() + bytes.size(), [](char byte) { return byte < 0; });
        auto const plain = static_cast<std::size_t>(end - bytes.data());
        std::size_t const filled = units.size();
        units.resize(filled + plain);
        std::copy(bytes.data(), end, units.begin() + static_cast<std::ptrdiff_t>(filled));
        bytes.remove_prefix(plain);
        if (bytes.empty()) return true;
        Sequence const sequence = firstSequence(bytes);
        if (sequence.length > 0)
            appendCodePoint(units, sequence.codePoint);
        else if (!onInvalid(static_cast<unsigned char>(bytes[0])))
            return false;
        bytes.remove_prefix(std::max<std::size_t>(sequence.length, 1));
    }
    return true;
}

} // namespace

void appendCodePoint(std::u16string& units, char32_t codePoint) {
    if (codePoint < 0x10000) {
        units.push_back(static_cast<char16_t>(codePoint));
        return;
    }
    units.push_back(static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10)));
    units.push_back(static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF)));
}

char32_t codePointAt(std::u16string_view units, std::size_t index) {
    char16_t const unit = units[index];
    if (!isHighSurrogate(unit) || index + 1 == units.size() || !isLowSurrogate(units[index + 1])) return unit;
    return 0x10000 + ((unit & 0x3FFU) << 10) + (units[index + 1] & 0x3FFU);
}

std::optional<std::u16string> unitsFromUTF8(std::string_view bytes) {
    std::u16string units;
    if (!decode(bytes, units, [](unsigned char) { return false; })) return std::nullopt;
    return units;
}

std::u16string unitsFromFileSystemBytes(std::string_view bytes) {
    std::u16string units;
    decode(bytes, units, [&](unsigned char byte) {
        units.push_back(static_cast<char16_t>(0xDC00 + byte));
        return true;
    });
    return units;
}

std::string utf8FromUnits(std::u16string_view units) {
    // Most texts begin with ASCII, or are ASCII as a whole.
    auto const* const other = std::ranges::find_if(units, [](char16_t unit) { return unit >= 0x80; });
    std::string bytes(units.begin(), other);
    bytes.reserve(units.size());
    for (std::size_t index = bytes.size(); index < units.size();) {
        char32_t const codePoint = codePointAt(units, index);
        index += unitCount(codePoint);
        appendUTF8(bytes, isSurrogate(codePoint) ? replacementCharacter : codePoint);
    }
    return bytes;
}

std::optional<std::string> fileSystemBytesFromUnits(std::u16string_view units) {
    // Most paths are ASCII as a whole.
    auto const* const other = std::ranges::find_if(units, [](char16_t unit) { return unit == 0 || unit >= 0x80; });
    std::string bytes(units.begin(), other);
    bytes.reserve(units.size());
    bool hasLoneSurrogate = false;
    for (std::size_t index = bytes.size(); index < units.size();) {
        char32_t const codePoint = codePointAt(units, index);
        index += unitCount(codePoint);
        if (codePoint == 0) return std::nullopt;
        if (!isSurrogate(codePoint)) {
            appendUTF8(bytes, codePoint);
            continue;
        }
        if (codePoint < 0xDC80 || codePoint > 0xDCFF) return std::nullopt;
        bytes.push_back(static_cast<char>(codePoint & 0xFF));
        hasLoneSurrogate = true;
    }
    if (hasLoneSurrogate && unitsFromFileSystemBytes(bytes) != units) return std::nullopt;
    return bytes;
}

} // namespace mac
