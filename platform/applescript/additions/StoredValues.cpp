#include "platform/applescript/additions/StoredValues.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/events/FlatDescriptor.h"
#include <bit>

namespace mac::applescript {

namespace {

// Before the size of a list or record.
constexpr std::string_view Mark = "FKd1";
constexpr std::size_t SizeBytes = 4;

std::string bigEndian(std::uint64_t number, std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t index = count; index > 0; --index) {
        bytes[index - 1] = static_cast<char>(number & 0xFFU);
        number >>= 8U;
    }
    return bytes;
}

// The number in the first bytes; throws if there are fewer.
std::uint64_t bigEndianIn(std::string_view bytes, std::size_t count) {
    if (bytes.size() < count) throw plainError(errors::EndOfFile);
    std::uint64_t number = 0;
    for (char const byte : bytes.substr(0, count))
        number = number << 8U | static_cast<unsigned char>(byte);
    return number;
}

constexpr std::size_t IntegerBytes = 4;
constexpr std::size_t RealBytes = 8;

bool isComposed(Code type) { return type == codes::ListType || type == codes::RecordType; }

std::string composedBytes(Value const& value) {
    Result<std::vector<std::byte>, Failure> const flat = flattened(descriptorOfValue(value));
    if (!flat.hasValue()) throw plainError(errors::ValueTooLarge);
    std::string bytes(Mark);
    bytes += bigEndian(flat.value().size(), SizeBytes);
    bytes.append(reinterpret_cast<char const*>(flat.value().data()), flat.value().size());
    return bytes;
}

StoredValue composedIn(std::string_view bytes, Code type) {
    if (bytes.size() < Mark.size() + SizeBytes) throw plainError(errors::EndOfFile);
    if (!bytes.starts_with(Mark)) throw plainError(errors::CorruptData);
    std::uint64_t const size = bigEndianIn(bytes.substr(Mark.size()), SizeBytes);
    std::string_view const rest = bytes.substr(Mark.size() + SizeBytes);
    if (rest.size() < size) throw plainError(errors::EndOfFile);
    Result<AEDesc, Failure> const desc = unflattened(std::as_bytes(std::span(rest.substr(0, size))));
    if (!desc.hasValue()) throw plainError(errors::CorruptData);
    Value value = valueOfDescriptor(desc.value());
    if (!isOfClass(value, type)) throw plainError(errors::CorruptData);
    return {.value = std::move(value), .size = Mark.size() + SizeBytes + static_cast<std::size_t>(size)};
}

} // namespace

bool isStoredClass(Code type) {
    return type == codes::IntegerType || type == codes::RealType || type == codes::BooleanType ||
           type == codes::DateType || isComposed(type);
}

std::string storedBytes(Value const& value, Code type) {
    if (!isOfClass(value, type)) throw cannotMake(value, type);
    switch (type) {
    case codes::IntegerType:
        return bigEndian(static_cast<std::uint32_t>(value.asInteger()), IntegerBytes);
    case codes::RealType:
        return bigEndian(std::bit_cast<std::uint64_t>(value.asReal()), RealBytes);
    case codes::BooleanType:
        return std::string(1, value.asBoolean() ? '\1' : '\0');
    case codes::DateType:
        return bigEndian(static_cast<std::uint64_t>(value.seconds()), RealBytes);
    default:
        return composedBytes(value);
    }
}

StoredValue storedValueIn(std::string_view bytes, Code type) {
    switch (type) {
    case codes::IntegerType:
        return {.value = Value::number(static_cast<std::int32_t>(bigEndianIn(bytes, IntegerBytes))),
                .size = IntegerBytes};
    case codes::RealType:
        return {.value = Value::real(std::bit_cast<double>(bigEndianIn(bytes, RealBytes))), .size = RealBytes};
    case codes::BooleanType:
        return {.value = Value::boolean(bigEndianIn(bytes, 1) != 0), .size = 1};
    case codes::DateType: {
        // Beyond these the calendar has no names for years.
        constexpr std::int64_t most = std::int64_t{1} << 40;
        auto const seconds = static_cast<std::int64_t>(bigEndianIn(bytes, RealBytes));
        if (seconds < -most || seconds > most) throw plainError(errors::CorruptData);
        return {.value = Value::date(seconds), .size = RealBytes};
    }
    default:
        return composedIn(bytes, type);
    }
}

} // namespace mac::applescript
