#include "platform/appkit/Registration.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/VersionOrder.h"
#include "platform/foundation/Method.h"

namespace mac {

void registerAppKit() {
    registerClasses<NSTableView, NSWindow>();
    registerVersionOrder();
}

} // namespace mac
