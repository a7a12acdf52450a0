#include "fuzz/Trials.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/StringBody.h"
#include <cmath>
#include <limits>

namespace mac::fuzz {

namespace {

constexpr std::size_t MostArguments = 16;
// A format of so many units has at most half as many conversions, each of which prints at most so much.
constexpr std::size_t LongestConversion = 65536 + 1100;

FormatArgument argumentOf(unsigned char choice) {
    switch (choice % 16) {
    case 0:
        return 0;
    case 1:
        return -1;
    case 2:
        return std::numeric_limits<long long>::min();
    case 3:
        return std::numeric_limits<unsigned long long>::max();
    case 4:
        return -0.0;
    case 5:
        return 1.7976931348623157e308;
    case 6:
        return std::nan("");
    case 7:
        return HUGE_VAL;
    case 8:
        return NSString("text of \xC3\xA9");
    case 9:
        return nil;
    case 10:
        return static_cast<char const*>(nullptr);
    case 11:
        return "bytes";
    case 12:
        return NSNumber::numberWithDouble_(-2.5);
    case 13:
        return u"units";
    case 14:
        return static_cast<void const*>(nullptr);
    default:
        return static_cast<int>(choice) * 1000;
    }
}

std::u16string withPercentsDoubled(std::u16string_view text) {
    std::u16string doubled;
    for (char16_t const unit : text) {
        doubled.push_back(unit);
        if (unit == u'%') doubled.push_back(unit);
    }
    return doubled;
}

} // namespace

std::string complaintAboutFormat(std::string_view bytes) {
    std::size_t const end = std::min(bytes.find('\n'), bytes.size());
    std::vector<FormatArgument> arguments;
    for (char const choice : bytes.substr(0, std::min(end, MostArguments)))
        arguments.push_back(argumentOf(static_cast<unsigned char>(choice)));
    NSString const format =
        NSString::stringWithFileSystemRepresentation_(bytes.substr(std::min(end + 1, bytes.size())));
    NSString const result = formatString(format, arguments);
    std::size_t const conversions = format.length() / 2 + 1;
    if (result.length() > format.length() + conversions * LongestConversion) return "the text is too long";
    if (!formatString(format, arguments).isEqualToString_(result)) return "the text differs the second time";
    NSString const doubled = makeString(withPercentsDoubled(format.codeUnits()));
    if (!formatString(doubled, arguments).isEqualToString_(format)) return "a doubled % is not a single one";
    return {};
}

} // namespace mac::fuzz
