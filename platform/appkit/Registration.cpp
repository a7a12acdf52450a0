#include "platform/appkit/Registration.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSArrayController.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/Method.h"

namespace mac {

void registerAppKit() { registerClasses<NSApplication, NSArrayController, NSControl, NSTableView, NSView, NSWindow>(); }

} // namespace mac
