#include "platform/appkit/Registration.h"
#include "platform/appkit/interface/NSTableView.h"
#include "platform/appkit/interface/NSWindow.h"
#include "platform/appkit/interface/VersionOrder.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

void registerAppKit() {
    registerClasses<NSTableView, NSWindow>();
    registerVersionOrder();
}

} // namespace mac
