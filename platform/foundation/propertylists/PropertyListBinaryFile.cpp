#include "platform/foundation/propertylists/PropertyListBinaryFile.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/propertylists/CFKeyedArchiverUID.h"
#include "platform/foundation/propertylists/PropertyListLimits.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace mac {

Result<BinaryFile, Failure> BinaryFile::open(std::span<std::byte const> data) {
    if (data.size() < kBinaryHead.size() + kBinaryTrailerSize) return Failure{"The file is cut off"};
    // The second digit of the version says nothing about the layout.
    if (data[kBinaryMagic.size()] != std::byte{'0'}) return Failure{"The version of the file is not known"};

    BinaryFile file(data);
    std::uint64_t const trailer = data.size() - kBinaryTrailerSize;
    file.m_offsetSize = file.number(trailer + kBinaryOffsetSizeField, 1);
    file.m_referenceSize = file.number(trailer + kBinaryReferenceSizeField, 1);
    std::uint64_t const count = file.number(trailer + kBinaryCountField, 8);
    std::uint64_t const top = file.number(trailer + kBinaryTopField, 8);
    file.m_table = file.number(trailer + kBinaryTableField, 8);
    if (file.m_offsetSize < 1 || file.m_offsetSize > 8 || file.m_referenceSize < 1 || file.m_referenceSize > 8)
        return Failure{"The trailer has a width of numbers that there is not"};
    if (file.m_table < kBinaryHead.size() + 1 || file.m_table > trailer)
        return Failure{"The table of offsets lies outside of the file"};
    if (count < 1 || count > (trailer - file.m_table) / file.m_offsetSize)
        return Failure{"The table of offsets does not have the file's number of objects"};
    if (count > kPropertyListMaximumObjects) return Failure{std::string(kPropertyListTooLarge)};
    if (top >= count) return Failure{"The trailer refers to an object that there is not"};
    file.m_count = count;
    file.m_top = top;
    return file;
}

// Big-endian; of more than eight bytes the last eight count. The bytes are there.
std::uint64_t BinaryFile::number(std::uint64_t position, std::size_t width) const {
    std::uint64_t value = 0;
    for (std::byte const byte : m_data.subspan(position, width))
        value = value << 8 | std::to_integer<std::uint64_t>(byte);
    return value;
}

std::uint64_t BinaryFile::offset(std::size_t reference) const {
    return number(m_table + reference * m_offsetSize, m_offsetSize);
}

std::size_t BinaryFile::reference(BinaryContainer const& container, std::size_t index) const {
    return number(container.references + index * m_referenceSize, m_referenceSize);
}

// Whether the objects' part of the file goes on for so many items of that width. The position may be behind its end.
bool BinaryFile::hasBytes(std::uint64_t position, std::uint64_t count, std::uint64_t width) const {
    return position <= m_table && count <= (m_table - position) / width;
}

std::string BinaryFile::readObject(std::size_t reference, BinaryObject& object) const {
    std::uint64_t const start = offset(reference);
    if (start < kBinaryHead.size() || start >= m_table)
        return atOffset("An object lies outside of the file's objects,", start);
    auto const byte = std::to_integer<std::uint8_t>(m_data[start]);
    auto const marker = static_cast<BinaryMarker>(byte >> 4);
    auto const nibble = static_cast<std::uint8_t>(byte & 0xF);
    switch (marker) {
    case BinaryMarker::Single:
        if (byte != kBinaryFalse && byte != kBinaryTrue) break;
        object.value = NSNumber::numberWithBool_(byte == kBinaryTrue);
        return {};
    case BinaryMarker::Integer:
        if (readInteger(start + 1, nibble, object)) return {};
        return atOffset("An integer is cut off or has more than 64 bits", start);
    case BinaryMarker::Real:
        if (readReal(start + 1, nibble, object)) return {};
        return atOffset("A real is cut off or has another width than 4 or 8 bytes", start);
    case BinaryMarker::Date: {
        if (byte != kBinaryDate || !hasBytes(start + 1, 1, 8)) return atOffset("A date is cut off", start);
        double const seconds = std::bit_cast<double>(number(start + 1, 8));
        if (!std::isfinite(seconds)) return atOffset("A date is no number", start);
        object.value = NSDate::dateWithTimeIntervalSinceReferenceDate_(seconds);
        return {};
    }
    case BinaryMarker::Identifier:
        if (readIdentifier(start + 1, nibble, object)) return {};
        return atOffset("A unique identifier is cut off or has more than 32 bits", start);
    case BinaryMarker::Data:
    case BinaryMarker::ASCII:
    case BinaryMarker::UTF16:
    case BinaryMarker::Array:
    case BinaryMarker::Dictionary:
        return readSized(marker, nibble, start, object);
    }
    return atOffset("There is an object of a kind that property lists do not hold", start);
}

// 1, 2 and 4 bytes are unsigned, 8 are signed; 16 hold what needs a 65th bit.
bool BinaryFile::readInteger(std::uint64_t position, std::uint8_t nibble, BinaryObject& object) const {
    if (nibble > 4 || !hasBytes(position, 1, std::uint64_t{1} << nibble)) return false;
    std::size_t const width = std::size_t{1} << nibble;
    std::uint64_t const low = number(position, width);
    bool const isNegative = low >> 63 != 0;
    if (width < 16) {
        object.value = NSNumber::numberWithLongLong_(static_cast<long long>(low));
        return true;
    }
    std::uint64_t const high = number(position, 8);
    if (high == 0) {
        object.value = isNegative ? NSNumber::numberWithUnsignedLongLong_(low)
                                  : NSNumber::numberWithLongLong_(static_cast<long long>(low));
        return true;
    }
    object.value = NSNumber::numberWithLongLong_(static_cast<long long>(low));
    return high == ~std::uint64_t{0} && isNegative;
}

bool BinaryFile::readIdentifier(std::uint64_t position, std::uint8_t nibble, BinaryObject& object) const {
    std::size_t const width = std::size_t{nibble} + 1;
    if (!hasBytes(position, 1, width)) return false;
    std::size_t const low = std::min<std::size_t>(width, 8);
    std::uint64_t const value = number(position + width - low, low);
    std::span<std::byte const> const high = m_data.subspan(position, width - low);
    bool const fits = std::ranges::all_of(high, [](std::byte byte) { return byte == std::byte{0}; });
    if (!fits || value > std::numeric_limits<std::uint32_t>::max()) return false;
    object.value = CFKeyedArchiverUIDCreate(kCFAllocatorDefault, static_cast<std::uint32_t>(value));
    return true;
}

bool BinaryFile::readReal(std::uint64_t position, std::uint8_t nibble, BinaryObject& object) const {
    if ((nibble != 2 && nibble != 3) || !hasBytes(position, 1, std::uint64_t{1} << nibble)) return false;
    if (nibble == 2) {
        auto const bits = static_cast<std::uint32_t>(number(position, 4));
        object.value = NSNumber::numberWithFloat_(std::bit_cast<float>(bits));
    } else {
        object.value = NSNumber::numberWithDouble_(std::bit_cast<double>(number(position, 8)));
    }
    return true;
}

// Moves the position behind a size that does not fit into the marker's half byte.
std::optional<std::size_t> BinaryFile::readSize(std::uint64_t& position, std::uint8_t nibble) const {
    if (nibble != kBinaryLongSize) return nibble;
    if (!hasBytes(position, 1, 1)) return std::nullopt;
    auto const marker = std::to_integer<std::uint8_t>(m_data[position]);
    std::size_t const width = std::size_t{1} << (marker & 0x3);
    if (marker >> 2 != static_cast<std::uint8_t>(BinaryMarker::Integer) << 2) return std::nullopt;
    if (!hasBytes(position + 1, 1, width)) return std::nullopt;
    std::uint64_t const size = number(position + 1, width);
    position += 1 + width;
    return size;
}

std::string BinaryFile::readSized(BinaryMarker marker, std::uint8_t nibble, std::uint64_t start,
                                  BinaryObject& object) const {
    std::uint64_t position = start + 1;
    std::optional<std::size_t> const size = readSize(position, nibble);
    if (!size) return atOffset("The size of an object is no size", start);
    bool const isDictionary = marker == BinaryMarker::Dictionary;
    std::size_t const width = isDictionary                    ? 2 * m_referenceSize
                              : marker == BinaryMarker::Array ? m_referenceSize
                              : marker == BinaryMarker::UTF16 ? sizeof(char16_t)
                                                              : 1;
    if (!hasBytes(position, *size, width)) return atOffset("An object is larger than the file,", start);
    if (marker == BinaryMarker::Data) {
        object.data = m_data.subspan(position, *size);
        return {};
    }
    if (isDictionary || marker == BinaryMarker::Array) {
        object.container = {isDictionary, *size, start, position};
        return {};
    }
    return readString(marker == BinaryMarker::ASCII, position, *size, object);
}

std::string BinaryFile::readString(bool isASCII, std::uint64_t position, std::size_t size, BinaryObject& object) const {
    std::size_t const width = isASCII ? 1 : sizeof(char16_t);
    std::u16string units(size, u'\0');
    for (std::size_t index = 0; index < size; ++index)
        units[index] = static_cast<char16_t>(number(position + index * width, width));
    if (isASCII && std::ranges::any_of(units, [](char16_t unit) { return unit > 0x7F; }))
        return atOffset("A string that is said to be ASCII is not,", position);
    object.string = std::move(units);
    return {};
}

} // namespace mac
