#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/propertylists/CFKeyedArchiverUID.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <vector>

namespace mac::test {

namespace {

constexpr std::string_view Digits = "0123456789abcdef";

std::string realText(double value) {
    if (std::isnan(value)) return "nan";
    std::array<char, 40> text{};
    auto const [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 17);
    return {text.data(), end};
}

void appendString(std::string& text, NSString const& string) {
    text += '"';
    for (char16_t const unit : string.codeUnits()) {
        if (unit >= 0x20 && unit < 0x7F && unit != u'"' && unit != u'\\') {
            text += static_cast<char>(unit);
            continue;
        }
        text += "\\u";
        for (int shift = 12; shift >= 0; shift -= 4)
            text += Digits[unit >> shift & 0xF];
    }
    text += '"';
}

void appendData(std::string& text, NSData const& data) {
    text += '<';
    for (std::byte const byte : data.span()) {
        text += Digits[std::to_integer<unsigned>(byte) >> 4];
        text += Digits[std::to_integer<unsigned>(byte) & 0xF];
    }
    text += '>';
}

void appendNumber(std::string& text, NSNumber const& number) {
    switch (number.kind()) {
    case NSNumber::Kind::Boolean:
        text += number.boolValue() ? "true" : "false";
        return;
    case NSNumber::Kind::Real:
        text.append("r").append(realText(number.doubleValue()));
        return;
    case NSNumber::Kind::Signed:
        text.append("i").append(std::to_string(number.longLongValue()));
        return;
    case NSNumber::Kind::Unsigned:
        text.append("i").append(std::to_string(number.unsignedLongLongValue()));
    }
}

void append(std::string& text, id const& value, CarriedBy form);

void appendArray(std::string& text, NSArray const& array, CarriedBy form) {
    text += '[';
    for (id const& element : array) {
        if (text.back() != '[') text += ',';
        append(text, element, form);
    }
    text += ']';
}

void appendDictionary(std::string& text, NSDictionary const& dictionary, CarriedBy form) {
    std::vector<NSString> keys;
    for (id const& key : dictionary.allKeys())
        keys.push_back(as<NSString>(key));
    std::ranges::sort(keys, {}, [](NSString const& key) { return key.codeUnits(); });
    text += '{';
    for (NSString const& key : keys) {
        if (text.back() != '{') text += ',';
        appendString(text, key);
        text += ':';
        append(text, dictionary.objectForKey_(key), form);
    }
    text += '}';
}

void append(std::string& text, id const& value, CarriedBy form) {
    if (value.isKindOfClass_(classOf<NSDictionary>())) {
        appendDictionary(text, as<NSDictionary>(value), form);
    } else if (value.isKindOfClass_(classOf<NSArray>())) {
        appendArray(text, as<NSArray>(value), form);
    } else if (value.isKindOfClass_(classOf<NSString>())) {
        appendString(text, as<NSString>(value));
    } else if (value.isKindOfClass_(classOf<NSData>())) {
        appendData(text, as<NSData>(value));
    } else if (value.isKindOfClass_(classOf<NSNumber>())) {
        appendNumber(text, as<NSNumber>(value));
    } else if (value.isKindOfClass_(classOf<NSDate>())) {
        // Text has no negative zero seconds; the sum has none either.
        double const seconds = as<NSDate>(value).timeIntervalSinceReferenceDate();
        text.append("d").append(realText(form == CarriedBy::Binary ? seconds : std::floor(seconds) + 0.0));
    } else if (value.isKindOfClass_(classOf<CFKeyedArchiverUIDRef>())) {
        std::string const number = std::to_string(CFKeyedArchiverUIDGetValue(as<CFKeyedArchiverUIDRef>(value)));
        text += form == CarriedBy::Binary ? "u" + number : "{\"CF$UID\":i" + number + "}";
    } else {
        text += "nil";
    }
}

} // namespace

std::string dump(id const& propertyList, CarriedBy form) {
    std::string text;
    append(text, propertyList, form);
    return text;
}

Reading readList(std::string_view bytes, NSPropertyListMutabilityOptions option) {
    Reading reading;
    NSString error;
    reading.list = NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(std::as_bytes(std::span(bytes))), option, &reading.format, &error);
    reading.error = error.UTF8String();
    return reading;
}

Writing writeList(id const& list, NSPropertyListFormat format) {
    NSString error;
    NSData const data =
        NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(list, format, &error);
    return {data.length() > 0 ? std::string(reinterpret_cast<char const*>(data.bytes()), data.length()) : std::string(),
            error.UTF8String()};
}

} // namespace mac::test
