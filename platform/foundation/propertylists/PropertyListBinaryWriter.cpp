#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/propertylists/CFKeyedArchiverUID.h"
#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/propertylists/PropertyListBinaryFormat.h"
#include "platform/foundation/propertylists/PropertyListLimits.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <unordered_map>

namespace mac {

namespace {

// The smallest of 1, 2, 4 and 8 bytes that holds the number, as a power of two.
std::uint8_t widthExponent(std::uint64_t number) {
    if (number <= 0xFF) return 0;
    if (number <= 0xFFFF) return 1;
    return number <= 0xFFFFFFFF ? 2 : 3;
}

void appendBigEndian(std::string& bytes, std::uint64_t number, std::size_t width) {
    for (std::size_t shift = width * 8; shift > 0; shift -= 8)
        bytes += static_cast<char>(number >> (shift - 8));
}

void appendInteger(std::string& bytes, std::uint64_t number, std::uint8_t exponent) {
    bytes += static_cast<char>(static_cast<std::uint8_t>(BinaryMarker::Integer) << 4 | exponent);
    appendBigEndian(bytes, number, std::size_t{1} << exponent);
}

std::string markerBytes(BinaryMarker marker, std::size_t size) {
    auto const upper = static_cast<std::uint8_t>(static_cast<std::uint8_t>(marker) << 4);
    if (size < kBinaryLongSize) return {static_cast<char>(upper | size)};
    std::string bytes{static_cast<char>(upper | kBinaryLongSize)};
    appendInteger(bytes, size, widthExponent(size));
    return bytes;
}

std::string stringBytes(std::u16string_view units) {
    bool const isASCII = std::ranges::all_of(units, [](char16_t unit) { return unit <= 0x7F; });
    std::string bytes = markerBytes(isASCII ? BinaryMarker::ASCII : BinaryMarker::UTF16, units.size());
    for (char16_t const unit : units)
        appendBigEndian(bytes, unit, isASCII ? 1 : 2);
    return bytes;
}

std::string numberBytes(NSNumber const& number) {
    std::string bytes;
    switch (number.kind()) {
    case NSNumber::Kind::Boolean:
        bytes += static_cast<char>(number.boolValue() ? kBinaryTrue : kBinaryFalse);
        break;
    case NSNumber::Kind::Real:
        bytes += static_cast<char>(static_cast<std::uint8_t>(BinaryMarker::Real) << 4 | 3);
        appendBigEndian(bytes, std::bit_cast<std::uint64_t>(number.doubleValue()), 8);
        break;
    default: {
        std::uint64_t const value = number.unsignedLongLongValue();
        // Eight bytes are signed, so what lies above them takes sixteen.
        bool const isAbove = number.kind() == NSNumber::Kind::Unsigned && value >> 63 != 0;
        if (!isAbove) {
            appendInteger(bytes, value, widthExponent(value));
            break;
        }
        bytes += static_cast<char>(static_cast<std::uint8_t>(BinaryMarker::Integer) << 4 | 4);
        appendBigEndian(bytes, 0, 8);
        appendBigEndian(bytes, value, 8);
    }
    }
    return bytes;
}

std::string identifierBytes(std::uint32_t value) {
    std::size_t const width = std::size_t{1} << widthExponent(value);
    std::string bytes{static_cast<char>(static_cast<std::size_t>(BinaryMarker::Identifier) << 4 | (width - 1))};
    appendBigEndian(bytes, value, width);
    return bytes;
}

class BinaryWriter {
public:
    Result<std::string, Failure> write(id const& propertyList) {
        if (!addObject(propertyList, 0)) return Failure{m_reason};
        return assemble();
    }

private:
    // An object to be written: the bytes of a leaf, or the marker of a container with the references to its members.
    struct Item {
        std::string marker{};
        // Kept by m_leaves.
        std::string_view leaf{};
        std::vector<std::uint32_t> references{};
    };

    bool fail(std::string_view reason) {
        m_reason = reason;
        return false;
    }

    // Leaves the object's reference in m_reference. Recursion is as deep as the list, which is checked.
    bool addObject(id const& value, std::size_t depth) {
        PropertyListKind const kind = propertyListKind(value);
        if (kind == PropertyListKind::None) return fail(complaintAboutKind(value));
        if (!m_budget.add(1)) return fail(kPropertyListTooLarge);
        switch (kind) {
        case PropertyListKind::Array:
            return addArray(uncheckedCast<NSArray>(value), depth);
        case PropertyListKind::Dictionary:
            return addDictionary(uncheckedCast<NSDictionary>(value), depth);
        case PropertyListKind::String:
            return addLeaf(stringBytes(uncheckedCast<NSString>(value).codeUnits()));
        case PropertyListKind::Data:
            return addData(uncheckedCast<NSData>(value));
        case PropertyListKind::Date:
            return addDate(uncheckedCast<NSDate>(value));
        case PropertyListKind::Identifier:
            return addLeaf(identifierBytes(CFKeyedArchiverUIDGetValue(uncheckedCast<CFKeyedArchiverUIDRef>(value))));
        default:
            return addLeaf(numberBytes(uncheckedCast<NSNumber>(value)));
        }
    }

    bool addArray(NSArray const& array, std::size_t depth) {
        if (depth >= kPropertyListMaximumDepth) return fail(kPropertyListTooDeep);
        std::size_t const item = beginContainer(BinaryMarker::Array, array.count());
        std::vector<std::uint32_t> references;
        for (id const& value : array) {
            if (!addObject(value, depth + 1)) return false;
            references.push_back(m_reference);
        }
        endContainer(item, std::move(references));
        return true;
    }

    bool addDictionary(NSDictionary const& dictionary, std::size_t depth) {
        if (depth >= kPropertyListMaximumDepth) return fail(kPropertyListTooDeep);
        std::optional<std::vector<NSString>> const keys = sortedKeys(dictionary);
        if (!keys) return fail(kPropertyListKeyIsNoString);
        std::size_t const item = beginContainer(BinaryMarker::Dictionary, keys->size());
        std::vector<std::uint32_t> references;
        for (NSString const& key : *keys) {
            if (!addObject(key, depth + 1)) return false;
            references.push_back(m_reference);
        }
        for (NSString const& key : *keys) {
            if (!addObject(dictionary.objectForKey_(key), depth + 1)) return false;
            references.push_back(m_reference);
        }
        endContainer(item, std::move(references));
        return true;
    }

    bool addData(NSData const& data) {
        std::string bytes = markerBytes(BinaryMarker::Data, data.length());
        if (data.length() > 0) bytes.append(reinterpret_cast<char const*>(data.bytes()), data.length());
        return addLeaf(std::move(bytes));
    }

    bool addDate(NSDate const& date) {
        double const seconds = date.timeIntervalSinceReferenceDate();
        if (!std::isfinite(seconds)) return fail("A date is no number");
        std::string bytes{static_cast<char>(kBinaryDate)};
        appendBigEndian(bytes, std::bit_cast<std::uint64_t>(seconds), 8);
        return addLeaf(std::move(bytes));
    }

    bool addLeaf(std::string bytes) {
        if (!m_budget.add(0, bytes.size())) return fail(kPropertyListTooLarge);
        auto const [place, isNew] = m_leaves.try_emplace(std::move(bytes), static_cast<std::uint32_t>(m_items.size()));
        if (isNew) m_items.push_back({.leaf = place->first});
        m_reference = place->second;
        return true;
    }

    std::size_t beginContainer(BinaryMarker marker, std::size_t size) {
        m_items.push_back({.marker = markerBytes(marker, size)});
        return m_items.size() - 1;
    }

    void endContainer(std::size_t item, std::vector<std::uint32_t> references) {
        m_items[item].references = std::move(references);
        m_reference = static_cast<std::uint32_t>(item);
    }

    std::string assemble() const {
        std::size_t const referenceSize = std::size_t{1} << widthExponent(m_items.size() - 1);
        std::string bytes(kBinaryHead);
        std::vector<std::uint64_t> offsets;
        for (Item const& item : m_items) {
            offsets.push_back(bytes.size());
            bytes.append(item.marker).append(item.leaf);
            for (std::uint32_t const reference : item.references)
                appendBigEndian(bytes, reference, referenceSize);
        }
        std::uint64_t const table = bytes.size();
        std::size_t const offsetSize = std::size_t{1} << widthExponent(table);
        for (std::uint64_t const offset : offsets)
            appendBigEndian(bytes, offset, offsetSize);
        bytes.append(kBinaryOffsetSizeField, '\0');
        appendBigEndian(bytes, offsetSize, 1);
        appendBigEndian(bytes, referenceSize, 1);
        appendBigEndian(bytes, m_items.size(), 8);
        // The list itself is the first object.
        appendBigEndian(bytes, 0, 8);
        appendBigEndian(bytes, table, 8);
        return bytes;
    }

    std::vector<Item> m_items;
    std::unordered_map<std::string, std::uint32_t> m_leaves;
    std::uint32_t m_reference{0};
    std::string m_reason;
    PropertyListBudget m_budget;
};

} // namespace

Result<std::string, Failure> writePropertyListBinary(id const& propertyList) {
    return BinaryWriter().write(propertyList);
}

} // namespace mac
