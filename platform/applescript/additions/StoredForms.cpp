#include "platform/applescript/additions/StoredForms.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/foundation/text/Encodings.h"
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

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

// The number as four bytes hold it, which are two bits more than the language's integers have; nullopt for what is no
// whole number of that size.
std::optional<std::int32_t> storedInteger(Value const& value) {
    if (value.is(ValueKind::Integer)) return value.asInteger();
    if (!value.is(ValueKind::Real)) return {};
    double const number = value.asReal();
    bool const fits = number >= std::numeric_limits<std::int32_t>::min() &&
                      number <= std::numeric_limits<std::int32_t>::max() && number == std::trunc(number);
    return fits ? std::optional(static_cast<std::int32_t>(number)) : std::nullopt;
}

Value realIn(std::string_view bytes) {
    double const number = std::bit_cast<double>(bigEndianIn(bytes, RealBytes));
    if (!std::isfinite(number)) throw plainError(errors::CorruptData);
    return Value::real(number);
}

bool isComposed(Code type) { return type == codes::ListType || type == codes::RecordType; }

std::string composedBytes(Value const& value) {
    Result<std::vector<std::byte>, Failure> const flat = flattened(descriptorOfValue(value));
    if (!flat.hasValue()) throw plainError(errors::ValueTooLarge);
    std::string bytes(Mark);
    bytes += bigEndian(flat.value().size(), SizeBytes);
    bytes.append(reinterpret_cast<char const*>(flat.value().data()), flat.value().size());
    return bytes;
}

// The size of a list or record that begins with these bytes, with what stands before its descriptor.
std::size_t composedSize(std::string_view bytes) {
    if (bytes.size() < Mark.size() + SizeBytes) throw plainError(errors::EndOfFile);
    if (!bytes.starts_with(Mark)) throw plainError(errors::CorruptData);
    return Mark.size() + SizeBytes + static_cast<std::size_t>(bigEndianIn(bytes.substr(Mark.size()), SizeBytes));
}

StoredValue composedIn(std::string_view bytes, Code type) {
    std::size_t const size = composedSize(bytes);
    if (bytes.size() < size) throw plainError(errors::EndOfFile);
    std::string_view const flat = bytes.substr(0, size).substr(Mark.size() + SizeBytes);
    Result<AEDesc, Failure> const desc = unflattened(std::as_bytes(std::span(flat)));
    if (!desc.hasValue()) throw plainError(errors::CorruptData);
    Value value = valueOfDescriptor(desc.value());
    if (!isOfClass(value, type)) throw plainError(errors::CorruptData);
    return {.value = std::move(value), .size = size};
}

} // namespace

bool isStoredClass(Code type) {
    return type == codes::IntegerType || type == codes::RealType || type == codes::BooleanType ||
           type == codes::DateType || isComposed(type);
}

std::string storedBytes(Value const& value, Code type) {
    bool const isInteger = type == codes::IntegerType;
    std::optional<std::int32_t> const integer = isInteger ? storedInteger(value) : std::nullopt;
    if (isInteger ? !integer : !isOfClass(value, type)) throw cannotMake(value, type);
    switch (type) {
    case codes::IntegerType:
        return bigEndian(static_cast<std::uint32_t>(*integer), IntegerBytes);
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

std::size_t storedSize(std::string_view beginning, Code type) {
    switch (type) {
    case codes::IntegerType:
        return IntegerBytes;
    case codes::BooleanType:
        return 1;
    case codes::RealType:
    case codes::DateType:
        return RealBytes;
    default:
        return composedSize(beginning);
    }
}

StoredValue storedValueIn(std::string_view bytes, Code type) {
    switch (type) {
    case codes::IntegerType:
        return {.value = Value::number(static_cast<std::int32_t>(bigEndianIn(bytes, IntegerBytes))),
                .size = IntegerBytes};
    case codes::RealType:
        return {.value = realIn(bytes), .size = RealBytes};
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

namespace {

// What every version begins with, and this one.
constexpr std::string_view AnyVersion = "%Framekeeper script ";
constexpr std::string_view ThisVersion = "%Framekeeper script 1, ";
constexpr std::string_view EndOfLine = " bytes\n";

// The rest behind the beginning, of which the text may hold a part only.
std::string_view restBehind(std::string_view beginning, std::string_view text) {
    if (text.starts_with(beginning)) return text.substr(beginning.size());
    throw plainError(beginning.starts_with(text) ? errors::EndOfFile : errors::CorruptData);
}

} // namespace

std::string storedScript(std::u16string const& source) {
    std::string const text = utf8FromUnits(source);
    if (text.size() > MostScriptBytes) throw plainError(errors::ValueTooLarge);
    if (unitsFromUTF8(text) != source) throw plainError(errors::CannotCoerce);
    return std::string(ThisVersion) + std::to_string(text.size()) + std::string(EndOfLine) + text;
}

std::optional<std::u16string> sourceInStoredScript(std::string_view bytes) {
    bool const isStart = !bytes.empty() && AnyVersion.starts_with(bytes);
    if (!isStart && !bytes.starts_with(AnyVersion)) return {};
    std::string_view const numbered = restBehind(ThisVersion, bytes);
    std::size_t count = 0;
    char const* const end = numbered.data() + numbered.size();
    std::from_chars_result const read = std::from_chars(numbered.data(), end, count);
    if (numbered.empty()) throw plainError(errors::EndOfFile);
    if (read.ec == std::errc::result_out_of_range) throw plainError(errors::ValueTooLarge);
    if (read.ec != std::errc()) throw plainError(errors::CorruptData);
    std::string_view const text =
        restBehind(EndOfLine, numbered.substr(static_cast<std::size_t>(read.ptr - numbered.data())));
    if (count > MostScriptBytes) throw plainError(errors::ValueTooLarge);
    if (text.size() != count) throw plainError(text.size() < count ? errors::EndOfFile : errors::CorruptData);
    std::optional<std::u16string> source = unitsFromUTF8(text);
    if (!source) throw plainError(errors::CorruptData);
    return source;
}

} // namespace mac::applescript
