#pragma once

#include "platform/foundation/text/NSString.h"
#include "platform/system/items/OpenItem.h"

namespace framekeeper {

using namespace mac;

// The outcome of swapping a copy's icon.
struct IconSwap {
    // The icon file's names, without extension; nil unless the new one was written.
    NSString formerName{};
    NSString newName{};
    // The line for the log; nil on success.
    NSString failure{};

    bool isWritten() const { return newName != nil; }
};

// Exchanges the copy's icon name, which is one of two, for the other one in its information file and touches the
// bundle. The file keeps its format and is replaced whole. A failure after the writing takes nothing back. If
// presentName is not nil, the file must hold that name. Main thread.
//
// Linux: no program is run to touch the bundle, since there may be none. The file stays as it was if it is a symbolic
// link, lies behind one, may not be written, has more than 4 MiB, or changed since it was read; what is touched is the
// bundle that was opened, whatever has its path by then.
IconSwap swapIcon(NSString const& path, NSString const& presentName = nil);
// Does so in this very copy, wherever it lies by now.
IconSwap swapIcon(OpenItem const& bundle, NSString const& presentName = nil);

} // namespace framekeeper
