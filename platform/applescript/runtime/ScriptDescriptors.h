#pragma once

#include "platform/applescript/runtime/ScriptValue.h"
#include "platform/events/AEDataModel.h"

// Values of scripts as Apple events carry them, and back. Numbers, text, dates, lists and records are copied; files,
// applications and references name what they mean. Main thread. What cannot be is thrown as a ScriptError.

namespace mac::applescript {

// `application` is whom an event goes to or a reply came from: where references are rooted in it, the descriptor's root
// is null, as it is for a reference without a root. Another application is named by an address.
//
// A record's terms are fields under their codes, and the names that its author made up are one field 'usrf', a list of
// names and values in turn; a class among its fields is the type of the descriptor. An alias is the bytes of its path.
// No value is a null descriptor. Throws -2706 for what nests deeper than a descriptor may, circles included, -2708 for
// more than a million values, -1700 for a path that no file can have.
AEDesc descriptorOfValue(Value const& value, Value const& application = {});

// The value of a descriptor: Nothing for a null descriptor; a type that no value stands for becomes raw data. Throws
// -1702 for a descriptor that is not what its type says, -2708 for more than a million values.
//
// `valueOfForeign`, if it is given, is asked first about each descriptor of bytes, at any depth: for types that stand
// for something only in some application's events. Nothing leaves the descriptor to the rules above.
using ForeignDescriptors = Value (*)(AEDesc const& desc);
Value valueOfDescriptor(AEDesc const& desc, Value const& application = {}, ForeignDescriptors valueOfForeign = nullptr);

} // namespace mac::applescript
