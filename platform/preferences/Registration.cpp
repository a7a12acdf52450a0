#include "platform/preferences/Registration.h"
#include "platform/foundation/objects/Method.h"
#include "platform/preferences/NSUserDefaults.h"

namespace mac {

void registerPreferences() { registerClasses<NSUserDefaults>(); }

} // namespace mac
