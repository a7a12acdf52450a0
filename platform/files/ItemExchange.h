#pragma once

#include "platform/system/Result.h"
#include "platform/system/items/OpenItem.h"
#include <functional>

namespace mac {

enum class ExchangeStep {
    // The items have each other's names.
    Exchanged,
    // So have their AppleDouble sidecars.
    SidecarsFollowed,
};
// Called after each step; a failure is taken for the next step's. For tests; empty in the product.
using ExchangeSteps = std::function<Result<void>(ExchangeStep)>;

// Exchanges what two files or symbolic links of one volume hold: contents, resource forks, dates of modification and
// whatever else belongs to them. Finder information and creation dates stay with the names. Fails, and leaves both as
// they were, with EINVAL or ENOSYS if the file system cannot exchange names in one step, EXDEV for two volumes, EISDIR
// for a folder, EMLINK for a file of several names, ItemIsLocked, ESTALE if another item has taken a name. If it fails
// later and another item has taken a name by then, nothing is taken back: the operation of the error is "exchange
// back", and its item the name that the other one's contents, or resource fork, stay at. Any thread.
//
// Linux: the files change names, since their contents cannot be exchanged; permissions and owners go with the contents,
// so that nobody gets to read more than before.
Result<void> exchangeItems(OpenItem const& first, OpenItem const& second, ExchangeSteps const& steps = {});

} // namespace mac
