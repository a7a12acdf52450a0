#include "platform/appkit/Registration.h"
#include "platform/appkit/interface/NSTableView.h"
#include "platform/appkit/interface/NSWindow.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

void registerAppKit() { registerClasses<NSTableView, NSWindow>(); }

} // namespace mac
