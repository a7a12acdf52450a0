#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/system/processes/ProcessList.h"
#include <optional>

namespace mac {

// Where an event goes; for implementations.
struct EventTarget {
    // Of the running process that is meant.
    ProcessIdentity process;
    bool isThisProcess{false};
};

// The running process that an address descriptor names; nothing where there is none, or no such type of address. Main
// thread for addresses by identifier or signature.
std::optional<EventTarget> targetOfAddress(AEDesc const& address);

} // namespace mac
