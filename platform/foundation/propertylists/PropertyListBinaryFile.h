#pragma once

#include "platform/foundation/objects/Object.h"
#include "platform/foundation/propertylists/PropertyListBinaryFormat.h"
#include "platform/system/Result.h"
#include <optional>
#include <span>
#include <string>

namespace mac {

// An array or dictionary as the file holds it: references to its members.
struct BinaryContainer {
    bool isDictionary{false};
    // The number of elements, or of pairs of key and value.
    std::size_t count{0};
    std::uint64_t offset{0};
    // Where the references are.
    std::uint64_t references{0};

    std::size_t referenceCount() const { return isDictionary ? count * 2 : count; }
};

// One object of the file: exactly one of its members is set.
struct BinaryObject {
    std::optional<BinaryContainer> container{};
    std::optional<std::u16string> string{};
    std::optional<std::span<std::byte const>> data{};
    // A number, a date or an identifier.
    id value{};

    // Bytes of text or data.
    std::size_t contents() const { return string ? string->size() * sizeof(char16_t) : data ? data->size() : 0; }
};

// The bytes of a binary property list, which must outlive it, with every offset and size checked before it is used.
class BinaryFile {
public:
    // Fails when the trailer does not fit the file.
    static Result<BinaryFile, Failure> open(std::span<std::byte const> data);

    std::size_t count() const { return m_count; }
    std::size_t top() const { return m_top; }
    // Unchecked. The reference is below count.
    std::uint64_t offset(std::size_t reference) const;
    // The index-th reference of a container, unchecked. The index is below its referenceCount.
    std::size_t reference(BinaryContainer const& container, std::size_t index) const;
    // Answers why there is no object at the reference, which is below count; an empty text when it was read.
    std::string readObject(std::size_t reference, BinaryObject& object) const;

private:
    explicit BinaryFile(std::span<std::byte const> data) : m_data(data) {}

    std::uint64_t number(std::uint64_t position, std::size_t width) const;
    std::optional<std::size_t> readSize(std::uint64_t& position, std::uint8_t nibble) const;
    bool hasBytes(std::uint64_t position, std::uint64_t count, std::uint64_t width) const;
    bool readInteger(std::uint64_t position, std::uint8_t nibble, BinaryObject& object) const;
    bool readIdentifier(std::uint64_t position, std::uint8_t nibble, BinaryObject& object) const;
    bool readReal(std::uint64_t position, std::uint8_t nibble, BinaryObject& object) const;
    std::string readSized(BinaryMarker marker, std::uint8_t nibble, std::uint64_t start, BinaryObject& object) const;
    std::string readString(bool isASCII, std::uint64_t position, std::size_t size, BinaryObject& object) const;

    std::span<std::byte const> m_data;
    std::size_t m_offsetSize{0};
    std::size_t m_referenceSize{0};
    std::size_t m_count{0};
    std::size_t m_top{0};
    // Where the table of offsets begins and the objects end.
    std::uint64_t m_table{0};
};

} // namespace mac
