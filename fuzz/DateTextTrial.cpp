#include "fuzz/Trials.h"
#include "platform/applescript/runtime/ScalarText.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/foundation/text/Encodings.h"

namespace mac::fuzz {

using namespace mac::applescript;

std::string complaintAboutDateText(std::string_view bytes) {
    std::u16string const text = unitsFromFileSystemBytes(bytes);
    if (std::optional<std::int64_t> const date = dateInISOText(text)) {
        // What is later than the year 9999 or before the year 0 has another form.
        std::int64_t const year = partsOfDate(*date).year;
        if (year >= 0 && year <= 9999 && dateInISOText(isoDateText(*date)) != date)
            return "an ISO date comes back otherwise";
    }
    constexpr std::int64_t base = 3'800'000'000;
    std::optional<std::int64_t> const date = dateInText(text, base);
    if (!date) return "";
    if (dateOfParts(partsOfDate(*date)) != *date) return "a date has the parts of another";
    std::int64_t const year = partsOfDate(*date).year;
    if (year < 1000 || year > 9999) return "";
    return dateInText(fullDateText(*date), base) == date ? "" : "a date that was written is read otherwise";
}

} // namespace mac::fuzz
