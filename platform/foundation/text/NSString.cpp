#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/NSCharacterSet.h"
#include "platform/foundation/text/StringBody.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace mac {

namespace {

constexpr std::uint64_t hashMultiplier = 0x9E3779B97F4A7C15;

std::uint64_t mixedUnits(std::uint64_t value) {
    value ^= value >> 32;
    value *= hashMultiplier;
    return value ^ value >> 29;
}

// Four code units a step: hashing is what look-ups by path spend their time on.
std::uint64_t hashOfUnits(std::u16string_view units) {
    constexpr std::size_t step = sizeof(std::uint64_t) / sizeof(char16_t);
    std::uint64_t hash = mixedUnits(units.size() + hashMultiplier);
    while (!units.empty()) {
        std::size_t const count = std::min(step, units.size());
        std::uint64_t word = 0;
        std::memcpy(&word, units.data(), count * sizeof(char16_t));
        hash = mixedUnits(hash ^ word) + hashMultiplier;
        units.remove_prefix(count);
    }
    return mixedUnits(hash);
}

} // namespace

void requireArgument(id const& argument, char const* message) {
    if (argument == nil) throw NSInvalidArgumentException(std::string(message) + " nil argument");
}

void checkRange(NSRange range, std::size_t length, char const* message) {
    if (range.location <= length && range.length <= length - range.location) return;
    throw NSRangeException(std::string(message) + ": range {" + std::to_string(range.location) + ", " +
                           std::to_string(range.length) + "} out of bounds; string length " + std::to_string(length));
}

bool NSString::Body::isMutable() const { return isa().isSubclassOfClass_(classOf<NSMutableString>()); }

bool NSString::Body::isEqual(id const& other) const {
    if (other.body() == this) return true;
    // Without a handle, whose counting would take longer than most comparisons.
    return other.isKindOfClass_(classOf<NSString>()) &&
           areSameUnits(static_cast<Body const*>(other.body())->units(), units());
}

std::uint64_t NSString::Body::hash() const {
    std::uint64_t const known = m_hash.load(std::memory_order_relaxed);
    if (known != 0) return known;
    std::uint64_t const hash = std::max<std::uint64_t>(hashOfUnits(units()), 1);
    // A borrowed buffer may change unnoticed.
    if (!isBorrowed()) m_hash.store(hash, std::memory_order_relaxed);
    return hash;
}

NSString NSString::Body::description() const { return uncheckedCast<NSString>(copy()); }

id NSString::Body::copy() const {
    if (isMutable() || isBorrowed()) return makeString(std::u16string(units()));
    return id::retain(const_cast<Body*>(this));
}

id NSString::Body::mutableCopy() const { return adopt<NSMutableString>(std::u16string(units())); }

ClassDescription NSString::describeClass() {
    ClassDescription description{.name = "NSString", .superclass = classOf<NSObject>()};
    description.makeBody = makeEmptyBody<NSString>;
    description.methods = {
        method<&NSString::length>("length"),
        method<&NSString::characterAtIndex_>("characterAtIndex:"),
        method<&NSString::isEqualToString_>("isEqualToString:"),
        method<&NSString::compare_>("compare:"),
        method<&NSString::compare_options_>("compare:options:"),
        method<&NSString::caseInsensitiveCompare_>("caseInsensitiveCompare:"),
        method<&NSString::hasPrefix_>("hasPrefix:"),
        method<&NSString::hasSuffix_>("hasSuffix:"),
        method<&NSString::substringFromIndex_>("substringFromIndex:"),
        method<&NSString::substringToIndex_>("substringToIndex:"),
        method<&NSString::stringByAppendingString_>("stringByAppendingString:"),
        method<&NSString::componentsSeparatedByString_>("componentsSeparatedByString:"),
        method<&NSString::stringByTrimmingCharactersInSet_>("stringByTrimmingCharactersInSet:"),
        method<&NSString::lowercaseString>("lowercaseString"),
        method<&NSString::uppercaseString>("uppercaseString"),
        method<&NSString::capitalizedString>("capitalizedString"),
        method<&NSString::localizedCompare_>("localizedCompare:"),
        method<&NSString::localizedCaseInsensitiveCompare_>("localizedCaseInsensitiveCompare:"),
        method<&NSString::commonPrefixWithString_options_>("commonPrefixWithString:options:"),
        method<&NSString::componentsSeparatedByCharactersInSet_>("componentsSeparatedByCharactersInSet:"),
        method<&NSString::stringByPaddingToLength_withString_startingAtIndex_>(
            "stringByPaddingToLength:withString:startingAtIndex:"),
        method<&NSString::stringByReplacingOccurrencesOfString_withString_>(
            "stringByReplacingOccurrencesOfString:withString:"),
        method<&NSString::decomposedStringWithCanonicalMapping>("decomposedStringWithCanonicalMapping"),
        method<&NSString::precomposedStringWithCanonicalMapping>("precomposedStringWithCanonicalMapping"),
        method<&NSString::decomposedStringWithCompatibilityMapping>("decomposedStringWithCompatibilityMapping"),
        method<&NSString::precomposedStringWithCompatibilityMapping>("precomposedStringWithCompatibilityMapping"),
        method<&NSString::canBeConvertedToEncoding_>("canBeConvertedToEncoding:"),
        method<&NSString::stringByAddingPercentEscapesUsingEncoding_>("stringByAddingPercentEscapesUsingEncoding:"),
        method<&NSString::stringByReplacingPercentEscapesUsingEncoding_>(
            "stringByReplacingPercentEscapesUsingEncoding:"),
        method<&NSString::intValue>("intValue"),
        method<&NSString::integerValue>("integerValue"),
        method<&NSString::longLongValue>("longLongValue"),
        method<&NSString::doubleValue>("doubleValue"),
        method<&NSString::floatValue>("floatValue"),
        method<&NSString::boolValue>("boolValue"),
        method<&NSString::isAbsolutePath>("isAbsolutePath"),
        method<&NSString::pathComponents>("pathComponents"),
        method<&NSString::lastPathComponent>("lastPathComponent"),
        method<&NSString::pathExtension>("pathExtension"),
        method<&NSString::stringByAppendingPathComponent_>("stringByAppendingPathComponent:"),
        method<&NSString::stringByAppendingPathExtension_>("stringByAppendingPathExtension:"),
        method<&NSString::stringByDeletingLastPathComponent>("stringByDeletingLastPathComponent"),
        method<&NSString::stringByDeletingPathExtension>("stringByDeletingPathExtension"),
        method<&NSString::stringByExpandingTildeInPath>("stringByExpandingTildeInPath"),
        method<&NSString::stringByAbbreviatingWithTildeInPath>("stringByAbbreviatingWithTildeInPath"),
        method<&NSString::stringByStandardizingPath>("stringByStandardizingPath"),
        method<&NSString::stringByResolvingSymlinksInPath>("stringByResolvingSymlinksInPath"),
    };
    return description;
}

id id::stringOfLiteral(std::string_view utf8) { return makeString(unitsFromFileSystemBytes(utf8)); }

NSString NSString::string() {
    // Never destroyed: objects may ask for it until the program's last instruction.
    static NSString const& empty = *std::make_unique<NSString>(makeString({})).release();
    return empty;
}

NSString NSString::stringWithUTF8String_(std::string_view utf8) {
    std::optional<std::u16string> units = unitsFromUTF8(utf8);
    return units ? makeString(std::move(*units)) : NSString(nil);
}

NSString NSString::stringWithFileSystemRepresentation_(std::string_view bytes) {
    return makeString(unitsFromFileSystemBytes(bytes));
}

NSString NSString::stringWithCodeUnits(std::u16string_view units) { return makeString(std::u16string(units)); }

NSString NSString::stringWithCharacters_length_(unichar const* characters, NSUInteger length) {
    if (!characters && length > 0) throw NSInvalidArgumentException("stringWithCharacters:length: nil argument");
    return makeString(std::u16string(characters, length));
}

NSString NSString::stringWithString_(NSString const& other) {
    requireArgument(other, "stringWithString:");
    return uncheckedCast<NSString>(other.copy());
}

NSString NSString::stringWithCharactersNoCopy_length_(unichar const* characters, NSUInteger length) {
    if (length == 0) return string();
    if (!characters) throw NSInvalidArgumentException("stringWithCharactersNoCopy:length: nil argument");
    return adopt<NSString>(std::u16string_view(characters, length));
}

NSUInteger NSString::length() const { return static_cast<NSUInteger>(codeUnits().size()); }

unichar NSString::characterAtIndex_(NSUInteger index) const {
    std::u16string_view const units = codeUnits();
    if (*this == nil) return 0;
    if (index >= units.size())
        throw NSRangeException("characterAtIndex: index " + std::to_string(index) + " out of bounds; string length " +
                               std::to_string(units.size()));
    return units[index];
}

std::u16string_view NSString::codeUnits() const {
    Body const* const body = bodyOf(*this);
    return body ? body->units() : std::u16string_view();
}

std::string NSString::UTF8String() const { return utf8FromUnits(codeUnits()); }

std::optional<std::string> NSString::fileSystemRepresentation() const {
    std::u16string_view const units = codeUnits();
    if (units.empty()) return std::nullopt;
    return fileSystemBytesFromUnits(units);
}

bool NSString::isEqualToString_(NSString const& other) const {
    return *this != nil && other != nil && areSameUnits(codeUnits(), other.codeUnits());
}

NSString NSString::substringFromIndex_(NSUInteger index) const {
    std::u16string_view const units = codeUnits();
    if (*this == nil) return nil;
    checkRange({index, 0}, units.size(), "substringFromIndex:");
    return stringWithCodeUnits(units.substr(index));
}

NSString NSString::substringToIndex_(NSUInteger index) const {
    std::u16string_view const units = codeUnits();
    if (*this == nil) return nil;
    checkRange({0, index}, units.size(), "substringToIndex:");
    return stringWithCodeUnits(units.substr(0, index));
}

NSString NSString::substringWithRange_(NSRange range) const {
    std::u16string_view const units = codeUnits();
    if (*this == nil) return nil;
    checkRange(range, units.size(), "substringWithRange:");
    return stringWithCodeUnits(units.substr(range.location, range.length));
}

void NSString::getCharacters_(unichar* buffer) const { getCharacters_range_(buffer, {0, length()}); }

void NSString::getCharacters_range_(unichar* buffer, NSRange range) const {
    if (*this == nil) return;
    checkRange(range, codeUnits().size(), "getCharacters:range:");
    std::ranges::copy(codeUnits().substr(range.location, range.length), buffer);
}

NSString NSString::stringByPaddingToLength_withString_startingAtIndex_(NSUInteger length, NSString const& padding,
                                                                       NSUInteger index) const {
    if (*this == nil) return nil;
    std::u16string units(codeUnits().substr(0, length));
    if (units.size() == length) return makeString(std::move(units));
    std::u16string_view const pad = padding.codeUnits();
    if (pad.empty()) throw NSInvalidArgumentException("stringByPaddingToLength:withString:startingAtIndex: no padding");
    checkRange({index, 1}, pad.size(), "stringByPaddingToLength:withString:startingAtIndex:");
    units.reserve(length);
    for (std::size_t next = index; units.size() < length; next = (next + 1) % pad.size())
        units.push_back(pad[next]);
    return makeString(std::move(units));
}

NSString NSString::stringByAppendingString_(NSString const& other) const {
    if (*this == nil) return nil;
    requireArgument(other, "stringByAppendingString:");
    std::u16string_view const head = codeUnits();
    std::u16string_view const tail = other.codeUnits();
    std::u16string units;
    units.reserve(head.size() + tail.size());
    units.append(head).append(tail);
    return makeString(std::move(units));
}

} // namespace mac
