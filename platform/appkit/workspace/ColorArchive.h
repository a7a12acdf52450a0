#pragma once

#include "platform/foundation/objects/Object.h"

namespace mac {

// The form in which colours are archived (NSArchiver.h): a dictionary with the name of the space and its components,
// the opacity last. For implementations; any thread.

inline constexpr char ArchivedSpaceKey[] = "space";
inline constexpr char ArchivedComponentsKey[] = "components";

// REQUIRES: the object is a colour.
id archivedColor(id const& object);
// Nil for what archivedColor does not answer.
id unarchivedColor(id const& list);

} // namespace mac
