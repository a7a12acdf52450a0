#include "platform/applescript/language/ErrorNumbers.h"
#include <algorithm>
#include <array>

namespace mac::applescript {

namespace {

struct NumberedText {
    std::int32_t number;
    std::u16string_view text;
};

constexpr auto Texts = std::to_array<NumberedText>({
    {-34, u"Disk some object is full."},
    {-35, u"Disk some object wasn’t found."},
    {-37, u"Bad name for file some object."},
    {-38, u"File some object wasn’t open."},
    {-39, u"End of file error."},
    {-43, u"File some object wasn’t found."},
    {-44, u"Disk some object is write protected."},
    {-45, u"File some object is locked."},
    {-46, u"Disk some object is locked."},
    {-47, u"File some object is busy."},
    {-48, u"Duplicate file name some object."},
    {-49, u"File some object is already open."},
    {-50, u"Parameter error."},
    {-54, u"File permission error."},
    {-61, u"File not open with write permission."},
    {-108, u"Out of memory."},
    {-120, u"Folder some object wasn’t found."},
    {-128, u"User canceled."},
    {-600, u"Application isn’t running."},
    {-606, u"Application is background-only."},
    {-609, u"Connection is invalid."},
    {-1700, u"Can’t make some data into the expected type."},
    {-1701, u"Some parameter is missing for some event."},
    {-1703, u"Some data is the wrong type."},
    {-1704, u"Some parameter was invalid."},
    {-1708, u"Some object doesn’t understand the “some event” message."},
    {-1712, u"AppleEvent timed out."},
    {-1713, u"No user interaction allowed."},
    {-1715, u"Some parameter is not understood."},
    {-1717, u"The handler some event is not defined."},
    {-1719, u"Can’t get some object. Invalid index."},
    {-1720, u"Invalid range."},
    {-1721, u"Some object doesn’t match the parameters some parameter for some event."},
    {-1723, u"Can’t get some object. Access not allowed."},
    {-1728, u"Can’t get some object."},
    {-1743, u"Not authorized to send Apple events to some object."},
    {-1753, u"Script error."},
    {-1756, u"Source not available."},
    {-2700, u"An error has occurred."},
    {-2701, u"Can’t divide some number by zero."},
    {-2702, u"The result of a numeric operation was too large."},
    {-2703, u"Some object can’t be launched because it is not an application."},
    {-2704, u"Some object isn’t scriptable."},
    {-2706, u"Stack overflow."},
    {-2707, u"Internal table overflow."},
    {-2708, u"Attempt to create a value larger than the allowable size."},
    {-2710, u"Can’t make some class."},
    {-2720, u"Can’t both consider and ignore some attribute."},
    {-2721, u"Can’t perform operation on text longer than 32K bytes."},
    {-2740, u"A some token can’t go after this some token."},
    {-2741, u"Expected some token but found some other token."},
    {-2750, u"Some parameter is specified more than once."},
    {-2751, u"Some property is specified more than once."},
    {-2752, u"Some handler is specified more than once."},
    {-2753, u"The variable some object is not defined."},
    {-2754, u"Can’t declare some object as both a local and global variable."},
    {-2755, u"Exit statement was not in a repeat loop."},
    {-2760, u"Tell statements are nested too deeply."},
    {-2761, u"Some object is illegal as a formal parameter."},
    {-2762, u"Some object is not a parameter name for the event some event."},
    {-2763, u"No result was returned from some part of this expression."},
    {-2789,
     u"The run handler is specified more than once, or there were top-level commands in addition to the run handler."},
    {-10000, u"AppleEvent handler failed."},
    {-10001, u"A descriptor type mismatch occurred."},
    {-10003, u"Can’t set some object to some data. Access not allowed."},
    {-10004, u"A privilege violation occurred."},
    {-10006, u"Can’t set some object to some data."},
    {-10008, u"The specified object is a property, not an element."},
    {-10010, u"Handler can’t handle objects of this class."},
    {-10014, u"Handler only handles single objects."},
    {-10024, u"Can’t make or move that element into that container."},
    {-10025, u"That setting conflicts with other settings for that object."},
});

std::u16string decimalNumber(std::int32_t number) {
    std::string const digits = std::to_string(number);
    return std::u16string(digits.begin(), digits.end());
}

} // namespace

std::u16string messageOfNumber(std::int32_t number) {
    auto const* const found = std::ranges::find(Texts, number, &NumberedText::number);
    if (found != Texts.end()) return std::u16string(found->text);
    return u"An error of type " + decimalNumber(number) + u" has occurred.";
}

} // namespace mac::applescript
