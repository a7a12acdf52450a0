#include "coreutils/Strings.h"
#include "platform/foundation/collections/WordSum.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/numbers/NSNumberFormatter.h"
#include "platform/foundation/objects/CFUUID.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/UnitSearch.h"
#include <array>
#include <memory>
#include <string>

namespace mac {

namespace {

std::uint32_t sumOf(NSData const& data) {
    // The length is a signed number (specified so): data of 2 GiB and more counts as empty.
    if (static_cast<std::int32_t>(data.length()) < 0) return 0;
    return sumOfWords(data.span());
}

NSNumberFormatter sizeFormatter() {
    static NSNumberFormatter const& formatter = [] {
        NSNumberFormatter made = NSNumberFormatter::alloc().init();
        made.setFormat_("0.0;0;-0.0");
        made.setLocalizesFormat_(YES);
        // Never destroyed: it may be asked until the program's last instruction.
        return std::ref(*std::make_unique<NSNumberFormatter>(made).release());
    }();
    return formatter;
}

std::size_t countOf(UnitSearch const& search, std::u16string_view text) {
    std::size_t count = 0;
    search.forEachIn(text, [&](std::size_t) { ++count; });
    return count;
}

} // namespace

NSUInteger pxCountOf_(NSString receiver, NSString substring) {
    return static_cast<NSUInteger>(countOf(UnitSearch(substring.codeUnits()), receiver.codeUnits()));
}

bool pxContainsCharactersInString_(NSString receiver, NSString characters) {
    if (receiver.length() == 0) return false;
    NSCharacterSet const set = NSCharacterSet::characterSetWithCharactersInString_(characters);
    return receiver.rangeOfCharacterFromSet_(set).location != NSNotFound;
}

NSString pxStringByRemovingCharactersInSet_(NSString receiver, NSCharacterSet set) {
    if (receiver == nil) return nil;
    std::u16string kept;
    kept.reserve(receiver.length());
    for (char16_t const unit : receiver.codeUnits()) {
        if (!set.characterIsMember_(unit)) kept.push_back(unit);
    }
    return NSString::stringWithCodeUnits(kept);
}

NSString pxStringBySubstituting_with_(NSString receiver, NSString target, NSString replacement) {
    if (receiver == nil) return nil;
    if (target == nil) throw NSInvalidArgumentException("pxStringBySubstituting:with: nil target");
    std::u16string_view const text = receiver.codeUnits();
    std::u16string_view const sought = target.codeUnits();
    std::u16string_view const put = replacement.codeUnits();
    UnitSearch const search(sought);
    std::size_t const count = countOf(search, text);
    std::u16string result;
    result.reserve(text.size() - count * sought.size() + count * put.size());
    std::size_t copied = 0;
    search.forEachIn(text, [&](std::size_t place) {
        result.append(text.substr(copied, place - copied)).append(put);
        copied = place + sought.size();
    });
    result.append(text.substr(copied));
    return NSString::stringWithCodeUnits(result);
}

NSString pxUUID() { return CFUUIDCreateString(kCFAllocatorDefault, CFUUIDCreate(kCFAllocatorDefault)); }

int pxChecksum(NSData receiver) {
    if (receiver == nil) return 0;
    return checksumOfWordSum(sumOf(receiver));
}

NSString pxFormattedStringWithSize_(std::uint64_t size) {
    constexpr double factor = 1.0 / 1024;
    double const kilobytes = static_cast<double>(size) * factor;
    double const megabytes = kilobytes * factor;
    double const gigabytes = megabytes * factor;
    double const terabytes = gigabytes * factor;
    struct Unit {
        double value;
        char const* name;
    };
    for (Unit const& unit : std::array{Unit{terabytes, "TB"}, Unit{gigabytes, "GB"}, Unit{megabytes, "MB"}}) {
        if (unit.value > 1.0)
            return NSString::stringWithFormat_(
                "%@ %s", sizeFormatter().stringFromNumber_(NSNumber::numberWithDouble_(unit.value)), unit.name);
    }
    if (kilobytes > 1.0) return NSString::stringWithFormat_("%d KB", static_cast<int>(kilobytes));
    return NSString::stringWithFormat_("%u Bytes", static_cast<std::uint32_t>(size));
}

NSString pxDescriptionOfSystemErrorCode_(std::int32_t code) {
    if (code == 0) return nil;
    auto const bits = static_cast<std::uint32_t>(code);
    std::uint32_t const system = bits >> 26;
    std::uint32_t const subsystem = bits >> 14 & 0xFFF;
    std::uint32_t const number = bits & 0x3FFF;
    return NSString::stringWithFormat_("%08X(sys=%08X sub=%08X code=%08X=%d)", bits, system, subsystem, number, number);
}

} // namespace mac
