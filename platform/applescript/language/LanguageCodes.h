#pragma once

#include "platform/applescript/language/Codes.h"

// The codes of the language's own terms that more than one place means, beside those that dictionaries share with it.

namespace mac::applescript::codes {

// Classes of values.
inline constexpr Code WordType = codeOf("cwor");
inline constexpr Code ParagraphType = codeOf("cpar");
inline constexpr Code TextItemType = codeOf("citm");
inline constexpr Code DataType = codeOf("rdat");
inline constexpr Code HandlerType = codeOf("hand");
inline constexpr Code ISODateType = codeOf("isot");
inline constexpr Code MonthType = codeOf("mnth");
inline constexpr Code WeekdayType = codeOf("wkdy");

// Months and weekdays.
inline constexpr Code January = codeOf("jan ");
inline constexpr Code February = codeOf("feb ");
inline constexpr Code March = codeOf("mar ");
inline constexpr Code April = codeOf("apr ");
inline constexpr Code May = codeOf("may ");
inline constexpr Code June = codeOf("jun ");
inline constexpr Code July = codeOf("jul ");
inline constexpr Code August = codeOf("aug ");
inline constexpr Code September = codeOf("sep ");
inline constexpr Code October = codeOf("oct ");
inline constexpr Code November = codeOf("nov ");
inline constexpr Code December = codeOf("dec ");
inline constexpr Code Sunday = codeOf("sun ");
inline constexpr Code Monday = codeOf("mon ");
inline constexpr Code Tuesday = codeOf("tue ");
inline constexpr Code Wednesday = codeOf("wed ");
inline constexpr Code Thursday = codeOf("thu ");
inline constexpr Code Friday = codeOf("fri ");
inline constexpr Code Saturday = codeOf("sat ");

// Properties of values.
inline constexpr Code Day = codeOf("day ");
inline constexpr Code DateString = codeOf("dstr");
inline constexpr Code Hours = codeOf("hour");
inline constexpr Code Length = codeOf("leng");
inline constexpr Code Minutes = codeOf("min ");
inline constexpr Code QuotedForm = codeOf("strq");
inline constexpr Code Rest = codeOf("rest");
inline constexpr Code Reverse = codeOf("rvse");
inline constexpr Code Seconds = codeOf("scnd");
inline constexpr Code ShortDateString = codeOf("shdt");
inline constexpr Code Time = codeOf("time");
inline constexpr Code TimeString = codeOf("tstr");
inline constexpr Code Year = codeOf("year");
inline constexpr Code POSIXPathOfFile = codeOf("posx");

// What AppleScript itself has.
inline constexpr Code Days = codeOf("days");
inline constexpr Code Linefeed = codeOf("lnfd");
inline constexpr Code Pi = codeOf("pi  ");
inline constexpr Code Quote = codeOf("quot");
inline constexpr Code Space = codeOf("spac");
inline constexpr Code Tab = codeOf("tab ");
inline constexpr Code Weeks = codeOf("week");

// Constants.
inline constexpr Code AppleScriptSuite = codeOf("ascr");
inline constexpr Code Ask = codeOf("ask ");
inline constexpr Code False = codeOf("fals");
inline constexpr Code No = codeOf("no  ");
inline constexpr Code Null = codeOf("null");
inline constexpr Code True = codeOf("true");
inline constexpr Code Yes = codeOf("yes ");

// Relations and forms of descriptors.
inline constexpr Code ContainsRelation = codeOf("cont");
inline constexpr Code PropertyForm = codeOf("prop");
inline constexpr Code RangeForm = codeOf("rang");
inline constexpr Code LogicalTest = codeOf("logi");

} // namespace mac::applescript::codes
