#pragma once

#include "platform/processes/Processes.h"
#include "platform/system/processes/ProcessList.h"
#include <optional>

namespace mac {

// Serial numbers, which processes go by on Mac OS X, and the identities behind them. For implementations; any thread.

// nullopt for numbers that name none, {0, kNoProcess} among them. Whether the process runs is not asked.
std::optional<ProcessIdentity> identityOf(ProcessSerialNumber const& psn);
ProcessSerialNumber serialNumberOf(ProcessIdentity const& identity);

} // namespace mac
