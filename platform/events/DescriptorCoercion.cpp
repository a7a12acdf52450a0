#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/foundation/text/Encodings.h"
#include <cstring>
#include <map>
#include <mutex>

namespace mac {

namespace {

constexpr char16_t ByteOrderMark = 0xFEFF;
constexpr char16_t SwappedByteOrderMark = 0xFFFE;
constexpr FourCharCode Yes{"yes "};
constexpr FourCharCode No{"no  "};

std::string_view characters(std::span<std::byte const> bytes) {
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

std::span<std::byte const> bytesOfText(std::string_view text) { return std::as_bytes(std::span(text)); }

// The UTF-16 code units in the byte order that the mark or the type tells; lone surrogates stay.
std::optional<std::u16string> unitsOf(std::span<std::byte const> bytes, bool isSwapped) {
    if (bytes.size() % sizeof(char16_t) != 0) return std::nullopt;
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    if (!bytes.empty()) std::memcpy(units.data(), bytes.data(), bytes.size());
    if (units.starts_with(SwappedByteOrderMark)) isSwapped = true;
    bool const isMarked = units.starts_with(ByteOrderMark) || units.starts_with(SwappedByteOrderMark);
    if (units.starts_with(ByteOrderMark)) isSwapped = false;
    if (isSwapped) {
        for (char16_t& unit : units)
            unit = static_cast<char16_t>(unit << 8 | unit >> 8);
    }
    return isMarked ? units.substr(1) : units;
}

bool isCodeType(DescType type) {
    return type == typeEnumerated || type == typeType || type == typeKeyword || type == typeProperty;
}

bool isTextType(DescType type) {
    return type == typeText || type == typeUnicodeText || type == typeUTF8Text ||
           type == typeUTF16ExternalRepresentation;
}

std::optional<FourCharCode> codeOf(AEDesc const& desc) {
    if (isCodeType(desc.descriptorType)) {
        std::optional<std::uint32_t> const value = valueOf<std::uint32_t>(desc, desc.descriptorType);
        return value ? std::optional(FourCharCode(*value)) : std::nullopt;
    }
    if (desc.descriptorType == typeTrue || desc.descriptorType == typeFalse) return desc.descriptorType;
    std::optional<std::u16string> const text = plainTextOf(desc);
    return text ? codeOfText(*text) : std::nullopt;
}

std::optional<bool> truthOfText(std::u16string_view text) {
    NSString const string = NSString::stringWithCodeUnits(text);
    if (string.caseInsensitiveCompare_("true") == NSOrderedSame) return true;
    if (string.caseInsensitiveCompare_("false") == NSOrderedSame) return false;
    return std::nullopt;
}

std::optional<bool> truthOf(AEDesc const& desc) {
    if (std::optional<std::u16string> const text = plainTextOf(desc)) return truthOfText(*text);
    if (std::optional<DescriptorNumber> const number = numberOf(desc)) return number->asReal() != 0;
    if (desc.descriptorType != typeEnumerated) return std::nullopt;
    std::optional<FourCharCode> const code = codeOf(desc);
    if (code == typeTrue || code == Yes) return true;
    if (code == typeFalse || code == No) return false;
    return std::nullopt;
}

std::optional<std::u16string> textOf(AEDesc const& desc) {
    if (std::optional<std::u16string> text = plainTextOf(desc)) return text;
    if (desc.descriptorType == typeTrue) return u"true";
    if (desc.descriptorType == typeFalse) return u"false";
    if (std::optional<std::uint8_t> const flag = valueOf<std::uint8_t>(desc, typeBoolean))
        return *flag ? u"true" : u"false";
    if (std::optional<FourCharCode> const code = codeOf(desc)) return textOfCode(*code);
    std::optional<DescriptorNumber> const number = numberOf(desc);
    return number ? std::optional(number->text()) : std::nullopt;
}

std::optional<AEDesc> asText(AEDesc const& desc, DescType type) {
    std::optional<std::u16string> const text = textOf(desc);
    if (!text) return std::nullopt;
    if (type == typeUnicodeText) return makeText(*text);
    if (type == typeUTF16ExternalRepresentation) {
        std::u16string const marked = ByteOrderMark + *text;
        return makeDesc(type, std::as_bytes(std::span(marked)));
    }
    // A lone surrogate has no UTF-8 form, so text with one is not converted rather than changed.
    if (unitsFromUTF8(utf8FromUnits(*text)) != text) return std::nullopt;
    return makeDesc(type, bytesOfText(utf8FromUnits(*text)));
}

std::optional<AEDesc> asNumber(AEDesc const& desc, DescType type) {
    std::optional<DescriptorNumber> number = numberOf(desc);
    if (!number) {
        std::optional<std::u16string> const text = plainTextOf(desc);
        number = text ? DescriptorNumber::read(*text) : std::nullopt;
    }
    return number ? number->as(type) : std::nullopt;
}

std::optional<AEDesc> asTruth(AEDesc const& desc, DescType type) {
    std::optional<bool> const truth = truthOf(desc);
    if (!truth) return std::nullopt;
    if (type == typeBoolean) return makeDescOf(type, static_cast<std::uint8_t>(*truth ? 1 : 0));
    return *truth == (type == typeTrue) ? std::optional(AEDesc{type, nullptr}) : std::nullopt;
}

std::optional<AEDesc> asList(AEDesc const& desc) {
    DescriptorContents const& contents = contentsOf(desc);
    AEDesc list = makeContainer(typeAEList, DescriptorForm::List);
    if (contents.form == DescriptorForm::Bytes || contents.form == DescriptorForm::Event) {
        return putItem(list, 0, desc) ? std::optional(list) : std::nullopt;
    }
    for (DescriptorEntry const& entry : contents.entries)
        putItem(list, 0, entry.desc);
    return list;
}

// Converts a record to one of another type, and an event to the record of its parameters.
std::optional<AEDesc> asContainer(AEDesc const& desc, DescType type) {
    DescriptorContents const& contents = contentsOf(desc);
    bool const isContainerType = !isTextType(type) && !isCodeType(type) && !isNumberType(type) && type != typeNull &&
                                 type != typeAppleEvent && type != typeTrue && type != typeFalse;
    if (!isContainerType) return std::nullopt;
    if (contents.form == DescriptorForm::Record) return AEDesc{type, desc.dataHandle};
    if (contents.form != DescriptorForm::Event || type != typeAERecord) return std::nullopt;
    AEDesc record = makeContainer(type, DescriptorForm::Record);
    for (DescriptorEntry const& entry : contents.entries)
        putEntry(record, entry.keyword, entry.desc);
    return record;
}

std::optional<AEDesc> convertedHere(AEDesc const& desc, DescType type) {
    DescriptorContents const& contents = contentsOf(desc);
    if (type == typeAEList) return asList(desc);
    if (contents.form == DescriptorForm::List)
        return contents.entries.size() == 1 ? coerced(contents.entries.front().desc, type) : std::nullopt;
    if (contents.form != DescriptorForm::Bytes) return asContainer(desc, type);
    if (type == typeData) return AEDesc{type, desc.dataHandle};
    if (isTextType(type)) return asText(desc, type);
    if (type == typeBoolean || type == typeTrue || type == typeFalse) return asTruth(desc, type);
    if (isNumberType(type)) return asNumber(desc, type);
    if (!isCodeType(type)) return std::nullopt;
    std::optional<FourCharCode> const code = codeOf(desc);
    return code ? std::optional(makeDescOf(type, code->value())) : std::nullopt;
}

using Pair = std::pair<std::uint32_t, std::uint32_t>;
std::mutex s_lock;

std::map<Pair, AECoercionHandler>& coercionHandlers() {
    static std::map<Pair, AECoercionHandler> handlers;
    return handlers;
}

AECoercionHandler handlerFor(DescType fromType, DescType toType) {
    std::lock_guard const guard(s_lock);
    auto const found = coercionHandlers().find({fromType.value(), toType.value()});
    return found == coercionHandlers().end() ? nullptr : found->second;
}

} // namespace

std::optional<std::u16string> plainTextOf(AEDesc const& desc) {
    if (auto const bytes = bytesOf(desc, typeUnicodeText)) return unitsOf(*bytes, false);
    // Bytes without a byte order mark are big-endian.
    if (auto const bytes = bytesOf(desc, typeUTF16ExternalRepresentation))
        return unitsOf(*bytes, std::endian::native == std::endian::little);
    if (auto const bytes = bytesOf(desc, typeUTF8Text)) return unitsFromUTF8(characters(*bytes));
    auto const bytes = bytesOf(desc, typeText);
    if (!bytes) return std::nullopt;
    std::optional<std::u16string> text = unitsFromUTF8(characters(*bytes));
    return text ? text : unitsFromBytes(characters(*bytes), NSMacOSRomanStringEncoding);
}

// Readers take U+FEFF at the beginning for a byte order mark, so text that begins with that character, or with its
// swapped bytes, gets a mark before it.
AEDesc makeText(std::u16string_view units) {
    bool const looksMarked = units.starts_with(ByteOrderMark) || units.starts_with(SwappedByteOrderMark);
    if (!looksMarked) return makeDesc(typeUnicodeText, std::as_bytes(std::span(units)));
    std::u16string const marked = ByteOrderMark + std::u16string(units);
    return makeDesc(typeUnicodeText, std::as_bytes(std::span(marked)));
}

std::optional<AEDesc> coerced(AEDesc const& desc, DescType toType) {
    if (desc.descriptorType == toType || toType == typeWildCard) return desc;
    if (AECoercionHandler const handler = handlerFor(desc.descriptorType, toType)) {
        AEDesc result;
        return handler(desc, toType, result) == noErr ? std::optional(result) : std::nullopt;
    }
    return convertedHere(desc, toType);
}

OSErr AEInstallCoercionHandler(DescType fromType, DescType toType, AECoercionHandler handler) {
    if (!handler) return paramErr;
    std::lock_guard const guard(s_lock);
    coercionHandlers()[{fromType.value(), toType.value()}] = handler;
    return noErr;
}

} // namespace mac
