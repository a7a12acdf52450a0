#include "fuzz/Trials.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/predicates/NSPredicate.h"
#include "platform/foundation/text/NSString.h"
#include <optional>

namespace mac::fuzz {

namespace {

NSDictionary object() {
    return NSDictionary::dictionaryWithObjectsAndKeys_({
        "Mirror Frame.app",
        "a",
        NSNumber::numberWithInt_(210),
        "b",
        NSArray::arrayWithObjects_({"x", NSNumber::numberWithDouble_(1.5)}),
        "c",
        NSDictionary::dictionaryWithObject_forKey_("inner", "a"),
        "d",
    });
}

// nullopt if the evaluation raised.
std::optional<bool> answer(NSPredicate const& predicate) {
    try {
        return predicate.evaluateWithObject_(object());
    } catch (NSException const&) {
        return std::nullopt;
    }
}

} // namespace

std::string complaintAboutPredicate(std::string_view bytes) {
    NSPredicate predicate;
    try {
        predicate =
            NSPredicate::predicateWithFormat_(NSString::stringWithFileSystemRepresentation_(bytes), "a", "x' OR 1");
    } catch (NSInvalidArgumentException const& error) {
        return error.reason().empty() ? "refused without a reason" : "";
    }
    NSString const format = predicate.predicateFormat();
    try {
        NSPredicate const again = NSPredicate::predicateWithFormat_(format);
        if (!again.predicateFormat().isEqualToString_(format))
            return "written and read it is another: " + format.UTF8String();
        if (answer(again) != answer(predicate)) return "written and read it answers otherwise: " + format.UTF8String();
    } catch (NSInvalidArgumentException const& error) {
        return "cannot be read back: " + error.reason();
    }
    return "";
}

} // namespace mac::fuzz
