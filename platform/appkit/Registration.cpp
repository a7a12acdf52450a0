#include "platform/appkit/Registration.h"
#include "platform/appkit/NSArrayController.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/Method.h"

namespace mac {

void registerAppKit() { registerClasses<NSArrayController, NSTableView, NSWindow>(); }

} // namespace mac
