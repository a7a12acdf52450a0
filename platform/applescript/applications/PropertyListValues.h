#pragma once

#include "platform/applescript/runtime/ScriptValue.h"
#include "platform/foundation/objects/Object.h"

namespace mac::applescript {

// A property list as a value of scripts: a dictionary is a record whose keys its author made up, data are raw data.
// Numbers become integers as far as scripts have them, else reals.
Value valueOfPropertyList(id const& object);

// The way back; a record's term is a key under the term's name. Throws -1700 for a value that no property list holds,
// and -2706 for a list that holds itself.
id propertyListOfValue(Value const& value);

} // namespace mac::applescript
